// The tracking files: the look-up and update by number on key 1, the create blocks' single key,
// keys that allow duplicates, and read failures reported with the class's message.
#include "REPdcTrackingDataFile.h"
#include "REPdcTrackingLaborDataFile.h"

#include "PdcFileFamilyFixture.h"
#include "StatusInjector.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

PDCTRACKFILETYPE Track(int number, const char* mark, int value) {
    PDCTRACKFILETYPE rec{};
    rec.nValue0 = number;
    Put(rec.sText4, "ST");
    Put(rec.sMark13, mark);
    rec.nValue55 = value;
    return rec;
}

TEST_F(PdcFileTest, TrackingLooksUpAndUpdatesByNumberOnKeyOne) {
    REPdcTrackingDataFile created;
    create(created, "created.dat");
    EXPECT_EQ(1, keyCount(created));
    PDCTRACKFILETYPE a = Track(1, "A", 10);
    ASSERT_EQ(1, created.AddNewRecord(a));
    ASSERT_EQ(1, created.AddNewRecord(a));  // key 0 allows duplicates

    constexpr REKeySegment keys[] = {
        {1, 4, kKeyInnerSegment | kKeyDuplicates, kKeyTypeInteger, 20},
        {5, 9, kKeyInnerSegment | kKeyDuplicates, kKeyTypeZString, 20},
        {14, 17, kKeyInnerSegment | kKeyDuplicates, kKeyTypeZString, 20},
        {31, 17, kKeyLastSegment | kKeyDuplicates, kKeyTypeZString, 20},
        {1, 4, kKeyLastSegment | kKeyDuplicates, kKeyTypeInteger, 20},
    };
    REPdcTrackingDataFile file;
    createWithKeys(file, "track.dat", keys);
    for (PDCTRACKFILETYPE rec : {Track(1, "A", 10), Track(2, "B", 20)})
        ASSERT_EQ(1, file.AddNewRecord(rec));

    PDCTRACKFILETYPE key = Track(2, "other mark", 0), found;
    EXPECT_EQ(1, file.GetEqualRecord(&key, &found));
    EXPECT_STREQ("B", found.sMark13);

    PDCTRACKFILETYPE changed = Track(2, "B", 99);
    EXPECT_EQ(1, file.UpdateRecord(&key, &changed));
    ASSERT_EQ(1, file.GetEqualRecord(&key, &found));
    EXPECT_EQ(99, +found.nValue55);

    testsupport::MessageCapture messages;
    PDCTRACKFILETYPE missing = Track(3, "B", 0), other = Track(3, "B", 1);
    EXPECT_EQ(0, file.GetEqualRecord(&missing, &found));
    EXPECT_EQ(0, file.UpdateRecord(&missing, &other));
    EXPECT_EQ(0u, messages.count());
    std::vector<PDCTRACKFILETYPE*> all;
    file.SetKeyNumber(0);
    ASSERT_EQ(1, file.GetAllRecords(all));
    ASSERT_EQ(2u, all.size());
    EXPECT_EQ(10, +all[0]->nValue55);
    EXPECT_EQ(99, +all[1]->nValue55);
    REPdcTrackingDataFile::ResetPdcTrackingDataRecArray(all);

    // A failure of the look-up itself shows nothing either.
    testsupport::StatusInjector failing(REBtrieveBase::kOpGetEqual, 2);
    EXPECT_EQ(0, file.GetEqualRecord(&key, &found));
    EXPECT_EQ(0u, messages.count());
}

TEST_F(PdcFileTest, TrackingReadFailuresShowTheClassMessageWithTheStatus) {
    REPdcTrackingLaborDataFile labor;
    create(labor, "labor.dat");
    EXPECT_EQ(1, keyCount(labor));
    PDCTRACKLABORFILETYPE rec{};
    rec.nValue0 = 1;
    ASSERT_EQ(1, labor.AddNewRecord(rec));
    ASSERT_EQ(1, labor.AddNewRecord(rec));
    std::vector<PDCTRACKLABORFILETYPE*> records;
    EXPECT_EQ(1, labor.GetAllRecords(records));
    EXPECT_EQ(2u, records.size());
    REPdcTrackingLaborDataFile::ResetPdcTrackingLaborDataRecArray(records);

    testsupport::MessageCapture messages;
    {
        testsupport::StatusInjector failing(REBtrieveBase::kOpGetNext, 2);
        ASSERT_EQ(1, labor.GetFirstRecord(&rec));
        EXPECT_EQ(0, labor.GetNextRecord(&rec));
    }
    ASSERT_EQ(1u, messages.count());
    EXPECT_EQ("Unknown error PDC-tracking-labor-data database file. [Error# 2]", messages.lastText());

    REPdcTrackingDataFile tracking;
    create(tracking, "track.dat");
    messages.clear();
    testsupport::StatusInjector failing(REBtrieveBase::kOpGetLast, 46);
    PDCTRACKFILETYPE track;
    EXPECT_EQ(0, tracking.GetLastRecord(&track));
    EXPECT_EQ("Unknown error PDC-tracking-data database file. [Error# 46]", messages.lastText());
}

}  // namespace
