// The production files whose key 0 is unique in the shared record-file suite. Files keyed with
// duplicates or without a key are covered by their own tests.
#include "REPdcBatInpDataFile.h"
#include "REPdcPayCategoryDataFile.h"
#include "REPdcRouteInfoFile.h"
#include "REPdcSequenceFile.h"
#include "REPdcStationDataFile.h"

#include "RecordFilePatternSuite.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

// Positions on the record with `rec`'s key 0 value (every file here begins key 0 at offset 0),
// then updates or deletes it straight through the record manager.
template <class File, class Record>
int PositionOnKey0(File& file, const Record& rec) {
    Record found;
    file.SetKeyNumber(0);
    file.SetKeyBuffer(&rec, sizeof rec);
    return file.Btrieve(REBtrieveBase::kOpGetEqual, &found) == 0;
}

template <class F, class R>
struct PdcPatternTraits {
    using File = F;
    using Record = R;
    static constexpr uint16_t kRecordLength = sizeof(R);
    static int Update(File& file, Record& rec, Record& changed) {
        return PositionOnKey0(file, rec) && file.Btrieve(REBtrieveBase::kOpUpdate, &changed) == 0;
    }
    static int Delete(File& file, Record& rec) {
        return PositionOnKey0(file, rec) && file.Btrieve(REBtrieveBase::kOpDelete, &rec) == 0;
    }
};

struct SequenceTraits : PdcPatternTraits<REPdcSequenceFile, PDCSEQDATATYPE> {
    static constexpr const char* kClassName = "REPdcSequenceFile";
    static constexpr const char* kCorruptText = "Pdc sequence file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error PDC-sequence database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unknown error to create PDC sequence database file. [Error# %d]";
    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.sFirstName, sizeof rec.sFirstName, "SEQ%06d", key);
        std::snprintf(rec.sSecondName, sizeof rec.sSecondName, "B");
        rec.nNumber = content;
        return rec;
    }
};

struct RouteInfoTraits : PdcPatternTraits<REPdcRouteInfoFile, PDCROUTEINFODATATYPE> {
    static constexpr const char* kClassName = "REPdcRouteInfoFile";
    static constexpr const char* kCorruptText = "Pdc route information file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error PDC-route-info database file. [Error# %d]";
    static constexpr const char* kCreateErrorText =
        "Unknown error to create PDC route info. database file. [Error# %d]";
    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.sRouteName, sizeof rec.sRouteName, "R%06d", key);
        std::snprintf(rec.sDescription, sizeof rec.sDescription, "route %d", content);
        return rec;
    }
};

struct StationTraits : PdcPatternTraits<REPdcStationDataFile, PDCSTATIONDATATYPE> {
    static constexpr const char* kClassName = "REPdcStationDataFile";
    static constexpr const char* kCorruptText = "Pdc station data file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error PDC-station-data database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unknown error to create PDC station database file. [Error# %d]";
    static Record Sample(int key, int content = 0) {
        Record rec{};
        rec.nStnNo = key + 1;
        std::snprintf(rec.sStnName, sizeof rec.sStnName, "STN%d", key);
        rec.nValue21 = content;
        return rec;
    }
};

struct PayCategoryTraits : PdcPatternTraits<REPdcPayCategoryDataFile, PDCPAYCATDATATYPE> {
    static constexpr const char* kClassName = "REPdcPayCategoryDataFile";
    static constexpr const char* kCorruptText = "Pdc pay category file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error PDC-pay-category-data database file. [Error# %d]";
    static constexpr const char* kCreateErrorText =
        "Unknown error to create PDC pay category data database file. [Error# %d]";
    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.sPayCatCode, sizeof rec.sPayCatCode, "P%05u", static_cast<unsigned>(key) % 100000u);
        std::snprintf(rec.sDescription, sizeof rec.sDescription, "pay %d", content);
        rec.dRate1 = 12.5 + content;
        rec.dRate2 = 18.75;
        return rec;
    }
};

struct BatInpTraits : PdcPatternTraits<REPdcBatInpDataFile, PDCBIDFILETYPE> {
    static constexpr const char* kClassName = "REPdcBatInpDataFile";
    static constexpr const char* kCorruptText = "Pdc batch input data file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error PDC-batch-input-data database file. [Error# %d]";
    static constexpr const char* kCreateErrorText =
        "Unknown error to create PDC batch input database file. [Error# %d]";
    static Record Sample(int key, int content = 0) {
        Record rec{};
        rec.nBatchNo = key + 1;
        rec.nValue5 = content;
        std::snprintf(rec.sText9, sizeof rec.sText9, "B%d", content);
        return rec;
    }
    static int Update(File& file, Record& rec, Record& changed) { return file.UpdateRecord(rec, changed); }
    static int Delete(File& file, Record& rec) { return file.DeleteRecord(rec); }
};

}  // namespace

using PdcUniqueKeyFiles =
    ::testing::Types<SequenceTraits, RouteInfoTraits, StationTraits, PayCategoryTraits, BatInpTraits>;

INSTANTIATE_TYPED_TEST_SUITE_P(Production, RecordFilePattern, PdcUniqueKeyFiles);
