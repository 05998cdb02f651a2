#include "recman/postgres/PgFile.h"
#include "recman/postgres/PgTables.h"

#include <algorithm>
#include <cctype>

namespace recman::postgres {

std::string serverText(const std::string& text, const std::string& table)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool wordStart = i == 0 || !(std::isalnum(uint8_t(text[i - 1])) || text[i - 1] == '_');
        if (c == '?') {
            out.push_back('$');
        } else if (wordStart && text.compare(i, 3, "rec") == 0 &&
                   (i + 3 == text.size() || !(std::isalnum(uint8_t(text[i + 3])) || text[i + 3] == '_'))) {
            out += table;
            i += 2;
        } else {
            out.push_back(c);
        }
    }
    return out;
}

namespace {

void convert(std::string& text, const std::string& table) { text = serverText(text, table); }

}  // namespace

PgFile::PgFile(std::shared_ptr<Connection> conn, int64_t id, FileSpec spec)
    : m_conn(std::move(conn)), m_id(id), m_spec(std::move(spec)), m_sql(sqlite::SqlText::forSpec(m_spec)),
      m_autoFields(sqlite::autoIncrementFields(m_spec))
{
    std::string table = "r";
    table += std::to_string(m_id);
    for (auto& seeks : m_sql.seekKey)
        for (std::string& t : seeks)
            convert(t, table);
    for (std::string* t : {&m_sql.physicalFirst, &m_sql.physicalLast, &m_sql.physicalNext, &m_sql.physicalPrevious,
                           &m_sql.readRecord, &m_sql.insert, &m_sql.update, &m_sql.updateData, &m_sql.remove})
        convert(*t, table);
    for (auto* list : {&m_sql.autoMax, &m_sql.autoExists})
        for (std::string& t : *list)
            convert(t, table);
    const std::string row = " WHERE id=" + std::to_string(m_id);
    // The writer gate and the file's row are its write lock: a writer holds them from begin()
    // to the end.
    m_begin = "BEGIN; SELECT pg_advisory_xact_lock(" + std::to_string(m_id) + ", " + WriterGate +
              "); SELECT 1 FROM tarsel_files" + row + " FOR UPDATE";
    m_countInsert = "UPDATE tarsel_files SET count=count+1, nextrec=nextrec+1, seq=seq+1" + row + " RETURNING nextrec, seq";
    m_countDelete = "UPDATE tarsel_files SET count=count-1" + row;
    m_nextSeq = "UPDATE tarsel_files SET seq=seq+1" + row + " RETURNING seq";
    m_count = "SELECT count FROM tarsel_files" + row;
    m_lockRow = "SELECT 1 FROM " + table + " WHERE n=$1 FOR UPDATE";
    buildStatements();
    buildLeaseStatements();
}

PgFile::~PgFile() { endLease(); }

Status PgFile::begin()
{
    const Status s = m_conn->begin(m_begin);
    m_inTransaction = s == StatusOk;
    return s;
}

Status PgFile::commit()
{
    m_inTransaction = false;
    const bool wrote = m_wroteInTransaction;
    m_wroteInTransaction = false;
    if (const Status s = m_conn->commit(); s != StatusOk)
        return s;
    // A transaction that only read (a locking read) has nothing for a window to miss.
    return wrote ? awaitReaders() : StatusOk;
}

void PgFile::rollback()
{
    m_wroteInTransaction = false;
    m_inTransaction = false;
    m_conn->rollback();
}

Status PgFile::fetch(const std::string& text, const Params& p, bool withKey, FoundRecord& out)
{
    if (m_capturing) {
        m_captured = &text;
        m_capturedKey = withKey;
        return StatusStoreFailure;
    }
    if (const Status s = m_conn->run(text, p, m_result); s != StatusOk)
        return s;
    if (m_result.rows() == 0)
        return StatusEndOfFile;
    found(withKey, out);
    return StatusOk;
}

void PgFile::found(bool withKey, FoundRecord& out)
{
    out.recno = m_result.integer(0, 0);
    out.version = m_result.integer(0, 1);
    m_result.bytes(0, 2, m_data);
    out.data = &m_data;
    out.seq = 0;
    out.keyValue = nullptr;
    if (withKey) {
        m_result.bytes(0, 3, m_key);
        out.keyValue = &m_key;
        out.seq = m_result.integer(0, 4);
    }
    remember(out.recno, out.version, m_data.data(), m_data.size());
}

Status PgFile::seekKey(int key, Seek how, const std::string& value, int64_t seq, FoundRecord& out)
{
    m_params.clear();
    if (how != Seek::First && how != Seek::Last) {
        m_params.bytes(value);
        if (m_spec.keys[size_t(key)].duplicates && (how == Seek::Next || how == Seek::Previous))
            m_params.integer(seq);
    }
    return fetch(m_sql.seekKey[size_t(key)][size_t(how)], m_params, true, out);
}

