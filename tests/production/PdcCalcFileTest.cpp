// The production sort file: the shared work-file behaviour, every named report order read back,
// the keys that fold letter case (and the flag that does not), and key 3 whose integer segment
// overlaps the text after it.
#include "REPdcCalcFile.h"
#include "RESharedHelpers.h"
#include "production/PdcCalcTraits.h"

#include "RecordBuilders.h"
#include "TestSupport.h"
#include "WorkFileSuite.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

namespace {

constexpr int kRows = 5;
// The leading field of each key, per row, is a permutation of the rows: the order a key gives
// is the order of its permutation.
constexpr int kByKey0[kRows] = {3, 0, 4, 1, 2};
constexpr int kByKey1[kRows] = {1, 4, 0, 2, 3};
constexpr int kByKey2[kRows] = {4, 3, 2, 1, 0};
constexpr int kByKey3[kRows] = {2, 0, 1, 4, 3};

PDCCALCRECORD Row(int i) {
    PDCCALCRECORD rec{};
    std::snprintf(rec.sFlag, sizeof rec.sFlag, "M");
    std::snprintf(rec.sText4, sizeof rec.sText4, "MARK%d", i);
    std::snprintf(rec.sText21, sizeof rec.sText21, "PIECE");
    std::snprintf(rec.sText38, sizeof rec.sText38, "DRAW%d", kByKey0[i]);
    std::snprintf(rec.sCategory164, sizeof rec.sCategory164, "CAT%d", kByKey1[i]);
    std::snprintf(rec.sSubCategory171, sizeof rec.sSubCategory171, "SUB");
    std::snprintf(rec.sPayCategory157, sizeof rec.sPayCategory157, "PAY%d", kByKey2[i]);
    // A signed order: the first row's integer is negative.
    const int32_t dimension = (kByKey3[i] - 1) * 1000;
    std::memcpy(rec.nDimOrder56, &dimension, sizeof rec.nDimOrder56);
    rec.sText59[0] = static_cast<char>(static_cast<uint32_t>(dimension) >> 24);
    std::snprintf(rec.sText64, sizeof rec.sText64, "DESCRIPTION %d", i);
    rec.data178[0] = static_cast<uint8_t>(i);
    return rec;
}

struct PdcCalcWorkTraits {
    using File = REPdcCalcFile;
    using Record = PDCCALCRECORD;
    static constexpr uint16_t kRecordLength = 242;
    static constexpr bool kStoredOrder = false;
    static constexpr bool kReportsCompletedWalk = false;
    static constexpr bool kKeepsOwnPath = true;
    static constexpr const char* kCorruptText = "Pdc calculation data file is corrupt.";
    static constexpr const char* kCreateErrorText = "Unable to create calculation database file. [Error# %d]";
    // Rows 0..4 ascend on key 0.
    static Record Sample(int n) { return Row(std::find(kByKey0, kByKey0 + kRows, n) - kByKey0); }
};

class PdcCalcFileTest : public ::testing::Test {
protected:
    void SetUp() override { testsupport::CreateAndOpen(file, path); }
    // Rows in the order of the reads on the current key.
    std::vector<int> order() {
        std::vector<int> rows;
        PDCCALCRECORD rec;
        for (int found = file.GetFirstRecord(&rec); found; found = file.GetNextRecord(&rec))
            rows.push_back(rec.data178[0]);
        return rows;
    }
    static std::vector<int> expected(const int (&byKey)[kRows]) {
        std::vector<int> rows(kRows);
        std::iota(rows.begin(), rows.end(), 0);
        std::sort(rows.begin(), rows.end(), [&](int a, int b) { return byKey[a] < byKey[b]; });
        return rows;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("pdccalc.dat");
    REPdcCalcFile file;
};

TEST_F(PdcCalcFileTest, EveryNamedSortReadsBackInItsOrder) {
    for (int i = 0; i < kRows; ++i) {
        PDCCALCRECORD rec = Row(i);
        ASSERT_EQ(1, i % 2 ? file.AddRecord(rec) : file.AddRecord(&rec));
    }
    const std::vector<int> byKey[] = {expected(kByKey0), expected(kByKey1), expected(kByKey2), expected(kByKey3)};
    for (const auto& sort : PdcCalcTraits::kSortOrders) {
        std::string lower = sort.name;
        std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
        for (const std::string& name : {std::string(sort.name), lower}) {
            EXPECT_EQ(1, file.DoIndexing(name));
            EXPECT_EQ(sort.keyNumber, file.GetKeyNumber()) << name;
            EXPECT_EQ(byKey[sort.keyNumber], order()) << name;
        }
    }
    EXPECT_EQ(1, file.DoIndexing("PAYCAT SORT"));
    EXPECT_EQ(1, file.DoIndexing("NO SUCH SORT"));
    EXPECT_EQ(0, file.GetKeyNumber());
    EXPECT_EQ(1, file.DoIndexing(static_cast<const char*>(nullptr)));
    EXPECT_EQ(0, file.GetKeyNumber());
    EXPECT_EQ(byKey[0], order());

    std::vector<PDCCALCRECORD*> all;
    EXPECT_EQ(1, file.GetAllRecords(all));
    EXPECT_EQ(static_cast<size_t>(kRows), all.size());
    EXPECT_EQ(1, REPdcCalcFile::ResetCalcRecArray(all));
    EXPECT_TRUE(all.empty());
}

TEST_F(PdcCalcFileTest, LetterCaseCollidesExceptInTheFlag) {
    PDCCALCRECORD rec = Row(0);
    ASSERT_EQ(1, file.AddRecord(rec));
    PDCCALCRECORD other = rec;
    other.sText4[0] = static_cast<char>(std::tolower(other.sText4[0]));
    EXPECT_EQ(0, file.AddRecord(other));
    other = rec;
    other.sText64[1] = static_cast<char>(std::tolower(other.sText64[1]));
    EXPECT_EQ(0, file.AddRecord(other));
    other = rec;
    other.sFlag[0] = 'm';
    EXPECT_EQ(1, file.AddRecord(other));
}

// Key 3 as created: its first segment, an integer at 57 for 4 bytes, shares byte 60 with the
// text segment after it. The record manager takes it, orders by it segment by segment and
// searches on it.
TEST_F(PdcCalcFileTest, OverlappingSegmentsOfTheDimensionKey) {
    STAT_BUFFER stat{};
    ASSERT_EQ(1, file.GetStatus(&stat));
    EXPECT_EQ(4, stat.numberOfKeys);
    EXPECT_EQ(0x40, stat.fileFlags);
    const size_t key3 = 6 + 7 + 7;  // segments before key 3
    auto segment = [&](size_t i, size_t at) {
        uint16_t v;
        std::memcpy(&v, stat.keySpecs + 16 * i + at, sizeof v);
        return v;
    };
    EXPECT_EQ(57, segment(key3, 0));
    EXPECT_EQ(4, segment(key3, 2));
    EXPECT_EQ(0x0112, segment(key3, 4));
    EXPECT_EQ(1, stat.keySpecs[16 * key3 + 10]);
    EXPECT_EQ(60, segment(key3 + 1, 0));
    EXPECT_EQ(0x0512, segment(key3 + 1, 4));
    EXPECT_EQ(0x0112, segment(key3 + 5, 4));  // the flag
    EXPECT_EQ(0x0502, segment(key3 + 7, 4));
    EXPECT_EQ(0x14, stat.keySpecs[16 * key3 + 11]);

    // Equal integers: the text that follows decides, read from its own first byte on.
    PDCCALCRECORD a = Row(1), b = Row(1);
    std::snprintf(b.sText4, sizeof b.sText4, "OTHER");
    std::memcpy(b.sText59 + 1, "B", 1);
    std::memcpy(a.sText59 + 1, "A", 1);
    std::snprintf(b.sText114, sizeof b.sText114, "0");
    std::snprintf(a.sText114, sizeof a.sText114, "9");
    b.data178[0] = 9;
    ASSERT_EQ(1, file.AddRecord(b));
    ASSERT_EQ(1, file.AddRecord(a));
    PDCCALCRECORD last = Row(0);  // its integer, 1000, is above row 1's -1000
    ASSERT_EQ(1, file.AddRecord(last));
    file.DoIndexing(REPdcCalcFile::kDimensionMoraAccSort);
    EXPECT_EQ((std::vector<int>{1, 9, 0}), order());

    // Get Equal on key 3 with the key built from b's fields.
    std::vector<uint8_t> key;
    auto put = [&](const void* at, size_t n) {
        key.insert(key.end(), static_cast<const uint8_t*>(at), static_cast<const uint8_t*>(at) + n);
    };
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&b);
    put(bytes + 56, 4);
    put(b.sText59, 5);
    put(b.sText114, 11);
    put(b.sText38, 17);
    put(b.sText4, 17);
    put(b.sFlag, 2);
    put(b.sText21, 17);
    put(b.sText64, 30);
    file.SetKeyNumber(3);
    file.SetKeyBuffer(key.data(), static_cast<int>(key.size()));
    PDCCALCRECORD found{};
    ASSERT_EQ(0, file.Btrieve(REBtrieveBase::kOpGetEqual, &found));
    EXPECT_EQ(9, found.data178[0]);
}

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Production, WorkFilePattern, PdcCalcWorkTraits);
