// The mark file and the link file with files of the earlier generation: every field converted
// on read, and the link file read in record order without any key; and the mark text itself.
#include "REPdcLinkFile.h"
#include "REPdcMarkFile.h"
#include "REPdcMarkText.h"
#include "RESharedHelpers.h"

#include "PdcFileFamilyFixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

using testsupport::Sortable;

TEST(MarkText, OldMarksLoseTheLeadByteTheirNulsAndOuterBlanks) {
    struct Case {
        std::string_view old;  // the 16 character bytes
        const char* expected;
    } cases[] = {
        {std::string_view(" B\0" "12\0", 6), "B12"},
        {"  A 1  ", "A 1"},
        {"ABCDEFGHIJKLMNOP", "ABCDEFGHIJKLMNOP"},
        {std::string_view("\0\0\0\0", 4), ""},
        {"   ", ""},
    };
    for (const Case& c : cases) {
        OLD_MARKTYPE old;
        std::memset(&old, 0, sizeof old);
        PutOldMark(old, c.old);
        char mark[kPdcMarkSize];
        std::memset(mark, '#', sizeof mark);
        EXPECT_EQ(1, gConvertMarkTypeToNewFormat(&old, mark));
        EXPECT_STREQ(c.expected, mark);
        EXPECT_EQ('\0', mark[kPdcMarkSize - 1]);
    }
    OLD_MARKTYPE untouched;
    std::memset(&untouched, '?', sizeof untouched);
    EXPECT_EQ(1, gConvertMarkTypeToOldFormat("B12", &untouched));
    EXPECT_EQ('?', untouched.sMark[0]);
}

constexpr REKeySegment kOldMarkKey[] = {{78, 17, kKeyLastSegment, kKeyTypeString, kKeyNullByte}};

TEST(PdcMarkFileOldLayout, EveryFieldIsConvertedOnRead) {
    auto old = testsupport::Blank<OLD_PDCMARKDATATYPE>();
    PutOld(old.szText56, "AB");
    PutOld(old.szText60, "CDEF");
    PutOld(old.szText65, "G");
    PutOld(old.szText68, "0123456789");
    for (int i = 0; i < 7; ++i) {
        old.fMeasure79[i] = Sortable(i - 2.5f);
        old.dMeasure153[i] = 10.25f + i;
    }
    PutOld(old.szText107, "description");
    old.fMeasure133 = Sortable(42.0f);
    old.szMainOrAcc[0] = 'A';
    PutOldMark(old.szMark, std::string_view(" M\0" "7", 4));
    PutOld(old.szText137, "fifteen chars!!");
    PutOld(old.szText23, "W12");
    PutOldMark(old.szSecondMark, "SECOND");
    old.dMeasure209[0] = 1.5f;
    old.dMeasure209[1] = -2.0f;
    PutOld(old.szText47, "Y");
    PutOld(old.szText19, "abc");
    old.dMeasure225[0] = 3.0f;
    old.dMeasure225[1] = 4.0f;
    old.dMeasure225[2] = 5.0f;
    PutOld(old.szText49, "sixsix");
    old.dMeasure249 = 0.125f;

    testsupport::TempDir dir;
    const std::string path = dir.file("old.mrk");
    testsupport::WriteOldFile<OLD_PDCMARKDATATYPE>(path, kOldMarkKey, {old});
    REPdcMarkFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(1, file.m_isOldFormat);
    std::vector<PDCMARKDATATYPE*> records;
    ASSERT_EQ(1, file.GetAllRecords(records));
    ASSERT_EQ(1u, records.size());
    const PDCMARKDATATYPE& rec = *records[0];
    EXPECT_STREQ("M7", rec.szMark);
    EXPECT_STREQ("a", rec.szMainOrAcc);
    EXPECT_STREQ("abc", rec.szText19);
    EXPECT_STREQ("W12", rec.szText23);
    EXPECT_STREQ("SECOND", rec.szSecondMark);
    EXPECT_STREQ("Y", rec.szText47);
    EXPECT_STREQ("sixsix", rec.szText49);
    EXPECT_STREQ("AB", rec.szText56);
    EXPECT_STREQ("CDEF", rec.szText60);
    EXPECT_STREQ("G", rec.szText65);
    EXPECT_STREQ("0123456789", rec.szText68);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(i - 2.5f, +rec.fMeasure79[i]) << i;
        EXPECT_EQ(10.25 + i, +rec.dMeasure153[i]) << i;
    }
    EXPECT_STREQ("description", rec.szText107);
    EXPECT_EQ(42.0f, +rec.fMeasure133);
    EXPECT_STREQ("fifteen chars!!", rec.szText137);
    EXPECT_EQ(1.5, +rec.dMeasure209[0]);
    EXPECT_EQ(-2.0, +rec.dMeasure209[1]);
    EXPECT_EQ(3.0, +rec.dMeasure225[0]);
    EXPECT_EQ(5.0, +rec.dMeasure225[2]);
    EXPECT_EQ(0.125, +rec.dMeasure249);
    REPdcMarkFile::ResetPdcMarkRecArray(records);
    EXPECT_TRUE(records.empty());
}

