// The SQLite store reads by index: every seek is an index search, never a scan nor a sort.
#include "recman/sqlite/SqliteSchema.cpp"

#include "ConformanceFixture.h"

#include <sqlite3.h>

#include <string>
#include <vector>

namespace {

using recman::FileSpec;

TEST(StoreTest, EverySeekIsAnIndexSearch)
{
    // A unique zstring key and a duplicates unsigned key.
    using namespace conformance;
    Bytes raw = createBlock({20, {{seg(1, 8, type::ZString, kf::Modifiable)},
                                  {seg(9, 4, type::Unsigned, kf::Dup | kf::Modifiable)}}});
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

}  // namespace
