// The purchasing work file: the shared work-file behaviour, key order with letter case folded and
// the keys it is created with.
#include "REPurchCalcFile.h"
#include "RESharedHelpers.h"

#include "RecordBuilders.h"
#include "TestSupport.h"
#include "WorkFileSuite.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

PURCHASECALCRECORD Purchase(const char* vendor, const char* item, int32_t number) {
    PURCHASECALCRECORD rec{};
    std::snprintf(rec.sText0, sizeof rec.sText0, "P");
    std::snprintf(rec.sText2, sizeof rec.sText2, "%s", vendor);
    std::snprintf(rec.sText11, sizeof rec.sText11, "%s", item);
    rec.nValue20 = number;
    std::snprintf(reinterpret_cast<char*>(rec.data24), sizeof rec.data24, "%s/%s/%d", vendor, item, number);
    return rec;
}

struct PurchCalcTraits {
    using File = REPurchCalcFile;
    using Record = PURCHASECALCRECORD;
    static constexpr uint16_t kRecordLength = 862;
    static constexpr bool kStoredOrder = false;
    static constexpr bool kReportsCompletedWalk = false;
    static constexpr bool kKeepsOwnPath = true;
    static constexpr const char* kCorruptText = "Calculation data file is corrupt.";
    static constexpr const char* kCreateErrorText = "Unable to create calculation database file. [Error# %d]";
    static Record Sample(int n) { return Purchase("V", "I", n); }
};

class PurchCalcFileTest : public ::testing::Test {
protected:
    void SetUp() override { testsupport::CreateAndOpen(file, path); }
    std::vector<std::string> rows() {
        std::vector<PURCHASECALCRECORD*> all;
        file.GetAllRecords(all);
        std::vector<std::string> texts;
        for (const PURCHASECALCRECORD* rec : all)
            texts.emplace_back(reinterpret_cast<const char*>(rec->data24));
        REPurchCalcFile::ResetCalcRecArray(all);
        return texts;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("purchcalc.dat");
    REPurchCalcFile file;
};

TEST_F(PurchCalcFileTest, RowsComeInKeyOrderAndCaseOnlyDifferencesCollide) {
    auto b = Purchase("ACME", "W10", 2), a = Purchase("ACME", "W10", -1), c = Purchase("Beta", "L4", 0);
    ASSERT_EQ(1, file.AddRecord(c));
    ASSERT_EQ(1, file.AddRecord(&b));
    ASSERT_EQ(1, file.AddRecord(a));
    EXPECT_EQ((std::vector<std::string>{"ACME/W10/-1", "ACME/W10/2", "Beta/L4/0"}), rows());

    auto lower = Purchase("acme", "w10", 2);
    EXPECT_EQ(0, file.AddRecord(lower));
    auto another = Purchase("acme", "w10", 3);
    EXPECT_EQ(1, file.AddRecord(another));

    PURCHASECALCRECORD rec;
    ASSERT_EQ(1, file.GetFirstRecord(&rec));
    EXPECT_EQ(-1, rec.nValue20);
    ASSERT_EQ(1, file.GetNextRecord(&rec));
    EXPECT_EQ(2, rec.nValue20);
}

TEST_F(PurchCalcFileTest, CreatedWithOneKeyOfFourSegments) {
    STAT_BUFFER stat{};
    ASSERT_EQ(1, file.GetStatus(&stat));
    EXPECT_EQ(1, stat.numberOfKeys);
    EXPECT_EQ(0x40, stat.fileFlags);
    const uint16_t expectedFlags[] = {0x0512, 0x0512, 0x0512, 0x0102};
    const uint8_t expectedTypes[] = {11, 11, 11, 1};
    for (size_t i = 0; i < 4; ++i) {
        uint16_t flags;
        std::memcpy(&flags, stat.keySpecs + 16 * i + 4, sizeof flags);
        EXPECT_EQ(expectedFlags[i], flags) << i;
        EXPECT_EQ(expectedTypes[i], stat.keySpecs[16 * i + 10]) << i;
        EXPECT_EQ(0x14, stat.keySpecs[16 * i + 11]) << i;
    }
}

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Purchasing, WorkFilePattern, PurchCalcTraits);
