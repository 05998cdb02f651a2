// What the labor tracking file tells the record-file machinery.
#pragma once

#include "REPdcTrackingLaborDataFile.h"
#include "production/PdcFileFamily.h"

struct PdcTrackingLaborDataFileTraits : PdcFileTraits {
    using Record = PDCTRACKLABORFILETYPE;
    using OldRecord = OLD_PDCTRACKLABORFILETYPE;
    static constexpr const char* kClassName = "REPdcTrackingLaborDataFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1228, .unknownError = 1272, .create = 1250};
    // Key 0; the block also carries a one-segment description of the text at 30, which its count
    // of one key leaves unused.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(nValue0, kPdcDupInnerSegment, kKeyTypeInteger),
        RE_KEY(sText4, kPdcDupInnerSegment, kKeyTypeZString),
        RE_KEY(sMark13, kPdcDupLastSegment, kKeyTypeZString),
        RE_KEY(sText30, kPdcDupLastSegment, kKeyTypeZString),
    };
    static constexpr REField kFields[] = {
        RE_NUMBER(nValue0, kInteger),
        RE_TEXT(sText4),
        RE_MARK(sMark13, sMark13),
        RE_TEXT(sText30),
        RE_PDC_DATE(dDate34),
        RE_NUMBER(nValue42, kInteger),
        RE_NUMBER(nValue46, kInteger),
        RE_TEXT(sText50),
        RE_TEXT(sText61),
        RE_TEXT(sText72),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
    static constexpr void Customize(RERecordFileSpec& spec) {
        PdcFileTraits::Customize(spec);
        spec.create.keyCount = 1;
    }
};
