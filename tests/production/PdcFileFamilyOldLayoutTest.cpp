// Production files of the earlier generation: built through the record manager with their keys
// at the old positions, read through the classes (every read converted) and appended into files
// of the current layout.
#include "REPdcBatInpDataFile.h"
#include "REPdcBatInpLaborDataFile.h"
#include "REPdcBatInpPieceDataFile.h"
#include "REPdcPayCategoryDataFile.h"
#include "REPdcSequenceFile.h"
#include "REPdcStationLoadDataFile.h"
#include "REPdcTrackingDataFile.h"
#include "REPdcTrackingLaborDataFile.h"
#include "RESharedHelpers.h"

#include "PdcFileFamilyFixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using testsupport::Blank;

double Date(const char* text) {
    double date = 0.0;
    ConvertOldDateToNew(text, date);
    return date;
}

class PdcOldLayoutTest : public ::testing::Test {
protected:
    // Creates an old-layout file of `Old` records, keyed by a 16-bit number at position 1, and
    // writes the records into it.
    template <class Old>
    std::string writeOld(const char* name, const std::vector<Old>& records, uint16_t keyFlags = 0x0103) {
        const std::string path = dir.file(name);
        const REKeySegment key[] = {{1, 2, keyFlags, kKeyTypeInteger, 20}};
        testsupport::WriteOldFile<Old>(path, key, records);
        return path;
    }

    template <class File, class Record = typename File::Record>
    std::vector<Record> readAll(const std::string& path) {
        File file;
        EXPECT_EQ(1, file.Initialize(path.c_str()));
        EXPECT_EQ(1, file.IsOldFormat());
        std::vector<Record*> records;
        file.GetAllRecords(records);
        std::vector<Record> copies;
        for (Record* rec : records)
            copies.push_back(*rec);
        DeallocatePtrArray(records);
        return copies;
    }

    testsupport::TempDir dir;
};

TEST_F(PdcOldLayoutTest, SequenceNumbersAreSignExtendedAndMarksSqueezed) {
    auto old = Blank<OLD_PDCSEQDATATYPE>();
    old.nNumber = -2;
    PutOldMark(old.sFirstName, std::string_view(" B\0" "12\0          ", 16));
    PutOldMark(old.sSecondName, std::string_view("\0\0 S1 A\0\0\0\0\0\0\0\0\0", 16));
    const std::string path = dir.file("seq.dat");
    const REKeySegment key[] = {{2, 16, 0x0103, kKeyTypeString, 20}};
    testsupport::WriteOldFile<OLD_PDCSEQDATATYPE>(path, key, {old});
    const auto records = readAll<REPdcSequenceFile>(path);
    ASSERT_EQ(1u, records.size());
    EXPECT_STREQ("B12", records[0].sFirstName);
    EXPECT_STREQ("S1 A", records[0].sSecondName);
    EXPECT_EQ(-2, +records[0].nNumber);
}

TEST_F(PdcOldLayoutTest, PayCategoryRatesAreWidened) {
    auto old = Blank<OLD_PDCPAYCATDATATYPE>();
    PutOld(old.sPayCatCode, "WELD");
    PutOld(old.sDescription, "Welding  shop");
    old.dRate1 = 21.25f;
    old.dRate2 = -0.5f;
    const std::string path = dir.file("pay.dat");
    const REKeySegment key[] = {{1, 6, 0x0103, kKeyTypeString, 20}};
    testsupport::WriteOldFile<OLD_PDCPAYCATDATATYPE>(path, key, {old});
    const auto records = readAll<REPdcPayCategoryDataFile>(path);
    ASSERT_EQ(1u, records.size());
    EXPECT_STREQ("WELD", records[0].sPayCatCode);
    EXPECT_STREQ("Welding  shop", records[0].sDescription);
    EXPECT_EQ(21.25, +records[0].dRate1);
    EXPECT_EQ(-0.5, +records[0].dRate2);
}

