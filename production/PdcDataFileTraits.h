// What the piece-data file tells the record-file machinery: its layouts, messages, keys and field
// table.
#pragma once

#include "REPdcDataFile.h"
#include "production/PdcDataFiles.h"
#include "production/PdcMarkFields.h"

struct PdcDataFileTraits {
    using Record = PDCDATATYPE;
    using OldRecord = OLD_PDCDATATYPE;
    static constexpr const char* kClassName = "REPdcDataFile";
    static constexpr REMessageCodes kMessages = REPdcMessages(1217, 1239, 1261);

    static constexpr uint16_t kInner = kKeyInnerSegment;
    static constexpr uint16_t kLast = kKeyLastSegment;
    static constexpr uint16_t kDupInner = kKeyInnerSegment | kKeyDuplicates;
    static constexpr uint16_t kDupLast = kKeyLastSegment | kKeyDuplicates;
    static constexpr REKeySegment kKeys[] = {
        // 0: main mark, second identifier, flag, piece mark
        RE_KEY(szMainMark, kInner, kKeyTypeZString),
        RE_KEY(szSecondMark, kInner, kKeyTypeZString),
        RE_KEY(szMainOrAcc, kInner, kKeyTypeZString),
        RE_KEY(szPieceMark, kLast, kKeyTypeZString),
        // 1: main mark, piece mark (duplicates)
        RE_KEY(szMainMark, kDupInner, kKeyTypeZString),
        RE_KEY(szPieceMark, kDupLast, kKeyTypeZString),
        // 2: main mark, flag, piece mark
        RE_KEY(szMainMark, kInner, kKeyTypeZString),
        RE_KEY(szMainOrAcc, kInner, kKeyTypeZString),
        RE_KEY(szPieceMark, kLast, kKeyTypeZString),
        // 3: text 72, text 79, then key 0
        RE_KEY(szText72, kInner, kKeyTypeZString),
        RE_KEY(szText79, kInner, kKeyTypeZString),
        RE_KEY(szMainMark, kInner, kKeyTypeZString),
        RE_KEY(szSecondMark, kInner, kKeyTypeZString),
        RE_KEY(szMainOrAcc, kInner, kKeyTypeZString),
        RE_KEY(szPieceMark, kLast, kKeyTypeZString),
        // 4: text 79, then key 0
        RE_KEY(szText79, kInner, kKeyTypeZString),
        RE_KEY(szMainMark, kInner, kKeyTypeZString),
        RE_KEY(szSecondMark, kInner, kKeyTypeZString),
        RE_KEY(szMainOrAcc, kInner, kKeyTypeZString),
        RE_KEY(szPieceMark, kLast, kKeyTypeZString),
        // 5: flag, piece mark (duplicates)
        RE_KEY(szMainOrAcc, kDupInner, kKeyTypeZString),
        RE_KEY(szPieceMark, kDupLast, kKeyTypeZString),
        // 6: piece mark (duplicates)
        RE_KEY(szPieceMark, kDupLast, kKeyTypeZString),
    };

    static constexpr REField kFields[] = {
        RE_MARK(szMainMark, szMainMark),
        RE_MARK(szSecondMark, szSecondMark),
        RE_TEXT(szMainOrAcc),
        RE_MARK(szPieceMark, szPieceMark),
        RE_NUMBER(nValue53, kInteger),
        RE_NUMBER(nValue57, kInteger),
        RE_TEXT(szText61),
        RE_TEXT(szText72),
        RE_TEXT(szText79),
        RE_TEXT(szText86),
        RE_TEXT(szText102),
        RE_TEXT(szText118),
        RE_TEXT(szText134),
        RE_NEW_ONLY(reserved150, kBytes),
    };
    static void NormaliseFlag(void* rec) { REPdcNormaliseFlag(static_cast<Record*>(rec)->szMainOrAcc); }
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord), &NormaliseFlag, true};
    static constexpr void Customize(RERecordFileSpec& spec) {
        REPdcPieceFileSwitches(spec);
        spec.writeUnconverted = true;
    }
};
