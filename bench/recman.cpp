// Record manager benchmark: the job item file's workload (606-byte records, a unique key of
// zstring 5, zstring 26, unsigned 4, unsigned 4) through BTRCALL, and the same operations done
// directly on SQLite with the store's schema, pragmas and key encoding: one autocommit
// transaction and one index seek per call. Prints µs/op for both and their ratio.
//
//   bench_recman [N]      (N records, 100000 by default)
#include "recman/FileSpec.cpp"
#include "recman/KeyCodec.cpp"
#include "recman/sqlite/SqliteSchema.cpp"

#include "BTRCALL.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr uint16_t kRecordLength = 606;
constexpr uint16_t kKeyWidth = 39;

enum BenchOp : uint16_t {
    Open = 0, Close = 1, Insert = 2, Update = 3, Delete = 4, GetEqual = 5, GetNext = 6, GetFirst = 12,
    Create = 14, StepNext = 24, StepFirst = 33,
};

std::vector<uint8_t> createBlock()
{
    std::vector<uint8_t> b(16 + 4 * 16, 0);
    auto put16 = [&](size_t at, uint16_t v) {
        b[at] = uint8_t(v);
        b[at + 1] = uint8_t(v >> 8);
    };
    put16(0, kRecordLength);
    put16(2, 4096);
    put16(4, 1);
    struct { uint16_t pos, len, flags; uint8_t type; } segs[] = {
        {1, 5, 0x0112, 11}, {6, 26, 0x0112, 11}, {32, 4, 0x0112, 14}, {36, 4, 0x0102, 14}};
    for (size_t i = 0; i < 4; ++i) {
        put16(16 + 16 * i, segs[i].pos);
        put16(18 + 16 * i, segs[i].len);
        put16(20 + 16 * i, segs[i].flags);
        b[26 + 16 * i] = segs[i].type;
        b[27 + 16 * i] = 0x14;
    }
    return b;
}

void makeRecord(uint32_t i, uint8_t* rec)
{
    std::memset(rec, 0, kRecordLength);
    std::snprintf(reinterpret_cast<char*>(rec), 5, "J%03u", i % 997);
    std::snprintf(reinterpret_cast<char*>(rec + 5), 26, "W14X%02u-ITEM-%08u", i % 89, i);
    const uint32_t page = i / 50, line = i % 50;
    std::memcpy(rec + 31, &page, 4);
    std::memcpy(rec + 35, &line, 4);
    for (int j = 40; j < kRecordLength; ++j)
        rec[j] = uint8_t('a' + (i + j) % 26);
}

double micros(Clock::duration d, size_t n) { return std::chrono::duration<double, std::micro>(d).count() / double(n); }

void check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "bench_recman: %s failed\n", what);
        std::exit(1);
    }
}

// ---- through BTRCALL ----

struct EngineSide {
    char pos[128] = {};
    char key[255] = {};
    uint8_t rec[kRecordLength];
    uint32_t len = 0;

    explicit EngineSide(const std::string& path)
    {
        std::vector<uint8_t> block = createBlock();
        uint32_t n = uint32_t(block.size());
        std::memcpy(key, path.c_str(), path.size() + 1);
        check(BTRCALL(Create, nullptr, block.data(), &n, key, 255, 0) == 0, "create");
        check(BTRCALL(Open, pos, nullptr, nullptr, key, 255, 0) == 0, "open");
    }
    ~EngineSide() { BTRCALL(Close, pos, nullptr, nullptr, nullptr, 0, 0); }

    int16_t call(uint16_t op)
    {
        len = kRecordLength;
        return BTRCALL(op, pos, rec, &len, key, 255, 0);
    }
    void insert(uint32_t i)
    {
        makeRecord(i, rec);
        check(call(Insert) == 0, "engine insert");
    }
    void getEqual(uint32_t i)
    {
        makeRecord(i, rec);
        std::memcpy(key, rec, 5);
        std::memcpy(key + 5, rec + 5, 26);
        std::memcpy(key + 31, rec + 31, 8);
        check(call(GetEqual) == 0, "engine get equal");
    }
    // The i-th call of a scan: the first record, then the next one.
    void scanStep(size_t i, uint16_t first, uint16_t next) { check(call(i == 0 ? first : next) == 0, "engine scan"); }
    int16_t after(uint16_t next) { return call(next); }
    void update(uint32_t i)
    {
        getEqual(i);
        rec[100] ^= 1;
        check(call(Update) == 0, "engine update");
    }
    void remove(uint32_t i)
    {
        getEqual(i);
        check(call(Delete) == 0, "engine delete");
    }
};

// ---- directly on SQLite ----

