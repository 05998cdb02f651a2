// REPdcRouteDataFile: the stations of each route, one PDCROUTEDATATYPE per station of a route,
// keyed by route name (duplicates). Files of the earlier generation (19-byte records) are
// converted on every read.
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
struct PDCROUTEDATATYPE {
    char sRouteName[17];  // mark text; key 0
    int32_t nStnNo;       // station number
};

struct OLD_PDCROUTEDATATYPE {
    OLD_MARKTYPE sRouteName;
    int16_t nStnNo;
};
#pragma pack(pop)

static_assert(sizeof(PDCROUTEDATATYPE) == 21);
static_assert(offsetof(PDCROUTEDATATYPE, nStnNo) == 17);
static_assert(sizeof(OLD_PDCROUTEDATATYPE) == 19);
static_assert(offsetof(OLD_PDCROUTEDATATYPE, nStnNo) == 17);

class TARSEL_API REPdcRouteDataFile
    : public REPdcFile<REPdcRouteDataFile, RELayout<PDCROUTEDATATYPE, OLD_PDCROUTEDATATYPE>> {
public:
    REPdcRouteDataFile();

    static int ResetPdcRouteDataRecArray(std::vector<PDCROUTEDATATYPE*>& array) { return ResetRecArray(array); }

    // Appends the station numbers of the route (name compared ignoring case) in key order. An
    // unknown route gives 1 and leaves the array as it is; else 1 if the array is not empty.
    int GetStationNoArrayWRTRoute(const std::string& routeName, std::vector<unsigned int>& stations);
    // 1 when the station number turns up from the route's first record on, in key order; the
    // walk does not stop at the end of the route, so a later route's station also counts.
    int IsStnNoDefinedInRoute(const std::string& routeName, int stationNo);

private:
    static const RERecordFileSpec kSpec;
};
