// dump and load through the built utility on files the library's classes create: exact round
// trips in several layouts and both generations, all-or-nothing loads, and stat.
#include "REJobFile.h"
#include "RELaborCodeFile.h"
#include "REPdcPayCategoryDataFile.h"
#include "REPdcTrackingDataFile.h"
#include "RawRecordFile.h"
#include "TestSupport.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using testsupport::RawRecordFile;
using toolsupport::RunTool;

template <size_t N>
void Put(char (&field)[N], const char* text) {
    std::memcpy(field, text, std::min(N, std::strlen(text)));
}

class DumpLoad : public ::testing::Test {
protected:
    std::string Path(const char* name) const { return (m_dir.path() / name).string(); }

    // Every record of `path` as stored, in physical order.
    static std::vector<std::vector<uint8_t>> Records(const std::string& path, uint32_t length) {
        RawRecordFile file(path, length);
        EXPECT_EQ(0, file.openStatus());
        return file.records();
    }

    // dump `from` in `format`, load the text into `to` (created by load when `layout` is given);
    // the loaded file then holds the same bytes.
    void RoundTrip(const std::string& from, const std::string& to, const char* format, uint32_t length,
                   const char* layout = nullptr) {
        const auto dumped = RunTool({"dump", from, "--format", format});
        ASSERT_EQ(0, dumped.exitStatus) << dumped.err;
        std::vector<std::string> args = {"load", to, "--format", format};
        if (layout != nullptr)
            args.insert(args.end(), {"--layout", layout});
        const auto loaded = RunTool(args, dumped.out);
        ASSERT_EQ(0, loaded.exitStatus) << loaded.err;
        const auto original = Records(from, length);
        ASSERT_FALSE(original.empty());
        EXPECT_EQ(original, Records(to, length));
    }

    testsupport::TempDir m_dir;
};

ESTJOBFILERECORD JobItem(const char* code1, const char* code2, int page, int line) {
    ESTJOBFILERECORD rec{};
    Put(rec.sCode1, code1);
    Put(rec.sCode2, code2);
    rec.nPageNo = page;
    rec.nLineNo = line;
    rec.nValue39 = -7;
    Put(rec.sizeKey.szShape, "W");
    Put(rec.sizeKey.szCode12, "8X31");
    rec.sizeKey.fDim1 = 8.0f;
    rec.sizeKey.fDim2 = 0.1f;  // a float with no short decimal form
    Put(rec.sText124, "a, \"b\" c");
    rec.nShort142[5] = -32768;
    rec.nValue602 = 2147483647;
    Put(rec.operations[14].sCode1, "CUT");
    rec.operations[14].nValue5 = 3;
    return rec;
}

void MakeJobFile(const std::string& path) {
    REJobFile file;
    ASSERT_TRUE(file.CreateNewFile(path));
    ASSERT_TRUE(file.Initialize(path));
    for (ESTJOBFILERECORD rec : {JobItem("A", "BEAMS", 1, 1), JobItem("A", "BEAMS", 1, 2), JobItem("B", "", 2, -1)})
        ASSERT_TRUE(file.AddRecord(rec));
}

TEST_F(DumpLoad, JobItemFileRoundTripsThroughCsvAndJson) {
    MakeJobFile(Path("JOB.dat"));
    RoundTrip(Path("JOB.dat"), Path("csv.dat"), "csv", sizeof(ESTJOBFILERECORD), "job items");
    RoundTrip(Path("JOB.dat"), Path("json.dat"), "json", sizeof(ESTJOBFILERECORD), "job items");
    // The loaded file is a job item file the class reads.
    REJobFile file;
    ASSERT_TRUE(file.Initialize(Path("json.dat")));
    ESTJOBFILERECORD rec{};
    ASSERT_TRUE(file.SearchFirstRecord("B", "", 2, -1, &rec));
    EXPECT_STREQ("a, \"b\" c", rec.sText124);
    const int32_t line = rec.nLineNo;  // packed field, read by value
    EXPECT_EQ(-1, line);
}

