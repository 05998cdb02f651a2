// The record-file classes of the core and estimating subsystems in the shared record-file suite.
#include "REEstProjectInfo.h"
#include "REJobFile.h"
#include "REProjectLock.h"
#include "RESharedHelpers.h"

#include "RecordFilePatternSuite.h"
#include "SmallCodeFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <list>
#include <string>
#include <vector>

namespace {

struct JobFileTraits {
    using File = REJobFile;
    using Record = ESTJOBFILERECORD;
    static constexpr const char* kClassName = "REJobFile";
    static constexpr uint16_t kRecordLength = 606;
    static constexpr const char* kCorruptText = "Job description file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error job database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unable to create job database file. [Error# %d]";

    // Keys ascend with `key`; `content` changes only fields outside the key.
    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.sCode1, sizeof rec.sCode1, "K");
        std::snprintf(rec.sCode2, sizeof rec.sCode2, "ITEM%06d", key);
        rec.nPageNo = 1;
        rec.nLineNo = key;
        std::snprintf(rec.sText124, sizeof rec.sText124, "text %d", content);
        rec.nValue602 = content;
        return rec;
    }
    static int Update(File& file, Record& rec, Record& changed) { return file.UpdateRecord(rec, changed); }
    static int Delete(File& file, Record& rec) { return file.DeleteRecord(rec); }
};

struct ProjectLockTraits {
    using File = REProjectLock;
    using Record = PROJECTLOCKINFO;
    static constexpr const char* kClassName = "REProjectLock";
    static constexpr uint16_t kRecordLength = 416;
    static constexpr bool kStaysOpenOnCorrupt = true;
    static constexpr const char* kCorruptText = "Network file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error network database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unknown error to create network database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.szUserName, sizeof rec.szUserName, "HOST\\\\user%06d", key);
        std::snprintf(rec.szUpdatedBy, sizeof rec.szUpdatedBy, "by %d", content);
        rec.nUpdatedJobId = content;
        return rec;
    }
    static int Update(File& file, Record& rec, Record& changed) {
        return file.FindUser(rec.szUserName, nullptr) && file.Btrieve(REBtrieveBase::kOpUpdate, &changed) == 0;
    }
    static int Delete(File& file, Record& rec) { return file.LogOut(rec.szUserName); }
};

struct EstProjectInfoTraits {
    using File = REEstProjectInfo;
    using Record = TSLESTIMATEDATA;
    static constexpr const char* kClassName = "REEstProjectInfo";
    static constexpr uint16_t kRecordLength = 4;  // the fixed part of its variable-length records
    static constexpr bool kStaysOpenOnCorrupt = true;
    static constexpr const char* kCorruptText = "ESTJOB.dat file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error job database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unable to create job database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        rec.nId = key + 1;
        std::snprintf(rec.data.szJobName, sizeof rec.data.szJobName, "job %d", content);
        return rec;
    }
    static int Update(File& file, Record& rec, Record& changed) { return file.UpdJobDetail(rec.nId, changed.data); }
    // DeleteJob removes the next job up when the id is missing; only an existing one is deleted here.
    static int Delete(File& file, Record& rec) {
        return file.GetJobDetail(rec.nId, nullptr, 0) && file.DeleteJob(rec.nId);
    }
};

struct SmallCodeFileTraits {
    using File = SmallCodeFile;
    using Record = SMALLCODERECORD;
    static constexpr const char* kClassName = "SmallCodeFile";
    static constexpr uint16_t kRecordLength = 27;
    static constexpr bool kStaysOpenOnCorrupt = true;
    static constexpr const char* kCorruptText = "Purchase order info file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error PDC-pur-info database file. [Error# %d]";
    static constexpr const char* kCreateErrorText =
        "Unknown error to create purchase order pur-info database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.szCode, sizeof rec.szCode, "%03u", static_cast<unsigned>(key) % 1000u);
        std::snprintf(rec.payload, sizeof rec.payload, "payload %d", content);
        return rec;
    }
    static int Update(File& file, Record&, Record& changed) { return file.UpdateRecord(changed); }
    static int Delete(File& file, Record& rec) { return file.DeleteRecord(rec); }
};

}  // namespace

using RecordFileClasses =
    ::testing::Types<JobFileTraits, ProjectLockTraits, EstProjectInfoTraits, SmallCodeFileTraits>;

INSTANTIATE_TYPED_TEST_SUITE_P(Core, RecordFilePattern, RecordFileClasses);
