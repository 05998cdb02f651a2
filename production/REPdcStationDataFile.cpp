// The station file: station name by number and number by name.
#include "REPdcStationDataFile.h"
#include "production/PdcStationDataFileTraits.h"

#include <cstdio>

namespace {

// The look-up keys, beside key 0 (number and name).
constexpr int kStationNumberKey = 2;
constexpr int kStationNameKey = 3;

}  // namespace

const RERecordFileSpec REPdcStationDataFile::kSpec = REMakeSpec<PdcStationDataFileTraits, REPdcStationDataFile>();

REPdcStationDataFile::REPdcStationDataFile() : REPdcFile(kSpec) {}

int REPdcStationDataFile::GetStnNameWRTStnStnNo(int stationNo, std::string& name) {
    name.clear();
    const int32_t key = stationNo;
    PDCSTATIONDATATYPE rec;
    if (!_ReadByKey(kOpGetEqual, kStationNumberKey, &key, sizeof key, &rec))
        return 0;
    name.assign(rec.sStnName, strnlen(rec.sStnName, sizeof rec.sStnName));
    return 1;
}

int REPdcStationDataFile::GetStnNoWRTStnStnName(const std::string& name, int& stationNo) {
    stationNo = 0;
    PDCSTATIONDATATYPE rec;
    if (!_ReadByText(kOpGetEqual, kStationNameKey, name, sizeof rec.sStnName, &rec))
        return 0;
    stationNo = rec.nStnNo;
    return 1;
}