TEST_F(PdcOldLayoutTest, TrackingRecordsConvertNumbersMarksDatesAndSizeKey) {
    auto old = Blank<OLD_PDCTRACKFILETYPE>();
    old.nValue0 = -2;
    PutOld(old.sText4, "ST01");
    PutOldMark(old.sMark13, std::string_view(" B\0" "12\0          ", 16));
    PutOldMark(old.sMark30, std::string_view("A7              ", 16));
    std::memcpy(old.dDate47, "960105", 7);  // six digits and their terminator
    old.nValue55 = 300;
    PutOld(old.sizeKey.szShape, "W");
    PutOld(old.sText154, "AB");
    PutOldMark(old.sMark175, std::string_view("\0P\09\0\0\0\0\0\0\0\0\0\0\0\0", 16));
    const uint8_t value[4] = {1, 2, 3, 0xFF};
    std::memcpy(old.value196, value, 4);
    PutOld(old.sText222, "0123456789");
    const std::string path = writeOld<OLD_PDCTRACKFILETYPE>("track.dat", {old}, 0x0103);

    const auto records = readAll<REPdcTrackingDataFile>(path);
    ASSERT_EQ(1u, records.size());
    const PDCTRACKFILETYPE& rec = records[0];
    EXPECT_EQ(-2, +rec.nValue0);
    EXPECT_STREQ("ST01", rec.sText4);
    EXPECT_STREQ("B12", rec.sMark13);
    EXPECT_STREQ("A7", rec.sMark30);
    EXPECT_EQ(Date("960105"), +rec.dDate47);
    EXPECT_NE(0.0, +rec.dDate47);
    EXPECT_EQ(300, +rec.nValue55);
    SIZEDATKEYREC sizeKey;
    gConvertSizeKeyRecToNewFormat(&old.sizeKey, &sizeKey);
    EXPECT_EQ(0, std::memcmp(&sizeKey, &rec.sizeKey, sizeof sizeKey));
    EXPECT_STREQ("AB", rec.sText154);
    EXPECT_STREQ("P9", rec.sMark175);
    EXPECT_EQ(0, std::memcmp(value, rec.value196, 4));
    EXPECT_STREQ("0123456789", rec.sText222);
}

TEST_F(PdcOldLayoutTest, LaborTrackingAndStationLoadDatesFromTextOfEitherForm) {
    auto labor = Blank<OLD_PDCTRACKLABORFILETYPE>();
    labor.nValue0 = 4;
    labor.nValue42 = -1;
    labor.nValue46 = 32767;
    PutOld(labor.dDate34, "1/5/96");
    PutOld(labor.sText30, "FIT");
    const auto tracked = readAll<REPdcTrackingLaborDataFile>(writeOld<OLD_PDCTRACKLABORFILETYPE>("labor.dat", {labor}));
    ASSERT_EQ(1u, tracked.size());
    EXPECT_EQ(Date("960105"), +tracked[0].dDate34);
    EXPECT_EQ(-1, +tracked[0].nValue42);
    EXPECT_EQ(32767, +tracked[0].nValue46);
    EXPECT_STREQ("FIT", tracked[0].sText30);

    // The station load file has no key; a date too short to read stays 0.
    auto load = Blank<OLD_PDCSTATIONLOADDATATYPE>();
    load.nValue0 = -7;
    PutOld(load.sText41, "LOAD");
    PutOld(load.dDate60, "12345");
    const std::string path = dir.file("load.dat");
    testsupport::WriteOldFile<OLD_PDCSTATIONLOADDATATYPE>(path, {}, {load});
    const auto loads = readAll<REPdcStationLoadDataFile>(path);
    ASSERT_EQ(1u, loads.size());
    EXPECT_EQ(-7, +loads[0].nValue0);
    EXPECT_STREQ("LOAD", loads[0].sText41);
    EXPECT_EQ(0.0, +loads[0].dDate60);
}

