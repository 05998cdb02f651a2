// Whole-file calls on record-manager files (RERecordFileOps.h), on whichever store the program runs.
#include "ConformanceFixture.h"
#include "RERecordFileOps.h"

namespace conformance {
namespace {

using WholeFile = Conformance;

// Changes the stored form of the file at `path` from outside the record manager: `embedded` on
// its SQLite database, or `server` on the server, where %T names the file's record table and %I
// its id.
void tamper(const std::string& path, const std::string& embedded, std::string server) {
    if (testsupport::PostgresServer* pg = testsupport::ActiveServer()) {
        const std::string id = pg->sql("SELECT id FROM tarsel_files WHERE name='" + path + "'");
        for (size_t at; (at = server.find('%')) != std::string::npos;)
            server.replace(at, 2, server[at + 1] == 'T' ? "r" + id : id);
        pg->sql(server);
        return;
    }
    EXPECT_EQ("", sqlite(path, embedded));
}

TEST_F(WholeFile, CopyMoveAndDeleteKeepRecordsAndRefuseWhatIsOpen) {
    const std::string a = makeFile(twoKeyFile(), "A.DAT"), b = path("B.DAT"), c = path("C.DAT");
    Handle h;
    ASSERT_EQ(st::Ok, h.open(a));
    for (int i = 1; i <= 3; ++i)
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(i, i * 10, 7)));
    EXPECT_EQ(REPathState::Exists, RELookUpRecordFile(a));
    EXPECT_EQ(REPathState::Missing, RELookUpRecordFile(b));
    EXPECT_EQ(REPathState::Invalid, RELookUpRecordFile(""));

    // A copy of an open file holds every record and none of its handles.
    ASSERT_EQ(kREFileOpOk, RECopyRecordFile(a, b, false));
    EXPECT_EQ(kREFileOpExists, RECopyRecordFile(a, b, false));
    Handle copy;
    ASSERT_EQ(st::Ok, copy.open(b, -4));
    EXPECT_EQ(h.readAll(1), copy.readAll(1));
    ASSERT_EQ(st::Ok, copy.insert(twoKeyRecord(4, 40)));
    EXPECT_EQ(kREFileOpInUse, RECopyRecordFile(a, b, true));
    EXPECT_EQ(kREFileOpInUse, REDeleteRecordFile(b));
    EXPECT_EQ(kREFileOpInUse, REMoveRecordFile(b, c));
    ASSERT_EQ(st::Ok, copy.close());

    EXPECT_EQ(kREFileOpExists, REMoveRecordFile(b, a));
    ASSERT_EQ(kREFileOpOk, REMoveRecordFile(b, c));
    EXPECT_EQ(REPathState::Missing, RELookUpRecordFile(b));
    ASSERT_EQ(st::Ok, copy.open(c));
    EXPECT_EQ(4u, copy.count());
    ASSERT_EQ(st::Ok, copy.close());

    ASSERT_EQ(kREFileOpOk, RECopyRecordFile(a, c, true));
    ASSERT_EQ(st::Ok, copy.open(c));
    EXPECT_EQ(3u, copy.count());
    ASSERT_EQ(st::Ok, copy.close());
    ASSERT_EQ(kREFileOpOk, REDeleteRecordFile(c));
    EXPECT_EQ(REPathState::Missing, RELookUpRecordFile(c));
    EXPECT_EQ(kREFileOpNotFound, REDeleteRecordFile(c));
    EXPECT_EQ(kREFileOpNotFound, RECopyRecordFile(c, b, true));
    EXPECT_EQ(kREFileOpBadPath, RECopyRecordFile(a, "", true));
}

TEST_F(WholeFile, SearchListsMatchingNamesOfOneFolder) {
    for (const char* name : {"JOB1.RDB", "job2.rdb", "JOB1.RDK"})
        makeFile(twoKeyFile(), name);
    std::vector<std::string> names;
    ASSERT_EQ(kREFileOpOk, REFindRecordFiles(dir.path().string(), "*.rdb", names));
    EXPECT_EQ((std::vector<std::string>{"JOB1.RDB", "job2.rdb"}), names);
    ASSERT_EQ(kREFileOpOk, REFindRecordFiles(dir.path().string(), "JOB?.RD?", names));
    EXPECT_EQ(3u, names.size());
    ASSERT_EQ(kREFileOpOk, REFindRecordFiles(dir.file("nothing-here"), "*", names));
    EXPECT_TRUE(names.empty());
}

TEST_F(WholeFile, CheckFindsStaleCountsAndEntriesAndRepairFixesThem) {
    const std::string p = makeFile(twoKeyFile());
    {
        Handle h;
        ASSERT_EQ(st::Ok, h.open(p));
        for (int i = 1; i <= 4; ++i)
            ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(i, i * 10, i % 2)));
    }
    RERecordFileCheck result;
    ASSERT_EQ(kREFileOpOk, RECheckRecordFile(p, false, result));
    EXPECT_EQ(4u, result.records);
    EXPECT_TRUE(result.findings.empty()) << result.findings.front();

    tamper(p, "UPDATE rec SET d=d+5 WHERE v=0", "UPDATE tarsel_files SET count=count+5 WHERE id=%I");
    tamper(p, "UPDATE rec SET k1=NULL WHERE n=3", "UPDATE %T SET k1=NULL WHERE n=3");
    ASSERT_EQ(kREFileOpOk, RECheckRecordFile(p, false, result));
    EXPECT_EQ(9, result.keptCount);
    EXPECT_EQ(2u, result.findings.size());
    EXPECT_TRUE(result.repairs.empty());

    uint64_t seen = 0;
    ASSERT_EQ(kREFileOpOk, RECheckRecordFile(p, true, result, [](uint64_t done, uint64_t, void* c) {
        *static_cast<uint64_t*>(c) = done;
    }, &seen));
    EXPECT_EQ(4u, seen);
    EXPECT_TRUE(result.findings.empty());
    EXPECT_EQ(2u, result.repairs.size());
    ASSERT_EQ(kREFileOpOk, RECheckRecordFile(p, false, result));
    EXPECT_TRUE(result.findings.empty());

    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    EXPECT_EQ(4u, h.count());
    EXPECT_EQ((std::vector<int>{2, 4, 1, 3}), tags(h.readAll(1)));
}

TEST_F(WholeFile, CheckReportsAnEntryItCannotRepair) {
    const std::string p = makeFile(twoKeyFile());
    {
        Handle h;
        ASSERT_EQ(st::Ok, h.open(p));
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 10)));
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(2, 20)));
    }
    // Record 2's data now holds record 1's unique key value.
    tamper(p, "UPDATE rec SET d=(SELECT d FROM rec WHERE n=1) WHERE n=2",
           "UPDATE %T SET d=(SELECT d FROM %T WHERE n=1) WHERE n=2");
    RERecordFileCheck result;
    ASSERT_EQ(kREFileOpOk, RECheckRecordFile(p, true, result));
    ASSERT_EQ(1u, result.findings.size());
    EXPECT_NE(std::string::npos, result.findings[0].find("unique")) << result.findings[0];
    EXPECT_EQ(kREFileOpNotFound, RECheckRecordFile(path("none"), false, result));
}

}  // namespace
}  // namespace conformance
