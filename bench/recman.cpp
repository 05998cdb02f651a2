// Record manager benchmark: the job item file's workload (606-byte records, a unique key of
// zstring 5, zstring 26, unsigned 4, unsigned 4) through BTRCALL, against two independent designs
// doing the same work in the same process and run, with the same order-preserving key encoding:
//
//   SQLite   records(rid INTEGER PRIMARY KEY, data BLOB) and key0(k BLOB PRIMARY KEY, rid) WITHOUT
//            ROWID; WAL, synchronous=NORMAL; one prepared statement per step, each operation its
//            own transaction (insert and delete: BEGIN IMMEDIATE, two statements, COMMIT).
//   LMDB     one environment with databases records and key0; one write transaction per write,
//            a read transaction renewed and reset around every read. MDB_NOSYNC: like the other
//            two, a commit survives the process, not the machine.
//   store schema  SQLite with the record manager's own schema and statements: what the engine
//            adds above its own SQL.
//
// Update and delete first find the record by its key, on every side. Then, at a larger N, the
// reads again, to show how their cost grows with the file. Prints µs/op, the ratios of BTRCALL to
// the two references, and the process's peak memory.
//
//   bench_recman [N [BIG_N]]      (100000 and 1000000 by default; BIG_N 0 skips the second run)
#include "recman/FileSpec.cpp"
#include "recman/KeyCodec.cpp"
#include "recman/sqlite/SqliteSchema.cpp"

#include "bench/JobItemWorkload.h"

#include <lmdb.h>
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace bench;
namespace fs = std::filesystem;

// ---- SQLite helpers ----

struct Db {
    sqlite3* db = nullptr;
    std::vector<sqlite3_stmt*> statements;

    Db(const std::string& path, const std::string& schema)
    {
        check(sqlite3_open(path.c_str(), &db) == SQLITE_OK, "sqlite open");
        const std::string script = "PRAGMA journal_mode=WAL; BEGIN;" + schema + "COMMIT; PRAGMA synchronous=NORMAL;";
        check(sqlite3_exec(db, script.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, "schema");
        sqlite3_busy_timeout(db, recman::sqlite::BusyTimeoutMs);
    }
    ~Db()
    {
        for (sqlite3_stmt* st : statements)
            sqlite3_finalize(st);
        sqlite3_close(db);
    }
    sqlite3_stmt* prepare(const std::string& text)
    {
        sqlite3_stmt* st = nullptr;
        check(sqlite3_prepare_v3(db, text.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &st, nullptr) == SQLITE_OK,
              text.c_str());
        statements.push_back(st);
        return st;
    }
    static int run(sqlite3_stmt* st)
    {
        const int rc = sqlite3_step(st);
        sqlite3_reset(st);
        return rc;
    }
    void exec(const char* text) { check(sqlite3_exec(db, text, nullptr, nullptr, nullptr) == SQLITE_OK, text); }
};

void bindBlob(sqlite3_stmt* st, int i, const void* p, size_t n)
{
    sqlite3_bind_blob(st, i, p, int(n), SQLITE_STATIC);
}

// The reads both SQLite designs make, over statements each prepares: a Get Equal, a key scan and a
// physical scan, remembering the row and key last read.
struct SqliteReads : Side {
    Db d;
    sqlite3_stmt *seekEqual = nullptr, *first = nullptr, *next = nullptr, *stepFirst = nullptr, *stepNext = nullptr;
    uint8_t rec[kRecordLength];
    std::string encoded, last;
    int64_t lastRow = 0;
    const int dataColumn;  // the key follows the data
    const char* const name;