TEST_F(PdcOldLayoutTest, BatchHeaderTextsAreTrimmedOnBothSides) {
    auto old = Blank<OLD_PDCBIDFILETYPE>();
    old.nBatchNo = -3;
    old.nByte4 = 0xAB;
    old.nValue5 = 12;
    PutOld(old.sText9, "  A B");
    PutOld(old.sText35, " X ");
    PutOld(old.dDate39, "1-5-96");
    old.dValue47 = 2.5f;
    const auto records = readAll<REPdcBatInpDataFile>(writeOld<OLD_PDCBIDFILETYPE>("bid.dat", {old}));
    ASSERT_EQ(1u, records.size());
    EXPECT_EQ(-3, +records[0].nBatchNo);
    EXPECT_EQ(0xAB, +records[0].nByte4);
    EXPECT_EQ(12, +records[0].nValue5);
    EXPECT_EQ("A B", std::string(records[0].sText9, strnlen(records[0].sText9, 9)));
    EXPECT_EQ("X", std::string(records[0].sText35, strnlen(records[0].sText35, 4)));
    EXPECT_EQ(Date("960105"), +records[0].dDate39);
    EXPECT_EQ(2.5, +records[0].dValue47);
}

TEST_F(PdcOldLayoutTest, BatchLineTextsAreJoinedFromTrimmedParts) {
    auto labor = Blank<OLD_PDCBILABFILETYPE>();
    labor.nBatchNo = 1;
    labor.nValue43 = -9;
    PutOld(labor.sText12[0], "CUT");
    PutOld(labor.sText12[1], "   WELD");
    OLD_PDCBILABFILETYPE full = labor;
    for (auto& part : full.sText12)
        std::memset(part, 'Z', sizeof part);
    const auto lines =
        readAll<REPdcBatInpLaborDataFile>(writeOld<OLD_PDCBILABFILETYPE>("lab.dat", {labor, full}, 0x0103 | 1));
    ASSERT_EQ(2u, lines.size());
    EXPECT_STREQ("CUTWELD", lines[0].sText12);
    EXPECT_EQ(-9, +lines[0].nValue43);
    // Three full parts are cut to what the field holds with its terminator.
    EXPECT_EQ(std::string(30, 'Z'), lines[1].sText12);

    auto piece = Blank<OLD_PDCBIPIEFILETYPE>();
    piece.nBatchNo = 2;
    PutOldMark(piece.sMark21, std::string_view(" B\0" "12\0          ", 16));
    piece.nValue38 = -40;
    PutOld(piece.sText59[0], " A B");
    PutOld(piece.sText59[1], "C");
    PutOld(piece.sText59[2], " D ");
    const auto pieces = readAll<REPdcBatInpPieceDataFile>(writeOld<OLD_PDCBIPIEFILETYPE>("pie.dat", {piece}));
    ASSERT_EQ(1u, pieces.size());
    EXPECT_STREQ("", pieces[0].sMark4);
    EXPECT_STREQ("B12", pieces[0].sMark21);
    EXPECT_EQ(-40, +pieces[0].nValue38);
    EXPECT_STREQ("A BCD", pieces[0].sText59);
}

TEST_F(PdcOldLayoutTest, AppendConvertsOldRecordsIntoTheCurrentLayout) {
    std::vector<OLD_PDCBILABFILETYPE> old(25);
    for (size_t i = 0; i < old.size(); ++i) {
        old[i] = Blank<OLD_PDCBILABFILETYPE>();
        old[i].nBatchNo = static_cast<int16_t>(-static_cast<int>(i));
        PutOld(old[i].sText12[2], "  END");
    }
    const std::string source = writeOld("old.dat", old, 0x0103 | 1);
    REPdcBatInpLaborDataFile target;
    testsupport::CreateAndOpen(target, dir.file("new.dat"));
    EXPECT_EQ(0, target.IsOldFormat());
    EXPECT_EQ(1, target.AppendFile(source.c_str(), 0));
    std::vector<PDCBILABFILETYPE*> lines;
    target.GetAllRecords(lines);
    ASSERT_EQ(20u, lines.size());
    // Key order of the new file: the most negative batch first.
    EXPECT_EQ(-19, lines.front()->nBatchNo);
    EXPECT_STREQ("END", lines.front()->sText12);
    REPdcBatInpLaborDataFile::ResetPdcBatInpLaborDataRecArray(lines);
    EXPECT_TRUE(lines.empty());
}

}  // namespace
