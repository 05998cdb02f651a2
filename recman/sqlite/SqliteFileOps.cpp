// Whole-file operations of the embedded store: a record-manager file is one SQLite database at
// its path, so existence and search are the file system's, and copy, move, delete and check
// work on the database.
#include "recman/sqlite/SqliteStore.h"

#include "core/Platform.h"
#include "recman/ProcessMark.h"
#include "recman/sqlite/SqliteSchema.h"
#include "recman/sqlite/Statement.h"

#include <sqlite3.h>

#include <cstdio>

namespace recman::sqlite {

namespace {

// The statements of a check and a copy that the schema header does not give: they name the
// tables and columns SqliteSchema.h describes (rec's counter row, v=0: n the next number to give,
// d the kept count; rec's k/s/a columns; the opens and locks tables).
namespace text {
constexpr const char* Counters = "SELECT d, n - 1 FROM rec WHERE v=0";
// Never lowers the next number: duplicate ranks are given from it too.
constexpr const char* SetCounters = "UPDATE rec SET d=?1, n=max(n, ?2 + 1) WHERE v=0";
constexpr const char* TakeRank = "UPDATE rec SET n=n+1 WHERE v=0 RETURNING n - 1";
constexpr const char* ForgetHandles = "DELETE FROM opens; DELETE FROM locks";
std::string walk(const FileSpec& spec, size_t autos)
{
    std::string t = "SELECT n, d";
    for (size_t i = 0; i < spec.keys.size(); ++i)
        t += ", k" + std::to_string(i);
    for (size_t j = 0; j < autos; ++j)
        t += ", a" + std::to_string(j);
    return t + " FROM rec WHERE v>0 ORDER BY n";
}
std::string setKey(size_t key) { return "UPDATE rec SET k" + std::to_string(key) + "=?1, s" + std::to_string(key) + "=?2 WHERE n=?3"; }
std::string setAuto(size_t field) { return "UPDATE rec SET a" + std::to_string(field) + "=?1 WHERE n=?2"; }
}  // namespace text

// Closes a connection at the end of the scope.
struct Connection {
    sqlite3* db = nullptr;
    ~Connection() { sqlite3_close_v2(db); }
};

Status run(sqlite3* db, const std::string& sql, bool (*bind)(Statement&, const void*) = nullptr,
           const void* arg = nullptr)
{
    Statement st;
    int rc = st.prepare(db, sql);
    if (rc == SQLITE_OK && bind)
        bind(st, arg);
    if (rc == SQLITE_OK)
        rc = st.step();
    return rc == SQLITE_DONE || rc == SQLITE_ROW ? StatusOk : statusFor(rc);
}

// A file as the check sees it, over one connection inside the check's transaction.
class CheckedSqliteFile final : public CheckedFile {
public:
    CheckedSqliteFile(sqlite3* db, FileSpec spec)
        : m_db(db), m_spec(std::move(spec)), m_autos(autoIncrementFields(m_spec).size())
    {
    }

    const FileSpec& spec() const override { return m_spec; }

    Status integrity(bool repair, RERecordFileCheck& report) override
    {
        std::vector<std::string> faults;
        if (const Status s = integrityFaults(faults); s != StatusOk || faults.empty())
            return s;
        if (repair) {
            if (const Status s = run(m_db, "REINDEX"); s != StatusOk)
                return s;
            std::vector<std::string> left;
            if (const Status s = integrityFaults(left); s != StatusOk)
                return s;
            if (left.empty()) {
                for (const std::string& f : faults)
                    report.repairs.push_back(f + "; indexes rebuilt");
                return StatusOk;
            }
            faults = std::move(left);
        }
        report.findings.insert(report.findings.end(), faults.begin(), faults.end());
        return StatusOk;
    }

    Status counters(int64_t& kept, int64_t& highestGiven) override
    {
        Statement st;
        int rc = st.prepare(m_db, text::Counters);
        if (rc == SQLITE_OK)
            rc = st.step();
        if (rc != SQLITE_ROW)
            return rc == SQLITE_DONE ? StatusStoreFailure : statusFor(rc);
        kept = st.integer(0);
        highestGiven = st.integer(1);
        return StatusOk;
    }

    Status setCounters(int64_t kept, int64_t highestGiven) override
    {
        const int64_t values[] = {kept, highestGiven};
        return run(m_db, text::SetCounters, [](Statement& st, const void* v) {
            st.bind(1, static_cast<const int64_t*>(v)[0]);
            st.bind(2, static_cast<const int64_t*>(v)[1]);
            return true;
        }, values);
    }