    SqliteReads(const std::string& path, const std::string& schema, int dataColumn, const char* name)
        : d(path, schema), dataColumn(dataColumn), name(name)
    {
    }
    bool fetch(sqlite3_stmt* st, bool withKey)
    {
        const bool row = sqlite3_step(st) == SQLITE_ROW;
        if (row) {
            lastRow = sqlite3_column_int64(st, 0);
            std::memcpy(rec, sqlite3_column_blob(st, dataColumn), size_t(sqlite3_column_bytes(st, dataColumn)));
            if (withKey)
                last.assign(static_cast<const char*>(sqlite3_column_blob(st, dataColumn + 1)),
                            size_t(sqlite3_column_bytes(st, dataColumn + 1)));
        }
        sqlite3_reset(st);
        return row;
    }
    void getEqual(uint32_t i) override
    {
        makeRecord(i, rec);
        encodeKey(rec, encoded);
        bindBlob(seekEqual, 1, encoded.data(), encoded.size());
        check(fetch(seekEqual, true), name);
    }
    bool keyStep(size_t i) override
    {
        if (i == 0)
            return fetch(first, true);
        sqlite3_bind_blob(next, 1, last.data(), int(last.size()), SQLITE_TRANSIENT);
        return fetch(next, true);
    }
    bool physicalStep(size_t i) override
    {
        if (i == 0)
            return fetch(stepFirst, false);
        sqlite3_bind_int64(stepNext, 1, lastRow);
        return fetch(stepNext, false);
    }
};

// ---- the minimal SQLite design ----

struct SqliteSide final : SqliteReads {
    sqlite3_stmt *begin, *commit, *insertRecord, *insertKey, *updateRecord, *deleteKey, *deleteRecord;

    explicit SqliteSide(const std::string& path)
        : SqliteReads(path,
                      "CREATE TABLE records(rid INTEGER PRIMARY KEY, data BLOB);"
                      "CREATE TABLE key0(k BLOB PRIMARY KEY, rid INTEGER) WITHOUT ROWID;",
                      1, "sqlite get equal")
    {
        const std::string join = "SELECT r.rid, r.data, k.k FROM key0 k JOIN records r ON r.rid=k.rid ";
        begin = d.prepare("BEGIN IMMEDIATE");
        commit = d.prepare("COMMIT");
        insertRecord = d.prepare("INSERT INTO records(data) VALUES(?1)");
        insertKey = d.prepare("INSERT INTO key0(k, rid) VALUES(?1, ?2)");
        seekEqual = d.prepare(join + "WHERE k.k=?1");
        first = d.prepare(join + "ORDER BY k.k LIMIT 1");
        next = d.prepare(join + "WHERE k.k>?1 ORDER BY k.k LIMIT 1");
        stepFirst = d.prepare("SELECT rid, data FROM records ORDER BY rid LIMIT 1");
        stepNext = d.prepare("SELECT rid, data FROM records WHERE rid>?1 ORDER BY rid LIMIT 1");
        updateRecord = d.prepare("UPDATE records SET data=?2 WHERE rid=?1");
        deleteKey = d.prepare("DELETE FROM key0 WHERE k=?1");
        deleteRecord = d.prepare("DELETE FROM records WHERE rid=?1");
    }

    void write(uint32_t i)
    {
        makeRecord(i, rec);
        encodeKey(rec, encoded);
        bindBlob(insertRecord, 1, rec, kRecordLength);
        check(Db::run(insertRecord) == SQLITE_DONE, "insert record");
        bindBlob(insertKey, 1, encoded.data(), encoded.size());
        sqlite3_bind_int64(insertKey, 2, sqlite3_last_insert_rowid(d.db));
        check(Db::run(insertKey) == SQLITE_DONE, "insert key");
    }
    void insert(uint32_t i) override
    {
        check(Db::run(begin) == SQLITE_DONE, "begin");
        write(i);
        check(Db::run(commit) == SQLITE_DONE, "commit");
    }
    void load(const std::vector<uint32_t>& order) override
    {
        for (size_t at = 0; at < order.size(); at += 10000) {
            d.exec("BEGIN");
            for (size_t i = at; i < std::min(order.size(), at + 10000); ++i)
                write(order[i]);
            d.exec("COMMIT");
        }
    }
    void update(uint32_t i) override
    {
        getEqual(i);
        rec[100] ^= 1;
        sqlite3_bind_int64(updateRecord, 1, lastRow);
        bindBlob(updateRecord, 2, rec, kRecordLength);
        check(Db::run(updateRecord) == SQLITE_DONE, "update");
    }
    void remove(uint32_t i) override
    {
        getEqual(i);
        check(Db::run(begin) == SQLITE_DONE, "begin");
        bindBlob(deleteKey, 1, last.data(), last.size());
        check(Db::run(deleteKey) == SQLITE_DONE, "delete key");
        sqlite3_bind_int64(deleteRecord, 1, lastRow);
        check(Db::run(deleteRecord) == SQLITE_DONE, "delete record");
        check(Db::run(commit) == SQLITE_DONE, "commit");
    }
};

// ---- LMDB ----

struct LmdbSide final : Side {
    MDB_env* env = nullptr;
    MDB_dbi records = 0, key0 = 0;
    MDB_txn* reader = nullptr;
    MDB_cursor *keyCursor = nullptr, *recordCursor = nullptr;
    uint8_t rec[kRecordLength];
    std::string encoded, last;
    uint64_t nextRid = 0, lastRid = 0;

