// The sequence file's selections by first name, bulk inserts, pair search and reads on the
// current key.
#include "REPdcSequenceFile.h"

#include "PdcFileFamilyFixture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

PDCSEQDATATYPE Seq(const char* first, const char* second, int number) {
    PDCSEQDATATYPE rec{};
    Put(rec.sFirstName, first);
    Put(rec.sSecondName, second);
    rec.nNumber = number;
    return rec;
}

class PdcSequenceTest : public PdcFileTest {
protected:
    void SetUp() override {
        create(file, "seq.dat");
        for (PDCSEQDATATYPE rec : {Seq("S1", "B", 2), Seq("s1", "A", 1), Seq("u2", "A", 3), Seq("S0", "Z", 4)})
            ASSERT_EQ(1, file.AddRecord(rec));
    }
    std::vector<std::string> pairs(std::vector<PDCSEQDATATYPE*>& records) {
        std::vector<std::string> names;
        for (auto* rec : records)
            names.push_back(std::string(rec->sFirstName) + "/" + rec->sSecondName);
        REPdcSequenceFile::ResetPdcSequenceRecArray(records);
        return names;
    }
    REPdcSequenceFile file;
};

TEST_F(PdcSequenceTest, SearchRecordMatchesThePairExactly) {
    PDCSEQDATATYPE found;
    EXPECT_EQ(1, file.SearchRecord("S1", "B", &found));
    EXPECT_EQ(2, +found.nNumber);
    EXPECT_EQ(0, file.SearchRecord("S1", "A", &found));  // only s1/A is stored
    EXPECT_EQ(0, file.SearchRecord("S1", "", nullptr));
    EXPECT_EQ(1, file.SearchRecord("s1", "A", nullptr));
    // A miss leaves what the search reached in `out`, or zeros when it reached nothing.
    EXPECT_EQ(0, file.SearchRecord("S9", "A", &found));
    EXPECT_STREQ("s1", found.sFirstName);
    EXPECT_EQ(0, file.SearchRecord("v", "A", &found));
    EXPECT_EQ(0, +found.nNumber);
}

TEST_F(PdcSequenceTest, SelectionsByFirstNameIgnoreCase) {
    std::vector<PDCSEQDATATYPE*> records;
    EXPECT_EQ(1, file.GetAllSelectedRecords("S1", records));
    auto names = pairs(records);
    ASSERT_EQ(2u, names.size());
    EXPECT_NE(names.end(), std::find(names.begin(), names.end(), "s1/A"));
    EXPECT_NE(names.end(), std::find(names.begin(), names.end(), "S1/B"));

    EXPECT_EQ(0, file.GetAllSelectedRecords("S10", records));  // s1 follows: nothing of S10
    EXPECT_EQ(0, file.GetAllSelectedRecords("v", records));    // nothing at or after
    EXPECT_TRUE(records.empty());

    PDCSEQDATATYPE rec;
    EXPECT_EQ(1, file._GetEqualMatch("u2", &rec));
    EXPECT_EQ(3, +rec.nNumber);
    EXPECT_EQ(0, file._GetEqualMatch("U2", &rec));

    EXPECT_EQ(1, file.DeleteAllSelectedRecords("S1"));
    EXPECT_EQ(0, file.DeleteAllSelectedRecords("v"));
    file.SetKeyNumber(0);
    file.GetAllRecords(records);
    EXPECT_EQ((std::vector<std::string>{"S0/Z", "u2/A"}), pairs(records));
}

TEST_F(PdcSequenceTest, InsertRecordsStopsAtTheFirstRefusedRecord) {
    std::vector<PDCSEQDATATYPE*> none;
    EXPECT_EQ(0, file.InsertRecords(none));

    PDCSEQDATATYPE a = Seq("S5", "A", 5), dup = Seq("S1", "B", 9), b = Seq("S6", "A", 6);
    std::vector<void*> untyped = {&a, &dup, &b};
    EXPECT_EQ(0, file.InsertRecords(untyped));
    EXPECT_EQ(1, file.SearchRecord("S5", "A", nullptr));
    EXPECT_EQ(0, file.SearchRecord("S6", "A", nullptr));

    std::vector<PDCSEQDATATYPE*> typed = {&b};
    EXPECT_EQ(1, file.InsertRecords(typed));
    EXPECT_EQ(1, file.SearchRecord("S6", "A", nullptr));
}

TEST_F(PdcSequenceTest, PositionalReadsFollowTheCurrentKey) {
    PDCSEQDATATYPE rec;
    // Key 2 orders by second name first.
    file.SetKeyNumber(2);
    ASSERT_EQ(1, file.GetFirstRecord(&rec));
    EXPECT_STREQ("s1", rec.sFirstName);  // s1/A sorts before u2/A
    ASSERT_EQ(1, file.GetLastRecord(&rec));
    EXPECT_STREQ("Z", rec.sSecondName);
    // A search leaves its key selected for the reads that follow.
    ASSERT_EQ(1, file.SearchRecord("S1", "B", &rec));
    ASSERT_EQ(1, file.GetNextRecord(&rec));
    EXPECT_STREQ("s1", rec.sFirstName);
    ASSERT_EQ(1, file.GetPreviousRecord(&rec));
    EXPECT_STREQ("S1", rec.sFirstName);
}

}  // namespace
