// The route data file: the stations of a route.
#include "REPdcRouteDataFile.h"
#include "production/PdcRouteDataFileTraits.h"

const RERecordFileSpec REPdcRouteDataFile::kSpec = REMakeSpec<PdcRouteDataFileTraits, REPdcRouteDataFile>();

REPdcRouteDataFile::REPdcRouteDataFile() : REPdcFile(kSpec) {}

int REPdcRouteDataFile::GetStationNoArrayWRTRoute(const std::string& routeName, std::vector<unsigned int>& stations) {
    PDCROUTEDATATYPE rec;
    if (!_ReadByText(kOpGetEqual, 0, routeName, sizeof rec.sRouteName, &rec))
        return 1;
    for (int more = 1; more && PdcSameText(rec.sRouteName, sizeof rec.sRouteName, routeName, true);
         more = GetNextRecord(&rec))
        stations.push_back(static_cast<unsigned int>(rec.nStnNo));
    return stations.empty() ? 0 : 1;
}

int REPdcRouteDataFile::IsStnNoDefinedInRoute(const std::string& routeName, int stationNo) {
    PDCROUTEDATATYPE rec;
    for (int more = _ReadByText(kOpGetEqual, 0, routeName, sizeof rec.sRouteName, &rec); more;
         more = GetNextRecord(&rec)) {
        if (rec.nStnNo == stationNo)
            return 1;
    }
    return 0;
}