    explicit LmdbSide(const std::string& dir)
    {
        fs::create_directories(dir);
        check(mdb_env_create(&env) == 0, "mdb env");
        mdb_env_set_maxdbs(env, 2);
        mdb_env_set_mapsize(env, size_t(16) << 30);
        check(mdb_env_open(env, dir.c_str(), MDB_NOSYNC, 0644) == 0, "mdb open");
        MDB_txn* txn = nullptr;
        check(mdb_txn_begin(env, nullptr, 0, &txn) == 0, "mdb txn");
        check(mdb_dbi_open(txn, "records", MDB_CREATE | MDB_INTEGERKEY, &records) == 0, "mdb records");
        check(mdb_dbi_open(txn, "key0", MDB_CREATE, &key0) == 0, "mdb key0");
        check(mdb_txn_commit(txn) == 0, "mdb commit");
        check(mdb_txn_begin(env, nullptr, MDB_RDONLY, &reader) == 0, "mdb reader");
        check(mdb_cursor_open(reader, key0, &keyCursor) == 0, "mdb cursor");
        check(mdb_cursor_open(reader, records, &recordCursor) == 0, "mdb cursor");
        mdb_txn_reset(reader);
    }
    ~LmdbSide() override
    {
        mdb_cursor_close(keyCursor);
        mdb_cursor_close(recordCursor);
        mdb_txn_abort(reader);
        mdb_env_close(env);
    }

    static MDB_val val(const void* p, size_t n) { return MDB_val{n, const_cast<void*>(p)}; }

