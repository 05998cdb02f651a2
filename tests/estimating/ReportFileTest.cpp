// The report definitions file: reads by id and group code, the numbering of custom groups and
// entries, creation and its messages.
#include "REReportFile.h"
#include "RESharedHelpers.h"

#include "RecordBuilders.h"
#include "StatusInjector.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

tagReportDBData Report(const char* group, const char* subGroup, const char* text) {
    tagReportDBData rec{};
    std::strcpy(rec.szGroupCode, group);
    std::strcpy(rec.szSubGroupCode, subGroup);
    std::strcpy(rec.szText94, text);
    return rec;
}

std::vector<std::string> Texts(std::vector<tagReportDBData*>& records) {
    return testsupport::TextsOf(records, &tagReportDBData::szText94);
}

class ReportFileTest : public ::testing::Test {
protected:
    void SetUp() override { testsupport::CreateAndOpen(file, dir.file("REPORTS.dat")); }
    testsupport::TempDir dir;
    REReportFile file;
};

TEST_F(ReportFileTest, ReadsByIdAndGroupCode) {
    std::vector<tagReportDBData*> records;
    EXPECT_EQ(1, file.GetAllRecords("", records));
    EXPECT_TRUE(records.empty());
    for (tagReportDBData rec : {Report("MAIN", "EST", "root"), Report("EST", "NULL", "estimate"),
                                Report("ESTX", "NULL", "estimate x"), Report("EST", "NULL", "summary")})
        ASSERT_EQ(1, file.AddRecord(rec));

    tagReportDBData rec;
    ASSERT_EQ(1, file.GetEqualMatch(2, &rec));
    EXPECT_STREQ("estimate", rec.szText94);
    EXPECT_EQ(0, file.GetEqualMatch(9, &rec));
    // Only the first four characters of a code are looked up.
    ASSERT_EQ(1, file.GetEqualMatch("ESTXYZ", &rec));
    EXPECT_STREQ("estimate x", rec.szText94);

    EXPECT_EQ(1, file.GetAllRecords("EST", records));
    EXPECT_EQ((std::vector<std::string>{"estimate", "summary"}), Texts(records));
    EXPECT_EQ(1, file.GetAllRecords("", records));
    EXPECT_EQ((std::vector<std::string>{"estimate", "summary", "estimate x", "root"}), Texts(records));
    EXPECT_EQ(1, file.GetAllRecords("NONE", records));
    EXPECT_TRUE(records.empty());

    tagReportDBData changed = Report("EST", "NULL", "summary 2");
    changed.nId = 4;
    EXPECT_EQ(1, file.UpdateRecord(4, &changed));
    EXPECT_EQ(0, file.UpdateRecord(7, &changed));
    EXPECT_EQ(1, file.DeleteRecord(2));
    EXPECT_EQ(1, file.GetAllRecords("EST", records));
    EXPECT_EQ((std::vector<std::string>{"summary 2"}), Texts(records));

    EXPECT_EQ(1, file.AddNewSet("set"));
    ASSERT_EQ(1, file.GetEqualMatch(5, &rec));
    REReportFile closed;
    EXPECT_EQ(0, closed.GetAllRecords("", records));
}

TEST_F(ReportFileTest, CustomGroupsTakeTheFirstFreeCode) {
    tagReportDBData parent = Report("MAIN", "NULL", "root");
    ASSERT_EQ(1, file.AddRecord(parent));
    ASSERT_EQ(1, parent.nId);

    tagReportDBData group0{}, group1{};
    ASSERT_EQ(1, file.AddCustomReportGroup(parent, group0));
    EXPECT_STREQ("CUS", parent.szSubGroupCode);
    tagReportDBData stored;
    ASSERT_EQ(1, file.GetEqualMatch(1, &stored));
    EXPECT_STREQ("CUS", stored.szSubGroupCode);
    EXPECT_STREQ("CUS", group0.szGroupCode);
    EXPECT_STREQ("M", group0.szType);
    EXPECT_STREQ("NULL", group0.szText94);
    EXPECT_STREQ("CUS0", group0.szSubGroupCode);
    // A group without entries still holds its code.
    ASSERT_EQ(1, file.AddCustomReportGroup(parent, group1));
    EXPECT_STREQ("CUS1", group1.szSubGroupCode);

    tagReportDBData entry{};
    entry.nId = 99;
    ASSERT_EQ(1, file.AddCustomReportRec(group1, entry));
    EXPECT_NE(99, entry.nId);
    EXPECT_STREQ("CUS1", entry.szGroupCode);
    EXPECT_STREQ("NULL", entry.szSubGroupCode);
    EXPECT_STREQ("E", entry.szType);

    // An entry for a group that has no code yet gives the group the next free one first.
    tagReportDBData bare = Report("CUS", "NULL", "bare");
    ASSERT_EQ(1, file.AddRecord(bare));
    tagReportDBData entry2{};
    ASSERT_EQ(1, file.AddCustomReportRec(bare, entry2));
    EXPECT_STREQ("CUS2", bare.szSubGroupCode);
    ASSERT_EQ(1, file.GetEqualMatch(bare.nId, &stored));
    EXPECT_STREQ("CUS2", stored.szSubGroupCode);
    EXPECT_STREQ("CUS2", entry2.szGroupCode);

    std::vector<tagReportDBData*> records;
    file.GetAllRecords("CUS", records);
    EXPECT_EQ(3u, records.size());
    DeallocatePtrArray(records);
}

TEST_F(ReportFileTest, CreatedKeysAndFailuresPartwayThroughAList) {
    STAT_BUFFER stat{};
    ASSERT_EQ(1, file.GetStatus(&stat));
    EXPECT_EQ(408, stat.recordLength);  // the file opens any length: only this pins it
    EXPECT_EQ(2, stat.numberOfKeys);
    EXPECT_EQ(kFileFlagVariableLength, stat.fileFlags);

    testsupport::MessageCapture messages;
    tagReportDBData rec = Report("EST", "NULL", "x");
    ASSERT_EQ(1, file.AddRecord(rec));
    {
        testsupport::StatusInjector injector(REBtrieveBase::kOpGetNext, 2);
        std::vector<tagReportDBData*> records;
        EXPECT_EQ(1, file.GetAllRecords("", records));
        EXPECT_EQ(1u, records.size());
        DeallocatePtrArray(records);
    }
    EXPECT_EQ("Unknown error job database file. [Error# 2]", messages.lastText());
    {
        testsupport::StatusInjector injector(REBtrieveBase::kOpUpdate, 2);
        messages.clear();
        EXPECT_EQ(0, file.UpdateRecord(rec.nId, &rec));
        EXPECT_EQ(0u, messages.count());
    }
}

}  // namespace
