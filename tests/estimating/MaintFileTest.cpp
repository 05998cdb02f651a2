// The settings file: searches by section, item and sequence, pick lists and mill titles,
// stored-layout files read and updated in place, creation and its messages.
#include "REMaintFile.h"
#include "RESharedHelpers.h"

#include "RecordBuilders.h"
#include "StatusInjector.h"
#include "TestSupport.h"
#include "estimating/MaintFileTraits.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr REKeySegment kOldMaintKey[] = {
    {1, 20, kKeyInnerSegment, kKeyTypeString, kKeyNullByte},
    {21, 20, kKeyInnerSegment, kKeyTypeString, kKeyNullByte},
    {41, 4, kKeyLastSegment, kKeyTypeBFloat, kKeyNullByte},
};

MAINTRECORD Setting(const char* section, const char* item, float seq, const char* value) {
    MAINTRECORD rec{};
    std::strcpy(rec.szSection, section);
    std::strcpy(rec.szItem, item);
    rec.fSeq = seq;
    std::strcpy(rec.szValue, value);
    rec.groupB.nValue40[5] = 7;
    std::strcpy(rec.groupC.szText18, "group C");
    return rec;
}

OLD_MAINTRECORD OldSetting(const char* section, const char* item, float seq, const char* value) {
    const MAINTRECORD rec = Setting(section, item, seq, value);
    OLD_MAINTRECORD old;
    REMaintFile::_ConvertToOldRecordFormat(&rec, &old);
    return old;
}

class MaintFileTest : public ::testing::Test {
protected:
    // The mill titles without "ZMILL ANGLE" 2, and a few other settings.
    std::vector<MAINTRECORD> settings() {
        std::vector<MAINTRECORD> all;
        for (const char* item : {"ZMILL STRUCT", "ZMILL ANGLE", "ZMILL PLATE", "ZMILL TUBE"})
            for (int seq = 1; seq <= 3; ++seq)
                if (std::strcmp(item, "ZMILL ANGLE") != 0 || seq != 2)
                    all.push_back(Setting("TSL INFO", item, static_cast<float>(seq),
                                          (std::string(item + 6) + " " + std::to_string(seq)).c_str()));
        all.push_back(Setting("GRADES", "DEFAULT", 2.00005f, "A992"));
        all.push_back(Setting("GRADES", "DEFAULT", 2.5f, "A36"));
        all.push_back(Setting("GRADES", "PLATE", 1.0f, "A572"));
        return all;
    }
    std::string newFile() {
        const std::string at = dir.file("ESTMAINT.dat");
        REMaintFile file;
        testsupport::CreateAndOpen(file, at);
        for (MAINTRECORD rec : settings())
            EXPECT_EQ(1, file.AddRecord(rec));
        return at;
    }
    std::string oldFile() {
        const std::string at = dir.file("ESTMAINT.old");
        std::vector<OLD_MAINTRECORD> old;
        for (const MAINTRECORD& rec : settings())
            old.push_back(OldSetting(rec.szSection, rec.szItem, rec.fSeq, rec.szValue));
        testsupport::WriteOldFile<OLD_MAINTRECORD>(at, kOldMaintKey, old);
        return at;
    }
    testsupport::TempDir dir;
};

TEST_F(MaintFileTest, SearchesInBothLayouts) {
    for (const std::string& at : {newFile(), oldFile()}) {
        SCOPED_TRACE(at);
        REMaintFile file;
        ASSERT_EQ(1, file.Initialize(at.c_str()));
        MAINTRECORD rec;
        ASSERT_EQ(1, file.GetFirstMatch("TSL INFO", "", &rec));
        EXPECT_EQ(1, file._CheckRecord("tsl info", "zmill angle", 1.00009f, &rec));
        EXPECT_EQ(0, file._CheckRecord("tsl info", "zmill angle", 1.0002f, &rec));
        EXPECT_EQ(0, file._CheckRecord("", "", -1.0f, &rec));
        EXPECT_STREQ("ZMILL ANGLE", rec.szItem);
        EXPECT_EQ(1, file.m_searchActive);
        EXPECT_EQ(7, int32_t{rec.groupB.nValue40[5]});
        EXPECT_STREQ("group C", rec.groupC.szText18);

        EXPECT_EQ(1, file.GetFirstMatch("GRADES", "DEFAULT", 2.0f, &rec));
        EXPECT_STREQ("A992", rec.szValue);
        EXPECT_EQ(0, file.GetNextMatch("GRADES", "DEFAULT", 2.0f, &rec));
        EXPECT_EQ(0, file.m_searchActive);
        EXPECT_EQ(0, file.GetFirstMatch("GRADES", "PLATE", 0.9998f, &rec));
        EXPECT_EQ(0, file.GetFirstMatch("", "", &rec));

        testsupport::ListControl combo;
        EXPECT_EQ(1, file.FillComboWithValue("GRADES", "DEFAULT", &combo));
        EXPECT_EQ((std::vector<std::string>{"A992", "A36"}), combo.texts);
        EXPECT_EQ(0, file.FillComboWithValue("GRADES", "NONE", &combo));
        std::list<MAINTRECORD*> list;
        EXPECT_EQ(1, file.GetMatchList("GRADES", "", list));
        EXPECT_EQ(3u, list.size());
        EXPECT_EQ(0, file.GetMatchList("NONE", "", list));
        EXPECT_EQ(1, REMaintFile::ResetMaintRecList(list));

        EXPECT_EQ(1, file.GetExactMatch("GRADES", "PLATE", 1.0f, &rec));
        EXPECT_EQ(0, file.GetExactMatch("grades", "PLATE", 1.0f, nullptr));
        EXPECT_EQ(1, file.GetMatchLE("GRADES", "PLATE", 3.0f, &rec));
        EXPECT_STREQ("A572", rec.szValue);
        MAINTRECORD key = Setting("GRADES", "DEFAULT", 2.5f, "");
        EXPECT_EQ(1, file.GetMatchGT(&key, &key));
        EXPECT_STREQ("A572", key.szValue);

        // Positional reads in stored order.
        ASSERT_EQ(1, file.GetLastRecord(&rec));
        EXPECT_STREQ("A572", rec.szValue);
        ASSERT_EQ(1, file.GetFirstRecord(&rec));
        EXPECT_STREQ("STRUCT 1", rec.szValue);
    }
}

