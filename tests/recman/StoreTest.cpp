// The SQLite store's own guarantees: every seek is an index search (never a scan nor a sort),
// foreign files are told apart (30), a closed file stands alone at its path, and store failures
// reach the caller as 2 and 18 through the fault-injection VFS.
#include "recman/sqlite/SqliteSchema.cpp"

#include "BTRCALL.h"
#include "FaultVfs.h"
#include "TestSupport.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using recman::FileSpec;

// A file of 20-byte records with a unique zstring key and a duplicates unsigned key.
std::vector<uint8_t> createBlock()
{
    std::vector<uint8_t> b(16 + 32, 0);
    b[0] = 20;
    b[3] = 0x10;  // page size 4096
    b[4] = 2;
    const uint8_t seg0[] = {1, 0, 8, 0, 0x02, 0x01, 0, 0, 0, 0, 11, 0};
    const uint8_t seg1[] = {9, 0, 4, 0, 0x03, 0x01, 0, 0, 0, 0, 14, 0};
    std::memcpy(b.data() + 16, seg0, sizeof seg0);
    std::memcpy(b.data() + 32, seg1, sizeof seg1);
    return b;
}

struct File {
    std::string path;
    char pos[128] = {};
    char key[255] = {};

    explicit File(std::string p) : path(std::move(p)) { std::memcpy(key, path.data(), path.size()); }
    int16_t create()
    {
        std::vector<uint8_t> b = createBlock();
        uint32_t n = uint32_t(b.size());
        return BTRCALL(14, nullptr, b.data(), &n, key, 255, 0);
    }
    int16_t open() { return BTRCALL(0, pos, nullptr, nullptr, key, 255, 0); }
    int16_t close() { return BTRCALL(1, pos, nullptr, nullptr, nullptr, 0, 0); }
    int16_t insert(const std::string& name, uint32_t group)
    {
        uint8_t rec[20] = {};
        std::memcpy(rec, name.data(), std::min<size_t>(name.size(), 7));
        std::memcpy(rec + 8, &group, 4);
        uint32_t n = sizeof rec;
        char k[255] = {};
        return BTRCALL(2, pos, rec, &n, k, 255, 0);
    }
    uint32_t count()
    {
        uint8_t stat[64];
        uint32_t n = sizeof stat;
        if (BTRCALL(15, pos, stat, &n, nullptr, 0, 0) != 0)
            return ~0u;
        uint32_t c;
        std::memcpy(&c, stat + 6, 4);
        return c;
    }
};

