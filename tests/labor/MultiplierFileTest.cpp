// The multiplier file (whole-code searches, the status-returning add and update, both layouts)
// and the two estimate multiplier tables (unkeyed records read and emptied whole).
#include "REEstMultLongFile.h"
#include "REEstMultShortFile.h"
#include "REMultiplierFile.h"
#include "labor/MultiplierTraits.h"

#include "RecordBuilders.h"
#include "StatusInjector.h"
#include "WorkFileSuite.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace testsupport;

MULTIPLIERRECORD Mult(const char* code, uint8_t value) {
    MULTIPLIERRECORD rec{};
    std::snprintf(rec.sCode, sizeof rec.sCode, "%s", code);
    rec.multiplier[0] = value;
    rec.multiplier[3] = 0x40;
    return rec;
}

OLD_MULTIPLIERRECORD OldMult(const char* code, uint8_t value) {
    return OldRecord<OLD_MULTIPLIERRECORD>([&](OLD_MULTIPLIERRECORD& rec) {
        PutOld(rec.sCode, sizeof rec.sCode, code);
        std::memcpy(rec.multiplier, "\0\0\0\0", 4);
        rec.multiplier[0] = value;
    });
}

constexpr REKeySegment kOldMultKey[] = {{1, 6, kKeyLastSegment, kKeyTypeString, 0x20}};

// The same codes in a new-layout and an old-layout file.
class MultiplierLayouts : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (GetParam()) {
            const OLD_MULTIPLIERRECORD old[] = {OldMult("ABC", 1), OldMult("AB", 2), OldMult("X", 3)};
            WriteOldFile<OLD_MULTIPLIERRECORD>(path, kOldMultKey, old);
            ASSERT_EQ(1, file.Initialize(path.c_str()));
            ASSERT_EQ(1, file.m_isOldFormat);
        } else {
            CreateAndOpen(file, path);
            for (auto rec : {Mult("ABC", 1), Mult("AB", 2), Mult("X", 3)})
                ASSERT_EQ(0, file.AddRecord(rec));
        }
    }
    std::string codes() {
        std::string all;
        MULTIPLIERRECORD rec;
        for (int found = file.GetFirstRecord(&rec); found; found = file.GetNextRecord(&rec))
            all += std::string(rec.sCode) + "=" + std::to_string(rec.multiplier[0]) + " ";
        return all;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("mult.dat");
    REMultiplierFile file;
};

TEST_P(MultiplierLayouts, SearchesCompareTheWholeCode) {
    MULTIPLIERRECORD rec;
    ASSERT_EQ(1, file.SearchFirstRecord("AB", &rec));
    EXPECT_STREQ("AB", rec.sCode);
    EXPECT_EQ(1, file.m_searchActive);
    EXPECT_EQ(0, file.SearchNextRecord("AB", &rec));  // ABC follows: not the same code
    EXPECT_EQ(0, file.m_searchActive);
    EXPECT_EQ(1, file.GetFirstMatch("X", &rec));
    EXPECT_EQ(0, file.GetNextMatch("X", &rec));
    EXPECT_EQ(0, file.GetFirstMatch("A", &rec));  // lands on AB

    {
        testsupport::StatusInjector injector(-1, REBtrieveBase::kStatusIoError);
        EXPECT_EQ(0, file.SearchFirstRecord("", &rec));
        EXPECT_EQ(0, injector.hits());
    }

    MULTIPLIERRECORD exact{};
    ASSERT_EQ(1, file.GetExactMatch("ABC", &exact));
    EXPECT_EQ(1, exact.multiplier[0]);
    EXPECT_EQ(0, file.m_searchActive);
    EXPECT_EQ(0, file.GetExactMatch("ABCD", nullptr));
}

TEST_P(MultiplierLayouts, AddAndUpdateHandBackTheStatus) {
    auto again = Mult("AB", 9);
    EXPECT_EQ(0, file.AddRecord(again));  // refused: the code exists
    auto added = Mult("M", 4);
    EXPECT_EQ(0, file.AddRecord(added));  // inserted: status 0
    EXPECT_EQ("AB=2 ABC=1 M=4 X=3 ", codes());

    auto missing = Mult("N", 5);
    EXPECT_EQ(0, file.UpdateRecord(missing, 0));
    EXPECT_EQ("AB=2 ABC=1 M=4 X=3 ", codes());
    EXPECT_EQ(0, file.UpdateRecord(missing, 1));
    EXPECT_EQ(0, file.UpdateRecord(again, 0));
    EXPECT_EQ("AB=9 ABC=1 M=4 N=5 X=3 ", codes());

    testsupport::StatusInjector injector(REBtrieveBase::kOpUpdate, REBtrieveBase::kStatusConflict);
    EXPECT_EQ(REBtrieveBase::kStatusConflict, file.UpdateRecord(again, 0));
}

INSTANTIATE_TEST_SUITE_P(NewAndOld, MultiplierLayouts, ::testing::Bool());

