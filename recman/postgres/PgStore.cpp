#include "recman/postgres/PgStore.h"

#include "recman/postgres/PgConnection.h"
#include "recman/postgres/PgFile.h"
#include "recman/postgres/PgTables.h"
#include "recman/postgres/ServerName.h"

#include <cstdlib>

namespace recman::postgres {

namespace {

// Files, by name, with their counters: records kept, highest record number given, the
// duplicate-rank counter, and the end of the last read-ahead lease taken on the file; and the
// sessions' read-ahead leases (PgReadAhead.cpp), which need not outlive a server crash. Key 0 of
// the two-key advisory locks names a file by its name's hash while it is created or replaced.
constexpr const char* Schema =
    "SELECT pg_advisory_xact_lock(0, 0);"
    "CREATE TABLE IF NOT EXISTS tarsel_files(id serial PRIMARY KEY, name text UNIQUE NOT NULL, "
    "spec bytea NOT NULL, count bigint NOT NULL DEFAULT 0, nextrec bigint NOT NULL DEFAULT 0, "
    "seq bigint NOT NULL DEFAULT 0, leased_until timestamptz NOT NULL DEFAULT '-infinity');"
    // A database made before read-ahead gets its column; the table is locked only then.
    "DO $$ BEGIN IF NOT EXISTS (SELECT 1 FROM pg_attribute WHERE attrelid='tarsel_files'::regclass AND "
    "attname='leased_until' AND NOT attisdropped) THEN ALTER TABLE tarsel_files ADD COLUMN leased_until "
    "timestamptz NOT NULL DEFAULT '-infinity'; END IF; END $$;"
    "CREATE UNLOGGED TABLE IF NOT EXISTS tarsel_leases(file int NOT NULL, session int NOT NULL, "
    "until timestamptz NOT NULL, PRIMARY KEY (file, session));"
    // How long a write to file f must wait for other sessions' leases, taken under the file's
    // lease gate (LeaseGate) and on what has committed by the time it is asked (a function's
    // own snapshot).
    "CREATE OR REPLACE FUNCTION tarsel_readers(f int) RETURNS bigint VOLATILE LANGUAGE plpgsql AS $$ BEGIN "
    "PERFORM pg_advisory_xact_lock_shared(f, -2); "
    "RETURN COALESCE((SELECT CEIL(EXTRACT(EPOCH FROM max(until) - clock_timestamp()) * 1000000)::bigint "
    "FROM tarsel_leases WHERE file=f AND session<>pg_backend_pid() AND until>clock_timestamp()), 0); END $$";

// An Open that named a file on the server: its id and creation block as read.
class PgTicket final : public OpenTicket {
public:
    PgTicket(std::shared_ptr<Connection> conn, std::string name, int64_t id, FileSpec spec)
        : m_conn(std::move(conn)), m_name(std::move(name)), m_id(id), m_spec(std::move(spec))
    {
    }
    const std::string& key() const override { return m_name; }
    bool writable() const override { return true; }
    Status open(std::unique_ptr<StoreFile>& out) override
    {
        out = std::make_unique<PgFile>(m_conn, m_id, std::move(m_spec));
        return StatusOk;
    }

private:
    std::shared_ptr<Connection> m_conn;
    std::string m_name;
    int64_t m_id;
    FileSpec m_spec;
};

}  // namespace

PgStore::PgStore(std::string conninfo) : m_conninfo(std::move(conninfo)) {}

PgStore::~PgStore() = default;

std::string PgStore::nameOf(const std::string& path) const
{
    const char* root = std::getenv("TARSEL_SERVER_ROOT");
    return serverName(path, root ? root : "");
}

std::shared_ptr<Connection> PgStore::connection()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_conn && m_conn->ok())
        return m_conn;
    auto conn = std::make_shared<Connection>(m_conninfo);
    if (!conn->ok())
        return nullptr;
    // The session hears no notices: the schema's "already exists" ones would reach stderr.
    const std::string setUp = "SET client_min_messages = warning; BEGIN; " + std::string(Schema);
    if (conn->begin(setUp) != StatusOk || conn->commit() != StatusOk)
        return nullptr;
    m_conn = conn;
    return m_conn;
}