struct DirectSide {
    sqlite3* db = nullptr;
    recman::FileSpec spec;
    recman::sqlite::SqlText sql;
    sqlite3_stmt *seekEqual, *first, *next, *stepFirst, *stepNext, *counters, *insertRow, *updateRow, *deleteRow,
        *countDelete, *begin, *commit;
    uint8_t rec[kRecordLength];
    uint8_t value[kKeyWidth];
    std::string encoded, last;
    int64_t lastRecno = 0;

    sqlite3_stmt* prepare(const std::string& text)
    {
        sqlite3_stmt* st = nullptr;
        check(sqlite3_prepare_v3(db, text.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &st, nullptr) == SQLITE_OK,
              text.c_str());
        return st;
    }

    explicit DirectSide(const std::string& path)
    {
        std::vector<uint8_t> block = createBlock();
        check(recman::FileSpec::parse(block.data(), uint32_t(block.size()), spec) == recman::StatusOk, "spec");
        sql = recman::sqlite::SqlText::forSpec(spec);
        check(sqlite3_open(path.c_str(), &db) == SQLITE_OK, "sqlite open");
        std::string script = "PRAGMA journal_mode=WAL; BEGIN;";
        for (const std::string& s : recman::sqlite::schemaStatements(spec))
            script += s + ";";
        script += "COMMIT;";
        script += recman::sqlite::ConnectionPragmas;
        check(sqlite3_exec(db, script.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, "schema");
        sqlite3_busy_timeout(db, recman::sqlite::BusyTimeoutMs);
        seekEqual = prepare(sql.seekKey[0][size_t(recman::Seek::Equal)]);
        first = prepare(sql.seekKey[0][size_t(recman::Seek::First)]);
        next = prepare(sql.seekKey[0][size_t(recman::Seek::Next)]);
        stepFirst = prepare(sql.physicalFirst);
        stepNext = prepare(sql.physicalNext);
        counters = prepare(recman::sqlite::sql::CountInsert);
        insertRow = prepare(sql.insert);
        updateRow = prepare("UPDATE rec SET v=v+1, d=?2 WHERE n=?1");
        deleteRow = prepare(sql.remove);
        countDelete = prepare(recman::sqlite::sql::CountDelete);
        begin = prepare(recman::sqlite::sql::Begin);
        commit = prepare(recman::sqlite::sql::Commit);
    }
    ~DirectSide()
    {
        for (sqlite3_stmt* st : {seekEqual, first, next, stepFirst, stepNext, counters, insertRow, updateRow,
                                 deleteRow, countDelete, begin, commit})
            sqlite3_finalize(st);
        sqlite3_close(db);
    }

    static int run(sqlite3_stmt* st)
    {
        const int rc = sqlite3_step(st);
        sqlite3_reset(st);
        return rc;
    }
    void encodeKey()
    {
        recman::KeyCodec::extractValue(spec.keys[0], rec, value);
        recman::KeyCodec::encode(spec.keys[0], value, encoded);
    }
    // Reads one row (n, v, d, k) into rec and remembers its key and number.
    bool fetch(sqlite3_stmt* st, bool withKey)
    {
        const bool row = sqlite3_step(st) == SQLITE_ROW;
        if (row) {
            lastRecno = sqlite3_column_int64(st, 0);
            std::memcpy(rec, sqlite3_column_blob(st, 2), size_t(sqlite3_column_bytes(st, 2)));
            if (withKey)
                last.assign(static_cast<const char*>(sqlite3_column_blob(st, 3)), size_t(sqlite3_column_bytes(st, 3)));
        }
        sqlite3_reset(st);
        return row;
    }
    void insert(uint32_t i)
    {
        makeRecord(i, rec);
        encodeKey();
        check(run(begin) == SQLITE_DONE, "begin");
        check(sqlite3_step(counters) == SQLITE_ROW, "counters");
        const int64_t recno = sqlite3_column_int64(counters, 0);
        sqlite3_reset(counters);
        sqlite3_bind_int64(insertRow, 1, recno);
        sqlite3_bind_int64(insertRow, 2, 1);
        sqlite3_bind_blob(insertRow, 3, rec, kRecordLength, SQLITE_STATIC);
        sqlite3_bind_blob(insertRow, 4, encoded.data(), int(encoded.size()), SQLITE_STATIC);
        sqlite3_bind_int64(insertRow, 5, 0);
        check(run(insertRow) == SQLITE_DONE, "insert");
        check(run(commit) == SQLITE_DONE, "commit");
    }
    void getEqual(uint32_t i)
    {
        makeRecord(i, rec);
        encodeKey();
        sqlite3_bind_blob(seekEqual, 1, encoded.data(), int(encoded.size()), SQLITE_STATIC);
        check(fetch(seekEqual, true), "direct get equal");
    }
    bool keyStep(size_t i)
    {
        if (i == 0)
            return fetch(first, true);
        sqlite3_bind_blob(next, 1, last.data(), int(last.size()), SQLITE_TRANSIENT);
        return fetch(next, true);
    }
    bool physicalStep(size_t i)
    {
        if (i == 0)
            return fetch(stepFirst, false);
        sqlite3_bind_int64(stepNext, 1, lastRecno);
        return fetch(stepNext, false);
    }
    void update(uint32_t i)
    {
        getEqual(i);
        rec[100] ^= 1;
        sqlite3_bind_int64(updateRow, 1, lastRecno);
        sqlite3_bind_blob(updateRow, 2, rec, kRecordLength, SQLITE_STATIC);
        check(run(updateRow) == SQLITE_DONE, "update");
    }
    void remove(uint32_t i)
    {
        getEqual(i);
        check(run(begin) == SQLITE_DONE, "begin");
        sqlite3_bind_int64(deleteRow, 1, lastRecno);
        check(run(deleteRow) == SQLITE_DONE, "delete");
        check(run(countDelete) == SQLITE_DONE, "count");
        check(run(commit) == SQLITE_DONE, "commit");
    }
};

// Runs op i of both sides for i = 0..n-1 in alternating chunks, so that both meet the same load
// on a shared machine; returns the µs/op of each side.
template <typename A, typename B>
std::pair<double, double> interleaved(size_t n, A engineOp, B directOp)
{
    constexpr size_t kChunk = 500;
    Clock::duration engine{}, direct{};
    for (size_t start = 0; start < n; start += kChunk) {
        const size_t end = std::min(n, start + kChunk);
        auto t0 = Clock::now();
        for (size_t i = start; i < end; ++i)
            engineOp(i);
        auto t1 = Clock::now();
        for (size_t i = start; i < end; ++i)
            directOp(i);
        auto t2 = Clock::now();
        engine += t1 - t0;
        direct += t2 - t1;
    }
    return {micros(engine, n), micros(direct, n)};
}

}  // namespace

