// The grade file: searches that read only in old-layout files, grade lists in both layouts, the
// update and delete by texts, the copy to a new file, and its messages.
#include "REGradeFile.h"
#include "RESharedHelpers.h"

#include "RecordBuilders.h"
#include "RecordFilePatternSuite.h"
#include "StatusInjector.h"
#include "TestSupport.h"
#include "catalogue/GradeFileTraits.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct GradePatternTraits {
    using File = REGradeFile;
    using Record = GRADEDATRECORD;
    static constexpr const char* kClassName = "REGradeFile";
    static constexpr uint16_t kRecordLength = sizeof(GRADEDATRECORD);
    static constexpr bool kReadsInStoredOrder = true;
    // A current-layout file's searches test the given record without reading: nothing stops a
    // duplicate, and updates and deletes act on the record the last read reached.
    static constexpr bool kTakesDuplicates = true;
    static constexpr bool kResetKeepsOpen = true;  // Reset only ends a search
    static constexpr const char* kCorruptText = "Shape data file is corrupt.";
    static constexpr const char* kUnknownErrorText = "Unknown error grade database file. [Error# %d]";
    static constexpr const char* kCreateErrorText = "Unknown error grade database file. [Error# %d]";

    static Record Sample(int key, int content = 0) {
        Record rec{};
        std::snprintf(rec.szText0, sizeof rec.szText0, "G%03u", static_cast<unsigned>(key) % 1000u);
        std::snprintf(rec.szCode5, sizeof rec.szCode5, "A");
        std::snprintf(rec.szText8, sizeof rec.szText8, "A%d", content);
        return rec;
    }
    static bool ReadTo(File& file, const Record& rec, Record& found) {
        for (int read = file.GetFirstRecord(&found); read; read = file.GetNextRecord(&found))
            if (std::strcmp(found.szText0, rec.szText0) == 0)
                return true;
        return false;
    }
    static int Update(File& file, Record& rec, Record& changed) {
        Record found;
        return ReadTo(file, rec, found) && file.UpdateRecord(found, changed);
    }
    static int Delete(File& file, Record& rec) {
        Record found;
        return ReadTo(file, rec, found) && file.DeleteRecord(&found);
    }
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Grades, RecordFilePattern, ::testing::Types<GradePatternTraits>);

