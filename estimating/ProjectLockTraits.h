// What the project lock file tells the record-file machinery: its one layout, messages, keys and
// field table.
#pragma once

#include "REProjectLock.h"
#include "core/RecordFileSpec.h"

struct ProjectLockTraits {
    using Record = PROJECTLOCKINFO;
    static constexpr uint16_t kKeyUnique = kKeyLastSegment;
    static constexpr uint16_t kKeyWithDuplicates = kKeyLastSegment | kKeyDuplicates;
    static constexpr const char* kClassName = "REProjectLock";
    // "Network file is corrupt.", "Unknown error network database file. [Error# %d]",
    // "Unknown error to create network database file. [Error# %d]"
    static constexpr REMessageCodes kMessages = {.corrupt = 1229, .unknownError = 1273, .create = 1251};
    static constexpr REKeySegment kKeys[] = {
        RE_KEY(szUserName, kKeyUnique, kKeyTypeZString),
        RE_KEY(nSuperUser, kKeyWithDuplicates, kKeyTypeInteger),
        RE_KEY(nLockedJobId, kKeyWithDuplicates, kKeyTypeInteger),
        RE_KEY(nUpdatePending, kKeyWithDuplicates, kKeyTypeInteger),
    };
    static constexpr REField kFields[] = {
        RE_FIELD(szUserName, kText),    RE_FIELD(nSuperUser, kInteger),  RE_FIELD(nLockedJobId, kInteger),
        RE_FIELD(nUpdatePending, kInteger), RE_FIELD(szUpdatedBy, kText), RE_FIELD(nUpdatedJobId, kInteger),
    };
    static constexpr REFieldTable kFieldTable = {kFields, sizeof(Record), 0};
    static constexpr void Customize(RERecordFileSpec& spec) {
        // The users' scans follow whatever key the caller chose last.
        spec.first = {REBtrieveBase::kOpGetFirst, REPositionalRead::kCurrentKey};
        spec.next = {REBtrieveBase::kOpGetNext, REPositionalRead::kCurrentKey};
        spec.keepOpenOnCorrupt = true;
    }
};
