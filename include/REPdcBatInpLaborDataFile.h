// REPdcBatInpLaborDataFile: the labor lines of the batches, PDCBILABFILETYPE records keyed by
// batch number (duplicates). Files of the earlier generation (41-byte records, the text in three
// 11-byte parts) are converted on every read.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/PdcFileFamily.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#pragma pack(push, 1)
struct PDCBILABFILETYPE {
    int32_t nBatchNo;  // key 0
    int32_t nValue4;
    int32_t nValue8;
    char sText12[31];
    int32_t nValue43;
};

struct OLD_PDCBILABFILETYPE {
    int16_t nBatchNo;
    int16_t nValue4;
    int16_t nValue8;
    char sText12[3][11];  // joined into one text
    int16_t nValue43;
};
#pragma pack(pop)

static_assert(sizeof(PDCBILABFILETYPE) == 47);
static_assert(offsetof(PDCBILABFILETYPE, nValue4) == 4);
static_assert(offsetof(PDCBILABFILETYPE, nValue8) == 8);
static_assert(offsetof(PDCBILABFILETYPE, sText12) == 12);
static_assert(offsetof(PDCBILABFILETYPE, nValue43) == 43);
static_assert(sizeof(OLD_PDCBILABFILETYPE) == 41);
static_assert(offsetof(OLD_PDCBILABFILETYPE, nValue4) == 2);
static_assert(offsetof(OLD_PDCBILABFILETYPE, nValue8) == 4);
static_assert(offsetof(OLD_PDCBILABFILETYPE, sText12) == 6);
static_assert(offsetof(OLD_PDCBILABFILETYPE, nValue43) == 39);

class TARSEL_API REPdcBatInpLaborDataFile
    : public REPdcBatchLineFile<REPdcBatInpLaborDataFile, RELayout<PDCBILABFILETYPE, OLD_PDCBILABFILETYPE>> {
public:
    REPdcBatInpLaborDataFile();

    static int ResetPdcBatInpLaborDataRecArray(std::vector<PDCBILABFILETYPE*>& array) {
        return ResetRecArray(array);
    }

private:
    static const RERecordFileSpec kSpec;
};