TEST(MultiplierFile, OldRecordsAreWrittenBackAndAppendedAcrossLayouts) {
    testsupport::TempDir dir;
    const std::string oldPath = dir.file("old.dat");
    const OLD_MULTIPLIERRECORD old[] = {OldMult("B", 1), OldMult("A", 2)};
    WriteOldFile<OLD_MULTIPLIERRECORD>(oldPath, kOldMultKey, old);
    {
        REMultiplierFile file;
        ASSERT_EQ(1, file.Initialize(oldPath.c_str()));
        auto changed = Mult("A", 7);
        EXPECT_EQ(0, file.UpdateRecord(changed, 0));
        OLD_MULTIPLIERRECORD expected = OldMult("A", 7);
        std::memcpy(expected.multiplier, changed.multiplier, 4);
        const auto stored = StoredRecords<OLD_MULTIPLIERRECORD>(oldPath);
        ASSERT_EQ(2u, stored.size());
        EXPECT_EQ(Bytes(old[0]), stored[0]);
        EXPECT_EQ(Bytes(expected), stored[1]);
    }

    REMultiplierFile target;
    CreateAndOpen(target, dir.file("new.dat"));
    auto own = Mult("C", 3);
    ASSERT_EQ(0, target.AddRecord(own));
    EXPECT_EQ(1, target.AppendFile(oldPath));
    MULTIPLIERRECORD rec;
    ASSERT_EQ(1, target.GetExactMatch("B", &rec));
    EXPECT_EQ(1, rec.multiplier[0]);
    EXPECT_EQ(1, target.GetExactMatch("A", nullptr));

    REBtrieveBase source;
    ASSERT_EQ(1, source.Open(oldPath.c_str()));
    REMultiplierFile copy;
    CreateAndOpen(copy, dir.file("copy.dat"));
    EXPECT_EQ(1, copy._CopyRecords(source, 1));
    ASSERT_EQ(1, copy.GetExactMatch("B", &rec));
}

TEST(MultiplierFile, CreatesTheCodeKeyWithABlankNullValue) {
    testsupport::TempDir dir;
    REMultiplierFile file;
    CreateAndOpen(file, dir.file("mult.dat"));
    STAT_BUFFER stat{};
    ASSERT_EQ(1, file.GetStatus(&stat));
    EXPECT_EQ(11, stat.recordLength);  // not the old layout's 10, which opens as well
    EXPECT_EQ(1, stat.numberOfKeys);
    EXPECT_EQ(0x40, stat.fileFlags);
    EXPECT_EQ(7, stat.keySpecs[2]);
    EXPECT_EQ(0x02, stat.keySpecs[4]);
    EXPECT_EQ(0x01, stat.keySpecs[5]);
    EXPECT_EQ(11, stat.keySpecs[10]);
    EXPECT_EQ(0x20, stat.keySpecs[11]);

    testsupport::MessageCapture messages;
    EXPECT_EQ(0, file.CreateNewFile(dir.file("no such dir/mult.dat").c_str()));
    EXPECT_EQ("Unable to create multiplier database file. [Error# 25]", messages.lastText());
    const std::string other = dir.file("other.dat");
    ASSERT_EQ(0, testsupport::CreateRawFile(other, 12));
    REMultiplierFile wrong;
    EXPECT_EQ(0, wrong.Initialize(other.c_str()));
    EXPECT_EQ("Multiplier data file is corrupt.", messages.lastText());
    EXPECT_EQ(0, wrong.IsOpen());
}

template <class F, class R>
struct EstMultTraits {
    using File = F;
    using Record = R;
    static constexpr uint16_t kRecordLength = sizeof(R);
    static constexpr bool kStoredOrder = true;  // no key
    static constexpr bool kReportsCompletedWalk = true;
    static constexpr bool kKeepsOwnPath = false;
    static Record Sample(int n) {
        Record rec{};
        std::snprintf(reinterpret_cast<char*>(rec.data), sizeof rec.data, "row %d", n);
        rec.data[sizeof rec.data - 1] = static_cast<uint8_t>(n);
        return rec;
    }
};
struct EstMultLong : EstMultTraits<REEstMultLongFile, MULTLONGRECORD> {
    static constexpr const char* kCorruptText = "Est-Mult-Long data file is corrupt.";
    static constexpr const char* kCreateErrorText = "Unknown error to create Mult-Long database file. [Error# %d]";
};
struct EstMultShort : EstMultTraits<REEstMultShortFile, MULTSHORTRECORD> {
    static constexpr const char* kCorruptText = "Est-Mult-Short data file is corrupt.";
    static constexpr const char* kCreateErrorText = "Unknown error to create Mult-Short database file. [Error# %d]";
};

// The tables are created without a key.
TEST(EstMultTables, CreatedWithoutAKey) {
    testsupport::TempDir dir;
    REEstMultLongFile longFile;
    REEstMultShortFile shortFile;
    CreateAndOpen(longFile, dir.file("long.dat"));
    CreateAndOpen(shortFile, dir.file("short.dat"));
    for (REBtrieveBase* file : {static_cast<REBtrieveBase*>(&longFile), static_cast<REBtrieveBase*>(&shortFile)}) {
        STAT_BUFFER stat{};
        ASSERT_EQ(1, file->GetStatus(&stat));
        EXPECT_EQ(0, stat.numberOfKeys);
        EXPECT_EQ(0x40, stat.fileFlags);
    }
}

}  // namespace

using EstMultTables = ::testing::Types<EstMultLong, EstMultShort>;
INSTANTIATE_TYPED_TEST_SUITE_P(EstMult, WorkFilePattern, EstMultTables);
