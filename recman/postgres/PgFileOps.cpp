// Whole-file operations of the server store: a file is its row in tarsel_files (name, spec,
// counters) and its record table r<id>.
#include "recman/postgres/PgStore.h"

#include "core/Platform.h"
#include "recman/postgres/PgConnection.h"
#include "recman/postgres/PgTables.h"
#include "recman/sqlite/SqliteSchema.h"

#include <algorithm>

namespace recman::postgres {

namespace {

// A transaction that rolls back unless committed.
class Transaction {
public:
    explicit Transaction(Connection& conn) : m_conn(conn) {}
    ~Transaction()
    {
        if (m_open)
            m_conn.rollback();
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    Status begin(const std::string& text)
    {
        const Status s = m_conn.begin(text);
        m_open = s == StatusOk;
        return s;
    }
    Status commit()
    {
        m_open = false;
        return m_conn.commit();
    }

private:
    Connection& m_conn;
    bool m_open = false;
};

// Keeps creates, copies, moves and deletes of one name apart until the transaction ends.
Status lockName(Connection& conn, const std::string& name)
{
    Params p;
    return conn.run("SELECT pg_advisory_xact_lock(0, hashtext($1))", p.bytes(name));
}

// The id of the file named `name`, or 0 when there is none.
Status fileId(Connection& conn, const std::string& name, int64_t& id)
{
    Params p;
    Result r;
    const Status s = conn.run("SELECT id FROM tarsel_files WHERE name=$1", p.bytes(name), r);
    id = s == StatusOk && r.rows() != 0 ? r.integer(0, 0) : 0;
    return s;
}

// Drops file `id` unless a session has it open.
Status dropFile(Connection& conn, int64_t id)
{
    bool open = false;
    if (const Status s = openAnywhere(conn, id, open); s != StatusOk || open)
        return open ? StatusFileInUse : s;
    if (const Status s = conn.script("DROP TABLE " + tableOf(id)); s != StatusOk)
        return s;
    Params p;
    return conn.run("DELETE FROM tarsel_files WHERE id=$1", p.integer(id));
}

std::string columnList(const char* prefix, size_t count)
{
    std::string t;
    for (size_t i = 0; i < count; ++i)
        t += std::string(", ") + prefix + std::to_string(i);
    return t;
}

// File `id` as the check sees it, inside the check's transaction.
class CheckedPgFile final : public CheckedFile {
public:
    CheckedPgFile(Connection& conn, int64_t id, FileSpec spec)
        : m_conn(conn), m_id(id), m_table(tableOf(id)), m_spec(std::move(spec)),
          m_autos(sqlite::autoIncrementFields(m_spec).size())
    {
    }

    const FileSpec& spec() const override { return m_spec; }

    // The server keeps its tables crash-safe itself; a repair rebuilds the file's indexes anyway,
    // since the key entries it is about to fix live in them.
    Status integrity(bool repair, RERecordFileCheck&) override
    {
        return repair ? m_conn.script("REINDEX TABLE " + m_table) : StatusOk;
    }

    Status counters(int64_t& kept, int64_t& highestGiven) override
    {
        Params p;
        Result r;
        if (const Status s = m_conn.run("SELECT count, nextrec FROM tarsel_files WHERE id=$1", p.integer(m_id), r);
            s != StatusOk)
            return s;
        if (r.rows() != 1)
            return StatusStoreFailure;
        kept = r.integer(0, 0);
        highestGiven = r.integer(0, 1);
        return StatusOk;
    }

    Status setCounters(int64_t kept, int64_t highestGiven) override
    {
        Params p;
        return m_conn.run("UPDATE tarsel_files SET count=$1, nextrec=$2 WHERE id=$3",
                          p.integer(kept).integer(highestGiven).integer(m_id));
    }

