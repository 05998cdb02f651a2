// What the two labor code files tell the record-file machinery: layouts, messages, keys and
// field tables. Both files share the corrupt-file message; their read failures differ.
#pragma once

#include "RELaborCodeDescFile.h"
#include "RELaborCodeFile.h"
#include "core/RecordFileSpec.h"

// Text segments of the labor keys compare ignoring case, as the searches' filters do.
constexpr uint16_t kLaborKeyText = kKeyInnerSegment | kKeyCaseInsensitive;
constexpr uint16_t kLaborKeyLastText = kKeyLastSegment | kKeyCaseInsensitive;

struct LaborCodeTraits {
    using Record = LABORCODERECORD;
    using OldRecord = OLD_LABORCODERECORD;
    static constexpr const char* kClassName = "RELaborCodeFile";
    // Every record-manager failure, Create included, shows the "create" text.
    static constexpr REMessageCodes kMessages = {.corrupt = 1006, .unknownError = 1212, .create = 1212};
    // Key 0: group name, sub-code; no duplicates.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(sGroupName, kLaborKeyText, kKeyTypeZString),
        RE_KEY(sSubCode, kLaborKeyLastText, kKeyTypeZString),
    };
    static constexpr int kKeyLength = sizeof(Record::sGroupName) + sizeof(Record::sSubCode);
    static constexpr int kOldKeyLength = sizeof(OldRecord::sGroupName) + sizeof(OldRecord::sSubCode);
    static constexpr REField kFields[] = {
        RE_TEXT(sGroupName),
        RE_TEXT(sSubCode),
        RE_TEXT(sDescription),
        RE_NUMBER(nTable1, kInteger),
        RE_NUMBER(nTable2, kInteger),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
    static constexpr const char* kAddTrace =
        "<<RELaborCodeFile::_AddRecord>> Same record present in the database; UPDATE possible not ADDITION.\n";
    static constexpr const char* kUpdateTrace =
        "<<RELaborCodeFile::_UpdateRecord>> Same record not present in the database; ADDITION possible not UPDATE.\n";
    static constexpr const char* kDeleteTrace =
        "<<RELaborCodeFile::_DeleteRecord>> Record not present in the database; Deletion not possible.\n";
};

struct LaborCodeDescTraits {
    using Record = LABOROPDESCRECORD;
    using OldRecord = OLD_LABOROPDESCRECORD;
    static constexpr const char* kClassName = "RELaborCodeDescFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 1006, .unknownError = 1257, .create = 1257};
    // Key 0: group name, operation code number (signed); no duplicates.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(sGroupName, kLaborKeyText, kKeyTypeZString),
        RE_KEY(nOpCodeNo, kKeyLastSegment, kKeyTypeInteger),
    };
    static constexpr int kKeyLength = sizeof(Record::sGroupName) + sizeof(Record::nOpCodeNo);
    static constexpr int kOldKeyLength = sizeof(OldRecord::sGroupName) + sizeof(OldRecord::nOpCodeNo);
    static constexpr REField kFields[] = {
        RE_TEXT(sGroupName),
        RE_NUMBER(nOpCodeNo, kInteger),
        RE_NUMBER(nGroup, kInteger),
        RE_NUMBER(nExtrapolation, kInteger),
        RE_TEXT(sDescription),
        RE_TEXT(sFlag),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), sizeof(OldRecord)};
    static constexpr const char* kAddTrace =
        "<<RELaborCodeDescFile::_AddRecord>> Same record present in the database; UPDATE possible not ADDITION.\n";
    static constexpr const char* kUpdateTrace = "<<RELaborCodeDescFile::_UpdateRecord>> Same record not present in "
                                                "the database; ADDITION possible not UPDATE.\n";
    static constexpr const char* kDeleteTrace =
        "<<RELaborCodeDescFile::_DeleteRecord>> Record not present in the database; Deletion not possible.\n";
    static constexpr const char* kInvalidRecordText = "Invalid Group or Extrapolation value found in Operation Code No. %d";
};
