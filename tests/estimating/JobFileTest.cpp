// The job item file's particular operations on a current-layout file: wildcard searches, the
// duplicate search of AddRecord, updates and deletes by key, page renumbering on append, and
// which record-manager failures reach the user.
#include "REJobFile.h"
#include "RESharedHelpers.h"

#include "RecordBuilders.h"
#include "StatusInjector.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <tuple>
#include <vector>

namespace {

ESTJOBFILERECORD Job(const char* code1, const char* code2, int page, int line) {
    ESTJOBFILERECORD rec{};
    std::snprintf(rec.sCode1, sizeof rec.sCode1, "%s", code1);
    std::snprintf(rec.sCode2, sizeof rec.sCode2, "%s", code2);
    rec.nPageNo = page;
    rec.nLineNo = line;
    return rec;
}

using Key = std::tuple<std::string, std::string, int, int>;

Key KeyOf(const ESTJOBFILERECORD& rec) { return {rec.sCode1, rec.sCode2, int{rec.nPageNo}, int{rec.nLineNo}}; }

std::vector<Key> Keys(REJobFile& file) {
    std::vector<ESTJOBFILERECORD*> records;
    file.GetAllRecords(records);
    std::vector<Key> keys;
    for (auto* rec : records)
        keys.push_back(KeyOf(*rec));
    file.ResetJobRecArray(records);
    return keys;
}

class JobFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        testsupport::CreateAndOpen(file, path);
        for (auto rec : {Job("A", "BEAM", 1, 1), Job("A", "BEAM", 1, 2), Job("A", "COL", 2, 1),
                         Job("B", "BEAM", 1, 1), Job("B", "PLATE", 3, 4)})
            ASSERT_EQ(1, file.AddRecord(rec));
    }

    // The keys a SearchFirstRecord / SearchNextRecord walk returns.
    std::vector<Key> Walk(const char* code1, const char* code2, int page, int line) {
        std::vector<Key> keys;
        ESTJOBFILERECORD rec;
        for (int found = file.SearchFirstRecord(code1, code2, page, line, &rec); found;
             found = file.SearchNextRecord(code1, code2, page, line, &rec))
            keys.push_back(KeyOf(rec));
        return keys;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("JOB001.dat");
    REJobFile file;
};