    Status walk(const std::function<bool(const StoredRecord&)>& visit) override
    {
        const size_t keys = m_spec.keys.size();
        Result r;
        if (const Status s = m_conn.run("SELECT n, d" + columnList("k", keys) + columnList("a", m_autos) + " FROM " +
                                            m_table + " ORDER BY n",
                                        Params(), r);
            s != StatusOk)
            return s;
        StoredRecord rec;
        for (int row = 0; row < r.rows(); ++row) {
            rec.recno = r.integer(row, 0);
            r.bytes(row, 1, rec.data);
            rec.keys.assign(keys, std::nullopt);
            for (size_t i = 0; i < keys; ++i)
                if (!r.isNull(row, int(2 + i)))
                    r.bytes(row, int(2 + i), rec.keys[i].emplace());
            rec.autoValues.assign(m_autos, std::nullopt);
            for (size_t j = 0; j < m_autos; ++j)
                if (!r.isNull(row, int(2 + keys + j)))
                    rec.autoValues[j] = r.integer(row, int(2 + keys + j));
            if (!visit(rec))
                break;
        }
        return StatusOk;
    }

    Status setKeyEntry(int64_t recno, size_t key, const std::optional<std::string>& entry) override
    {
        int64_t rank = 0;
        Params p;
        Result r;
        if (entry && m_spec.keys[key].duplicates) {
            if (const Status s = m_conn.run("UPDATE tarsel_files SET seq=seq+1 WHERE id=$1 RETURNING seq",
                                            p.integer(m_id), r);
                s != StatusOk)
                return s;
            rank = r.integer(0, 0);
        }
        p.clear();
        if (entry)
            p.bytes(*entry);
        else
            p.null();
        // A unique key that already holds the value refuses it; the savepoint keeps the check's
        // transaction going.
        if (const Status s = m_conn.script("SAVEPOINT entry"); s != StatusOk)
            return s;
        const std::string k = std::to_string(key);
        const Status s = m_conn.run("UPDATE " + m_table + " SET k" + k + "=$1, s" + k + "=$2 WHERE n=$3",
                                    p.integer(rank).integer(recno));
        return m_conn.script(s == StatusOk ? "RELEASE SAVEPOINT entry" : "ROLLBACK TO SAVEPOINT entry") == StatusOk ? s
                                                                                                                : StatusStoreFailure;
    }

