// The batch input files: unique batch headers, lines of a batch with duplicates, and the
// operations on one batch, which act on its first line or walk the whole file.
#include "REPdcBatInpDataFile.h"
#include "REPdcBatInpLaborDataFile.h"
#include "REPdcBatInpPieceDataFile.h"
#include "RESharedHelpers.h"

#include "PdcFileFamilyFixture.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

PDCBILABFILETYPE Labor(int batch, int value) {
    PDCBILABFILETYPE rec{};
    rec.nBatchNo = batch;
    rec.nValue4 = value;
    return rec;
}

std::vector<int> Values(std::vector<PDCBILABFILETYPE*>& lines) {
    std::vector<int> values;
    for (auto* line : lines)
        values.push_back(line->nValue4);
    REPdcBatInpLaborDataFile::ResetPdcBatInpLaborDataRecArray(lines);
    return values;
}

class PdcBatInpTest : public PdcFileTest {
protected:
    void SetUp() override {
        create(labor, "labor.dat");
        for (PDCBILABFILETYPE rec : {Labor(2, 21), Labor(1, 11), Labor(2, 22), Labor(3, 31), Labor(2, 23)})
            ASSERT_EQ(1, labor.AddRecord(rec));
    }
    REPdcBatInpLaborDataFile labor;
};

TEST_F(PdcBatInpTest, LinesOfOneBatch) {
    std::vector<PDCBILABFILETYPE*> lines;
    EXPECT_EQ(1, labor.GetAllRecords(2, lines));
    EXPECT_EQ((std::vector<int>{21, 22, 23}), Values(lines));

    lines.push_back(testsupport::Allocated(Labor(0, 7)));
    EXPECT_EQ(1, labor.GetAllRecords(9, lines));  // no lines: the array as it was
    EXPECT_EQ((std::vector<int>{7}), Values(lines));

    PDCBILABFILETYPE found{};
    EXPECT_EQ(1, labor.GetExactMatch(2, &found));
    EXPECT_EQ(21, +found.nValue4);
    EXPECT_EQ(0, labor.GetExactMatch(9, &found));
}

TEST_F(PdcBatInpTest, DeleteAndUpdateActOnTheFirstLineOfTheBatch) {
    PDCBILABFILETYPE second = Labor(2, 22);
    EXPECT_EQ(1, labor.DeleteRecord(second));
    std::vector<PDCBILABFILETYPE*> lines;
    labor.GetAllRecords(2, lines);
    EXPECT_EQ((std::vector<int>{22, 23}), Values(lines));

    PDCBILABFILETYPE third = Labor(2, 23), changed = Labor(2, 99);
    EXPECT_EQ(1, labor.UpdateRecord(third, changed));
    labor.GetAllRecords(2, lines);
    EXPECT_EQ((std::vector<int>{99, 23}), Values(lines));

    PDCBILABFILETYPE none = Labor(8, 0);
    EXPECT_EQ(0, labor.DeleteRecord(none));
    EXPECT_EQ(0, labor.UpdateRecord(none, changed));
}

TEST_F(PdcBatInpTest, DeleteAllLinesOfOneBatch) {
    EXPECT_EQ(1, labor.DeleteAllRecords(2));
    EXPECT_EQ(1, labor.DeleteAllRecords(9));
    std::vector<PDCBILABFILETYPE*> lines;
    labor.GetAllRecords(lines);
    EXPECT_EQ((std::vector<int>{11, 31}), Values(lines));
    EXPECT_EQ(1, labor.DeleteAllRecords());
    EXPECT_EQ(1, labor.DeleteAllRecords(1));  // empty file
    EXPECT_EQ(0, labor.GetAllRecords(lines));
}

TEST_F(PdcFileTest, BatchHeadersAreUniqueAndUpdatedByNumber) {
    REPdcBatInpDataFile headers;
    create(headers, "bid.dat");
    PDCBIDFILETYPE first{}, again{};
    first.nBatchNo = again.nBatchNo = 5;
    again.nValue5 = 1;
    ASSERT_EQ(1, headers.AddRecord(first));
    EXPECT_EQ(0, headers.AddRecord(again));

    PDCBIDFILETYPE changed = first;
    changed.nValue5 = 42;
    Put(changed.sMark18, "M1");
    EXPECT_EQ(1, headers.UpdateRecord(5, changed));
    EXPECT_EQ(0, headers.UpdateRecord(6, changed));
    PDCBIDFILETYPE found;
    ASSERT_EQ(1, headers.GetExactMatch(5, &found));
    EXPECT_EQ(42, +found.nValue5);
    EXPECT_STREQ("M1", found.sMark18);

    REPdcBatInpPieceDataFile pieces;
    create(pieces, "pie.dat");
    PDCBIPIEFILETYPE piece{};
    piece.nBatchNo = 5;
    ASSERT_EQ(1, pieces.AddRecord(piece));
    Put(piece.sMark42, "P2");
    ASSERT_EQ(1, pieces.AddRecord(piece));  // lines of one batch share the number
    std::vector<PDCBIPIEFILETYPE*> lines;
    EXPECT_EQ(1, pieces.GetAllRecords(5, lines));
    ASSERT_EQ(2u, lines.size());
    EXPECT_STREQ("P2", lines[1]->sMark42);
    REPdcBatInpPieceDataFile::ResetPdcBatInpPieceDataRecArray(lines);
    EXPECT_EQ(1, pieces.DeleteAllRecords(5));
    EXPECT_EQ(0, pieces.GetExactMatch(5, nullptr));
}

}  // namespace
