// What the tracking file tells the record-file machinery.
#pragma once

#include "REPdcTrackingDataFile.h"
#include "catalogue/SizeKeyFields.h"
#include "production/PdcFileFamily.h"

struct PdcTrackingDataFileTraits : PdcFileTraits {
    using Record = PDCTRACKFILETYPE;
    using OldRecord = OLD_PDCTRACKFILETYPE;
    static constexpr const char* kClassName = "REPdcTrackingDataFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1227, .unknownError = 1271, .create = 1249};
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(nValue0, kPdcDupInnerSegment, kKeyTypeInteger),
        RE_KEY(sText4, kPdcDupInnerSegment, kKeyTypeZString),
        RE_KEY(sMark13, kPdcDupInnerSegment, kKeyTypeZString),
        RE_KEY(sMark30, kPdcDupLastSegment, kKeyTypeZString),
    };
    static constexpr REField kFields[] = {
        RE_NUMBER(nValue0, kInteger),
        RE_TEXT(sText4),
        RE_MARK(sMark13, sMark13),
        RE_MARK(sMark30, sMark30),
        RE_PDC_DATE(dDate47),
        RE_NUMBER(nValue55, kInteger),
        RE_RECORD(sizeKey, SizeKeyFields::kFieldTable),
        RE_TEXT(sText140),
        RE_TEXT(sText147),
        RE_TEXT(sText154),
        RE_MARK(sMark158, sMark158),
        RE_MARK(sMark175, sMark175),
        RE_COPY(value192, kBytes),
        RE_COPY(value196, kBytes),
        RE_TEXT(sText200),
        RE_TEXT(sText211),
        RE_TEXT(sText222),
    };
    static constexpr REFieldTable kFieldTable = PdcFieldTable(kFields, sizeof(Record), sizeof(OldRecord));
};