TEST_F(MaintFileTest, MillTitlesRepeatTheOneBeforeAMissingSetting) {
    REMaintFile file;
    ASSERT_EQ(1, file.Initialize(oldFile().c_str()));
    char titles[REMaintFile::kMillTitleCount * REMaintFile::kMillTitleSize];
    std::memset(titles, 'x', sizeof titles);
    ASSERT_EQ(1, file.GetMillTitles(titles));
    const char* expected[] = {"STRUCT 1", "STRUCT 2", "STRUCT 3", "ANGLE 1", "ANGLE 1", "ANGLE 3",
                              "PLATE 1",  "PLATE 2",  "PLATE 3",  "TUBE 1",  "TUBE 2",  "TUBE 3"};
    for (int i = 0; i < REMaintFile::kMillTitleCount; ++i)
        EXPECT_STREQ(expected[i], titles + i * REMaintFile::kMillTitleSize) << i;
}

TEST_F(MaintFileTest, StoredLayoutIsUpdatedInPlace) {
    const std::string at = oldFile();
    testsupport::MessageCapture messages;
    {
        REMaintFile file;
        ASSERT_EQ(1, file.Initialize(at.c_str()));
        EXPECT_EQ(1, file.m_isOldFormat);
        MAINTRECORD rec = Setting("GRADES", "PLATE", 1.0f, "A572 GR50");
        EXPECT_EQ(1, file.UpdateRecord(rec));
        EXPECT_EQ(0u, messages.count());
        MAINTRECORD missing = Setting("GRADES", "NONE", 1.0f, "");
        {
            testsupport::StatusInjector injector(REBtrieveBase::kOpUpdate, 8);
            EXPECT_EQ(0, file.UpdateRecord(missing));
        }
        EXPECT_EQ("Unknown error maint database file. [Error# 8]", messages.lastText());
    }
    const auto records = testsupport::StoredRecords<OLD_MAINTRECORD>(at);
    const OLD_MAINTRECORD expected = OldSetting("GRADES", "PLATE", 1.0f, "A572 GR50");
    ASSERT_EQ(14u, records.size());
    EXPECT_EQ(0, std::memcmp(&expected, records.back().data(), sizeof expected));
}

TEST_F(MaintFileTest, CreatedKeysAndSearchFailureMessage) {
    testsupport::MessageCapture messages;
    REMaintFile file;
    ASSERT_EQ(1, file.Initialize(newFile().c_str()));
    EXPECT_EQ(0, file.m_isOldFormat);
    STAT_BUFFER stat{};
    ASSERT_EQ(1, file.GetStatus(&stat));
    EXPECT_EQ(1, stat.numberOfKeys);
    EXPECT_EQ(kFileFlagsJobItems, stat.fileFlags);
    MAINTRECORD rec;
    {
        testsupport::StatusInjector injector(REBtrieveBase::kOpGetGreaterOrEqual, 2);
        EXPECT_EQ(0, file.GetFirstMatch("GRADES", "", &rec));
    }
    EXPECT_EQ("Unknown error maint database file. [Error# 2]", messages.lastText());
    ASSERT_EQ(1, file.GetFirstMatch("GRADES", "", &rec));
    ASSERT_EQ(1, file.Initialize(dir.file("ESTMAINT.dat").c_str()));
    EXPECT_EQ(0, file.m_searchActive);
}

}  // namespace
