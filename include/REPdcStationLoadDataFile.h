// REPdcStationLoadDataFile: the station load records of a production project, one
// PDCSTATIONLOADDATATYPE each. The file has no key: its records read in the order they were
// written. Files of the earlier generation (65-byte records) are converted on every read.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "REPdcMarkText.h"
#include "detail/PdcFileFamily.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#pragma pack(push, 1)
struct PDCSTATIONLOADDATATYPE {
    int32_t nValue0;
    char sText4[9];    // 8 characters
    char sMark13[17];  // mark text
    char sText30[11];  // 10 characters
    char sText41[11];  // 10 characters
    uint8_t value52[4];
    uint8_t value56[4];
    double dDate60;    // automation date
};

struct OLD_PDCSTATIONLOADDATATYPE {
    int16_t nValue0;
    char sText4[8];
    char cSpare10;
    OLD_MARKTYPE sMark13;
    char sText30[10];
    char cSpare38;
    char sText41[10];
    char cSpare49;
    uint8_t value52[4];
    uint8_t value56[4];
    char dDate60[7];  // date text
};
#pragma pack(pop)

static_assert(sizeof(PDCSTATIONLOADDATATYPE) == 68);
static_assert(offsetof(PDCSTATIONLOADDATATYPE, sText4) == 4);
static_assert(offsetof(PDCSTATIONLOADDATATYPE, sMark13) == 13);
static_assert(offsetof(PDCSTATIONLOADDATATYPE, sText30) == 30);
static_assert(offsetof(PDCSTATIONLOADDATATYPE, sText41) == 41);
static_assert(offsetof(PDCSTATIONLOADDATATYPE, value52) == 52);
static_assert(offsetof(PDCSTATIONLOADDATATYPE, value56) == 56);
static_assert(offsetof(PDCSTATIONLOADDATATYPE, dDate60) == 60);
static_assert(sizeof(OLD_PDCSTATIONLOADDATATYPE) == 65);
static_assert(offsetof(OLD_PDCSTATIONLOADDATATYPE, sText4) == 2);
static_assert(offsetof(OLD_PDCSTATIONLOADDATATYPE, sMark13) == 11);
static_assert(offsetof(OLD_PDCSTATIONLOADDATATYPE, sText30) == 28);
static_assert(offsetof(OLD_PDCSTATIONLOADDATATYPE, sText41) == 39);
static_assert(offsetof(OLD_PDCSTATIONLOADDATATYPE, value52) == 50);
static_assert(offsetof(OLD_PDCSTATIONLOADDATATYPE, value56) == 54);
static_assert(offsetof(OLD_PDCSTATIONLOADDATATYPE, dDate60) == 58);

class TARSEL_API REPdcStationLoadDataFile
    : public REPdcFile<REPdcStationLoadDataFile, RELayout<PDCSTATIONLOADDATATYPE, OLD_PDCSTATIONLOADDATATYPE>> {
public:
    REPdcStationLoadDataFile();

    static int ResetPdcStationLoadDataRecArray(std::vector<PDCSTATIONLOADDATATYPE*>& array) {
        return ResetRecArray(array);
    }

private:
    static const RERecordFileSpec kSpec;
};
