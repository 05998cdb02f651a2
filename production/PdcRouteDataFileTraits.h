// What the route data file tells the record-file machinery.
#pragma once

#include "REPdcRouteDataFile.h"
#include "production/PdcFileFamily.h"

struct PdcRouteDataFileTraits : PdcFileTraits {
    using Record = PDCROUTEDATATYPE;
    using OldRecord = OLD_PDCROUTEDATATYPE;
    static constexpr const char* kClassName = "REPdcRouteDataFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1222, .unknownError = 1266, .create = 1244};
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(sRouteName, kPdcDupLastSegment, kKeyTypeZString),
    };
    static constexpr REField kFields[] = {
        RE_MARK(sRouteName, sRouteName),
        RE_NUMBER(nStnNo, kInteger),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
};
