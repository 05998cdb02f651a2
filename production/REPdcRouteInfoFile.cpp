// The route information file: the route list as text and the look-up by route name.
#include "REPdcRouteInfoFile.h"
#include "production/PdcRouteInfoFileTraits.h"

#include <cstdio>

const RERecordFileSpec REPdcRouteInfoFile::kSpec = REMakeSpec<PdcRouteInfoFileTraits, REPdcRouteInfoFile>();

REPdcRouteInfoFile::REPdcRouteInfoFile() : REPdcFile(kSpec) {}

int REPdcRouteInfoFile::GetAllRoutes(std::vector<std::string>& routes) {
    PDCROUTEINFODATATYPE rec;
    SetKeyNumber(0);
    for (int more = GetFirstRecord(&rec); more; more = GetNextRecord(&rec)) {
        char line[sizeof rec.sRouteName + sizeof rec.sDescription + 4];
        std::snprintf(line, sizeof line, "%-.*s : %-.*s", static_cast<int>(sizeof rec.sRouteName), rec.sRouteName,
                      static_cast<int>(sizeof rec.sDescription), rec.sDescription);
        routes.push_back(line);
    }
    return routes.empty() ? 0 : 1;
}

int REPdcRouteInfoFile::GetEqualMatch(const std::string& routeName, PDCROUTEINFODATATYPE* out) {
    return _ReadByText(kOpGetEqual, 0, routeName, sizeof out->sRouteName, out);
}