Status PgFile::seekPhysical(Seek how, int64_t recno, FoundRecord& out)
{
    m_params.clear();
    switch (how) {
    case Seek::First: return fetch(m_sql.physicalFirst, m_params, false, out);
    case Seek::Last: return fetch(m_sql.physicalLast, m_params, false, out);
    case Seek::Next: return fetch(m_sql.physicalNext, m_params.integer(recno), false, out);
    default: return fetch(m_sql.physicalPrevious, m_params.integer(recno), false, out);
    }
}

Status PgFile::readRecord(int64_t recno, FoundRecord& out)
{
    m_params.clear();
    return fetch(m_sql.readRecord, m_params.integer(recno), false, out);
}

Status PgFile::recordCount(uint32_t& count)
{
    m_params.clear();
    if (const Status s = m_conn->run(m_count, m_params, m_result); s != StatusOk)
        return s;
    if (m_result.rows() != 1)
        return StatusStoreFailure;
    count = uint32_t(m_result.integer(0, 0));
    return StatusOk;
}

Status PgFile::highestAutoValue(size_t field, int64_t& value)
{
    if (m_alone) {
        m_askedFile = true;
        return StatusStoreFailure;
    }
    m_params.clear();
    if (const Status s = m_conn->run(m_sql.autoMax[field], m_params, m_result); s != StatusOk)
        return s;
    value = m_result.rows() == 0 || m_result.isNull(0, 0) ? 0 : m_result.integer(0, 0);
    return StatusOk;
}

Status PgFile::autoValueExists(size_t field, int64_t value, bool& exists)
{
    if (m_alone) {
        m_askedFile = true;
        return StatusStoreFailure;
    }
    m_params.clear();
    if (const Status s = m_conn->run(m_sql.autoExists[field], m_params.integer(value), m_result); s != StatusOk)
        return s;
    exists = m_result.rows() != 0;
    return StatusOk;
}

void PgFile::bindRecord(Params& p, const RecordWrite& rec, int64_t seq, bool keepUnchangedRank) const
{
    p.bytes(rec.data, rec.length);
    for (size_t i = 0; i < m_spec.keys.size(); ++i) {
        const KeyEntry& k = rec.keys[i];
        if (k.present)
            p.bytes(k.value);
        else
            p.null();
        const bool newRank = !keepUnchangedRank || rec.keyValueChanged[i];
        if (m_spec.keys[i].duplicates && k.present && newRank)
            p.integer(seq);
        else if (keepUnchangedRank)
            p.null();
        else
            p.integer(0);
    }
    for (size_t j = 0; j < m_autoFields.size(); ++j)
        p.integer(rec.autoValues[j]);
}

Status PgFile::numbered(const std::string& text, int64_t& recno, int64_t& version, int64_t& seq, int readersColumn)
{
    if (const Status s = runWrite(text, readersColumn); s != StatusOk)
        return s;
    if (m_result.rows() != 1)
        return StatusStoreFailure;
    recno = m_result.integer(0, 0);
    seq = m_result.integer(0, 1);
    version = 1;
    return StatusOk;
}

Status PgFile::insertRecord(const RecordWrite& rec, int64_t& recno, int64_t& version, int64_t& seq)
{
    m_wroteInTransaction = true;
    m_params.clear();
    if (const Status s = numbered(m_countInsert, recno, version, seq); s != StatusOk)
        return s;
    m_params.clear();
    m_params.integer(recno).integer(version);
    bindRecord(m_params, rec, seq, false);
    return m_conn->run(m_sql.insert, m_params);
}

Status PgFile::updateRecord(int64_t recno, int64_t newVersion, const RecordWrite& rec, int64_t& seq)
{
    m_wroteInTransaction = true;
    m_seen.erase(recno);
    seq = 0;
    bool needRank = false, keysChanged = false;
    rec.changes(m_spec, needRank, keysChanged);
    m_params.clear();
    if (!keysChanged)
        return m_conn->run(m_sql.updateData, m_params.integer(recno).integer(newVersion).bytes(rec.data, rec.length));
    if (needRank) {
        if (const Status s = m_conn->run(m_nextSeq, m_params, m_result); s != StatusOk)
            return s;
        if (m_result.rows() != 1)
            return StatusStoreFailure;
        seq = m_result.integer(0, 0);
    }
    m_params.clear();
    m_params.integer(recno).integer(newVersion);
    bindRecord(m_params, rec, seq, true);
    return m_conn->run(m_sql.update, m_params);
}

Status PgFile::deleteRecord(int64_t recno)
{
    m_wroteInTransaction = true;
    m_seen.erase(recno);
    m_params.clear();
    if (const Status s = m_conn->run(m_sql.remove, m_params.integer(recno)); s != StatusOk)
        return s;
    m_params.clear();
    if (const Status s = m_conn->run(m_countDelete, m_params); s != StatusOk)
        return s;
    // Only this process's handles can lock a record it deletes: others answered 84 first.
    if (m_locks.erase(recno) != 0)
        return dropLock(recno);
    return StatusOk;
}

