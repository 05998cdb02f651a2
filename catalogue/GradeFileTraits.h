// What the grade file tells the record-file machinery: its layouts, messages, keys and fields.
#pragma once

#include "REGradeFile.h"
#include "catalogue/CatalogueFiles.h"
#include "core/RecordFileSpec.h"

struct GradeFileTraits {
    using Record = GRADEDATRECORD;
    using OldRecord = OLD_GRADEDATRECORD;
    static constexpr const char* kClassName = "REGradeFile";
    // The grade file shares the shape file's corrupt-file message.
    static constexpr REMessageCodes kMessages = {.corrupt = 1003, .unknownError = 1106, .create = 1106};
    // Key 0: the first text. Key 1: first text, code, third text, second text, the order of the
    // search key image. Both take duplicates and ignore case, as the searches do.
    static constexpr uint16_t kCaseBlind = kKeyCaseInsensitive | kKeyDuplicates;
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(szText0, kKeyLastSegment | kCaseBlind, kKeyTypeZString),
        RE_KEY(szText0, kKeyInnerSegment | kCaseBlind, kKeyTypeZString),
        RE_KEY(szCode5, kKeyInnerSegment | kCaseBlind, kKeyTypeZString),
        RE_KEY(szText19, kKeyInnerSegment | kCaseBlind, kKeyTypeZString),
        RE_KEY(szText8, kKeyLastSegment | kCaseBlind, kKeyTypeZString),
    };
    static constexpr REField kFields[] = {
        RE_TEXT(szText0),
        RE_TEXT(szCode5),
        RE_TEXT(szText8),
        RE_TEXT(szText19),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
    static constexpr void Customize(RERecordFileSpec& spec) {
        spec.duplicateTrace = "Same record present in the database; UPDATE possible not ADDITION.\n";
        REReadInStoredOrder(spec);
    }
};
