// The purchase tax file: the shared record-file behaviour (with the messages it borrows from the
// purchase order files), the code look-up and the Create block.
#include "RETaxFile.h"
#include "RESharedHelpers.h"

#include "RecordBuilders.h"
#include "RecordFilePatternSuite.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

tagTAXRECORD Tax(const char* code, int content = 0) {
    tagTAXRECORD rec{};
    std::memcpy(rec.szTaxCode, code, strnlen(code, sizeof rec.szTaxCode - 1));
    std::snprintf(reinterpret_cast<char*>(rec.taxData), sizeof rec.taxData, "rate %d", content);
    return rec;
}

struct TaxFilePatternTraits {
    using File = RETaxFile;
    using Record = tagTAXRECORD;
    static constexpr const char* kClassName = "RETaxFile";
    static constexpr uint16_t kRecordLength = 27;
    static constexpr const char* kCorruptText = "Purchase order info file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error PDC-pur-info database file. [Error# %d]";
    static constexpr const char* kCreateErrorText =
        "Unknown error to create purchase order pur-info database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        char code[8];
        std::snprintf(code, sizeof code, "%03d", key % 1000);
        return Tax(code, content);
    }
    static int Update(File& file, Record&, Record& changed) { return file.UpdateRecord(changed); }
    static int Delete(File& file, Record& rec) {
        return file.GetEqualMatch(rec.szTaxCode, nullptr) && file.Btrieve(REBtrieveBase::kOpDelete, &rec) == 0;
    }
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Pricing, RecordFilePattern, ::testing::Types<TaxFilePatternTraits>);

namespace {

class TaxFileTest : public ::testing::Test {
protected:
    void SetUp() override { testsupport::CreateAndOpen(file, path); }
    testsupport::TempDir dir;
    std::string path = dir.file("tax.dat");
    RETaxFile file;
};

TEST_F(TaxFileTest, CodeLookUpFindsTheWholeCodeAndCopiesOnlyWhenAsked) {
    for (const char* code : {"AB", "ABC", "X"}) {
        auto rec = Tax(code, 1);
        ASSERT_EQ(1, file.AddRecord(rec));
    }
    tagTAXRECORD found;
    std::memset(&found, 0x5A, sizeof found);
    ASSERT_EQ(1, file.GetEqualMatch("ABC", &found));
    const tagTAXRECORD expected = Tax("ABC", 1);
    EXPECT_EQ(0, std::memcmp(&expected, &found, sizeof found));
    EXPECT_EQ(1, file.GetEqualMatch("AB", nullptr));
    EXPECT_EQ(0, file.GetEqualMatch("A", nullptr));

    // A second record with a code that is there is refused by the file itself.
    auto again = Tax("ABC", 2);
    EXPECT_EQ(0, file.AddNewRecord(again));
    ASSERT_EQ(1, file.GetEqualMatch("ABC", &found));
    EXPECT_EQ(0, std::memcmp(&expected, &found, sizeof found));

    auto missing = Tax("ZZ", 3);
    EXPECT_EQ(0, file.UpdateRecord(missing));
}

TEST_F(TaxFileTest, CreatesItsFileWithTheCodeKeyAndResetForgetsThePath) {
    STAT_BUFFER stat{};
    ASSERT_EQ(1, file.GetStatus(&stat));
    EXPECT_EQ(4096, stat.pageSize);
    EXPECT_EQ(1, stat.numberOfKeys);
    EXPECT_EQ(0, stat.fileFlags);
    uint16_t segment[3];
    std::memcpy(segment, stat.keySpecs, sizeof segment);
    EXPECT_EQ(1, segment[0]);
    EXPECT_EQ(4, segment[1]);
    EXPECT_EQ(0x0102, segment[2]);
    EXPECT_EQ(11, stat.keySpecs[10]);
    file.Reset();
    EXPECT_STREQ("", file.m_filePath);
}

TEST_F(TaxFileTest, LastReadKeepsTheKeyNumberLastSet) {
    for (const char* code : {"B", "A"}) {
        auto rec = Tax(code);
        ASSERT_EQ(1, file.AddRecord(rec));
    }
    file.SetKeyNumber(3);  // no such key: a read on it fails with a message
    testsupport::MessageCapture messages;
    tagTAXRECORD rec;
    EXPECT_EQ(0, file.GetLastRecord(&rec));
    EXPECT_EQ(1u, messages.count());
    EXPECT_EQ(1, file.GetFirstRecord(&rec));  // the first read sets key 0
    EXPECT_EQ(1, file.GetLastRecord(&rec));
    EXPECT_STREQ("B", rec.szTaxCode);
}

}  // namespace
