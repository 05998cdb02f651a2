// What the mark file tells the record-file machinery: its layouts, messages, keys and field
// table.
#pragma once

#include "REPdcMarkFile.h"
#include "production/PdcDataFiles.h"
#include "production/PdcMarkFields.h"

struct PdcMarkFileTraits {
    using Record = PDCMARKDATATYPE;
    using OldRecord = OLD_PDCMARKDATATYPE;
    static constexpr const char* kClassName = "REPdcMarkFile";
    static constexpr REMessageCodes kMessages = REPdcMessages(1219, 1241, 1263);

    static constexpr uint16_t kInner = kKeyInnerSegment;
    static constexpr uint16_t kLast = kKeyLastSegment;
    static constexpr REKeySegment kKeys[] = {
        // 0: mark
        RE_KEY(szMark, kLast, kKeyTypeZString),
        // 1: mark, flag
        RE_KEY(szMark, kInner, kKeyTypeZString),
        RE_KEY(szMainOrAcc, kLast, kKeyTypeZString),
        // 2 to 5: a text or the second mark, then mark and flag
        RE_KEY(szText19, kInner, kKeyTypeZString),
        RE_KEY(szMark, kInner, kKeyTypeZString),
        RE_KEY(szMainOrAcc, kLast, kKeyTypeZString),
        RE_KEY(szText23, kInner, kKeyTypeZString),
        RE_KEY(szMark, kInner, kKeyTypeZString),
        RE_KEY(szMainOrAcc, kLast, kKeyTypeZString),
        RE_KEY(szSecondMark, kInner, kKeyTypeZString),
        RE_KEY(szMark, kInner, kKeyTypeZString),
        RE_KEY(szMainOrAcc, kLast, kKeyTypeZString),
        RE_KEY(szText49, kInner, kKeyTypeZString),
        RE_KEY(szMark, kInner, kKeyTypeZString),
        RE_KEY(szMainOrAcc, kLast, kKeyTypeZString),
        // 6: text 47 (duplicates)
        RE_KEY(szText47, kLast | kKeyDuplicates, kKeyTypeZString),
    };

    static constexpr REField kFields[] = {
        RE_TEXT(szText56),
        RE_TEXT(szText60),
        RE_TEXT(szText65),
        RE_TEXT(szText68),
        RE_SORTABLE_FLOAT(fMeasure79),
        RE_TEXT(szText107),
        RE_SORTABLE_FLOAT(fMeasure133),
        RE_TEXT(szMainOrAcc),
        RE_MARK(szMark, szMark),
        RE_TEXT(szText137),
        RE_TEXT(szText23),
        RE_REAL(dMeasure153),
        RE_MARK(szSecondMark, szSecondMark),
        RE_REAL(dMeasure209),
        RE_TEXT(szText47),
        RE_TEXT(szText19),
        RE_REAL(dMeasure225),
        RE_TEXT(szText49),
        RE_REAL(dMeasure249),
    };
    static void NormaliseFlag(void* rec) { REPdcNormaliseFlag(static_cast<Record*>(rec)->szMainOrAcc); }
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord), &NormaliseFlag, true};
    static constexpr void Customize(RERecordFileSpec& spec) {
        REPdcPieceFileSwitches(spec);
        spec.writeUnconverted = true;
    }
};
