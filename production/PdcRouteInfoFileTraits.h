// What the route information file tells the record-file machinery.
#pragma once

#include "REPdcRouteInfoFile.h"
#include "production/PdcFileFamily.h"

struct PdcRouteInfoFileTraits : PdcFileTraits {
    using Record = PDCROUTEINFODATATYPE;
    using OldRecord = OLD_PDCROUTEINFODATATYPE;
    static constexpr const char* kClassName = "REPdcRouteInfoFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1223, .unknownError = 1267, .create = 1245};
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(sRouteName, kKeyLastSegment, kKeyTypeZString),
    };
    static constexpr REField kFields[] = {
        RE_MARK(sRouteName, sRouteName),
        RE_TEXT(sDescription),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
};
