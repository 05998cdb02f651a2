// What the report definitions file tells the record-file machinery: its record, messages and keys.
#pragma once

#include "REReportFile.h"
#include "catalogue/CatalogueFiles.h"
#include "core/RecordFileSpec.h"

struct ReportFileTraits {
    using Record = tagReportDBData;
    static constexpr const char* kClassName = "REReportFile";
    static constexpr REMessageCodes kMessages = {.corrupt = 0, .unknownError = 1104, .create = 1102};
    // Key 0: the record id, numbered by the record manager. Key 1: the group code, duplicates.
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(nId, kKeyLastSegment, kKeyTypeAutoIncrement),
        RE_KEY(szGroupCode, kKeyLastSegment | kKeyDuplicates, kKeyTypeZString),
    };
    static constexpr uint16_t kFileFlags = kFileFlagVariableLength;
    static constexpr REField kFields[] = {
        RE_FIELD(nId, kInteger),
        RE_FIELD(szGroupCode, kText),
        RE_FIELD(szType, kText),
        RE_FIELD(szText94, kText),
        RE_FIELD(szSubGroupCode, kText),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), 0};
    static constexpr void Customize(RERecordFileSpec& spec) {
        spec.create.dataLength = 176;
        REReadOnCurrentKey(spec);
    }
};