TEST_F(DumpLoad, OldGenerationJobItemFileDecodesByTheOldLayoutAndLoadsBack) {
    constexpr REKeySegment kOldJobKey[] = {
        {1, 4, kKeyInnerSegment, kKeyTypeString, kKeyNullByte},
        {5, 25, kKeyInnerSegment, kKeyTypeString, kKeyNullByte},
        {30, 4, kKeyInnerSegment, kKeyTypeUnsigned, kKeyNullByte},
        {34, 4, kKeyLastSegment, kKeyTypeUnsigned, kKeyNullByte},
    };
    for (const char* name : {"OLD.dat", "COPY.dat"})
        ASSERT_EQ(0, testsupport::CreateRawFile(Path(name), sizeof(OLD_ESTJOBFILERECORD), kOldJobKey, 64));
    {
        RawRecordFile file(Path("OLD.dat"), sizeof(OLD_ESTJOBFILERECORD));
        for (int line = 1; line <= 2; ++line) {
            OLD_ESTJOBFILERECORD rec;
            std::memset(&rec, ' ', sizeof rec);
            std::memcpy(rec.sCode1, "AB", 2);
            std::memcpy(rec.sCode2, "OLD ITEM", 8);
            rec.nPageNo = 4;
            rec.nLineNo = line;
            rec.sizeKey.fDim3 = 2.5f;
            std::memcpy(rec.operations[0].sCode1, "WLD", 3);
            ASSERT_EQ(0, file.insert(&rec));
        }
    }
    const auto stat = RunTool({"stat", Path("OLD.dat")});
    EXPECT_EQ(0, stat.exitStatus);
    EXPECT_NE(std::string::npos, stat.out.find("job items (REJobFile), old generation")) << stat.out;
    // Decoded by the old offsets: texts without their blank padding, no new-only fields.
    const auto table = RunTool({"dump", Path("OLD.dat")});
    EXPECT_NE(std::string::npos, table.out.find("  OLD ITEM\n")) << table.out;
    EXPECT_EQ(std::string::npos, table.out.find("nValue602"));
    RoundTrip(Path("OLD.dat"), Path("COPY.dat"), "json", sizeof(OLD_ESTJOBFILERECORD));
}

TEST_F(DumpLoad, ProductionAndLaborFilesRoundTrip) {
    {
        REPdcTrackingDataFile file;
        ASSERT_TRUE(file.CreateNewFile(Path("TRACK.dat")));
        ASSERT_TRUE(file.Initialize(Path("TRACK.dat")));
        for (int i = 0; i < 3; ++i) {
            PDCTRACKFILETYPE rec{};
            rec.nValue0 = 100 + i;
            Put(rec.sText4, "SHIP");
            Put(rec.sMark13, "B12");
            rec.dDate47 = 45352.0 + i * 0.25;  // 2024-03-01, then with times of day
            Put(rec.sizeKey.szShape, "L");
            rec.value196[3] = 0xfe;
            ASSERT_TRUE(file.AddRecord(rec));
        }
    }
    RoundTrip(Path("TRACK.dat"), Path("TRACK2.dat"), "csv", sizeof(PDCTRACKFILETYPE), "tracking");
    const auto table = RunTool({"dump", Path("TRACK.dat")});
    EXPECT_NE(std::string::npos, table.out.find("  2024-03-01\n")) << table.out;
    EXPECT_NE(std::string::npos, table.out.find("2024-03-01 06:00:00")) << table.out;
    EXPECT_NE(std::string::npos, table.out.find("000000fe")) << table.out;

    {
        REPdcPayCategoryDataFile file;
        ASSERT_TRUE(file.CreateNewFile(Path("PAY.dat")));
        ASSERT_TRUE(file.Initialize(Path("PAY.dat")));
        PDCPAYCATDATATYPE rec{};
        Put(rec.sPayCatCode, "WELD");
        Put(rec.sDescription, "Welder");
        rec.dRate1 = 1.0 / 3.0;
        rec.dRate2 = -0.0;
        ASSERT_TRUE(file.AddRecord(rec));
    }
    RoundTrip(Path("PAY.dat"), Path("PAY2.dat"), "json", sizeof(PDCPAYCATDATATYPE), "pay categories");

    {
        RELaborCodeFile file;
        ASSERT_TRUE(file.CreateNewFile(Path("LABOR.dat")));
        ASSERT_TRUE(file.Initialize(Path("LABOR.dat")));
        for (const char* sub : {"01", "02"}) {
            LABORCODERECORD rec{};
            Put(rec.sGroupName, "FAB");
            Put(rec.sSubCode, sub);
            Put(rec.sDescription, "Fit up");
            for (int i = 0; i < 100; ++i)
                rec.nTable2[i] = static_cast<int16_t>(i * 300 - 15000);
            ASSERT_TRUE(file.AddRecord(rec));
        }
    }
    RoundTrip(Path("LABOR.dat"), Path("LABOR2.dat"), "csv", sizeof(LABORCODERECORD), "labor codes");
}

