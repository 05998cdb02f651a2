// REPdcBatInpDataFile: the batches in which the shop floor enters production data, one
// PDCBIDFILETYPE header per batch, keyed by batch number (unique). Files of the earlier
// generation (46-byte records) are converted on every read.
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
struct PDCBIDFILETYPE {
    int32_t nBatchNo;  // key 0
    uint8_t nByte4;
    int32_t nValue5;
    char sText9[9];
    char sMark18[17];  // mark text
    char sText35[4];
    double dDate39;    // automation date
    double dValue47;
};

struct OLD_PDCBIDFILETYPE {
    int16_t nBatchNo;
    uint8_t nByte4;
    int16_t nValue5;
    char sText9[9];
    OLD_MARKTYPE sMark18;
    char sText35[4];
    char dDate39[7];  // date text
    float dValue47;
};
#pragma pack(pop)

static_assert(sizeof(PDCBIDFILETYPE) == 55);
static_assert(offsetof(PDCBIDFILETYPE, nByte4) == 4);
static_assert(offsetof(PDCBIDFILETYPE, nValue5) == 5);
static_assert(offsetof(PDCBIDFILETYPE, sText9) == 9);
static_assert(offsetof(PDCBIDFILETYPE, sMark18) == 18);
static_assert(offsetof(PDCBIDFILETYPE, sText35) == 35);
static_assert(offsetof(PDCBIDFILETYPE, dDate39) == 39);
static_assert(offsetof(PDCBIDFILETYPE, dValue47) == 47);
static_assert(sizeof(OLD_PDCBIDFILETYPE) == 46);
static_assert(offsetof(OLD_PDCBIDFILETYPE, nByte4) == 2);
static_assert(offsetof(OLD_PDCBIDFILETYPE, nValue5) == 3);
static_assert(offsetof(OLD_PDCBIDFILETYPE, sText9) == 5);
static_assert(offsetof(OLD_PDCBIDFILETYPE, sMark18) == 14);
static_assert(offsetof(OLD_PDCBIDFILETYPE, sText35) == 31);
static_assert(offsetof(OLD_PDCBIDFILETYPE, dDate39) == 35);
static_assert(offsetof(OLD_PDCBIDFILETYPE, dValue47) == 42);

class TARSEL_API REPdcBatInpDataFile
    : public REPdcBatchFile<REPdcBatInpDataFile, RELayout<PDCBIDFILETYPE, OLD_PDCBIDFILETYPE>> {
public:
    REPdcBatInpDataFile();

    static int ResetPdcBatInpDataRecArray(std::vector<PDCBIDFILETYPE*>& array) { return ResetRecArray(array); }

    using REPdcBatchFile::UpdateRecord;
    // Replaces the header of batch `batchNumber` by `newRec`.
    int UpdateRecord(int const& batchNumber, PDCBIDFILETYPE& newRec);

private:
    static const RERecordFileSpec kSpec;
};
