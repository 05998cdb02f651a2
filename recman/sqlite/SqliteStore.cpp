#include "recman/sqlite/SqliteStore.h"

#include "recman/Platform.h"
#include "recman/sqlite/OwnLockVfs.h"
#include "recman/sqlite/SqliteFile.h"

#include <cstdio>
#include <cstring>

namespace recman::sqlite {

namespace {

// Closes a connection unless released.
struct ConnectionGuard {
    sqlite3* db = nullptr;
    ~ConnectionGuard() { sqlite3_close_v2(db); }
    sqlite3* release()
    {
        sqlite3* d = db;
        db = nullptr;
        return d;
    }
};

Status createStatus(int rc)
{
    switch (rc & 0xFF) {
    case SQLITE_FULL: return StatusDiskFull;
    case SQLITE_CANTOPEN: case SQLITE_PERM: case SQLITE_READONLY: case SQLITE_AUTH: return StatusCreateFailed;
    default: return StatusStoreFailure;
    }
}

// Reads a single-row, single-column blob; SQLite's result code, or SQLITE_NOTFOUND for no row.
int readValue(sqlite3* db, const char* text, std::string& out)
{
    Statement st;
    int rc = st.prepare(db, text);
    if (rc != SQLITE_OK)
        return rc;
    rc = st.step();
    if (rc == SQLITE_ROW) {
        st.blob(0, out);
        return SQLITE_OK;
    }
    return rc == SQLITE_DONE ? SQLITE_NOTFOUND : rc;
}

void configure(sqlite3* db)
{
    sqlite3_extended_result_codes(db, 1);
    sqlite3_busy_timeout(db, BusyTimeoutMs);
    sqlite3_exec(db, ConnectionPragmas, nullptr, nullptr, nullptr);
}

Status buildFile(const std::string& path, const char* vfs, const FileSpec& spec)
{
    ConnectionGuard g;
    int rc = sqlite3_open_v2(path.c_str(), &g.db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                             vfs);
    if (rc != SQLITE_OK)
        return createStatus(rc);
    configure(g.db);
    std::string script = "BEGIN;";
    for (const std::string& s : schemaStatements(spec))
        script += s + ";";
    script += "COMMIT;";
    rc = sqlite3_exec(g.db, script.c_str(), nullptr, nullptr, nullptr);
    if (rc == SQLITE_OK)
        rc = sqlite3_exec(g.db, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK)
        return createStatus(rc);
    rc = sqlite3_close(g.release());
    return rc == SQLITE_OK ? StatusOk : createStatus(rc);
}

}  // namespace

Status SqliteStore::connect(const std::string& path, bool writable, sqlite3*& db, FileSpec& spec) const
{
    ConnectionGuard g;
    const int flags = (writable ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY) | SQLITE_OPEN_NOMUTEX;
    int rc = sqlite3_open_v2(path.c_str(), &g.db, flags, m_vfs);
    if (rc != SQLITE_OK)
        return (rc & 0xFF) == SQLITE_CANTOPEN ? StatusAccessDenied : StatusStoreFailure;
    configure(g.db);
    std::string value;
    rc = readValue(g.db, sql::ReadSignature, value);
    switch (rc & 0xFF) {
    case SQLITE_OK: break;
    case SQLITE_BUSY: case SQLITE_LOCKED: return StatusFileLocked;
    case SQLITE_IOERR: case SQLITE_NOMEM: case SQLITE_CANTOPEN: return StatusStoreFailure;
    default: return StatusNotEngineFile;  // not a database, or another database
    }
    if (value != SchemaSignature)
        return StatusNotEngineFile;
    rc = readValue(g.db, sql::ReadSpec, value);
    if (rc != SQLITE_OK)
        return (rc & 0xFF) == SQLITE_NOTFOUND ? StatusNotEngineFile : statusFor(rc);
    if (FileSpec::parse(reinterpret_cast<const uint8_t*>(value.data()), uint32_t(value.size()), spec) != StatusOk)
        return StatusNotEngineFile;
    db = g.release();
    return StatusOk;
}

bool SqliteStore::openSomewhere(const std::string& path, const ProcessMark& mark) const
{
    sqlite3* db = nullptr;
    FileSpec spec;
    if (connect(path, false, db, spec) != StatusOk)
        return false;  // not ours: nobody has it open through this engine
    SqliteFile file(db, std::move(spec));
    std::vector<std::pair<Owner, bool>> owners;
    if (file.openHandles(owners) != StatusOk)
        return true;
    for (const auto& o : owners)
        if (ownerAlive(o.first, mark))
            return true;
    return false;
}

SqliteStore::SqliteStore(bool forkedChild)
{
    // Registered in every process, so that a child forked later finds it without taking SQLite's locks.
    const char* vfs = ownLockVfs();
    if (forkedChild)
        m_vfs = vfs;
}

Status SqliteStore::create(const std::string& path, const FileSpec& spec, bool replace)
{
    // Only a regular file is ever replaced; nothing else at the path is opened. Replacing holds
    // the gate (ProcessMark.h) from the check for handles to the rename, so no Open slips between.
    platform::FileIdentity id;
    ProcessMark gate;
    const platform::PathKind kind =
        replace ? gate.attach(path, ProcessMark::Use::Replace, id) : platform::inspectPath(path, id);
    if (kind == platform::PathKind::Directory || kind == platform::PathKind::Other)
        return StatusCreateFailed;
    if (kind != platform::PathKind::Missing) {
        if (!replace)
            return StatusFileExists;
        if (openSomewhere(path, gate))
            return StatusCreateFailed;
    }
    // The new file is built beside the old one under a short name, then renamed over it.
    const std::string temp = buildingPath(path);
    const Status s = buildFile(temp, m_vfs, spec);
    if (s == StatusOk && putInPlace(temp, path, gate))
        return StatusOk;
    removeWithCompanions(temp);
    return s == StatusOk ? StatusCreateFailed : s;
}

std::string buildingPath(const std::string& path)
{
    char name[64];
    std::snprintf(name, sizeof name, ".recman-%lld-%llx", static_cast<long long>(platform::currentProcessId()),
                  static_cast<unsigned long long>(platform::randomToken()));
    return platform::siblingPath(path, name);
}

void removeWithCompanions(const std::string& path)
{
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        std::remove((path + suffix).c_str());
}

bool putInPlace(const std::string& temp, const std::string& path, ProcessMark& gate)
{
    std::remove((path + "-wal").c_str());
    std::remove((path + "-shm").c_str());
#if defined(_WIN32)
    // Windows renames over a file only while no handle has it open, the gate's own included:
    // the gate goes first. An Open that slips in meanwhile holds the old file open, and the
    // rename is refused (25); nobody ever sees a missing or half-made file.
    gate = ProcessMark();
#else
    (void)gate;
#endif
    return platform::replaceFile(temp, path);
}

namespace {

// An Open between naming the file and registering its handle: the mark holds the replace gate.
class SqliteTicket final : public OpenTicket {
public:
    SqliteTicket(SqliteStore& store, std::string path, ProcessMark mark, const platform::FileIdentity& id,
                 bool writable)
        : m_store(store), m_path(std::move(path)), m_mark(std::move(mark)), m_writable(writable)
    {
        m_key.resize(sizeof id.device + sizeof id.inode);
        std::memcpy(m_key.data(), &id.device, sizeof id.device);
        std::memcpy(m_key.data() + sizeof id.device, &id.inode, sizeof id.inode);
    }