    Status setAutoValue(int64_t recno, size_t field, int64_t value) override
    {
        Params p;
        return m_conn.run("UPDATE " + m_table + " SET a" + std::to_string(field) + "=$1 WHERE n=$2",
                          p.integer(value).integer(recno));
    }

private:
    Connection& m_conn;
    const int64_t m_id;
    const std::string m_table;
    FileSpec m_spec;
    size_t m_autos;
};

}  // namespace

REPathState PgStore::lookUp(const std::string& path)
{
    const std::shared_ptr<Connection> conn = connection();
    int64_t id = 0;
    if (!conn || fileId(*conn, nameOf(path), id) != StatusOk)
        return REPathState::Invalid;
    return id != 0 ? REPathState::Exists : REPathState::Missing;
}

Status PgStore::search(const std::string& directory, const std::string& pattern, std::vector<std::string>& names)
{
    const std::shared_ptr<Connection> conn = connection();
    if (!conn)
        return StatusStoreFailure;
    std::string folder = nameOf(directory.empty() ? "." : directory);
    if (folder.back() != '/')
        folder.push_back('/');
    Params p;
    Result r;
    if (const Status s = conn->run("SELECT name FROM tarsel_files WHERE starts_with(name, $1::text)", p.bytes(folder), r);
        s != StatusOk)
        return s;
    std::string name;
    for (int row = 0; row < r.rows(); ++row) {
        r.bytes(row, 0, name);
        name.erase(0, folder.size());
        if (name.find('/') == std::string::npos && ::platform::MatchesWildcard(name, pattern))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return StatusOk;
}

Status PgStore::copy(const std::string& from, const std::string& to, bool replace)
{
    const std::shared_ptr<Connection> conn = connection();
    if (!conn)
        return StatusStoreFailure;
    const std::string source = nameOf(from), target = nameOf(to);
    // One snapshot: the records and the counters as of one moment, while writers go on.
    Transaction t(*conn);
    Status s = t.begin("BEGIN ISOLATION LEVEL REPEATABLE READ");
    if (s == StatusOk)
        s = lockName(*conn, target);
    Params p;
    Result r;
    if (s == StatusOk)
        s = conn->run("SELECT id, spec, count, nextrec, seq FROM tarsel_files WHERE name=$1", p.bytes(source), r);
    if (s != StatusOk)
        return s;
    if (r.rows() == 0)
        return StatusFileNotFound;
    const int64_t sourceId = r.integer(0, 0);
    std::string block;
    FileSpec spec;
    if ((s = specOf(r, 1, block, spec)) != StatusOk)
        return s;
    int64_t old = 0;
    if ((s = fileId(*conn, target, old)) != StatusOk)
        return s;
    if (old != 0) {
        if (!replace)
            return StatusFileExists;
        if (old == sourceId)
            return StatusCreateFailed;
        if ((s = dropFile(*conn, old)) != StatusOk)
            return s;
    }
    Params q;
    Result made;
    q.bytes(target).bytes(block).integer(r.integer(0, 2)).integer(r.integer(0, 3)).integer(r.integer(0, 4));
    s = conn->run("INSERT INTO tarsel_files(name, spec, count, nextrec, seq) VALUES($1, $2, $3, $4, $5) RETURNING id", q,
                  made);
    if (s != StatusOk)
        return s == StatusDuplicateKey ? StatusCreateFailed : s;
    const int64_t id = made.integer(0, 0);
    if ((s = conn->script(createTable(id, spec))) != StatusOk ||
        (s = conn->script("INSERT INTO " + tableOf(id) + " SELECT * FROM " + tableOf(sourceId))) != StatusOk)
        return s;
    return t.commit();
}

Status PgStore::move(const std::string& from, const std::string& to)
{
    const std::shared_ptr<Connection> conn = connection();
    if (!conn)
        return StatusStoreFailure;
    const std::string source = nameOf(from), target = nameOf(to);
    Transaction t(*conn);
    Status s = t.begin("BEGIN");
    for (const std::string* name : {&std::min(source, target), &std::max(source, target)})
        if (s == StatusOk)
            s = lockName(*conn, *name);
    int64_t id = 0, there = 0;
    if (s == StatusOk && (s = fileId(*conn, source, id)) == StatusOk)
        s = fileId(*conn, target, there);
    if (s != StatusOk)
        return s;
    if (id == 0)
        return StatusFileNotFound;
    if (there != 0)
        return StatusFileExists;
    bool open = false;
    if ((s = openAnywhere(*conn, id, open)) != StatusOk || open)
        return open ? StatusFileInUse : s;
    Params p;
    if ((s = conn->run("UPDATE tarsel_files SET name=$1 WHERE id=$2", p.bytes(target).integer(id))) != StatusOk)
        return s;
    return t.commit();
}

Status PgStore::remove(const std::string& path)
{
    const std::shared_ptr<Connection> conn = connection();
    if (!conn)
        return StatusStoreFailure;
    const std::string name = nameOf(path);
    Transaction t(*conn);
    Status s = t.begin("BEGIN");
    int64_t id = 0;
    if (s == StatusOk && (s = lockName(*conn, name)) == StatusOk)
        s = fileId(*conn, name, id);
    if (s != StatusOk)
        return s;
    if (id == 0)
        return StatusFileNotFound;
    if ((s = dropFile(*conn, id)) != StatusOk)
        return s;
    return t.commit();
}

Status PgStore::check(const std::string& path, bool repair, const CheckProgress& progress, RERecordFileCheck& report)
{
    const std::shared_ptr<Connection> conn = connection();
    if (!conn)
        return StatusStoreFailure;
    Transaction t(*conn);
    Status s = t.begin(repair ? "BEGIN" : "BEGIN ISOLATION LEVEL REPEATABLE READ");
    Params p;
    Result r;
    // A repair holds the writer gate and the file's row as writers do (PgFile::begin), so none
    // writes meanwhile.
    p.bytes(nameOf(path));
    if (s == StatusOk && repair)
        s = conn->run(std::string("SELECT pg_advisory_xact_lock(id, ") + WriterGate + ") FROM tarsel_files WHERE name=$1",
                      p);
    if (s == StatusOk)
        s = conn->run(std::string("SELECT id, spec FROM tarsel_files WHERE name=$1") + (repair ? " FOR UPDATE" : ""), p,
                      r);
    if (s != StatusOk)
        return s;
    if (r.rows() == 0)
        return StatusFileNotFound;
    std::string block;
    FileSpec spec;
    if ((s = specOf(r, 1, block, spec)) != StatusOk)
        return s;
    CheckedPgFile file(*conn, r.integer(0, 0), std::move(spec));
    if ((s = checkFile(file, repair, progress, report)) != StatusOk)
        return s;
    return t.commit();
}

}  // namespace recman::postgres