TEST(StoreTest, EverySeekIsAnIndexSearch)
{
    std::vector<uint8_t> raw = createBlock();
    FileSpec spec;
    ASSERT_EQ(FileSpec::parse(raw.data(), uint32_t(raw.size()), spec), recman::StatusOk);
    spec.keys[0].segments[0].type = recman::TypeAutoIncrement;  // exercise the autoincrement statements too
    spec.keys[0].segments[0].length = 4;
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &db), SQLITE_OK);
    for (const std::string& s : recman::sqlite::schemaStatements(spec))
        ASSERT_EQ(sqlite3_exec(db, s.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << s;
    const auto sql = recman::sqlite::SqlText::forSpec(spec);
    std::vector<std::string> reads = {sql.physicalFirst, sql.physicalLast, sql.physicalNext, sql.physicalPrevious,
                                      sql.readRecord};
    for (const auto& key : sql.seekKey)
        reads.insert(reads.end(), key.begin(), key.end());
    reads.insert(reads.end(), sql.autoMax.begin(), sql.autoMax.end());
    reads.insert(reads.end(), sql.autoExists.begin(), sql.autoExists.end());
    for (const std::string& text : reads) {
        sqlite3_stmt* st = nullptr;
        const std::string plan = "EXPLAIN QUERY PLAN " + text;
        ASSERT_EQ(sqlite3_prepare_v2(db, plan.c_str(), -1, &st, nullptr), SQLITE_OK) << text;
        std::string detail;
        while (sqlite3_step(st) == SQLITE_ROW)
            detail += std::string(reinterpret_cast<const char*>(sqlite3_column_text(st, 3))) + "; ";
        sqlite3_finalize(st);
        EXPECT_EQ(detail.find("TEMP B-TREE"), std::string::npos) << text << " -> " << detail;
        const bool search = detail.find("SEARCH") != std::string::npos;
        const bool orderedScan = detail.find("SCAN rec USING") != std::string::npos ||
                                 detail.find("SCAN rec") != std::string::npos;
        EXPECT_TRUE(search || (orderedScan && text.find("LIMIT 1") != std::string::npos) ||
                    text.find("max(") != std::string::npos)
            << text << " -> " << detail;
    }
    sqlite3_close(db);
}

TEST(StoreTest, ForeignFilesAnswer30AndStayUntouched)
{
    testsupport::TempDir dir;
    const std::string text = dir.file("text.dat");
    std::ofstream(text) << "not a record-manager file\n";
    const std::string empty = dir.file("empty.dat");
    std::ofstream(empty).close();
    const std::string other = dir.file("other.db");
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(other.c_str(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE meta(name, value); INSERT INTO meta VALUES('signature', 'x')", nullptr,
                           nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(db);
    for (const std::string& path : {text, empty, other}) {
        const auto before = fs::file_size(path);
        File f(path);
        EXPECT_EQ(f.open(), 30) << path;
        EXPECT_EQ(fs::file_size(path), before) << path;
        EXPECT_EQ(f.close(), 3);
    }
}

TEST(StoreTest, ClosedFileStandsAloneAndCopiesWhole)
{
    testsupport::TempDir dir;
    File a(dir.file("a.dat"));
    ASSERT_EQ(a.create(), 0);
    ASSERT_EQ(a.open(), 0);
    File second(a.path);
    ASSERT_EQ(second.open(), 0);
    for (int i = 0; i < 50; ++i)
        ASSERT_EQ(a.insert("r" + std::to_string(i), uint32_t(i % 3)), 0);
    ASSERT_EQ(a.close(), 0);
    EXPECT_EQ(second.count(), 50u) << "the other handle keeps the shared connection";
    ASSERT_EQ(second.close(), 0);
    EXPECT_FALSE(fs::exists(a.path + "-wal"));
    EXPECT_FALSE(fs::exists(a.path + "-shm"));
    fs::copy_file(a.path, dir.file("b.dat"));
    File b(dir.file("b.dat"));
    ASSERT_EQ(b.open(), 0);
    EXPECT_EQ(b.count(), 50u);
    EXPECT_EQ(b.close(), 0);
}

// Threads with their own handles on one file, and on a file of their own, at the same time.
TEST(StoreTest, ThreadsShareFilesSafely)
{
    testsupport::TempDir dir;
    File shared(dir.file("shared.dat"));
    ASSERT_EQ(shared.create(), 0);
    constexpr int kThreads = 4, kRecords = 150;
    std::vector<int> failures(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            File mine(shared.path);
            File own(dir.file("own" + std::to_string(t) + ".dat"));
            failures[t] += mine.open() != 0;
            failures[t] += own.create() != 0;
            failures[t] += own.open() != 0;
            for (int i = 0; i < kRecords; ++i) {
                const std::string name = std::to_string(t) + "-" + std::to_string(i);
                failures[t] += mine.insert(name, uint32_t(i)) != 0;
                failures[t] += own.insert(name, uint32_t(i)) != 0;
            }
            failures[t] += own.count() != uint32_t(kRecords);
            failures[t] += mine.close() != 0;
            failures[t] += own.close() != 0;
        });
    for (std::thread& th : threads)
        th.join();
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(failures[t], 0) << "thread " << t;
    ASSERT_EQ(shared.open(), 0);
    EXPECT_EQ(shared.count(), uint32_t(kThreads * kRecords));
    EXPECT_EQ(shared.close(), 0);
}

TEST(StoreTest, FullDiskAnswers18AndChangesNothing)
{
    testsupport::TempDir dir;
    recmantest::FaultVfs vfs;
    File f(dir.file("full.dat"));
    vfs.failWrites(recmantest::Fault::DiskFull);
    EXPECT_EQ(f.create(), 18);
    EXPECT_FALSE(fs::exists(f.path));
    vfs.clear();
    ASSERT_EQ(f.create(), 0);
    ASSERT_EQ(f.open(), 0);
    ASSERT_EQ(f.insert("a", 1), 0);
    vfs.failWrites(recmantest::Fault::DiskFull);
    EXPECT_EQ(f.insert("b", 1), 18);
    vfs.clear();
    EXPECT_EQ(f.count(), 1u);
    EXPECT_EQ(f.insert("b", 1), 0) << "the engine recovers once the disk has room";
    EXPECT_EQ(f.count(), 2u);
    EXPECT_EQ(f.close(), 0);
}

TEST(StoreTest, IoErrorsAnswer2)
{
    testsupport::TempDir dir;
    recmantest::FaultVfs vfs;
    File f(dir.file("io.dat"));
    ASSERT_EQ(f.create(), 0);
    ASSERT_EQ(f.open(), 0);
    vfs.failWrites(recmantest::Fault::IoError);
    EXPECT_EQ(f.insert("a", 1), 2);
    vfs.clear();
    EXPECT_EQ(f.count(), 0u);
    EXPECT_EQ(f.close(), 0);

    vfs.failReads(recmantest::Fault::IoError);
    EXPECT_EQ(f.open(), 2) << "the signature cannot be read";
    vfs.clear();
    ASSERT_EQ(f.open(), 0);
    EXPECT_EQ(f.close(), 0);
}

}  // namespace
