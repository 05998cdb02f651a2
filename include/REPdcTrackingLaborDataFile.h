// REPdcTrackingLaborDataFile: the labor booked in the shop, one PDCTRACKLABORFILETYPE per entry.
// Key 0 (duplicates): the number at 0, the text at 4 and the mark. Files of the earlier
// generation (76-byte records) are converted on every read.
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
struct PDCTRACKLABORFILETYPE {
    int32_t nValue0;   // key segment
    char sText4[9];    // 8 characters; key segment
    char sMark13[17];  // mark text; key segment
    char sText30[4];   // 3 characters
    double dDate34;    // automation date
    int32_t nValue42;
    int32_t nValue46;
    char sText50[11];  // 10 characters
    char sText61[11];
    char sText72[11];
};

struct OLD_PDCTRACKLABORFILETYPE {
    int16_t nValue0;
    char sText4[8];
    char cSpare10;
    OLD_MARKTYPE sMark13;
    char sText30[3];
    char cSpare31;
    char dDate34[7];  // date text
    int16_t nValue42;
    int16_t nValue46;
    char sText50[10];
    char cSpare53;
    char sText61[10];
    char cSpare64;
    char sText72[10];
    char cSpare75;
};
#pragma pack(pop)

static_assert(sizeof(PDCTRACKLABORFILETYPE) == 83);
static_assert(offsetof(PDCTRACKLABORFILETYPE, sText4) == 4);
static_assert(offsetof(PDCTRACKLABORFILETYPE, sMark13) == 13);
static_assert(offsetof(PDCTRACKLABORFILETYPE, sText30) == 30);
static_assert(offsetof(PDCTRACKLABORFILETYPE, dDate34) == 34);
static_assert(offsetof(PDCTRACKLABORFILETYPE, nValue42) == 42);
static_assert(offsetof(PDCTRACKLABORFILETYPE, nValue46) == 46);
static_assert(offsetof(PDCTRACKLABORFILETYPE, sText50) == 50);
static_assert(offsetof(PDCTRACKLABORFILETYPE, sText61) == 61);
static_assert(offsetof(PDCTRACKLABORFILETYPE, sText72) == 72);
static_assert(sizeof(OLD_PDCTRACKLABORFILETYPE) == 76);
static_assert(offsetof(OLD_PDCTRACKLABORFILETYPE, sText4) == 2);
static_assert(offsetof(OLD_PDCTRACKLABORFILETYPE, sMark13) == 11);
static_assert(offsetof(OLD_PDCTRACKLABORFILETYPE, sText30) == 28);
static_assert(offsetof(OLD_PDCTRACKLABORFILETYPE, dDate34) == 32);
static_assert(offsetof(OLD_PDCTRACKLABORFILETYPE, nValue42) == 39);
static_assert(offsetof(OLD_PDCTRACKLABORFILETYPE, nValue46) == 41);
static_assert(offsetof(OLD_PDCTRACKLABORFILETYPE, sText50) == 43);
static_assert(offsetof(OLD_PDCTRACKLABORFILETYPE, sText61) == 54);
static_assert(offsetof(OLD_PDCTRACKLABORFILETYPE, sText72) == 65);

class TARSEL_API REPdcTrackingLaborDataFile
    : public REPdcFile<REPdcTrackingLaborDataFile, RELayout<PDCTRACKLABORFILETYPE, OLD_PDCTRACKLABORFILETYPE>> {
public:
    REPdcTrackingLaborDataFile();

    static int ResetPdcTrackingLaborDataRecArray(std::vector<PDCTRACKLABORFILETYPE*>& array) {
        return ResetRecArray(array);
    }

private:
    static const RERecordFileSpec kSpec;
};