TEST_F(DumpLoad, StatNamesTheLayoutKeysAndCount) {
    MakeJobFile(Path("JOB.dat"));
    const auto result = RunTool({"stat", Path("JOB.dat")});
    ASSERT_EQ(0, result.exitStatus) << result.err;
    for (const char* line : {"layout:      job items (REJobFile), new generation\n", "record:      606 bytes",
                             "records:     3\n", "  key 0: unique, modifiable\n",
                             "    position 32, length 4, unsigned  nPageNo\n"})
        EXPECT_NE(std::string::npos, result.out.find(line)) << line << "\n" << result.out;
}

TEST_F(DumpLoad, AFileOfUnknownLayoutIsDumpedInHex) {
    ASSERT_EQ(0, testsupport::CreateRawFile(Path("ODD.dat"), 5));
    {
        RawRecordFile file(Path("ODD.dat"), 5);
        ASSERT_EQ(0, file.insert("\x01\x02\xab\x00Z"));
    }
    EXPECT_EQ(1, RunTool({"stat", Path("ODD.dat")}).exitStatus);
    const auto dumped = RunTool({"dump", Path("ODD.dat"), "--format", "csv"});
    EXPECT_EQ(0, dumped.exitStatus);
    EXPECT_EQ("hex\n0102ab005a\n", dumped.out);
}

TEST_F(DumpLoad, ABadRowIsReportedByLineAndNothingIsWritten) {
    MakeJobFile(Path("JOB.dat"));
    const auto dumped = RunTool({"dump", Path("JOB.dat"), "--format", "csv"});
    // Third line (second record): a page number that is not a number.
    std::string text = dumped.out;
    const size_t second = text.find('\n', text.find('\n') + 1) + 1;
    text.replace(text.find(",1,2,", second), 5, ",1,x2,");
    const auto loaded = RunTool({"load", Path("NEW.dat"), "--format", "csv", "--layout", "job items"}, text);
    EXPECT_EQ(1, loaded.exitStatus);
    EXPECT_NE(std::string::npos, loaded.err.find("line 3: field nLineNo")) << loaded.err;
    EXPECT_TRUE(Records(Path("NEW.dat"), sizeof(ESTJOBFILERECORD)).empty());

    // JSON: a text too long for its field, on the line of its record.
    const auto json = RunTool({"dump", Path("JOB.dat"), "--format", "json"});
    std::string bad = json.out;
    bad.replace(bad.rfind("\"sCode1\":\"B\""), 12, "\"sCode1\":\"TOOLONG\"");
    const auto refused = RunTool({"load", Path("NEW.dat"), "--format", "json"}, bad);
    EXPECT_EQ(1, refused.exitStatus);
    EXPECT_NE(std::string::npos, refused.err.find("line 4: field sCode1: text longer than 5")) << refused.err;
}

TEST_F(DumpLoad, AnInsertRefusedMidwayTakesBackTheRecordsOfTheRun) {
    MakeJobFile(Path("JOB.dat"));
    const auto dumped = RunTool({"dump", Path("JOB.dat"), "--format", "csv"});
    ASSERT_TRUE(RunTool({"load", Path("NEW.dat"), "--format", "csv", "--layout", "job items"}, "sCode1\nZ\n")
                    .exitStatus == 0);
    // The dump's header and rows, then its second row again: a duplicate key on the fourth insert.
    const size_t firstRow = dumped.out.find('\n') + 1;
    const size_t secondRow = dumped.out.find('\n', firstRow) + 1;
    const std::string text = dumped.out + dumped.out.substr(secondRow, dumped.out.find('\n', secondRow) + 1 - secondRow);
    const auto loaded = RunTool({"load", Path("NEW.dat"), "--format", "csv"}, text);
    EXPECT_EQ(1, loaded.exitStatus);
    EXPECT_NE(std::string::npos, loaded.err.find("line 5: insert refused, status 5")) << loaded.err;
    EXPECT_NE(std::string::npos, loaded.err.find("the 3 records inserted before it were deleted again"));
    const auto left = Records(Path("NEW.dat"), sizeof(ESTJOBFILERECORD));
    ASSERT_EQ(1u, left.size());
    EXPECT_EQ('Z', left[0][0]);
}

}  // namespace
