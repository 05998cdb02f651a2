// Job item files of the earlier generation (516-byte records, key at the old positions): read
// through conversion, searched with the old key form, written back in their own layout, and
// appended to and from current-layout files.
#include "REJobFile.h"

#include "RecordBuilders.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr REKeySegment kOldJobKey[] = {
    {1, 4, kKeyInnerSegment, kKeyTypeString, kKeyNullByte},
    {5, 25, kKeyInnerSegment, kKeyTypeString, kKeyNullByte},
    {30, 4, kKeyInnerSegment, kKeyTypeUnsigned, kKeyNullByte},
    {34, 4, kKeyLastSegment, kKeyTypeUnsigned, kKeyNullByte},
};

using testsupport::PutOld;

// The fields of the job both layouts share, filled the same way: blank-padded in an old record,
// NUL-terminated in a current one (fields left zero).
template <class REC>
void FillJob(REC& rec, const char* code1, const char* code2, int page, int line) {
    PutOld(rec.sCode1, 4, code1);
    PutOld(rec.sCode2, 25, code2);
    rec.nPageNo = page;
    rec.nLineNo = line;
    rec.nValue39 = 39;
    PutOld(rec.sizeKey.szSection, 3, "STR");
    PutOld(rec.sizeKey.szShape, 4, "W");
    rec.sizeKey.fDim1 = 12.5f;
    rec.sizeKey.nValue77 = 77;
    PutOld(rec.sText124, 10, "DESC");
    for (int i = 0; i < 6; ++i)
        rec.nShort142[i] = static_cast<int16_t>(i - 3);
    rec.nValue191 = -191;
    for (int i = 0; i < 15; ++i) {
        PutOld(rec.operations[i].sCode1, 4, i < 2 ? "OP" : "");
        rec.operations[i].nValue5 = static_cast<int16_t>(i);
        rec.operations[i].nValue7 = i * 100;
        rec.operations[i].nValue21 = -i;
    }
}

// An old record as the earlier system stored it: blank-padded texts, a W shape, two operations.
OLD_ESTJOBFILERECORD OldJob(const char* code1, const char* code2, int page, int line) {
    return testsupport::OldRecord<OLD_ESTJOBFILERECORD>([&](OLD_ESTJOBFILERECORD& rec) {
        rec.nValue154 = rec.nValue158 = rec.nValue195 = 0;
        rec.sizeKey.fDim2 = rec.sizeKey.fDim3 = rec.sizeKey.fDim4 = rec.sizeKey.fDim5 = 0;
        rec.sizeKey.nValue43 = rec.sizeKey.nValue47 = 0;
        FillJob(rec, code1, code2, page, line);
    });
}

// What a caller sees of OldJob(...).
ESTJOBFILERECORD NewJob(const char* code1, const char* code2, int page, int line) {
    ESTJOBFILERECORD rec{};
    FillJob(rec, code1, code2, page, line);
    return rec;
}

bool Same(const void* a, const void* b, size_t n) { return std::memcmp(a, b, n) == 0; }

class JobFileOldLayoutTest : public ::testing::Test {
protected:
    void SetUp() override {
        testsupport::WriteOldFile<OLD_ESTJOBFILERECORD>(
            path, kOldJobKey, {OldJob("A", "BEAM", 1, 1), OldJob("A", "BEAM", 2, 1), OldJob("B", "COL", 4, 2)}, 64);
    }
    std::vector<std::vector<uint8_t>> Stored() { return testsupport::StoredRecords<OLD_ESTJOBFILERECORD>(path); }

    testsupport::TempDir dir;
    std::string path = dir.file("OLDJOB.dat");
};

TEST_F(JobFileOldLayoutTest, RecordsAreReadInTheCurrentLayout) {
    REJobFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(1, file.IsOldFormat());
    std::vector<ESTJOBFILERECORD*> records;
    ASSERT_EQ(1, file.GetAllRecords(records));
    ASSERT_EQ(3u, records.size());
    const ESTJOBFILERECORD expected = NewJob("A", "BEAM", 1, 1);
    EXPECT_TRUE(Same(&expected, records[0], sizeof expected));
    EXPECT_EQ(0, int32_t{records[0]->nValue602});
    EXPECT_STREQ("COL", records[2]->sCode2);
    file.ResetJobRecArray(records);
}