int main(int argc, char** argv)
{
    const uint32_t n = argc > 1 ? uint32_t(std::strtoul(argv[1], nullptr, 10)) : 100000;
    check(n > 0, "N");
    const fs::path dir = fs::temp_directory_path() / ("bench_recman_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    std::vector<uint32_t> order(n);
    for (uint32_t i = 0; i < n; ++i)
        order[i] = i;
    std::mt19937 rng(7);
    std::shuffle(order.begin(), order.end(), rng);
    std::vector<uint32_t> lookups = order;
    std::shuffle(lookups.begin(), lookups.end(), rng);

    struct Row {
        const char* name;
        std::pair<double, double> us;
    };
    std::vector<Row> rows;
    {
        EngineSide e((dir / "engine.dat").string());
        DirectSide d((dir / "direct.db").string());
        rows.push_back({"insert", interleaved(n, [&](size_t i) { e.insert(order[i]); },
                                              [&](size_t i) { d.insert(order[i]); })});
        rows.push_back({"get equal", interleaved(n, [&](size_t i) { e.getEqual(lookups[i]); },
                                                 [&](size_t i) { d.getEqual(lookups[i]); })});
        rows.push_back({"get next scan", interleaved(n, [&](size_t i) { e.scanStep(i, GetFirst, GetNext); },
                                                     [&](size_t i) { check(d.keyStep(i), "direct scan"); })});
        check(e.after(GetNext) == 9 && !d.keyStep(n), "end of the key scan");
        rows.push_back({"step next scan", interleaved(n, [&](size_t i) { e.scanStep(i, StepFirst, StepNext); },
                                                      [&](size_t i) { check(d.physicalStep(i), "direct step"); })});
        check(e.after(StepNext) == 9 && !d.physicalStep(n), "end of the physical scan");
        std::shuffle(lookups.begin(), lookups.end(), rng);
        rows.push_back({"update", interleaved(n, [&](size_t i) { e.update(lookups[i]); },
                                              [&](size_t i) { d.update(lookups[i]); })});
        std::shuffle(lookups.begin(), lookups.end(), rng);
        rows.push_back({"delete", interleaved(n, [&](size_t i) { e.remove(lookups[i]); },
                                              [&](size_t i) { d.remove(lookups[i]); })});
    }
    fs::remove_all(dir);

    std::printf("N = %u records of %u bytes\n", n, unsigned(kRecordLength));
    std::printf("%-16s %14s %14s %8s\n", "operation", "BTRCALL us/op", "SQLite us/op", "ratio");
    for (const Row& r : rows)
        std::printf("%-16s %14.2f %14.2f %8.2f\n", r.name, r.us.first, r.us.second, r.us.first / r.us.second);
    return 0;
}
