// Server store benchmark: the job item file's workload through BTRCALL on the PostgreSQL server
// that TARSEL_SERVER names, and the same work done with raw libpq on a minimal schema of its own
// (a records table and a key table, one prepared statement and one round trip per operation).
// Prints µs/op for both and their ratio, and the key scan's cost per record against one round
// trip per record.
//
//   tools/with-server.sh bench_server [N]      (N records, 20000 by default)
#include "recman/FileSpec.cpp"
#include "recman/KeyCodec.cpp"

#include "bench/JobItemWorkload.h"

#include <libpq-fe.h>

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>

namespace {

using namespace bench;

// ---- raw libpq on a minimal schema ----

class RawServer final : public Side {
public:
    explicit RawServer(const char* conninfo) : m_conn(PQconnectdb(conninfo))
    {
        check(PQstatus(m_conn) == CONNECTION_OK, "connect");
        exec("SET client_min_messages = warning");
        exec("DROP TABLE IF EXISTS bench_key0, bench_records");
        exec("CREATE TABLE bench_records(rid bigserial PRIMARY KEY, data bytea NOT NULL)");
        exec("CREATE TABLE bench_key0(k bytea PRIMARY KEY, rid bigint NOT NULL)");
        prepare("insert", "WITH r AS (INSERT INTO bench_records(data) VALUES($2) RETURNING rid) "
                          "INSERT INTO bench_key0 SELECT $1, rid FROM r", 2);
        prepare("equal", "SELECT r.rid, r.data, k.k FROM bench_key0 k JOIN bench_records r USING (rid) WHERE k.k=$1", 1);
        prepare("first", "SELECT r.rid, r.data, k.k FROM bench_key0 k JOIN bench_records r USING (rid) "
                         "ORDER BY k.k LIMIT 1", 0);
        prepare("next", "SELECT r.rid, r.data, k.k FROM bench_key0 k JOIN bench_records r USING (rid) "
                        "WHERE k.k>$1 ORDER BY k.k LIMIT 1", 1);
        prepare("stepFirst", "SELECT rid, data FROM bench_records ORDER BY rid LIMIT 1", 0);
        prepare("stepNext", "SELECT rid, data FROM bench_records WHERE rid>$1 ORDER BY rid LIMIT 1", 1);
        prepare("update", "UPDATE bench_records SET data=$2 WHERE rid=$1", 2);
        prepare("delete", "WITH d AS (DELETE FROM bench_key0 WHERE k=$1 RETURNING rid) "
                          "DELETE FROM bench_records WHERE rid IN (SELECT rid FROM d)", 1);
    }
    ~RawServer() override
    {
        exec("DROP TABLE IF EXISTS bench_key0, bench_records");
        PQfinish(m_conn);
    }

    void insert(uint32_t i) override
    {
        makeRecord(i, rec);
        encodeKey(rec, encoded);
        run("insert", {bytes(encoded), bytes(rec, kRecordLength)}, PGRES_COMMAND_OK);
    }
    void getEqual(uint32_t i) override
    {
        makeRecord(i, rec);
        encodeKey(rec, encoded);
        check(fetch("equal", {bytes(encoded)}), "raw get equal");
    }
    bool keyStep(size_t i) override { return i == 0 ? fetch("first", {}) : fetch("next", {bytes(last)}); }
    bool physicalStep(size_t i) override
    {
        const uint64_t be = toBigEndian(uint64_t(lastRecno));
        return i == 0 ? fetch("stepFirst", {}) : fetch("stepNext", {bytes(&be, 8)});
    }
    void update(uint32_t i) override
    {
        getEqual(i);
        rec[100] ^= 1;
        const uint64_t be = toBigEndian(uint64_t(lastRecno));
        run("update", {bytes(&be, 8), bytes(rec, kRecordLength)}, PGRES_COMMAND_OK);
    }
    // A delete of the record just read, as BTRCALL deletes the current record: the same two
    // operations as the engine's side.
    void remove(uint32_t i) override
    {
        getEqual(i);
        run("delete", {bytes(encoded)}, PGRES_COMMAND_OK);
    }

private:
    struct Param {
        const char* data;
        int length;
    };
    static Param bytes(const std::string& s) { return {s.data(), int(s.size())}; }
    static Param bytes(const void* p, int n) { return {static_cast<const char*>(p), n}; }
    static uint64_t toBigEndian(uint64_t v)
    {
        uint64_t out = 0;
        for (int b = 0; b < 8; ++b)
            out |= ((v >> (8 * b)) & 0xFF) << (8 * (7 - b));
        return out;
    }