TEST_F(JobFileOldLayoutTest, SearchesUseTheOldKeyForm) {
    REJobFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    ESTJOBFILERECORD rec;
    ASSERT_EQ(1, file.SearchFirstRecord("", "", -1, -1, &rec));
    EXPECT_STREQ("A", rec.sCode1);
    ASSERT_EQ(1, file.SearchFirstRecord("A", "", -1, -1, &rec));
    ASSERT_EQ(1, file.SearchNextRecord("A", "", -1, -1, &rec));
    EXPECT_EQ(2, int32_t{rec.nPageNo});
    EXPECT_EQ(0, file.SearchNextRecord("A", "", -1, -1, &rec));
    ASSERT_EQ(1, file.SearchFirstRecord("B", "COL", 4, 2, &rec));
    ASSERT_EQ(1, file.SearchFirstMatchLE("B", "COL", 9, 9, &rec));
    EXPECT_EQ(2, int32_t{rec.nLineNo});

    // The search steps on their own: an old-form key reaches its record, the filter judges it.
    OLD_ESTJOBFILERECORD_KEY key;
    ASSERT_EQ(1, file._CreateKey("A", "BEAM", 2, 0, &key));
    ASSERT_EQ(1, file.GetFirstRecord(&rec));
    ASSERT_EQ(1, file._GetFirstMatchGE(&key, &rec));
    EXPECT_EQ(2, int32_t{rec.nPageNo});
    EXPECT_EQ(1, file._CheckRecord("A", "", 2, -1, &rec));
    EXPECT_EQ(0, file._CheckRecord("A", "BEAM", 2, 0, &rec));
    EXPECT_EQ(4, file._GetMaxPageNo());
}

TEST_F(JobFileOldLayoutTest, WritesStayInTheOldLayout) {
    {
        REJobFile file;
        ASSERT_EQ(1, file.Initialize(path.c_str()));
        auto keyRec = NewJob("A", "BEAM", 2, 1);
        auto changed = NewJob("A", "BEAM", 2, 1);
        std::strcpy(changed.sText124, "CHANGED");
        ASSERT_EQ(1, file.UpdateRecord(keyRec, changed));
        auto added = NewJob("C", "PLATE", 1, 1);
        ASSERT_EQ(1, file.AddRecord(added));
        EXPECT_EQ(0, file.AddRecord(added));
        auto gone = NewJob("B", "COL", 4, 2);
        ASSERT_EQ(1, file.DeleteRecord(gone));
    }
    const auto stored = Stored();
    ASSERT_EQ(3u, stored.size());
    auto updated = OldJob("A", "BEAM", 2, 1);
    std::memcpy(updated.sText124, "CHANGED   ", 10);
    EXPECT_TRUE(Same(&updated, stored[1].data(), sizeof updated));
    const auto added = OldJob("C", "PLATE", 1, 1);
    EXPECT_TRUE(Same(&added, stored[2].data(), sizeof added));
}

TEST_F(JobFileOldLayoutTest, AppendConvertsBetweenLayoutsAndRenumbersPages) {
    // Old source into a current-layout target whose last page is 3.
    const std::string current = dir.file("NEWJOB.dat");
    REJobFile target;
    testsupport::CreateAndOpen(target, current);
    auto existing = NewJob("Z", "LAST", 3, 1);
    ASSERT_EQ(1, target.AddRecord(existing));
    ASSERT_EQ(1, target.AppendFile(path.c_str(), 1));
    ESTJOBFILERECORD rec;
    ASSERT_EQ(1, target.SearchFirstRecord("B", "COL", 7, 2, &rec));
    auto expected = NewJob("B", "COL", 7, 2);
    EXPECT_TRUE(Same(&expected, &rec, sizeof rec));

    // Current-layout source into the old target, whose last page is 4.
    REJobFile old;
    ASSERT_EQ(1, old.Initialize(path.c_str()));
    ASSERT_EQ(1, old.AppendFile(current.c_str(), 0));
    old.Reset();
    const auto stored = Stored();
    ASSERT_EQ(7u, stored.size());
    const auto first = OldJob("Z", "LAST", 7, 1);
    EXPECT_TRUE(Same(&first, stored[3].data(), sizeof first));
    const auto last = OldJob("B", "COL", 11, 2);
    EXPECT_TRUE(Same(&last, stored[6].data(), sizeof last));
}

}  // namespace
