// What the station load file tells the record-file machinery: it is created without a key.
#pragma once

#include "REPdcStationLoadDataFile.h"
#include "production/PdcFileFamily.h"

struct PdcStationLoadDataFileTraits : PdcFileTraits {
    using Record = PDCSTATIONLOADDATATYPE;
    using OldRecord = OLD_PDCSTATIONLOADDATATYPE;
    static constexpr const char* kClassName = "REPdcStationLoadDataFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1226, .unknownError = 1270, .create = 1248};
    static constexpr REField kFields[] = {
        RE_NUMBER(nValue0, kInteger),
        RE_TEXT(sText4),
        RE_MARK(sMark13, sMark13),
        RE_TEXT(sText30),
        RE_TEXT(sText41),
        RE_COPY(value52, kBytes),
        RE_COPY(value56, kBytes),
        RE_PDC_DATE(dDate60),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
};
