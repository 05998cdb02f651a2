// What the estimating project file tells the record-file machinery: its one variable-length
// layout, messages, key and field table.
#pragma once

#include "REEstProjectInfo.h"
#include "core/RecordFileSpec.h"

#include <cstdint>

struct EstProjectTraits {
    using Record = TSLESTIMATEDATA;
    static constexpr const char* kClassName = "REEstProjectInfo";
    // "ESTJOB.dat file is corrupt.", "Unknown error job database file. [Error# %d]",
    // "Unable to create job database file. [Error# %d]"
    static constexpr REMessageCodes kMessages = {.corrupt = 1002, .unknownError = 1104, .create = 1102};
    static constexpr REKeySegment kKeys[] = {RE_KEY(nId, kKeyLastSegment, kKeyTypeAutoIncrement)};
    // Records are variable-length: the file's fixed part is the id, and every call moves the whole
    // 1124-byte record.
    static constexpr uint16_t kFileFlags = kFileFlagVariableLength;
    static constexpr uint16_t kFixedPartLength = sizeof(int32_t);
    static constexpr REField kFields[] = {RE_FIELD(nId, kInteger), RE_FIELD(data, kRecord)};
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), 0};
    static constexpr void Customize(RERecordFileSpec& spec) {
        spec.statLength = kFixedPartLength;
        spec.create.recordLength = kFixedPartLength;
        spec.keepOpenOnCorrupt = true;
    }
};