namespace {

// Keys of a stored grade file, without regard to case; key 1: first text, code, third text,
// second text.
constexpr uint16_t kDup = kKeyDuplicates | kKeyCaseInsensitive;
constexpr REKeySegment kOldGradeKeys[] = {
    {1, 4, kKeyLastSegment | kDup, kKeyTypeString, kKeyNullByte},
    {1, 4, kKeyInnerSegment | kDup, kKeyTypeString, kKeyNullByte},
    {5, 2, kKeyInnerSegment | kDup, kKeyTypeString, kKeyNullByte},
    {17, 10, kKeyInnerSegment | kDup, kKeyTypeString, kKeyNullByte},
    {7, 10, kKeyLastSegment | kDup, kKeyTypeString, kKeyNullByte},
};

OLD_GRADEDATRECORD OldGrade(const char* t0, const char* code, const char* t8, const char* t19) {
    return testsupport::OldRecord<OLD_GRADEDATRECORD>([&](OLD_GRADEDATRECORD& rec) {
        testsupport::PutOld(rec.szText0, t0);
        testsupport::PutOld(rec.szCode5, code);
        testsupport::PutOld(rec.szText8, t8);
        testsupport::PutOld(rec.szText19, t19);
    });
}

GRADEDATRECORD Grade(const char* t0, const char* code, const char* t8, const char* t19) {
    GRADEDATRECORD rec{};
    std::strcpy(rec.szText0, t0);
    std::strcpy(rec.szCode5, code);
    std::strcpy(rec.szText8, t8);
    std::strcpy(rec.szText19, t19);
    return rec;
}

// Leaves the list filled: the next GetGradeList must free it.
std::vector<std::string> SecondTexts(const std::list<GRADEDATRECORD*>& list) {
    std::vector<std::string> texts;
    for (const GRADEDATRECORD* rec : list)
        texts.emplace_back(rec->szText8);
    return texts;
}

class GradeFileTest : public ::testing::Test {
protected:
    // An old-layout file, records stored in this physical order.
    std::string oldFile() {
        const std::string at = dir.file("grade.old");
        testsupport::WriteOldFile<OLD_GRADEDATRECORD>(at, kOldGradeKeys,
                                                      {OldGrade("PL", "B", "A572", "50"), OldGrade("W", "A", "A992", ""),
                                                       OldGrade("PL", "A", "A36", ""), OldGrade("PLT", "A", "A1", "")});
        return at;
    }
    std::string newFile(std::initializer_list<GRADEDATRECORD> records) {
        const std::string at = dir.file("grade.dat");
        REGradeFile file;
        testsupport::CreateAndOpen(file, at);
        for (GRADEDATRECORD rec : records)
            EXPECT_EQ(1, file.AddRecord(rec));
        return at;
    }
    testsupport::TempDir dir;
};

TEST_F(GradeFileTest, OldLayoutSearchesReadInKeyOneOrderAndPositionalReadsInStoredOrder) {
    REGradeFile file;
    ASSERT_EQ(1, file.Initialize(oldFile().c_str()));
    EXPECT_EQ(1, file.m_isOldFormat);

    std::list<GRADEDATRECORD*> list;
    ASSERT_EQ(1, file.GetGradeList("pl", list));
    EXPECT_EQ((std::vector<std::string>{"A36", "A572"}), SecondTexts(list));
    ASSERT_EQ(1, file.GetGradeList("NONE", list));
    EXPECT_TRUE(list.empty());

    GRADEDATRECORD rec;
    EXPECT_EQ(1, file.GetFirstMatch("PL", "A36", "", &rec, 1));
    EXPECT_EQ(1, file.m_searchActive);
    EXPECT_EQ(1, file.GetNextMatch("PL", "", "50", &rec, 1));
    EXPECT_STREQ("A572", rec.szText8);
    // The code is blank in the search key: only the first record of the first text is tested.
    EXPECT_EQ(0, file.GetFirstMatch("PL", "A572", "50", &rec, 1));
    EXPECT_EQ(0, file.m_searchActive);
    // All texts empty: the first record at or after the empty key.
    ASSERT_EQ(1, file.GetFirstMatch("", "", "", &rec, 1));
    EXPECT_STREQ("A36", rec.szText8);
    EXPECT_EQ(1, file.GetNextMatch("", "", "", &rec, 1));
    EXPECT_STREQ("A572", rec.szText8);

    ASSERT_EQ(1, file.GetFirstRecord(&rec));
    EXPECT_EQ(0, file.m_searchActive);
    EXPECT_STREQ("A572", rec.szText8);
    ASSERT_EQ(1, file.GetLastRecord(&rec));
    EXPECT_STREQ("A1", rec.szText8);
    ASSERT_EQ(1, file.GetPreviousRecord(&rec));
    EXPECT_STREQ("A36", rec.szText8);
    EXPECT_EQ(1, REGradeFile::ResetGradeRecordList(list));
}

TEST_F(GradeFileTest, OldLayoutAddUpdateDeleteWriteTheStoredLayout) {
    const std::string at = oldFile();
    testsupport::TraceCapture traces;
    {
        REGradeFile file;
        ASSERT_EQ(1, file.Initialize(at.c_str()));
        GRADEDATRECORD dup = Grade("pl", "Z", "a36", "");
        EXPECT_EQ(0, file.AddRecord(dup));
        EXPECT_EQ("<<REGradeFile::AddRecord>> Same record present in the database; UPDATE possible not ADDITION.\n",
                  traces.traces().back());
        GRADEDATRECORD added = Grade("W", "B", "A913", "65");
        EXPECT_EQ(1, file.AddRecord(added));

        // Renaming onto a record that exists still updates.
        GRADEDATRECORD from = Grade("PLT", "A", "A1", ""), to = Grade("W", "A", "A992", "");
        traces.clear();
        EXPECT_EQ(1, file.UpdateRecord(from, to));
        EXPECT_EQ("<<REGradeFile::UpdateRecord>> **ERROR** ToRec is already present in the database.\n",
                  traces.traces().front());
        GRADEDATRECORD missing = Grade("X", "", "", "");
        EXPECT_EQ(0, file.UpdateRecord(missing, to));
        EXPECT_EQ("<<REGradeFile::UpdateRecord>> Same record not present in the database; ADDITION possible not "
                  "UPDATE.\n",
                  traces.traces().back());

        GRADEDATRECORD gone = Grade("PL", "A", "A36", "");
        EXPECT_EQ(1, file.DeleteRecord(&gone));
        const GRADEDATRECORD zero{};
        EXPECT_EQ(0, std::memcmp(&zero, &gone, sizeof gone));
        GRADEDATRECORD again = Grade("PL", "A", "A36", "");
        EXPECT_EQ(0, file.DeleteRecord(&again));
        EXPECT_EQ("<<REGradeFile::DeleteRecord>> Record not present in the database; Deletion not possible.\n",
                  traces.traces().back());
        EXPECT_STREQ("A36", again.szText8);
    }
    testsupport::RawRecordFile raw(at, sizeof(OLD_GRADEDATRECORD));
    const auto records = raw.records();
    ASSERT_EQ(4u, records.size());
    const OLD_GRADEDATRECORD expected[] = {OldGrade("PL", "B", "A572", "50"), OldGrade("W", "A", "A992", ""),
                                           OldGrade("W", "A", "A992", ""), OldGrade("W", "B", "A913", "65")};
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(0, std::memcmp(&expected[i], records[i].data(), sizeof expected[i])) << i;
}

TEST_F(GradeFileTest, NewLayoutSearchesTestTheGivenRecordWithoutReading) {
    REGradeFile file;
    ASSERT_EQ(1, file.Initialize(newFile({Grade("PL", "A", "A36", ""), Grade("W", "A", "A992", ""),
                                          Grade("pl", "B", "A572", "50")})
                                     .c_str()));
    EXPECT_EQ(0, file.m_isOldFormat);
    GRADEDATRECORD rec = Grade("W", "A", "A992", "");
    EXPECT_EQ(1, file.GetFirstMatch("w", "a992", &rec));
    EXPECT_STREQ("A992", rec.szText8);
    EXPECT_EQ(1, file.GetNextMatch("W", "", &rec));
    GRADEDATRECORD other = Grade("PL", "A", "A36", "");
    EXPECT_EQ(0, file.GetFirstMatch("W", "", &other));
    EXPECT_EQ(0, file.m_searchActive);

    std::list<GRADEDATRECORD*> list;
    ASSERT_EQ(1, file.GetGradeList("PL", list));
    EXPECT_EQ((std::vector<std::string>{"A36", "A572"}), SecondTexts(list));
    ASSERT_EQ(1, file.GetGradeList("HSS", list));
    EXPECT_TRUE(list.empty());

    // Update and delete act on the record the last read reached.
    ASSERT_EQ(1, file.GetFirstRecord(&rec));
    GRADEDATRECORD to = Grade("PL", "A", "A36M", "");
    EXPECT_EQ(1, file.UpdateRecord(rec, to));
    ASSERT_EQ(1, file.GetFirstRecord(&rec));
    EXPECT_STREQ("A36M", rec.szText8);
    ASSERT_EQ(1, file.GetNextRecord(&rec));
    EXPECT_EQ(1, file.DeleteRecord(&rec));
    EXPECT_EQ(0, rec.szText0[0]);
    std::vector<GRADEDATRECORD*> all;
    file.GetAllRecords(all);
    ASSERT_EQ(2u, all.size());
    EXPECT_STREQ("A572", all[1]->szText8);
    DeallocatePtrArray(all);
}

TEST_F(GradeFileTest, CopyToNewFileClonesLayoutAndRecords) {
    REGradeFile file;
    ASSERT_EQ(1, file.Initialize(oldFile().c_str()));
    const std::string copy = dir.file("copy.old");
    EXPECT_EQ(1, file.CopyRecordsToNewFile(copy.c_str()));
    REGradeFile cloned;
    ASSERT_EQ(1, cloned.Initialize(copy.c_str()));
    EXPECT_EQ(1, cloned.m_isOldFormat);
    std::list<GRADEDATRECORD*> list;
    cloned.GetGradeList("PL", list);
    EXPECT_EQ((std::vector<std::string>{"A36", "A572"}), SecondTexts(list));
    REGradeFile::ResetGradeRecordList(list);

    // A refused create still answers 1; an empty source 0.
    EXPECT_EQ(1, file.CopyRecordsToNewFile(dir.file("no dir/copy.dat").c_str()));
    REGradeFile empty;
    ASSERT_EQ(1, empty.Initialize(newFile({}).c_str()));
    EXPECT_EQ(0, empty.CopyRecordsToNewFile(dir.file("empty.dat").c_str()));
}

TEST_F(GradeFileTest, SearchFailureMessagesAndReset) {
    testsupport::MessageCapture messages;
    REGradeFile file;
    ASSERT_EQ(1, file.Initialize(oldFile().c_str()));
    GRADEDATRECORD rec;
    {
        testsupport::StatusInjector injector(REBtrieveBase::kOpGetGreaterOrEqual, 2);
        EXPECT_EQ(0, file.GetFirstMatch("PL", "", "", &rec, 1));
        EXPECT_EQ("Unknown error grade database file. [Error# 2]", messages.lastText());
    }
    {
        testsupport::StatusInjector injector(REBtrieveBase::kOpUpdate, 2);
        messages.clear();
        GRADEDATRECORD from = Grade("PL", "A", "A36", ""), to = from;
        EXPECT_EQ(0, file.UpdateRecord(from, to));
        EXPECT_EQ(0u, messages.count());
    }
    ASSERT_EQ(1, file.GetFirstMatch("PL", "", "", &rec, 1));
    EXPECT_EQ(1, file.Reset());
    EXPECT_EQ(0, file.m_searchActive);
    EXPECT_EQ(1, file.IsOpen());
}

}  // namespace
