// The labor code file: group-wise reads and replacement, the search filter, and files of the
// earlier generation read and written in their own layout.
#include "RELaborCodeFile.h"
#include "labor/LaborCodeTraits.h"

#include "RecordBuilders.h"
#include "StatusInjector.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <list>
#include <string>

namespace {

using namespace testsupport;

LABORCODERECORD Code(const char* group, const char* subCode, int16_t value = 0) {
    LABORCODERECORD rec{};
    std::snprintf(rec.sGroupName, sizeof rec.sGroupName, "%s", group);
    std::snprintf(rec.sSubCode, sizeof rec.sSubCode, "%s", subCode);
    std::snprintf(rec.sDescription, sizeof rec.sDescription, "%s %s", group, subCode);
    for (int i = 0; i < 100; ++i) {
        rec.nTable1[i] = static_cast<int16_t>(value + i);
        rec.nTable2[i] = static_cast<int16_t>(-value - i);
    }
    return rec;
}

OLD_LABORCODERECORD OldCode(const char* group, const char* subCode, int16_t value = 0) {
    return OldRecord<OLD_LABORCODERECORD>([&](OLD_LABORCODERECORD& rec) {
        PutOld(rec.sGroupName, sizeof rec.sGroupName, group);
        PutOld(rec.sSubCode, sizeof rec.sSubCode, subCode);
        PutOld(rec.sDescription, sizeof rec.sDescription, "old description");
        for (int i = 0; i < 100; ++i) {
            rec.nTable1[i] = static_cast<int16_t>(value + i);
            rec.nTable2[i] = static_cast<int16_t>(value * i);
        }
    });
}

constexpr REKeySegment kOldCodeKey[] = {
    {1, 5, kKeyInnerSegment | kKeyCaseInsensitive, kKeyTypeString, kKeyNullByte},
    {6, 6, kKeyLastSegment | kKeyCaseInsensitive, kKeyTypeString, kKeyNullByte},
};

std::string Keys(const std::list<LABORCODERECORD*>& list) {
    std::string keys;
    for (const LABORCODERECORD* rec : list)
        keys += std::string(rec->sGroupName) + "/" + rec->sSubCode + " ";
    return keys;
}

class LaborCodeFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        CreateAndOpen(file, path);
        for (auto rec : {Code("B", "2"), Code("A", "1"), Code("B", "1"), Code("AB", "1"), Code("C", "9")})
            ASSERT_EQ(1, file._AddRecord(rec));
    }
    std::string group(const char* name) {
        std::list<LABORCODERECORD*> list;
        EXPECT_EQ(1, file.GetRecordList(name, list));
        const std::string keys = Keys(list);
        RELaborCodeFile::DeallocateRecList(list);
        return keys;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("labcode.dat");
    RELaborCodeFile file;
};

TEST_F(LaborCodeFileTest, SearchFilterComparesIgnoringCaseAndSkipsTheSubCodeWithoutAName) {
    EXPECT_EQ("B/1 B/2 ", group("b"));
    EXPECT_EQ("A/1 ", group("A"));
    EXPECT_EQ("", group("Z"));

    LABORCODERECORD rec;
    EXPECT_EQ(1, file.SearchFirstRecord("b", "2", &rec));
    EXPECT_EQ(1, file.m_searchActive);
    EXPECT_STREQ("2", rec.sSubCode);
    EXPECT_EQ(0, file.SearchNextRecord("b", "2", &rec));
    EXPECT_EQ(0, file.m_searchActive);
    EXPECT_EQ(0, file.GetFirstMatchGE("B", "3", &rec));
    // An empty name matches every record, whatever sub-code is given.
    ASSERT_EQ(1, file.GetFirstMatchGE("", "9", &rec));
    EXPECT_STREQ("A", rec.sGroupName);
    EXPECT_STREQ("1", rec.sSubCode);
    EXPECT_EQ(1, file.GetNextMatch("", "9", &rec));
    EXPECT_STREQ("AB", rec.sGroupName);

    // Records already in the list stay in front.
    std::list<LABORCODERECORD*> list;
    file.GetRecordList("C", list);
    file.GetRecordList("A", list);
    EXPECT_EQ("C/9 A/1 ", Keys(list));
    RELaborCodeFile::DeallocateRecList(list);
    EXPECT_TRUE(list.empty());
}

