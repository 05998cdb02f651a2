// The settings and report definitions files in the shared record-file suite.
#include "REMaintFile.h"
#include "REReportFile.h"

#include "RecordFilePatternSuite.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

struct MaintPatternTraits {
    using File = REMaintFile;
    using Record = MAINTRECORD;
    static constexpr const char* kClassName = "REMaintFile";
    static constexpr uint16_t kRecordLength = 451;
    static constexpr bool kReadsInStoredOrder = true;
    static constexpr const char* kCorruptText = "ESTMAINT.dat file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error maint database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unknown error to create maint database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.szSection, sizeof rec.szSection, "SECTION");
        std::snprintf(rec.szItem, sizeof rec.szItem, "ITEM%06d", key);
        rec.fSeq = 1.5f;
        std::snprintf(rec.szValue, sizeof rec.szValue, "value %d", content);
        rec.groupB.nValue40[5] = content;
        return rec;
    }
    static int Update(File& file, Record&, Record& changed) { return file.UpdateRecord(changed); }
    // The class never deletes a setting: position by its key and delete through the base.
    static int Delete(File& file, Record& rec) {
        Record found;
        return file.GetExactMatch(rec.szSection, rec.szItem, rec.fSeq, &found) &&
               file.Btrieve(REBtrieveBase::kOpDelete, &found) == REBtrieveBase::kStatusSuccess;
    }
};

struct ReportPatternTraits {
    using File = REReportFile;
    using Record = tagReportDBData;
    static constexpr const char* kClassName = "REReportFile";
    static constexpr uint16_t kRecordLength = 408;
    static constexpr const char* kCorruptText = nullptr;  // opens a file of any record length
    static constexpr const char* kUnknownErrorText = "Unknown error job database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unable to create job database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        rec.nId = key + 1;
        std::snprintf(rec.szGroupCode, sizeof rec.szGroupCode, "G%d", content % 100);
        std::snprintf(rec.szText94, sizeof rec.szText94, "report %d", content);
        return rec;
    }
    static int Update(File& file, Record& rec, Record& changed) { return file.UpdateRecord(rec.nId, &changed); }
    static int Delete(File& file, Record& rec) { return file.DeleteRecord(rec.nId); }
};

}  // namespace

using EstimatingFiles = ::testing::Types<MaintPatternTraits, ReportPatternTraits>;
INSTANTIATE_TYPED_TEST_SUITE_P(Estimating, RecordFilePattern, EstimatingFiles);
