// The piece-data file: its searches by main and piece mark, the comparison of rows, old-layout
// files read through conversion, and its place in the shared record-file suite.
#include "REPdcDataFile.h"
#include "REPdcMarkFile.h"
#include "RESharedHelpers.h"

#include "PdcFileFamilyFixture.h"
#include "RecordFilePatternSuite.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

PDCDATATYPE Row(const char* main, const char* flag, const char* piece, int content = 0) {
    PDCDATATYPE rec{};
    std::snprintf(rec.szMainMark, sizeof rec.szMainMark, "%s", main);
    std::snprintf(rec.szSecondMark, sizeof rec.szSecondMark, "S%s", main);
    std::snprintf(rec.szMainOrAcc, sizeof rec.szMainOrAcc, "%s", flag);
    std::snprintf(rec.szPieceMark, sizeof rec.szPieceMark, "%s", piece);
    rec.nValue53 = content;
    rec.nValue57 = -content;
    std::snprintf(rec.szText72, sizeof rec.szText72, "T72");
    std::snprintf(rec.szText79, sizeof rec.szText79, "T79");
    std::snprintf(rec.szText134, sizeof rec.szText134, "note %d", content);
    return rec;
}

struct PdcDataFileTraits {
    using File = REPdcDataFile;
    using Record = PDCDATATYPE;
    static constexpr const char* kClassName = "REPdcDataFile";
    static constexpr uint16_t kRecordLength = 154;
    static constexpr const char* kCorruptText = "Pdc data file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error PDC-data database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unknown error to create PDC database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        char main[17];
        std::snprintf(main, sizeof main, "B%05d", key);
        return Row(main, "M", main, content);
    }
    static int Update(File& file, Record& rec, Record& changed) { return file.UpdateRecord(rec, changed); }
    static int Delete(File& file, Record& rec) { return file.DeleteRecord(rec); }
};

struct PdcMarkFileTraits {
    using File = REPdcMarkFile;
    using Record = PDCMARKDATATYPE;
    static constexpr const char* kClassName = "REPdcMarkFile";
    static constexpr uint16_t kRecordLength = 257;
    static constexpr const char* kCorruptText = "Pdc mark file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error PDC-mark database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unknown error to create PDC mark database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.szMark, sizeof rec.szMark, "C%05d", key);
        std::snprintf(rec.szMainOrAcc, sizeof rec.szMainOrAcc, "M");
        rec.szText47[0] = static_cast<char>('0' + content % 10);
        std::snprintf(rec.szText107, sizeof rec.szText107, "content %d", content);
        rec.fMeasure79[3] = static_cast<float>(key);
        rec.dMeasure249 = content * 1.5;
        return rec;
    }
    static int Update(File& file, Record& rec, Record& changed) { return file.UpdateRecord(rec.szMark, changed); }
    static int Delete(File& file, Record& rec) { return file.DeleteRecord(rec); }
};

}  // namespace

using PdcPieceFileTypes = ::testing::Types<PdcDataFileTraits, PdcMarkFileTraits>;
INSTANTIATE_TYPED_TEST_SUITE_P(PdcPieceFiles, RecordFilePattern, PdcPieceFileTypes);

