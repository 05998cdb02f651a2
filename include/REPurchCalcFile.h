// REPurchCalcFile: the purchasing work file, fixed 862-byte PURCHASECALCRECORD rows read back in
// the order of its one key. One layout; the class keeps its own path and open flag.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/REWorkFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>

#pragma pack(push, 1)
struct PURCHASECALCRECORD {
    char sText0[2];   // key 0, first segment (ignoring case)
    char sText2[9];   // key 0 (ignoring case)
    char sText11[9];  // key 0 (ignoring case)
    int32_t nValue20;  // key 0, last segment
    uint8_t data24[838];  // the purchasing run's fields, carried as given
};
#pragma pack(pop)

static_assert(sizeof(PURCHASECALCRECORD) == 862);
static_assert(offsetof(PURCHASECALCRECORD, sText0) == 0);
static_assert(offsetof(PURCHASECALCRECORD, sText2) == 2);
static_assert(offsetof(PURCHASECALCRECORD, sText11) == 11);
static_assert(offsetof(PURCHASECALCRECORD, nValue20) == 20);
static_assert(offsetof(PURCHASECALCRECORD, data24) == 24);

class TARSEL_API REPurchCalcFile : public REWorkFile<REPurchCalcFile, PURCHASECALCRECORD> {
public:
    REPurchCalcFile();

    using REWorkFile::m_filePath;
    using REWorkFile::m_fileOpen;

    // Opens the file at `path`; 0 without a message when there is none there.
    int Initialize(const char* path) { return _InitializeExisting(path); }
    int Initialize(const std::string& path) { return _InitializeExisting(path.c_str()); }

    // DeleteAllRecord answers whether its last step succeeded: never, so always 0.
    static constexpr int16_t kDeleteAllDone = kStatusSuccess;

private:
    static const RERecordFileSpec kSpec;
};