Status PgStore::resolve(const std::string& path, bool, std::unique_ptr<OpenTicket>& out)
{
    const std::shared_ptr<Connection> conn = connection();
    if (!conn)
        return StatusStoreFailure;
    std::string name = nameOf(path);
    Params p;
    Result r;
    if (const Status s = conn->run("SELECT id, spec FROM tarsel_files WHERE name=$1", p.bytes(name), r); s != StatusOk)
        return s;
    if (r.rows() == 0)
        return StatusFileNotFound;
    std::string block;
    FileSpec spec;
    if (const Status s = specOf(r, 1, block, spec); s != StatusOk)
        return s;
    out = std::make_unique<PgTicket>(conn, std::move(name), r.integer(0, 0), std::move(spec));
    return StatusOk;
}

Status PgStore::create(const std::string& path, const FileSpec& spec, bool replace)
{
    const std::shared_ptr<Connection> conn = connection();
    if (!conn)
        return StatusStoreFailure;
    const std::string name = nameOf(path);
    // The name's lock keeps two creates of one name apart until commit.
    if (const Status s = conn->begin("BEGIN"); s != StatusOk)
        return s;
    Params p;
    Result r;
    Status s = conn->run("SELECT pg_advisory_xact_lock(0, hashtext($1))", p.bytes(name));
    if (s == StatusOk)
        s = conn->run("SELECT id FROM tarsel_files WHERE name=$1", p, r);
    if (s == StatusOk && r.rows() != 0) {
        const int64_t old = r.integer(0, 0);
        Params q;
        q.integer(old);
        bool open = false;
        if (!replace)
            s = StatusFileExists;
        else if ((s = openAnywhere(*conn, old, open)) == StatusOk && open)
            s = StatusCreateFailed;
        else if (s == StatusOk && (s = conn->script("DROP TABLE " + tableOf(old))) == StatusOk)
            s = conn->run("DELETE FROM tarsel_files WHERE id=$1", q);
    }
    if (s == StatusOk) {
        Params q;
        const std::string block = spec.statBlock(0);
        s = conn->run("INSERT INTO tarsel_files(name, spec) VALUES($1, $2) RETURNING id", q.bytes(name).bytes(block), r);
        if (s == StatusOk)
            s = conn->script(createTable(r.integer(0, 0), spec));
    }
    if (s != StatusOk) {
        conn->rollback();
        return s;
    }
    return conn->commit();
}

std::string createTable(int64_t id, const FileSpec& spec)
{
    const std::string t = tableOf(id);
    const size_t autos = sqlite::autoIncrementFields(spec).size();
    std::string s = "CREATE TABLE " + t + "(n bigint PRIMARY KEY, v bigint NOT NULL, d bytea NOT NULL";
    for (size_t i = 0; i < spec.keys.size(); ++i)
        s += ", k" + std::to_string(i) + " bytea, s" + std::to_string(i) + " bigint";
    for (size_t j = 0; j < autos; ++j)
        s += ", a" + std::to_string(j) + " bigint";
    s += ");";
    for (size_t i = 0; i < spec.keys.size(); ++i) {
        std::string k = "k", si = "s";
        k += std::to_string(i);
        si += std::to_string(i);
        const bool dup = spec.keys[i].duplicates;
        s += std::string(dup ? "CREATE INDEX " : "CREATE UNIQUE INDEX ") + t + "_x" + std::to_string(i) + " ON " + t +
             "(" + k + (dup ? ", " + si : std::string()) + ");";
    }
    for (size_t j = 0; j < autos; ++j)
        s += "CREATE INDEX " + t + "_y" + std::to_string(j) + " ON " + t + "(a" + std::to_string(j) + ");";
    return s;
}

Status specOf(const Result& r, int col, std::string& block, FileSpec& spec)
{
    r.bytes(0, col, block);
    return FileSpec::parse(reinterpret_cast<const uint8_t*>(block.data()), uint32_t(block.size()), spec) == StatusOk
               ? StatusOk
               : StatusNotEngineFile;
}

Status openAnywhere(Connection& conn, int64_t id, bool& open)
{
    // The transaction-scoped test conflicts with this session's own session locks too.
    Params p;
    Result held;
    p.integer(id);
    const Status s = conn.run("SELECT 1 FROM pg_locks WHERE locktype='advisory' AND classid=$1::oid AND objid=0 "
                              "AND objsubid=2 AND database=(SELECT oid FROM pg_database WHERE "
                              "datname=current_database())",
                              p, held);
    open = s == StatusOk && held.rows() != 0;
    return s;
}

}  // namespace recman::postgres