namespace {

class PdcDataFileTest : public ::testing::Test {
protected:
    void SetUp() override { testsupport::CreateAndOpen(file, path); }
    void add(std::initializer_list<PDCDATATYPE> rows) {
        for (PDCDATATYPE rec : rows)
            ASSERT_EQ(1, file.AddRecord(rec));
    }
    // One job: B1 with three accessories, b1 (another mark by case) with one, B2 alone.
    void addJob() {
        add({Row("B1", "a", "p3"), Row("B1", "M", "B1"), Row("b1", "a", "q1"), Row("B1", "a", "p1"),
             Row("B2", "M", "B2"), Row("B1", "a", "p2"), Row("b1", "M", "b1")});
    }
    std::vector<std::string> pieces() {
        std::vector<PDCDATATYPE*> rows;
        file.GetAllRecords(rows);
        std::vector<std::string> marks;
        for (const PDCDATATYPE* rec : rows)
            marks.push_back(std::string(rec->szMainMark) + "/" + rec->szMainOrAcc + "/" + rec->szPieceMark);
        REPdcDataFile::ResetPdcDataRecArray(rows);
        return marks;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("job.pdc");
    REPdcDataFile file;
};

TEST_F(PdcDataFileTest, RowsOfAMainMarkAreFoundByExactMainMark) {
    addJob();
    // Key 2 order: main mark, flag ("M" before "a"), piece mark.
    EXPECT_EQ((std::vector<std::string>{"B1/M/B1", "B1/a/p1", "B1/a/p2", "B1/a/p3", "B2/M/B2", "b1/M/b1", "b1/a/q1"}),
              pieces());

    std::vector<std::string> marks{"stale"};
    EXPECT_EQ(1, file.GetAllPcMarks("B1", marks));
    EXPECT_EQ((std::vector<std::string>{"B1", "B1", "B1"}), marks);
    EXPECT_EQ(0, file.GetAllPcMarks("B2", marks));
    EXPECT_TRUE(marks.empty());
    EXPECT_EQ(0, file.GetAllPcMarks("B9", marks));

    std::vector<PDCDATATYPE*> rows;
    EXPECT_EQ(1, file.GetAllSelectedRecords("b1", rows));
    ASSERT_EQ(2u, rows.size());
    EXPECT_STREQ("b1", rows[0]->szPieceMark);
    EXPECT_STREQ("q1", rows[1]->szPieceMark);
    EXPECT_EQ(1, file.GetAllSelectedRecords("nothing", rows));
    EXPECT_EQ(2u, rows.size());
    REPdcDataFile::ResetPdcDataRecArray(rows);

    PDCDATATYPE rec;
    ASSERT_EQ(1, file.GetEqualMatch("B1", "p2", &rec));
    EXPECT_STREQ("a", rec.szMainOrAcc);
    EXPECT_EQ(0, file.GetEqualMatch("B1", "p9", &rec));
    ASSERT_EQ(1, file.GetGreaterMatch("B15", &rec));
    EXPECT_STREQ("B2", rec.szMainMark);
}

TEST_F(PdcDataFileTest, MainMarksAndTheMainMarkOfAPiece) {
    addJob();
    add({Row("B3", "m", "B3")});
    std::vector<PDCDATATYPE*> rows{static_cast<PDCDATATYPE*>(REAllocRecord(sizeof(PDCDATATYPE)))};
    EXPECT_EQ(1, file.GetAllMainMarks(rows));  // the stale element is freed, not kept
    std::vector<std::string> marks;
    for (const PDCDATATYPE* rec : rows)
        marks.push_back(rec->szMainMark);
    EXPECT_EQ((std::vector<std::string>{"B1", "B2", "B3", "b1"}), marks);
    REPdcDataFile::ResetPdcDataRecArray(rows);
    std::vector<std::string> texts{"stale"};
    EXPECT_EQ(1, file.GetAllMainMarks(texts));
    EXPECT_EQ(marks, texts);

    std::string main;
    EXPECT_EQ(1, file.GetMainMarkWRTAccMark("q1", main));
    EXPECT_EQ("b1", main);
    testsupport::MessageCapture messages;
    EXPECT_EQ(0, file.GetMainMarkWRTAccMark("zz", main));
    EXPECT_EQ("Invalid", main);
    EXPECT_EQ(0u, messages.count());

    REPdcDataFile empty;
    testsupport::CreateAndOpen(empty, dir.file("empty.pdc"));
    EXPECT_EQ(0, empty.GetAllMainMarks(texts));
    EXPECT_TRUE(texts.empty());
}

TEST_F(PdcDataFileTest, DeletingPiecesKeepsTheMainRowAndOtherMainMarks) {
    addJob();
    EXPECT_EQ(1, file.DeleteAllPcMarks("B1"));
    EXPECT_EQ((std::vector<std::string>{"B1/M/B1", "B2/M/B2", "b1/M/b1", "b1/a/q1"}), pieces());
    EXPECT_EQ(1, file.DeleteAllPcMarks("none"));
    EXPECT_EQ(4u, pieces().size());
}

TEST_F(PdcDataFileTest, UpdateByRowComparesEveryFieldButTheTrailingBytes) {
    PDCDATATYPE stored = Row("B1", "a", "p1", 5);
    add({stored});
    PDCDATATYPE changed = Row("B1", "a", "p1", 6);

    PDCDATATYPE other = stored;
    std::snprintf(other.szText61, sizeof other.szText61, "x");  // no key holds this field
    EXPECT_EQ(0, gIsEqual(&stored, &other));
    EXPECT_EQ(0, file.UpdateRecord(other, changed));
    other = stored;
    other.nValue57 += 1;
    EXPECT_EQ(0, file.UpdateRecord(other, changed));

    PDCDATATYPE rec;
    ASSERT_EQ(1, file.GetEqualMatch("B1", "p1", &rec));
    EXPECT_EQ(5, +rec.nValue53);

    // Letter case of the texts and the trailing bytes do not count.
    other = stored;
    std::snprintf(other.szText134, sizeof other.szText134, "NOTE 5");
    std::snprintf(other.szSecondMark, sizeof other.szSecondMark, "sb1");
    other.reserved150[2] = 9;
    EXPECT_EQ(1, gIsEqual(&stored, &other));
    EXPECT_EQ(1, file.UpdateRecord(other, changed));
    ASSERT_EQ(1, file.GetEqualMatch("B1", "p1", &rec));
    EXPECT_EQ(6, +rec.nValue53);

    // By marks, nothing is compared.
    EXPECT_EQ(1, file.UpdateRecord("B1", "p1", &stored));
    EXPECT_EQ(0, file.UpdateRecord("B1", "p7", &stored));
    EXPECT_EQ(0, file.UpdateRecord("B1", "p1", static_cast<PDCDATATYPE*>(nullptr)));
    ASSERT_EQ(1, file.GetEqualMatch("B1", "p1", &rec));
    EXPECT_EQ(5, +rec.nValue53);
}

TEST_F(PdcDataFileTest, InitializeOnAnOpenFileOnlyClosesIt) {
    REPdcDataFile fresh;
    EXPECT_EQ(1, fresh.m_isOldFormat);
    EXPECT_EQ(0, file.m_isOldFormat);
    EXPECT_EQ(0, file.Initialize(path.c_str()));
    EXPECT_EQ(0, file.IsOpen());
    EXPECT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(1, file.IsOpen());
}

// Old files hold the second identifier before the main mark, blank-padded texts and 16-bit
// numbers; their key lies at the old place of the main mark.
constexpr REKeySegment kOldMainKey[] = {{18, 17, kKeyLastSegment | kKeyDuplicates, kKeyTypeString, kKeyNullByte}};

OLD_PDCDATATYPE OldRow(const char* main, const char* flag, std::string_view piece, int16_t value) {
    auto rec = testsupport::Blank<OLD_PDCDATATYPE>();
    PutOldMark(rec.szMainMark, main, '\x05');
    PutOldMark(rec.szSecondMark, "SEC", '\x05');
    rec.szMainOrAcc[0] = flag[0];
    PutOldMark(rec.szPieceMark, piece, '\x05');
    rec.nValue53 = value;
    rec.nValue57 = static_cast<int16_t>(-value);
    std::memcpy(rec.szText61, "TEN CHARS!", 10);
    rec.cSpare66 = '\0';
    std::memcpy(rec.szText134, " lead", 5);
    return rec;
}

TEST(PdcDataFileOldLayout, RowsAreConvertedOnEveryReadAndWritesPassTheCurrentRecord) {
    testsupport::TempDir dir;
    const std::string path = dir.file("old.pdc");
    testsupport::WriteOldFile<OLD_PDCDATATYPE>(
        path, kOldMainKey, {OldRow("A1", "A", std::string_view("X\0Y", 3), 7), OldRow("A1", "m", "A1", -300)});
    REPdcDataFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(1, file.m_isOldFormat);
    PDCDATATYPE rec;
    ASSERT_EQ(1, file.GetFirstRecord(&rec));
    EXPECT_STREQ("A1", rec.szMainMark);
    EXPECT_STREQ("SEC", rec.szSecondMark);
    EXPECT_STREQ("a", rec.szMainOrAcc);
    EXPECT_STREQ("XY", rec.szPieceMark);
    EXPECT_EQ(7, +rec.nValue53);
    EXPECT_EQ(-7, +rec.nValue57);
    EXPECT_STREQ("TEN CHARS!", rec.szText61);
    EXPECT_STREQ(" lead", rec.szText134);
    EXPECT_STREQ("", rec.szText72);
    ASSERT_EQ(1, file.GetNextRecord(&rec));
    EXPECT_STREQ("M", rec.szMainOrAcc);
    EXPECT_EQ(-300, +rec.nValue53);
    EXPECT_EQ(300, +rec.nValue57);

    // Appended into a current file, old rows arrive converted.
    REPdcDataFile target;
    testsupport::CreateAndOpen(target, dir.file("new.pdc"));
    ASSERT_EQ(1, target.AppendFile(path.c_str(), 1));
    std::vector<std::string> marks;
    ASSERT_EQ(1, target.GetAllPcMarks("A1", marks));
    EXPECT_EQ(1u, marks.size());

    // An insert into the old file passes the current record as it is, cut to the old length.
    PDCDATATYPE added = Row("NEW", "M", "NEW", 3);
    ASSERT_EQ(1, file.AddRecord(&added));
    file.Close();
    const auto records = testsupport::StoredRecords<OLD_PDCDATATYPE>(path);
    ASSERT_EQ(3u, records.size());
    EXPECT_EQ(0, std::memcmp(records[2].data(), &added, sizeof(OLD_PDCDATATYPE)));
}

}  // namespace