TEST_F(LaborCodeFileTest, KeyedWritesRefuseWhatTheKeySearchSays) {
    testsupport::TraceCapture traces;
    auto dup = Code("a", "1", 5);
    EXPECT_EQ(0, file._AddRecord(dup));
    EXPECT_EQ("<<RELaborCodeFile::_AddRecord>> Same record present in the database; UPDATE possible not ADDITION.\n",
              traces.traces().back());
    EXPECT_EQ(1, file._UpdateRecord(dup));
    LABORCODERECORD rec;
    ASSERT_EQ(1, file.SearchFirstRecord("A", "1", &rec));
    EXPECT_STREQ("a", rec.sGroupName);
    EXPECT_EQ(5, rec.nTable1[0]);

    auto missing = Code("Q", "1");
    EXPECT_EQ(0, file._UpdateRecord(missing));
    EXPECT_EQ("<<RELaborCodeFile::_UpdateRecord>> Same record not present in the database; ADDITION possible not "
              "UPDATE.\n",
              traces.traces().back());
    EXPECT_EQ(0, file._DeleteRecord(missing));
    EXPECT_EQ("<<RELaborCodeFile::_DeleteRecord>> Record not present in the database; Deletion not possible.\n",
              traces.traces().back());
    EXPECT_EQ(1, file._DeleteRecord(dup));
    EXPECT_EQ("", group("A"));
}

TEST_F(LaborCodeFileTest, SaveRecordListReplacesTheGroup) {
    std::list<LABORCODERECORD*> list;
    for (auto rec : {Code("B", "7", 7), Code("B", "3", 3)})
        list.push_back(Allocated(rec));
    EXPECT_EQ(1, file.SaveRecordList("B", list));
    EXPECT_EQ("B/3 B/7 ", group("B"));
    EXPECT_EQ("AB/1 ", group("AB"));

    // A stranger in the list: the group is gone, the records before it are written, 0.
    list.push_front(Allocated(Code("b", "5")));  // another spelling is another group here
    list.push_front(Allocated(Code("B", "4")));
    EXPECT_EQ(0, file.SaveRecordList("B", list));
    EXPECT_EQ("B/4 ", group("B"));
    RELaborCodeFile::DeallocateRecList(list);

    // A group that cannot be deleted stops before anything is written.
    testsupport::StatusInjector injector(REBtrieveBase::kOpDelete, REBtrieveBase::kStatusIoError);
    std::list<LABORCODERECORD*> none;
    EXPECT_EQ(0, file.SaveRecordList("B", none));
    EXPECT_EQ(1, injector.hits());
}

TEST(LaborCodeOldLayout, ReadSearchedAndWrittenBackInItsOwnLayout) {
    testsupport::TempDir dir;
    const std::string path = dir.file("old.dat");
    const OLD_LABORCODERECORD old[] = {OldCode("B", "1", 1), OldCode("A", "2", 2), OldCode("A", "1", 3)};
    WriteOldFile<OLD_LABORCODERECORD>(path, kOldCodeKey, old);

    RELaborCodeFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(1, file.m_isOldFormat);
    std::list<LABORCODERECORD*> list;
    file.GetRecordList("a", list);
    ASSERT_EQ(2u, list.size());
    LABORCODERECORD expected;
    RELaborCodeFile::_ConvertToNewRecordFormat(&old[2], &expected);
    EXPECT_EQ(Bytes(expected), Bytes(*list.front()));
    EXPECT_STREQ("old description", list.front()->sDescription);

    // Changing one value and saving the group writes old-layout records byte for byte.
    list.front()->nTable2[99] = 4242;
    ASSERT_EQ(1, file.SaveRecordList("A", list));
    RELaborCodeFile::DeallocateRecList(list);
    OLD_LABORCODERECORD changed = old[2];
    changed.nTable2[99] = 4242;
    const auto stored = StoredRecords<OLD_LABORCODERECORD>(path);
    ASSERT_EQ(3u, stored.size());
    EXPECT_EQ(Bytes(old[0]), stored[0]);
    EXPECT_EQ(Bytes(changed), stored[1]);
    EXPECT_EQ(Bytes(old[1]), stored[2]);

    LABORCODERECORD rec;
    EXPECT_EQ(1, file.SearchFirstRecord("B", "1", &rec));
    EXPECT_EQ(0, file.SearchFirstRecord("B", "2", &rec));
}

}  // namespace