    // Runs `read` in the renewed read transaction.
    template <typename Fn>
    bool reading(Fn read)
    {
        check(mdb_txn_renew(reader) == 0, "mdb renew");
        mdb_cursor_renew(reader, keyCursor);
        mdb_cursor_renew(reader, recordCursor);
        const bool found = read();
        mdb_txn_reset(reader);
        return found;
    }
    bool record(MDB_txn* txn, uint64_t rid)
    {
        MDB_val k = val(&rid, sizeof rid), v;
        if (mdb_get(txn, records, &k, &v) != 0)
            return false;
        std::memcpy(rec, v.mv_data, v.mv_size);
        lastRid = rid;
        return true;
    }
    void write(MDB_txn* txn, uint32_t i)
    {
        makeRecord(i, rec);
        encodeKey(rec, encoded);
        const uint64_t rid = ++nextRid;
        MDB_val k = val(&rid, sizeof rid), v = val(rec, kRecordLength);
        check(mdb_put(txn, records, &k, &v, MDB_APPEND) == 0, "mdb put record");
        MDB_val kk = val(encoded.data(), encoded.size()), kv = val(&rid, sizeof rid);
        check(mdb_put(txn, key0, &kk, &kv, MDB_NOOVERWRITE) == 0, "mdb put key");
    }
    template <typename Fn>
    void writing(Fn fn)
    {
        MDB_txn* txn = nullptr;
        check(mdb_txn_begin(env, nullptr, 0, &txn) == 0, "mdb write txn");
        fn(txn);
        check(mdb_txn_commit(txn) == 0, "mdb write commit");
    }
    void insert(uint32_t i) override
    {
        writing([&](MDB_txn* txn) { write(txn, i); });
    }
    void load(const std::vector<uint32_t>& order) override
    {
        for (size_t at = 0; at < order.size(); at += 10000)
            writing([&](MDB_txn* txn) {
                for (size_t i = at; i < std::min(order.size(), at + 10000); ++i)
                    write(txn, order[i]);
            });
    }
    bool keyFound(MDB_val& k, MDB_val& v)
    {
        last.assign(static_cast<const char*>(k.mv_data), k.mv_size);
        uint64_t rid;
        std::memcpy(&rid, v.mv_data, sizeof rid);
        return record(reader, rid);
    }
    void getEqual(uint32_t i) override
    {
        makeRecord(i, rec);
        encodeKey(rec, encoded);
        check(reading([&] {
                  MDB_val k = val(encoded.data(), encoded.size()), v;
                  return mdb_get(reader, key0, &k, &v) == 0 && keyFound(k, v);
              }),
              "mdb get equal");
    }
    bool keyStep(size_t i) override
    {
        return reading([&] {
            MDB_val k = val(last.data(), last.size()), v;
            if (i == 0)
                return mdb_cursor_get(keyCursor, &k, &v, MDB_FIRST) == 0 && keyFound(k, v);
            if (mdb_cursor_get(keyCursor, &k, &v, MDB_SET_RANGE) != 0)
                return false;
            if (k.mv_size == last.size() && std::memcmp(k.mv_data, last.data(), last.size()) == 0 &&
                mdb_cursor_get(keyCursor, &k, &v, MDB_NEXT) != 0)
                return false;
            return keyFound(k, v);
        });
    }
    bool physicalStep(size_t i) override
    {
        return reading([&] {
            uint64_t from = i == 0 ? 0 : lastRid + 1;
            MDB_val k = val(&from, sizeof from), v;
            if (mdb_cursor_get(recordCursor, &k, &v, MDB_SET_RANGE) != 0)
                return false;
            std::memcpy(&lastRid, k.mv_data, sizeof lastRid);
            std::memcpy(rec, v.mv_data, v.mv_size);
            return true;
        });
    }
    void update(uint32_t i) override
    {
        getEqual(i);
        rec[100] ^= 1;
        writing([&](MDB_txn* txn) {
            MDB_val k = val(&lastRid, sizeof lastRid), v = val(rec, kRecordLength);
            check(mdb_put(txn, records, &k, &v, 0) == 0, "mdb update");
        });
    }
    void remove(uint32_t i) override
    {
        getEqual(i);
        writing([&](MDB_txn* txn) {
            MDB_val kk = val(last.data(), last.size());
            check(mdb_del(txn, key0, &kk, nullptr) == 0, "mdb delete key");
            MDB_val k = val(&lastRid, sizeof lastRid);
            check(mdb_del(txn, records, &k, nullptr) == 0, "mdb delete record");
        });
    }
};

// ---- SQLite with the store's own schema and statements ----

struct StoreSchemaSide final : SqliteReads {
    recman::sqlite::SqlText sql = recman::sqlite::SqlText::forSpec(jobSpec());
    sqlite3_stmt *insertRow, *updateRow, *deleteRow, *begin, *commit, *countInsert, *countDelete;
    int64_t nextRecno = 0;

    static std::string schema()
    {
        std::string script;
        for (const std::string& s : recman::sqlite::schemaStatements(jobSpec()))
            script += s + ";";
        return script;
    }

    explicit StoreSchemaSide(const std::string& path) : SqliteReads(path, schema(), 2, "store schema get equal")
    {
        seekEqual = d.prepare(sql.seekKey[0][size_t(recman::Seek::Equal)]);
        first = d.prepare(sql.seekKey[0][size_t(recman::Seek::First)]);
        next = d.prepare(sql.seekKey[0][size_t(recman::Seek::Next)]);
        stepFirst = d.prepare(sql.physicalFirst);
        stepNext = d.prepare(sql.physicalNext);
        insertRow = d.prepare(sql.update);
        updateRow = d.prepare(sql.updateData);
        deleteRow = d.prepare(sql.remove);
        begin = d.prepare(recman::sqlite::sql::Begin);
        commit = d.prepare(recman::sqlite::sql::Commit);
        countInsert = d.prepare(recman::sqlite::sql::AppendCounter);
        countDelete = d.prepare(recman::sqlite::sql::CountDelete);
    }

