// REPdcRouteInfoFile: the routes of a production project, one PDCROUTEINFODATATYPE per route
// with its description, keyed by route name. Files of the earlier generation (43-byte records)
// are converted on every read.
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
struct PDCROUTEINFODATATYPE {
    char sRouteName[17];    // mark text; key 0
    char sDescription[26];  // 25 characters
    char cSpare43;
};

struct OLD_PDCROUTEINFODATATYPE {
    OLD_MARKTYPE sRouteName;
    char sDescription[25];
    char cSpare42;
};
#pragma pack(pop)

static_assert(sizeof(PDCROUTEINFODATATYPE) == 44);
static_assert(offsetof(PDCROUTEINFODATATYPE, sDescription) == 17);
static_assert(offsetof(PDCROUTEINFODATATYPE, cSpare43) == 43);
static_assert(sizeof(OLD_PDCROUTEINFODATATYPE) == 43);
static_assert(offsetof(OLD_PDCROUTEINFODATATYPE, sDescription) == 17);

class TARSEL_API REPdcRouteInfoFile
    : public REPdcFile<REPdcRouteInfoFile, RELayout<PDCROUTEINFODATATYPE, OLD_PDCROUTEINFODATATYPE>> {
public:
    REPdcRouteInfoFile();

    static int ResetPdcRouteInfoRecArray(std::vector<PDCROUTEINFODATATYPE*>& array) { return ResetRecArray(array); }

    // Appends "name : description" for every route in key order; 1 if the array is not empty
    // afterwards.
    int GetAllRoutes(std::vector<std::string>& routes);
    // Get Equal on key 0 with the route name (17 bytes); a null `out` only tests existence.
    int GetEqualMatch(const std::string& routeName, PDCROUTEINFODATATYPE* out);

private:
    static const RERecordFileSpec kSpec;
};
