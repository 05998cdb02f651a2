// REEstMultShortFile: the estimate's short multiplier table, unkeyed 809-byte records read and
// rewritten whole.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/REWorkFile.h"
#include "tarsel_export.h"

#include <cstdint>

#pragma pack(push, 1)
struct MULTSHORTRECORD {
    uint8_t data[809];  // the estimating screens' table row, copied whole
};
#pragma pack(pop)

static_assert(sizeof(MULTSHORTRECORD) == 809);

class TARSEL_API REEstMultShortFile : public REWorkFile<REEstMultShortFile, MULTSHORTRECORD> {
public:
    REEstMultShortFile();

    // DeleteAllRecord gives 1 when its walk reached the end of the file.
    static constexpr int16_t kDeleteAllDone = kStatusEndOfFile;

private:
    static const RERecordFileSpec kSpec;
};