    void insert(uint32_t i) override
    {
        makeRecord(i, rec);
        encodeKey(rec, encoded);
        check(Db::run(begin) == SQLITE_DONE, "begin");
        sqlite3_bind_int64(insertRow, 1, ++nextRecno);
        sqlite3_bind_int64(insertRow, 2, 1);
        bindBlob(insertRow, 3, rec, kRecordLength);
        bindBlob(insertRow, 4, encoded.data(), encoded.size());
        sqlite3_bind_int64(insertRow, 5, 0);
        check(Db::run(insertRow) == SQLITE_DONE, "insert");
        sqlite3_bind_int64(countInsert, 1, nextRecno + 1);
        sqlite3_bind_int64(countInsert, 2, nextRecno);
        check(Db::run(countInsert) == SQLITE_DONE, "count");
        check(Db::run(commit) == SQLITE_DONE, "commit");
    }
    void update(uint32_t i) override
    {
        getEqual(i);
        rec[100] ^= 1;
        sqlite3_bind_int64(updateRow, 1, lastRow);
        sqlite3_bind_int64(updateRow, 2, 2);
        bindBlob(updateRow, 3, rec, kRecordLength);
        check(Db::run(updateRow) == SQLITE_DONE, "update");
    }
    void remove(uint32_t i) override
    {
        getEqual(i);
        check(Db::run(begin) == SQLITE_DONE, "begin");
        sqlite3_bind_int64(deleteRow, 1, lastRow);
        check(Db::run(deleteRow) == SQLITE_DONE, "delete");
        check(Db::run(countDelete) == SQLITE_DONE, "count");
        check(Db::run(commit) == SQLITE_DONE, "commit");
    }
};


void printRows(const char* title, const std::vector<Row>& rows)
{
    std::printf("%s\n", title);
    std::printf("%-15s %9s %9s %9s %8s %8s %13s\n", "operation", "tarsel", "SQLite", "LMDB", "/SQLite", "/LMDB",
                "store schema");
    for (const Row& r : rows) {
        std::printf("%-15s %9.2f %9.2f %9.2f %8.2f %8.2f", r.name.c_str(), r.us[0], r.us[1], r.us[2], r.us[0] / r.us[1],
                    r.us[0] / r.us[2]);
        if (r.us.size() > 3)
            std::printf(" %13.2f", r.us[3]);
        std::printf("\n");
    }
}

double peakMegabytes()
{
    struct rusage u {};
    getrusage(RUSAGE_SELF, &u);
    return double(u.ru_maxrss) / 1024.0;
}


}  // namespace

int main(int argc, char** argv)
{
    const uint32_t n = argc > 1 ? uint32_t(std::strtoul(argv[1], nullptr, 10)) : 100000;
    const uint32_t bigN = argc > 2 ? uint32_t(std::strtoul(argv[2], nullptr, 10)) : 1000000;
    check(n > 0, "N");
    const fs::path dir = fs::temp_directory_path() / ("bench_recman_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    std::mt19937 rng(7);

    std::vector<Row> rows;
    {
        const std::vector<uint32_t> order = shuffled(n, rng);
        std::vector<uint32_t> lookups = shuffled(n, rng);
        EngineSide e((dir / "engine.dat").string());
        SqliteSide q((dir / "sqlite.db").string());
        LmdbSide l((dir / "lmdb").string());
        StoreSchemaSide t((dir / "schema.db").string());
        const std::vector<Side*> sides = {&e, &q, &l, &t};
        allRows(n, sides, order, lookups, rng, rows);
    }
    char title[160];
    std::snprintf(title, sizeof title, "N = %u records of %u bytes, %u-byte key; us/op", n, unsigned(kRecordLength),
                  unsigned(kKeyWidth));
    printRows(title, rows);
    std::printf("peak memory %.1f MB\n", peakMegabytes());
    std::fflush(stdout);

    if (bigN > 0) {
        std::vector<Row> big;
        {
            const std::vector<uint32_t> order = shuffled(bigN, rng);
            const std::vector<uint32_t> lookups = shuffled(bigN, rng);
            EngineSide e((dir / "engine-big.dat").string());
            SqliteSide q((dir / "sqlite-big.db").string());
            LmdbSide l((dir / "lmdb-big").string());
            const std::vector<Side*> sides = {&e, &q, &l};
            for (Side* s : sides)
                s->load(order);
            readRows(bigN, sides, lookups, big);
        }
        std::snprintf(title, sizeof title, "N = %u, reads only; us/op", bigN);
        printRows(title, big);
        std::printf("peak memory %.1f MB\n", peakMegabytes());
    }
    fs::remove_all(dir);
    return 0;
}