    const std::string& key() const override { return m_key; }
    bool writable() const override { return m_writable; }
    Status open(std::unique_ptr<StoreFile>& out) override
    {
        std::unique_ptr<StoreFile> file;
        if (const Status s = m_store.open(m_path, m_writable, file); s != StatusOk)
            return s;
        static_cast<SqliteFile&>(*file).adoptMark(std::move(m_mark));
        out = std::move(file);
        return StatusOk;
    }

private:
    SqliteStore& m_store;
    std::string m_path, m_key;
    ProcessMark m_mark;
    bool m_writable;
};

}  // namespace

Status SqliteStore::resolve(const std::string& path, bool readOnly, std::unique_ptr<OpenTicket>& out)
{
    // A FIFO, device or socket is never opened, not even to be looked at: like a directory, it
    // is no file. The mark holds the gate: the path names this file until the handle is registered.
    platform::FileIdentity id;
    ProcessMark mark;
    if (mark.attach(path, ProcessMark::Use::Open, id) != platform::PathKind::File)
        return StatusFileNotFound;
    const bool writable = platform::canWrite(path);
    if (!platform::canRead(path) || (!readOnly && !writable))
        return StatusAccessDenied;
    out = std::make_unique<SqliteTicket>(*this, path, std::move(mark), id, writable);
    return StatusOk;
}

Status SqliteStore::open(const std::string& path, bool writable, std::unique_ptr<StoreFile>& out)
{
    sqlite3* db = nullptr;
    FileSpec spec;
    const Status s = connect(path, writable, db, spec);
    if (s != StatusOk)
        return s;
    out = std::make_unique<SqliteFile>(db, std::move(spec));
    return StatusOk;
}

}  // namespace recman::sqlite
