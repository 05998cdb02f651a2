// The keyed labor files in the shared record-file suite.
#include "RELaborCodeDescFile.h"
#include "RELaborCodeFile.h"
#include "RELaborGroupFile.h"

#include "RecordFilePatternSuite.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

struct LaborCodePattern {
    using File = RELaborCodeFile;
    using Record = LABORCODERECORD;
    static constexpr const char* kClassName = "RELaborCodeFile";
    static constexpr uint16_t kRecordLength = 444;
    static constexpr const char* kCorruptText = "Labor Code data file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error to create Labor Code database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = kUnknownErrorText;

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.sGroupName, sizeof rec.sGroupName, "G");
        std::snprintf(rec.sSubCode, sizeof rec.sSubCode, "S%04u", static_cast<unsigned>(key) % 10000u);
        std::snprintf(rec.sDescription, sizeof rec.sDescription, "description %d", content);
        rec.nTable2[99] = static_cast<int16_t>(content);
        return rec;
    }
    static int Update(File& file, Record&, Record& changed) { return file._UpdateRecord(changed); }
    static int Delete(File& file, Record& rec) { return file._DeleteRecord(rec); }
};

struct LaborCodeDescPattern {
    using File = RELaborCodeDescFile;
    using Record = LABOROPDESCRECORD;
    static constexpr const char* kClassName = "RELaborCodeDescFile";
    static constexpr uint16_t kRecordLength = 45;
    static constexpr const char* kCorruptText = "Labor Code data file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error labor code desc. database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = kUnknownErrorText;

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.sGroupName, sizeof rec.sGroupName, "G");
        rec.nOpCodeNo = static_cast<int16_t>(key + 1);
        rec.nGroup = 1;
        rec.nExtrapolation = static_cast<int16_t>(content + 1);
        std::snprintf(rec.sDescription, sizeof rec.sDescription, "operation %d", content);
        return rec;
    }
    static int Update(File& file, Record&, Record& changed) { return file._UpdateRecord(changed); }
    static int Delete(File& file, Record& rec) { return file._DeleteRecord(rec); }
};

struct LaborGroupPattern {
    using File = RELaborGroupFile;
    using Record = LABORGROUPRECORD;
    static constexpr const char* kClassName = "RELaborGroupFile";
    static constexpr uint16_t kRecordLength = 19;
    static constexpr const char* kCorruptText = "LaborGroup data file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error in LaborGroup database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = kUnknownErrorText;

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.sGroupName, sizeof rec.sGroupName, "G");
        rec.nGroupNo = static_cast<int16_t>(key);
        std::snprintf(rec.sDescription, sizeof rec.sDescription, "group %d", content);
        return rec;
    }
    static int Update(File& file, Record& rec, Record& changed) {
        return file.SearchFirstRecord("G", rec.nGroupNo, nullptr) && file._UpdateRecord(changed);
    }
    static int Delete(File& file, Record& rec) {
        return file.SearchFirstRecord("G", rec.nGroupNo, nullptr) && file._DeleteCurrent();
    }
};

}  // namespace

using LaborFiles = ::testing::Types<LaborCodePattern, LaborCodeDescPattern, LaborGroupPattern>;
INSTANTIATE_TYPED_TEST_SUITE_P(Labor, RecordFilePattern, LaborFiles);