TEST_F(JobFileTest, WildcardSearchesWalkWhileTheFilterHolds) {
    testsupport::MessageCapture messages;
    struct Case {
        const char* code1;
        const char* code2;
        int page, line;
        std::vector<Key> expected;
    };
    const Case cases[] = {
        {"", "", -1, -1,
         {{"A", "BEAM", 1, 1}, {"A", "BEAM", 1, 2}, {"A", "COL", 2, 1}, {"B", "BEAM", 1, 1}, {"B", "PLATE", 3, 4}}},
        {"A", "", -1, -1, {{"A", "BEAM", 1, 1}, {"A", "BEAM", 1, 2}, {"A", "COL", 2, 1}}},
        // A page of -1 goes into the key as the largest unsigned number: the search starts past
        // every page of that code pair.
        {"A", "BEAM", -1, -1, {}},
        {"A", "BEAM", 1, 2, {{"A", "BEAM", 1, 2}}},
        {"B", "", -1, -1, {{"B", "BEAM", 1, 1}, {"B", "PLATE", 3, 4}}},
        // The walk ends at the first record that fails the filter.
        {"", "", 1, -1, {{"A", "BEAM", 1, 1}, {"A", "BEAM", 1, 2}}},
        {"A", "", 1, -1, {{"A", "BEAM", 1, 1}, {"A", "BEAM", 1, 2}}},
        {"C", "", -1, -1, {}},
        {nullptr, nullptr, -1, -1,
         {{"A", "BEAM", 1, 1}, {"A", "BEAM", 1, 2}, {"A", "COL", 2, 1}, {"B", "BEAM", 1, 1}, {"B", "PLATE", 3, 4}}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.expected, Walk(c.code1, c.code2, c.page, c.line))
            << (c.code1 ? c.code1 : "null") << "/" << (c.code2 ? c.code2 : "null") << "/" << c.page << "/" << c.line;
    EXPECT_EQ(0u, messages.count());
}

TEST_F(JobFileTest, SearchFirstMatchLEFindsTheRecordAtOrBeforeTheKey) {
    ESTJOBFILERECORD rec;
    ASSERT_EQ(1, file.SearchFirstMatchLE("A", "COL", 2, 1, &rec));
    EXPECT_EQ(Key("A", "COL", 2, 1), KeyOf(rec));
    ASSERT_EQ(1, file.SearchFirstMatchLE("A", "CAP", 9, 9, &rec));
    EXPECT_EQ(Key("A", "BEAM", 1, 2), KeyOf(rec));
    EXPECT_EQ(0, file.SearchFirstMatchLE("A", "", 0, 0, &rec));
}

TEST_F(JobFileTest, AddRecordRefusesAKeyThatIsPresent) {
    testsupport::TraceCapture traces;
    auto same = Job("A", "BEAM", 1, 2);
    same.nValue39 = 77;
    EXPECT_EQ(0, file.AddRecord(same));
    ASSERT_FALSE(traces.traces().empty());
    EXPECT_EQ("<<REJobFile::AddRecord>> Same record present in the database; UPDATE possible not ADDITION.\n",
              traces.traces().back());
    auto nextLine = Job("A", "BEAM", 1, 3);
    EXPECT_EQ(1, file.AddRecord(nextLine));
    EXPECT_EQ(6u, Keys(file).size());
    // Without the search the record manager itself refuses the duplicate.
    EXPECT_EQ(0, file.AddNewRecord(same));
    EXPECT_EQ(6u, Keys(file).size());
}

TEST_F(JobFileTest, UpdateAndDeleteFindTheirRecordByKey) {
    auto keyRec = Job("A", "COL", 2, 1);
    auto moved = Job("A", "COL", 5, 1);
    moved.nValue39 = 12;
    EXPECT_EQ(1, file.UpdateRecord(keyRec, moved));  // the key changes with the update
    ESTJOBFILERECORD rec;
    ASSERT_EQ(1, file.SearchFirstRecord("A", "COL", 5, 1, &rec));
    EXPECT_EQ(12, int32_t{rec.nValue39});
    EXPECT_EQ(0, file.UpdateRecord(keyRec, moved));

    auto relined = Job("B", "PLATE", 3, 9);
    EXPECT_EQ(1, file.UpdateRecord("B", "PLATE", 3, 4, relined));
    EXPECT_EQ(0, file.UpdateRecord("B", "PLATE", 3, 4, relined));

    EXPECT_EQ(1, file.DeleteRecord(moved));
    // By page and line under any codes: the first such record in key order.
    EXPECT_EQ(1, file.DeleteRecord(1, 1));
    EXPECT_EQ(1, file.DeleteRecord(1, 1));
    EXPECT_EQ(0, file.DeleteRecord(1, 1));
    const std::vector<Key> left = {{"A", "BEAM", 1, 2}, {"B", "PLATE", 3, 9}};
    EXPECT_EQ(left, Keys(file));
}

TEST_F(JobFileTest, AppendedPagesFollowTheTargetsLastPage) {
    // Target pages go up to 5; the appended job's pages 1..3 become 6..8.
    auto page5 = Job("A", "END", 5, 1);
    ASSERT_EQ(1, file.AddRecord(page5));
    const std::string other = dir.file("JOB002.dat");
    {
        REJobFile source;
        testsupport::CreateAndOpen(source, other);
        for (int page = 1; page <= 3; ++page) {
            auto rec = Job("C", "ITEM", page, 1);
            ASSERT_EQ(1, source.AddRecord(rec));
        }
    }
    ASSERT_EQ(1, file.AppendFile(other.c_str(), 1));
    EXPECT_EQ((std::vector<Key>{{"C", "ITEM", 6, 1}, {"C", "ITEM", 7, 1}, {"C", "ITEM", 8, 1}}), Walk("C", "", -1, -1));

    // An empty target keeps the pages.
    REJobFile empty;
    testsupport::CreateAndOpen(empty, dir.file("JOB003.dat"));
    ASSERT_EQ(1, empty.AppendFile(other.c_str(), 0));
    EXPECT_EQ((std::vector<Key>{{"C", "ITEM", 1, 1}, {"C", "ITEM", 2, 1}, {"C", "ITEM", 3, 1}}), Keys(empty));
}

// A failed search shows the unknown-error message with the status; an exact read is silent
// whatever it answers, and so are failed writes, which lose nothing; a refused open shows a message.
TEST_F(JobFileTest, RecordManagerFailures) {
    using testsupport::StatusInjector;
    testsupport::MessageCapture messages;
    ESTJOBFILERECORD rec;
    {
        StatusInjector inject(REBtrieveBase::kOpGetGreaterOrEqual, REBtrieveBase::kStatusIoError);
        EXPECT_EQ(0, file.SearchFirstRecord("A", "", -1, -1, &rec));
        ASSERT_EQ(1u, messages.count());
        EXPECT_EQ("Unknown error job database file. [Error# 2]", messages.lastText());
    }
    messages.clear();
    {
        StatusInjector inject(REBtrieveBase::kOpGetEqual, REBtrieveBase::kStatusIoError);
        EXPECT_EQ(0, file.GetEqualMatch("A", &rec));
        EXPECT_EQ(1, inject.hits());
    }
    auto added = Job("C", "", 2, 0);
    {
        StatusInjector inject(REBtrieveBase::kOpInsert, REBtrieveBase::kStatusIoError);
        EXPECT_EQ(0, file.AddNewRecord(added));
        EXPECT_EQ(0, file.AddRecord(added));
    }
    {
        StatusInjector inject(REBtrieveBase::kOpUpdate, 80);
        auto stored = Job("A", "BEAM", 1, 1);
        EXPECT_EQ(0, file.UpdateRecord("A", "BEAM", 1, 1, stored));
    }
    {
        StatusInjector inject(REBtrieveBase::kOpDelete, REBtrieveBase::kStatusIoError);
        EXPECT_EQ(0, file.DeleteRecord(1, 1));
        EXPECT_EQ(0, file.DeleteAllRecords());
    }
    EXPECT_EQ(0u, messages.count());
    EXPECT_EQ(5u, Keys(file).size());
    {
        StatusInjector inject(REBtrieveBase::kOpOpen, REBtrieveBase::kStatusFileNotFound);
        REJobFile other;
        EXPECT_EQ(0, other.Initialize(path));
        EXPECT_EQ(0, other.IsOpen());
        EXPECT_EQ(1u, messages.count());
    }
}

}  // namespace
