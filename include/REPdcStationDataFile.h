// REPdcStationDataFile: the stations of a production project, one PDCSTATIONDATATYPE per
// station with its number and name. Key 0 is number and name; the look-ups by number and by
// name use keys 2 and 3 (number, name), which the file must carry for them to succeed. Files of
// the earlier generation (24-byte records) are converted on every read.
// A program opens it with Initialize(path) (CreateNewFile first makes an empty file) and reads
// and writes it through the record-file methods of detail/RERecordFile.h and those below.
#pragma once

#include "detail/PdcFileFamily.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#pragma pack(push, 1)
struct PDCSTATIONDATATYPE {
    int32_t nStnNo;      // station number; key segment
    char sStnName[17];   // 15 characters; key segment
    int32_t nValue21;
    char sText25[5];     // 4 characters
};

struct OLD_PDCSTATIONDATATYPE {
    int16_t nStnNo;
    char sStnName[15];
    char cSpare17;
    int16_t nValue21;
    char sText25[4];
};
#pragma pack(pop)

static_assert(sizeof(PDCSTATIONDATATYPE) == 30);
static_assert(offsetof(PDCSTATIONDATATYPE, sStnName) == 4);
static_assert(offsetof(PDCSTATIONDATATYPE, nValue21) == 21);
static_assert(offsetof(PDCSTATIONDATATYPE, sText25) == 25);
static_assert(sizeof(OLD_PDCSTATIONDATATYPE) == 24);
static_assert(offsetof(OLD_PDCSTATIONDATATYPE, sStnName) == 2);
static_assert(offsetof(OLD_PDCSTATIONDATATYPE, nValue21) == 18);
static_assert(offsetof(OLD_PDCSTATIONDATATYPE, sText25) == 20);

class TARSEL_API REPdcStationDataFile
    : public REPdcFile<REPdcStationDataFile, RELayout<PDCSTATIONDATATYPE, OLD_PDCSTATIONDATATYPE>> {
public:
    REPdcStationDataFile();

    static int ResetPdcStationDataRecArray(std::vector<PDCSTATIONDATATYPE*>& array) { return ResetRecArray(array); }

    // The name of the station with this number (Get Equal on key 2); `name` is emptied first.
    int GetStnNameWRTStnStnNo(int stationNo, std::string& name);
    // The number of the station with this name (Get Equal on key 3, 17 bytes); `stationNo` is 0
    // when none is found.
    int GetStnNoWRTStnStnName(const std::string& name, int& stationNo);

private:
    static const RERecordFileSpec kSpec;
};