    Status walk(const std::function<bool(const StoredRecord&)>& visit) override
    {
        Statement st;
        int rc = st.prepare(m_db, text::walk(m_spec, m_autos));
        StoredRecord r;
        const int keys = int(m_spec.keys.size());
        while (rc == SQLITE_OK && (rc = st.step()) == SQLITE_ROW) {
            r.recno = st.integer(0);
            st.blob(1, r.data);
            r.keys.assign(size_t(keys), std::nullopt);
            for (int i = 0; i < keys; ++i)
                if (!st.isNull(2 + i))
                    st.blob(2 + i, r.keys[size_t(i)].emplace());
            r.autoValues.assign(m_autos, std::nullopt);
            for (size_t j = 0; j < m_autos; ++j)
                if (!st.isNull(2 + keys + int(j)))
                    r.autoValues[j] = st.integer(2 + keys + int(j));
            if (!visit(r))
                return StatusOk;
            rc = SQLITE_OK;
        }
        return rc == SQLITE_DONE ? StatusOk : statusFor(rc);
    }

    Status setKeyEntry(int64_t recno, size_t key, const std::optional<std::string>& entry) override
    {
        int64_t rank = 0;
        if (entry && m_spec.keys[key].duplicates) {
            Statement seq;
            int rc = seq.prepare(m_db, text::TakeRank);
            if (rc == SQLITE_OK)
                rc = seq.step();
            if (rc != SQLITE_ROW)
                return statusFor(rc);
            rank = seq.integer(0);
        }
        Statement st;
        if (const int rc = st.prepare(m_db, text::setKey(key)); rc != SQLITE_OK)
            return statusFor(rc);
        if (entry)
            st.bindBlob(1, entry->data(), entry->size());
        else
            st.bindNull(1);
        st.bind(2, rank);
        st.bind(3, recno);
        const int rc = st.step();
        return rc == SQLITE_DONE ? StatusOk : statusFor(rc);
    }

    Status setAutoValue(int64_t recno, size_t field, int64_t value) override
    {
        Statement st;
        if (const int rc = st.prepare(m_db, text::setAuto(field)); rc != SQLITE_OK)
            return statusFor(rc);
        st.bind(1, value);
        st.bind(2, recno);
        const int rc = st.step();
        return rc == SQLITE_DONE ? StatusOk : statusFor(rc);
    }

private:
    // SQLite's own integrity check: its complaints, none when the file is sound.
    Status integrityFaults(std::vector<std::string>& faults)
    {
        Statement st;
        int rc = st.prepare(m_db, "PRAGMA integrity_check(20)");
        std::string line;
        while (rc == SQLITE_OK && (rc = st.step()) == SQLITE_ROW) {
            st.blob(0, line);
            if (line != "ok")
                faults.push_back("store: " + line);
            rc = SQLITE_OK;
        }
        return rc == SQLITE_DONE ? StatusOk : statusFor(rc);
    }

