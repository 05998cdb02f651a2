// What the station file tells the record-file machinery.
#pragma once

#include "REPdcStationDataFile.h"
#include "production/PdcFileFamily.h"

struct PdcStationDataFileTraits : PdcFileTraits {
    using Record = PDCSTATIONDATATYPE;
    using OldRecord = OLD_PDCSTATIONDATATYPE;
    static constexpr const char* kClassName = "REPdcStationDataFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1225, .unknownError = 1269, .create = 1247};
    // Key 0: number and name. The block also carries the descriptions of a number key and a name
    // key, which its count of one key leaves unused.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(nStnNo, kKeyInnerSegment, kKeyTypeInteger),
        RE_KEY(sStnName, kKeyLastSegment, kKeyTypeZString),
        RE_KEY(nStnNo, kKeyLastSegment, kKeyTypeInteger),
        RE_KEY(sStnName, kKeyLastSegment, kKeyTypeZString),
    };
    static constexpr REField kFields[] = {
        RE_NUMBER(nStnNo, kInteger),
        RE_TEXT(sStnName),
        RE_NUMBER(nValue21, kInteger),
        RE_TEXT(sText25),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
    static constexpr void Customize(RERecordFileSpec& spec) {
        PdcFileTraits::Customize(spec);
        spec.create.keyCount = 1;
    }
};
