// The purchasing work file: key order with letter case folded, the missing file, the walk that
// empties the file, and its messages.
#include "REPurchCalcFile.h"
#include "RESharedHelpers.h"

#include "RawRecordFile.h"
#include "TestSupport.h"

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

class PurchCalcFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(1, file.CreateNewFile(path));
        ASSERT_EQ(1, file.Initialize(path));
    }
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

TEST_F(PurchCalcFileTest, DeleteAllEmptiesTheFileAndAnswersZero) {
    EXPECT_EQ(0, file.DeleteAllRecord());
    for (int i = 0; i < 3; ++i) {
        auto rec = Purchase("V", "I", i);
        ASSERT_EQ(1, file.AddRecord(rec));
    }
    EXPECT_EQ(0, file.DeleteAllRecord());
    EXPECT_TRUE(rows().empty());
}

TEST_F(PurchCalcFileTest, OpenAndCreateFailures) {
    testsupport::MessageCapture messages;
    REPurchCalcFile other;
    EXPECT_EQ(0, other.Initialize(dir.file("missing.dat").c_str()));
    EXPECT_EQ(0u, messages.count());
    EXPECT_EQ(0, other.IsOpen());
    EXPECT_EQ(0, other.m_fileOpen);

    const std::string wrong = dir.file("wrong.dat");
    ASSERT_EQ(0, testsupport::CreateRawFile(wrong, 242));
    EXPECT_EQ(0, other.Initialize(wrong));
    EXPECT_EQ("Calculation data file is corrupt.", messages.lastText());
    EXPECT_EQ(0, other.IsOpen());
    EXPECT_EQ(0, other.m_fileOpen);

    EXPECT_EQ(0, other.CreateNewFile(dir.file("no such dir/x.dat")));
    EXPECT_EQ("Unable to create calculation database file. [Error# 25]", messages.lastText());

    STAT_BUFFER stat{};
    ASSERT_EQ(1, file.GetStatus(&stat));
    EXPECT_EQ(862, stat.recordLength);
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
    std::string name;
    file.GetBtrieveFileName(name);
    EXPECT_EQ(path, name);
}

}  // namespace