Status PgFile::serverLock(const char* function, int64_t recno, bool& granted)
{
    m_params.clear();
    const std::string text = std::string("SELECT ") + function + "($1::int, $2::int)";
    if (const Status s = m_conn->run(text, m_params.integer(m_id).integer(recno), m_result); s != StatusOk)
        return s;
    granted = m_result.rows() == 1 && m_result.integer(0, 0) != 0;
    return StatusOk;
}

Status PgFile::dropLock(int64_t recno)
{
    bool released = false;
    return serverLock("pg_advisory_unlock", recno, released);
}

Status PgFile::registerHandle(const Owner& owner, bool exclusive)
{
    bool othersOpen = false;
    for (const auto& entry : m_opens) {
        if (entry.second)
            return StatusFileLocked;
        othersOpen = true;
    }
    if (exclusive && othersOpen)
        return StatusFileInUse;
    // Every handle holds the file's open lock once: shared, or exclusive for an exclusive open.
    // An exclusive one refused clashes with an exclusive holder (85) or with any holder (88).
    bool granted = false;
    if (const Status s = serverLock(exclusive ? "pg_try_advisory_lock" : "pg_try_advisory_lock_shared", 0, granted);
        s != StatusOk)
        return s;
    if (!granted && exclusive) {
        bool shared = false;
        if (const Status s = serverLock("pg_try_advisory_lock_shared", 0, shared); s != StatusOk)
            return s;
        if (!shared)
            return StatusFileLocked;
        bool released = false;
        serverLock("pg_advisory_unlock_shared", 0, released);
        return StatusFileInUse;
    }
    if (!granted)
        return StatusFileLocked;
    m_opens.emplace_back(owner, exclusive);
    // A replace between naming the file and taking the lock removed the file this handle named.
    m_params.clear();
    if (const Status s = m_conn->run("SELECT 1 FROM tarsel_files WHERE id=$1", m_params.integer(m_id), m_result);
        s != StatusOk || m_result.rows() == 0) {
        releaseHandle(owner);
        return s != StatusOk ? s : StatusFileNotFound;
    }
    return StatusOk;
}

Status PgFile::releaseHandle(const Owner& owner)
{
    const auto it = std::find_if(m_opens.begin(), m_opens.end(), [&](const auto& e) { return e.first == owner; });
    if (it == m_opens.end())
        return StatusOk;
    const bool exclusive = it->second;
    m_opens.erase(it);
    for (auto l = m_locks.begin(); l != m_locks.end();) {
        std::erase(l->second, owner);
        if (!l->second.empty()) {
            ++l;
            continue;
        }
        dropLock(l->first);
        l = m_locks.erase(l);
    }
    bool released = false;
    serverLock(exclusive ? "pg_advisory_unlock" : "pg_advisory_unlock_shared", 0, released);
    // A broken connection took the session's locks with it: nothing is left to release.
    return StatusOk;
}

Status PgFile::lockConflict(int64_t recno, const Owner& owner)
{
    const auto it = m_locks.find(recno);
    if (it != m_locks.end()) {
        for (const Owner& o : it->second)
            if (!(o == owner))
                return StatusRecordLocked;
        return StatusOk;
    }
    // Inside a transaction the record's row is locked first: a locking read of another
    // workstation (one statement, which takes no writer gate) then either ends before this
    // test, its lock seen, or waits for the commit and reads what this transaction wrote.
    if (m_inTransaction) {
        m_params.clear();
        if (const Status s = m_conn->run(m_lockRow, m_params.integer(recno)); s != StatusOk)
            return s;
    }
    m_params.clear();
    const Status s = m_conn->run(
        "SELECT 1 FROM pg_locks WHERE locktype='advisory' AND classid=$1::oid AND objid=$2::oid AND objsubid=2 "
        "AND database=(SELECT oid FROM pg_database WHERE datname=current_database())",
        m_params.integer(m_id).integer(recno), m_result);
    if (s != StatusOk)
        return s;
    return m_result.rows() == 0 ? StatusOk : StatusRecordLocked;
}

Status PgFile::addLock(int64_t recno, const Owner& owner)
{
    const auto it = m_locks.find(recno);
    if (it != m_locks.end()) {
        for (const Owner& o : it->second)
            if (o == owner)
                return StatusOk;
        if (!it->second.empty())
            return StatusRecordLocked;
    }
    bool granted = false;
    if (const Status s = serverLock("pg_try_advisory_lock", recno, granted); s != StatusOk)
        return s;
    if (!granted)
        return StatusRecordLocked;
    m_locks[recno].push_back(owner);
    return StatusOk;
}

Status PgFile::removeLock(int64_t recno, const Owner& owner)
{
    const auto it = m_locks.find(recno);
    if (it == m_locks.end())
        return StatusOk;
    std::erase(it->second, owner);
    if (!it->second.empty())
        return StatusOk;
    m_locks.erase(it);
    return dropLock(recno);
}

}  // namespace recman::postgres