PDCLINKFILETYPE Link(const char* mark, int value) {
    PDCLINKFILETYPE rec{};
    std::snprintf(rec.szMark1, sizeof rec.szMark1, "%s", mark);
    std::snprintf(rec.szText62, sizeof rec.szText62, "link %d", value);
    rec.nValue78 = value;
    rec.nValue91 = 0xA0B0C0D0u;
    return rec;
}

TEST(PdcLinkFile, KeylessFileIsReadInRecordOrder) {
    testsupport::TempDir dir;
    const std::string path = dir.file("job.lnk");
    REPdcLinkFile file;
    testsupport::CreateAndOpen(file, path);
    STAT_BUFFER stat{};
    ASSERT_EQ(1, file.GetStatus(&stat));
    EXPECT_EQ(0, +stat.numberOfKeys);
    EXPECT_EQ(105, +stat.recordLength);  // not the old layout's, which opens as well

    for (int value : {3, 1, 2}) {
        PDCLINKFILETYPE rec = Link("Z", value);
        ASSERT_EQ(1, file.AddNewRecord(rec));
    }
    std::vector<PDCLINKFILETYPE*> links;
    ASSERT_EQ(1, file.GetAllRecords(links));
    ASSERT_EQ(3u, links.size());
    EXPECT_EQ(3, +links[0]->nValue78);
    EXPECT_EQ(2, +links[2]->nValue78);
    EXPECT_STREQ("link 1", links[1]->szText62);
    EXPECT_EQ(0xA0B0C0D0u, +links[1]->nValue91);
    REPdcLinkFile::ResetPdcLinkRecArray(links);

    PDCLINKFILETYPE last;
    ASSERT_EQ(1, file.GetLastRecord(&last));
    EXPECT_EQ(2, +last.nValue78);
    ASSERT_EQ(1, file.GetPreviousRecord(&last));
    EXPECT_EQ(1, +last.nValue78);
    EXPECT_EQ(1, file.DeleteAllRecords());
    EXPECT_EQ(0, file.GetAllRecords(links));
}

TEST(PdcLinkFileOldLayout, OldLinksAreConvertedOnReadAndAppend) {
    auto old = testsupport::Blank<OLD_PDCLINKFILETYPE>();
    PutOldMark(old.szMark1, "A1");
    PutOldMark(old.szMark2, std::string_view("\0B\0" "2", 4));
    PutOldMark(old.szMark3, "  C3");
    PutOld(old.szText51, "tentenxten");
    PutOld(old.szText62, "fifteen");
    old.nValue78 = -2;
    PutOld(old.szText82, "eight ch");
    old.nValue91 = 0x01020304u;
    old.nValue95 = -32768;
    old.nValue99 = 77;
    old.szText103[0] = 'Q';

    testsupport::TempDir dir;
    const std::string path = dir.file("old.lnk");
    testsupport::WriteOldFile<OLD_PDCLINKFILETYPE>(path, {}, {old, old});
    REPdcLinkFile file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(1, file.m_isOldFormat);
    PDCLINKFILETYPE rec;
    ASSERT_EQ(1, file.GetFirstRecord(&rec));
    EXPECT_STREQ("A1", rec.szMark1);
    EXPECT_STREQ("B2", rec.szMark2);
    EXPECT_STREQ("C3", rec.szMark3);
    EXPECT_STREQ("tentenxten", rec.szText51);
    EXPECT_STREQ("fifteen", rec.szText62);
    EXPECT_EQ(-2, +rec.nValue78);
    EXPECT_STREQ("eight ch", rec.szText82);
    EXPECT_EQ(0x01020304u, +rec.nValue91);
    EXPECT_EQ(-32768, +rec.nValue95);
    EXPECT_EQ(77, +rec.nValue99);
    EXPECT_STREQ("Q", rec.szText103);

    const std::string current = dir.file("new.lnk");
    REPdcLinkFile target;
    testsupport::CreateAndOpen(target, current);
    ASSERT_EQ(1, target.AppendFile(path.c_str(), 0));
    std::vector<PDCLINKFILETYPE*> links;
    ASSERT_EQ(1, target.GetAllRecords(links));
    ASSERT_EQ(2u, links.size());
    EXPECT_EQ(0, std::memcmp(&rec, links[1], sizeof rec));
    REPdcLinkFile::ResetPdcLinkRecArray(links);

    // Open objects only close on Initialize; a file of another length is refused.
    EXPECT_EQ(0, target.Initialize(current.c_str()));
    EXPECT_EQ(0, target.IsOpen());
    testsupport::MessageCapture messages;
    const std::string other = dir.file("other.lnk");
    ASSERT_EQ(0, testsupport::CreateRawFile(other, 99));
    EXPECT_EQ(0, target.Initialize(other.c_str()));
    EXPECT_EQ("Pdc link file is corrupt.", messages.lastText());
    EXPECT_EQ(0, target.IsOpen());
}

}  // namespace