    sqlite3* m_db;
    FileSpec m_spec;
    size_t m_autos;
};

Status createStatusOf(int rc)
{
    return (rc & 0xFF) == SQLITE_FULL ? StatusDiskFull : StatusCreateFailed;
}

// Copies the database `src` into a new file at `path` in one read transaction of `src`, without
// the source's open handles and locks.
Status backupInto(sqlite3* src, const std::string& path, const char* vfs)
{
    Connection dest;
    int rc = sqlite3_open_v2(path.c_str(), &dest.db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                             vfs);
    if (rc != SQLITE_OK)
        return createStatusOf(rc);
    sqlite3_backup* backup = sqlite3_backup_init(dest.db, "main", src, "main");
    if (backup == nullptr)
        return createStatusOf(sqlite3_errcode(dest.db));
    // All pages in one step: the source is read as of one moment while its writers go on.
    rc = sqlite3_backup_step(backup, -1);
    const int finished = sqlite3_backup_finish(backup);
    if (rc != SQLITE_DONE)
        return (rc & 0xFF) == SQLITE_BUSY || (rc & 0xFF) == SQLITE_LOCKED ? StatusFileLocked : createStatusOf(rc);
    if (finished != SQLITE_OK)
        return createStatusOf(finished);
    rc = sqlite3_exec(dest.db, text::ForgetHandles, nullptr, nullptr, nullptr);
    if (rc == SQLITE_OK)
        rc = sqlite3_exec(dest.db, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK)
        return createStatusOf(rc);
    rc = sqlite3_close(dest.db);
    dest.db = nullptr;
    return rc == SQLITE_OK ? StatusOk : createStatusOf(rc);
}

REPathState stateOf(::platform::PathState s)
{
    switch (s) {
    case ::platform::PathState::Missing: return REPathState::Missing;
    case ::platform::PathState::Exists: return REPathState::Exists;
    default: return REPathState::Invalid;
    }
}

}  // namespace

REPathState SqliteStore::lookUp(const std::string& path) { return stateOf(::platform::LookUpPath(path)); }

Status SqliteStore::search(const std::string& directory, const std::string& pattern, std::vector<std::string>& names)
{
    names = ::platform::FindFiles(directory, pattern);
    return StatusOk;
}

Status SqliteStore::copy(const std::string& from, const std::string& to, bool replace)
{
    platform::FileIdentity source, target;
    Connection src;
    FileSpec spec;
    if (const Status s = connectFile(from, false, src.db, spec, source); s != StatusOk)
        return s;
    ProcessMark gate;
    const platform::PathKind kind = gate.attach(to, ProcessMark::Use::Replace, target);
    if (kind == platform::PathKind::Directory || kind == platform::PathKind::Other)
        return StatusCreateFailed;
    if (kind == platform::PathKind::File) {
        if (!replace)
            return StatusFileExists;
        if (target == source)
            return StatusCreateFailed;
        if (openSomewhere(to, gate))
            return StatusFileInUse;
    }
    const std::string temp = buildingPath(to);
    const Status s = backupInto(src.db, temp, m_vfs);
    if (s == StatusOk && putInPlace(temp, to, gate))
        return StatusOk;
    removeWithCompanions(temp);
    return s == StatusOk ? StatusCreateFailed : s;
}

Status SqliteStore::connectFile(const std::string& path, bool writable, sqlite3*& db, FileSpec& spec,
                                platform::FileIdentity& id) const
{
    if (platform::inspectPath(path, id) != platform::PathKind::File)
        return StatusFileNotFound;
    return connect(path, writable, db, spec);
}

Status SqliteStore::claimClosed(const std::string& path, ProcessMark& gate) const
{
    platform::FileIdentity id;
    if (gate.attach(path, ProcessMark::Use::Replace, id) != platform::PathKind::File)
        return StatusFileNotFound;
    {
        // A connection of its own, closed last, leaves everything committed in the file itself:
        // no companion is left behind to be moved with it.
        Connection own;
        FileSpec spec;
        if (const Status s = connect(path, true, own.db, spec); s != StatusOk)
            return s;
        if (openSomewhere(path, gate))
            return StatusFileInUse;
    }
    return StatusOk;
}

Status SqliteStore::move(const std::string& from, const std::string& to)
{
    ProcessMark gate;
    if (const Status s = claimClosed(from, gate); s != StatusOk)
        return s;
    platform::FileIdentity id;
    if (platform::inspectPath(to, id) != platform::PathKind::Missing)
        return StatusFileExists;
    return putInPlace(from, to, gate) ? StatusOk : StatusCreateFailed;
}

Status SqliteStore::remove(const std::string& path)
{
    ProcessMark gate;
    if (const Status s = claimClosed(path, gate); s != StatusOk)
        return s;
#if defined(_WIN32)
    gate = ProcessMark();  // Windows deletes no file that a handle has open
#endif
    if (std::remove(path.c_str()) != 0)
        return StatusAccessDenied;
    removeWithCompanions(path);
    return StatusOk;
}

Status SqliteStore::check(const std::string& path, bool repair, const CheckProgress& progress,
                          RERecordFileCheck& report)
{
    platform::FileIdentity id;
    Connection db;
    FileSpec spec;
    if (const Status s = connectFile(path, repair, db.db, spec, id); s != StatusOk)
        return s;
    // A repair keeps writers out from the first look to the last fix; a check reads one snapshot.
    if (const Status s = run(db.db, repair ? sql::Begin : "BEGIN"); s != StatusOk)
        return s;
    CheckedSqliteFile file(db.db, std::move(spec));
    const Status s = checkFile(file, repair, progress, report);
    if (s != StatusOk) {
        run(db.db, sql::Rollback);
        return s;
    }
    return run(db.db, sql::Commit);
}

}  // namespace recman::sqlite
