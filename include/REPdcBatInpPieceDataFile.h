// REPdcBatInpPieceDataFile: the piece lines of the batches, PDCBIPIEFILETYPE records keyed by
// batch number (duplicates). Files of the earlier generation (88-byte records, the text in three
// 11-byte parts) are converted on every read.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "REPdcMarkText.h"
#include "detail/PdcFileFamily.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#pragma pack(push, 1)
struct PDCBIPIEFILETYPE {
    int32_t nBatchNo;  // key 0
    char sMark4[17];   // mark text
    char sMark21[17];  // mark text
    int32_t nValue38;
    char sMark42[17];  // mark text
    char sText59[31];
};

struct OLD_PDCBIPIEFILETYPE {
    int16_t nBatchNo;
    OLD_MARKTYPE sMark4;
    OLD_MARKTYPE sMark21;
    int16_t nValue38;
    OLD_MARKTYPE sMark42;
    char sText59[3][11];  // joined into one text
};
#pragma pack(pop)

static_assert(sizeof(PDCBIPIEFILETYPE) == 90);
static_assert(offsetof(PDCBIPIEFILETYPE, sMark4) == 4);
static_assert(offsetof(PDCBIPIEFILETYPE, sMark21) == 21);
static_assert(offsetof(PDCBIPIEFILETYPE, nValue38) == 38);
static_assert(offsetof(PDCBIPIEFILETYPE, sMark42) == 42);
static_assert(offsetof(PDCBIPIEFILETYPE, sText59) == 59);
static_assert(sizeof(OLD_PDCBIPIEFILETYPE) == 88);
static_assert(offsetof(OLD_PDCBIPIEFILETYPE, sMark4) == 2);
static_assert(offsetof(OLD_PDCBIPIEFILETYPE, sMark21) == 19);
static_assert(offsetof(OLD_PDCBIPIEFILETYPE, nValue38) == 36);
static_assert(offsetof(OLD_PDCBIPIEFILETYPE, sMark42) == 38);
static_assert(offsetof(OLD_PDCBIPIEFILETYPE, sText59) == 55);

class TARSEL_API REPdcBatInpPieceDataFile
    : public REPdcBatchLineFile<REPdcBatInpPieceDataFile, RELayout<PDCBIPIEFILETYPE, OLD_PDCBIPIEFILETYPE>> {
public:
    REPdcBatInpPieceDataFile();

    static int ResetPdcBatInpPieceDataRecArray(std::vector<PDCBIPIEFILETYPE*>& array) {
        return ResetRecArray(array);
    }

private:
    static const RERecordFileSpec kSpec;
};
