// What the job item file tells the record-file machinery: its layouts, messages, key and field
// table.
#pragma once

#include "REJobFile.h"
#include "catalogue/SizeKeyFields.h"
#include "core/RecordFileSpec.h"
#include "labor/OperationTypeFields.h"

struct JobFileTraits {
    using Record = ESTJOBFILERECORD;
    using OldRecord = OLD_ESTJOBFILERECORD;
    static constexpr const char* kClassName = "REJobFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1211, .unknownError = 1104, .create = 1102};
    // Key 0: code 1, code 2, page number, line number; no duplicates.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(sCode1, kKeyInnerSegment, kKeyTypeZString),
        RE_KEY(sCode2, kKeyInnerSegment, kKeyTypeZString),
        RE_KEY(nPageNo, kKeyInnerSegment, kKeyTypeUnsigned),
        RE_KEY(nLineNo, kKeyLastSegment, kKeyTypeUnsigned),
    };
    static constexpr uint16_t kFileFlags = kFileFlagsJobItems;
    static constexpr REField kFields[] = {
        RE_TEXT(sCode1),
        RE_TEXT(sCode2),
        RE_NUMBER(nPageNo, kInteger),
        RE_NUMBER(nLineNo, kInteger),
        RE_NUMBER(nValue39, kInteger),
        RE_RECORD(sizeKey, SizeKeyFields::kFieldTable),
        RE_TEXT(sText124),
        RE_TEXT(sText135),
        RE_NUMBER(nShort142, kInteger),
        RE_NUMBER(nValue154, kInteger),
        RE_NUMBER(nValue158, kInteger),
        RE_TEXT(sText162),
        RE_TEXT(sText166),
        RE_TEXT(sText173),
        RE_TEXT(sText180),
        RE_TEXT(sText182),
        RE_NUMBER(nValue191, kInteger),
        RE_NUMBER(nValue195, kInteger),
        RE_TEXT(sText199),
        RE_RECORD(operations, OperationTypeFields::kFieldTable),
        RE_NEW_ONLY(reserved576, kBytes),
        RE_NEW_ONLY(nValue602, kInteger),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
    static constexpr void Customize(RERecordFileSpec& spec) {
        spec.duplicateTrace = "Same record present in the database; UPDATE possible not ADDITION.\n";
    }
};
