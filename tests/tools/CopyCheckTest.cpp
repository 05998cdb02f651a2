// copy and check through the built utility: a copy taken while another process writes the file,
// and a record count made stale from outside, found and repaired.
#include "ChildProcess.h"
#include "ServerStore.h"
#include "REPdcPayCategoryDataFile.h"
#include "TestSupport.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace {

using toolsupport::RunTool;

PDCPAYCATDATATYPE Category(int n) {
    PDCPAYCATDATATYPE rec{};
    std::snprintf(rec.sPayCatCode, sizeof rec.sPayCatCode, "%06u", unsigned(n) % 1000000u);
    rec.dRate1 = n;
    return rec;
}

// A second process: "write PATH N" adds categories 1..N to the file at PATH, answering the number
// of each insert the record manager acknowledged, then "end".
TARSEL_CHILD_ROUTINE(CategoryWriter) {
    std::string line;
    while (channel.readLine(line)) {
        std::istringstream in(line);
        std::string command, path;
        int count = 0;
        in >> command >> path >> count;
        REPdcPayCategoryDataFile file;
        for (int i = 1; file.Initialize(path.c_str()) && i <= count; ++i) {
            PDCPAYCATDATATYPE rec = Category(i);
            if (!file.AddRecord(rec))
                break;
            channel.writeLine(std::to_string(i));
        }
        channel.writeLine("end");
    }
}

class CopyCheck : public ::testing::Test {
protected:
    std::string Path(const char* name) const { return (m_dir.path() / name).string(); }

    // The categories of the file at `path`, by their numbers, in key order.
    static std::vector<int> Numbers(const std::string& path) {
        REPdcPayCategoryDataFile file;
        std::vector<int> numbers;
        EXPECT_EQ(1, file.Initialize(path.c_str()));
        std::vector<PDCPAYCATDATATYPE*> records;
        file.GetAllRecords(records);
        for (const PDCPAYCATDATATYPE* r : records)
            numbers.push_back(std::atoi(r->sPayCatCode));
        REPdcPayCategoryDataFile::ResetPdcPayCategoryDataRecArray(records);
        return numbers;
    }

    testsupport::TempDir m_dir;
};

TEST_F(CopyCheck, ACopyTakenWhileAnotherProcessWritesHoldsEveryAcknowledgedRecord) {
    const std::string source = Path("PAYCAT.DAT"), copy = Path("COPY.DAT");
    ASSERT_EQ(1, REPdcPayCategoryDataFile().CreateNewFile(source));
    testsupport::ChildProcess writer("CategoryWriter");
    writer.send("write " + source + " 600");
    int acknowledged = 0;
    while (acknowledged < 100)
        ASSERT_EQ(std::to_string(++acknowledged), writer.receive());

    const auto copied = RunTool({"copy", source, copy});
    ASSERT_EQ(0, copied.exitStatus) << copied.err;
    // Consistent as of one moment: categories 1..n without a gap, n at least what was acknowledged.
    const std::vector<int> numbers = Numbers(copy);
    ASSERT_GE(numbers.size(), size_t(acknowledged));
    for (size_t i = 0; i < numbers.size(); ++i)
        ASSERT_EQ(int(i + 1), numbers[i]);
    const auto checked = RunTool({"check", copy});
    EXPECT_EQ(0, checked.exitStatus) << checked.out << checked.err;
    EXPECT_NE(std::string::npos, checked.out.find(std::to_string(numbers.size()) + " records")) << checked.out;

    for (std::string line; (line = writer.receive()) != "end";)
        ASSERT_EQ(std::to_string(++acknowledged), line);
    EXPECT_EQ(0, writer.finish());
    EXPECT_EQ(600u, Numbers(source).size());

    const auto again = RunTool({"copy", source, copy});
    EXPECT_EQ(1, again.exitStatus);
    EXPECT_NE(std::string::npos, again.err.find("already exists")) << again.err;
    EXPECT_EQ(0, RunTool({"copy", source, copy, "--replace"}).exitStatus);
    EXPECT_EQ(600u, Numbers(copy).size());
}

TEST_F(CopyCheck, CheckFindsAStaleCountAndRepairMendsIt) {
    const std::string path = Path("PAYCAT.DAT");
    {
        REPdcPayCategoryDataFile file;
        ASSERT_EQ(1, file.CreateNewFile(path));
        ASSERT_EQ(1, file.Initialize(path.c_str()));
        for (int i = 1; i <= 3; ++i) {
            PDCPAYCATDATATYPE rec = Category(i);
            ASSERT_EQ(1, file.AddRecord(rec));
        }
    }
    // The kept count made stale from outside the record manager.
    if (testsupport::PostgresServer* server = testsupport::ActiveServer()) {
        server->sql("UPDATE tarsel_files SET count=7 WHERE name='" + path + "'");
    } else {
        sqlite3* db = nullptr;
        ASSERT_EQ(SQLITE_OK, sqlite3_open(path.c_str(), &db));
        ASSERT_EQ(SQLITE_OK, sqlite3_exec(db, "UPDATE rec SET d=7 WHERE v=0", nullptr, nullptr, nullptr));
        sqlite3_close(db);
    }

    const auto found = RunTool({"check", path});
    EXPECT_EQ(1, found.exitStatus);
    EXPECT_NE(std::string::npos, found.out.find("fault: kept record count 7, records 3")) << found.out;
    const auto repaired = RunTool({"check", path, "--repair"});
    EXPECT_EQ(0, repaired.exitStatus) << repaired.out << repaired.err;
    EXPECT_NE(std::string::npos, repaired.out.find("repaired: kept record count 7, records 3")) << repaired.out;
    const auto clean = RunTool({"check", path});
    EXPECT_EQ(0, clean.exitStatus);
    EXPECT_NE(std::string::npos, clean.out.find("3 records, kept count 3\nno faults")) << clean.out;

    EXPECT_EQ(2, RunTool({"check"}).exitStatus);
    EXPECT_EQ(2, RunTool({"copy", path}).exitStatus);
    EXPECT_EQ(1, RunTool({"check", Path("none")}).exitStatus);
    EXPECT_EQ(0, RunTool({"check", "--help"}).exitStatus);
}

}  // namespace