    void exec(const char* text)
    {
        PGresult* r = PQexec(m_conn, text);
        check(PQresultStatus(r) == PGRES_COMMAND_OK, text);
        PQclear(r);
    }
    void prepare(const char* name, const char* text, int params)
    {
        // Every parameter is bytea, except a record number, which the server takes as int8 in
        // binary (big-endian) form.
        Oid types[2] = {17, 17};
        if (std::string(name) == "stepNext" || std::string(name) == "update")
            types[0] = 20;
        PGresult* r = PQprepare(m_conn, name, text, params, types);
        check(PQresultStatus(r) == PGRES_COMMAND_OK, text);
        PQclear(r);
    }
    PGresult* send(const char* name, std::initializer_list<Param> params)
    {
        const char* values[2];
        int lengths[2], formats[2] = {1, 1};
        int n = 0;
        for (const Param& p : params) {
            values[n] = p.data;
            lengths[n++] = p.length;
        }
        return PQexecPrepared(m_conn, name, n, values, lengths, formats, 1);
    }
    void run(const char* name, std::initializer_list<Param> params, ExecStatusType expected)
    {
        PGresult* r = send(name, params);
        check(PQresultStatus(r) == expected, name);
        PQclear(r);
    }
    // Reads one row (rid, data[, key]) into rec; false when there is none.
    bool fetch(const char* name, std::initializer_list<Param> params)
    {
        PGresult* r = send(name, params);
        check(PQresultStatus(r) == PGRES_TUPLES_OK, name);
        const bool row = PQntuples(r) == 1;
        if (row) {
            uint64_t be;
            std::memcpy(&be, PQgetvalue(r, 0, 0), 8);
            lastRecno = int64_t(toBigEndian(be));
            std::memcpy(rec, PQgetvalue(r, 0, 1), size_t(PQgetlength(r, 0, 1)));
            if (PQnfields(r) > 2)
                last.assign(PQgetvalue(r, 0, 2), size_t(PQgetlength(r, 0, 2)));
        }
        PQclear(r);
        return row;
    }
    PGconn* m_conn;
    uint8_t rec[kRecordLength];
    std::string encoded, last;
    int64_t lastRecno = 0;
};

}  // namespace

int main(int argc, char** argv)
{
    const char* conninfo = std::getenv("TARSEL_SERVER");
    if (!conninfo || !*conninfo) {
        std::fprintf(stderr, "bench_server: TARSEL_SERVER names no server (run it through tools/with-server.sh)\n");
        return 2;
    }
    const uint32_t n = argc > 1 ? uint32_t(std::strtoul(argv[1], nullptr, 10)) : 20000;
    check(n > 0, "N");
    std::mt19937 rng(7);
    const std::vector<uint32_t> order = shuffled(n, rng);
    std::vector<uint32_t> lookups = shuffled(n, rng);
    std::vector<Row> rows;
    {
        EngineSide e("/bench/server/JOBITEMS.DAT");
        RawServer raw(conninfo);
        const std::vector<Side*> sides = {&e, &raw};
        allRows(n, sides, order, lookups, rng, rows);
    }
    std::printf("server store over loopback, N = %u records of %u bytes; us/op (raw libpq: one statement and one "
                "round trip per operation)\n", n, unsigned(kRecordLength));
    std::printf("%-15s %9s %11s %8s\n", "operation", "tarsel", "raw libpq", "ratio");
    for (const Row& r : rows)
        std::printf("%-15s %9.2f %11.2f %8.2f\n", r.name.c_str(), r.us[0], r.us[1], r.us[0] / r.us[1]);
    return 0;
}
