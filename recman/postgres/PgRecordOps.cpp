// The record operations of a server file, each one statement and so one round trip: a locking
// read, an insert that takes its record number and rank, an update and a delete that carry their
// version and lock tests. What a statement cannot answer alone (an autoincrement value asked of
// the file, the exact status of a write it refused) goes to the composed operations of
// OpSupport.cpp, which see the same file row and the same locks.
#include "recman/postgres/PgFile.h"
#include "recman/postgres/PgTables.h"

namespace recman::postgres {

namespace {

constexpr size_t SeenRecords = 64;
// Locking reads retried when the record changed between the seek and its row lock.
constexpr int LockingTries = 3;

// Appended rather than "$" + ...: GCC 12 warns falsely on that form in release builds.
std::string param(size_t n)
{
    std::string p = "$";
    p += std::to_string(n);
    return p;
}

}  // namespace

void PgFile::remember(int64_t recno, int64_t version, const char* data, size_t length)
{
    if (m_seen.size() >= SeenRecords && m_seen.find(recno) == m_seen.end())
        m_seen.erase(m_seen.begin());
    Seen& s = m_seen[recno];
    s.version = version;
    s.data.assign(data, length);
}

bool PgFile::lockedHere(int64_t recno, const Owner& owner) const
{
    const auto it = m_locks.find(recno);
    if (it == m_locks.end())
        return false;
    for (const Owner& o : it->second)
        if (!(o == owner))
            return true;
    return false;
}

bool PgFile::prepareAlone(const PrepareStep& prepare, const FoundRecord* old, Status& status)
{
    m_alone = true;
    m_askedFile = false;
    status = prepare(old);
    m_alone = false;
    return !m_askedFile;
}

void PgFile::buildStatements()
{
    const std::string id = std::to_string(m_id), t = tableOf(m_id);
    const std::string fileRow = "SELECT seq, leased_until FROM tarsel_files WHERE id=" + id + " FOR UPDATE";
    // An update that changes no key meets neither an insert's nor a delete's unique-key waits:
    // the shared gate keeps it from begin()'s writers at a fraction of a row lock's cost.
    const std::string gate = std::string("SELECT 0::bigint AS seq, 'infinity'::timestamptz AS leased_until, "
                                         "pg_advisory_xact_lock_shared(") + id + ", " + WriterGate + ")";
    const std::string takeRank =
        "UPDATE tarsel_files SET seq=seq+1 WHERE id=" + id + " RETURNING seq, leased_until";
    // Another session's record lock refuses the write; this session's own do not (the process
    // tells its handles apart itself).
    const std::string lockFree = " AND pg_try_advisory_xact_lock(" + id + ", n::int)";
    // How long the write must wait for other sessions' read-ahead windows (PgReadAhead.cpp):
    // asked only while a lease of the file may still run, as the file's row, locked here, says.
    const auto readers = [&](const std::string& row) {
        return "CASE WHEN " + row + ".leased_until>clock_timestamp() THEN tarsel_readers(" + id + ") ELSE 0 END";
    };

    // Insert: $1 data, then per key its value, then per autoincrement field its value.
    std::string cols = "n, v, d", values = "c.nextrec, 1, $1::bytea";
    size_t p = 2;
    for (size_t i = 0; i < m_spec.keys.size(); ++i) {
        const std::string k = param(p++) + "::bytea", n = std::to_string(i);
        cols += ", k" + n + ", s" + n;
        values += ", " + k + (m_spec.keys[i].duplicates ? ", CASE WHEN " + k + " IS NULL THEN 0 ELSE c.seq END" : ", 0");
    }
    for (size_t j = 0; j < m_autoFields.size(); ++j) {
        cols += ", a" + std::to_string(j);
        values += ", " + param(p++) + "::bigint";
    }
    m_insertWhole = "WITH c AS (UPDATE tarsel_files SET count=count+1, nextrec=nextrec+1, seq=seq+1 WHERE id=" + id +
                    " RETURNING nextrec, seq, leased_until), i AS (INSERT INTO " + t + "(" + cols + ") SELECT " +
                    values + " FROM c RETURNING n) SELECT i.n, c.seq, " + readers("c") + " FROM i, c";

    // Update: $1 record, $2 version read, $3 data; per key its value and, for a duplicates key,
    // 1 when it takes the new rank; per autoincrement field its value; last 1 to end the lock.
    std::string sets;
    p = 4;
    for (size_t i = 0; i < m_spec.keys.size(); ++i) {
        const std::string n = std::to_string(i);
        sets += ", k" + n + "=" + param(p++) + "::bytea";
        if (m_spec.keys[i].duplicates)
            sets += ", s" + n + "=CASE WHEN " + param(p++) + "::int=1 THEN f.seq ELSE s" + n + " END";
    }
    for (size_t j = 0; j < m_autoFields.size(); ++j)
        sets += ", a" + std::to_string(j) + "=" + param(p++) + "::bigint";
    const auto update = [&](const std::string& row, const std::string& keySets, size_t last) {
        return "WITH f AS (" + row + ") UPDATE " + t + " SET v=v+1, d=$3::bytea" + keySets +
               " FROM f WHERE n=$1::bigint AND v=$2::bigint" + lockFree + " RETURNING v, f.seq, CASE WHEN " +
               param(last) + "::int=1 THEN pg_advisory_unlock(" + id + ", n::int) END, " + readers("f");
    };
    m_updateRank = update(takeRank, sets, p);
    m_updateKeys = update(fileRow, sets, p);
    m_updateData = update(gate, "", 4);

    // Delete: $1 record, $2 version read, $3 1 when any version will do, $4 1 to end the lock.
    m_deleteChecked = "WITH f AS (" + fileRow + "), d AS (DELETE FROM " + t +
                      " USING f WHERE n=$1::bigint AND (v=$2::bigint OR $3::int=1)" + lockFree +
                      " RETURNING n, f.leased_until), c AS (UPDATE tarsel_files SET count=count-1 WHERE id=" + id +
                      " AND EXISTS (SELECT 1 FROM d)) SELECT n, CASE WHEN $4::int=1 THEN pg_advisory_unlock(" + id +
                      ", n::int) END, " + readers("d") + " FROM d";
    m_unlockAll = "SELECT count(pg_advisory_unlock(" + id + ", n::int)) FROM unnest($1::bigint[]) n";
}

// A seek made a locking read: the record found, its row locked to read its current version (a
// record changed since the seek's snapshot answers no lock, `got` null, and the read is tried
// again), then the session's lock on it unless a handle of this process holds it, then the
// replaced single lock released once the new one is held. Parameters after the seek's: records
// other handles of this process lock, records this handle locks, the record whose lock ends.
const std::string& PgFile::lockingText(const std::string* seekText, size_t seekParams)
{
    std::string& text = m_locking[seekText];
    if (!text.empty())
        return text;
    const std::string id = std::to_string(m_id);
    const std::string others = param(seekParams + 1), mine = param(seekParams + 2),
                      replaced = param(seekParams + 3) + "::bigint";
    text = "SELECT z.*, CASE WHEN z.got AND " + replaced + "<>0 AND z.n<>" + replaced + " THEN pg_advisory_unlock(" +
           id + ", (" + replaced + ")::int) END FROM (SELECT y.*, CASE WHEN y.cur IS DISTINCT FROM y.v THEN NULL "
           "WHEN y.n=ANY(" + others + "::bigint[]) THEN false WHEN y.n=ANY(" + mine +
           "::bigint[]) THEN true ELSE pg_try_advisory_lock(" + id + ", y.n::int) END AS got FROM (SELECT p.*, "
           "(SELECT t.v FROM " + tableOf(m_id) + " t WHERE t.n=p.n FOR UPDATE) AS cur FROM (" + *seekText +
           ") p OFFSET 0) y OFFSET 0) z";
    return text;
}

Status PgFile::runLocking(const LockAsk& ask, FoundRecord& out, bool& retry)
{
    retry = false;
    std::vector<int64_t> others, mine;
    for (const auto& [recno, owners] : m_locks)
        (lockedHere(recno, ask.owner) ? others : mine).push_back(recno);
    const auto replaced = m_locks.find(ask.replaces);
    const bool endReplaced = ask.replaces != 0 && replaced != m_locks.end() && replaced->second.size() == 1 &&
                             replaced->second[0] == ask.owner;
    const size_t seekParams = m_params.size();
    m_params.integers(others).integers(mine).integer(endReplaced ? ask.replaces : 0);
    if (const Status s = m_conn->run(lockingText(m_captured, seekParams), m_params, m_result); s != StatusOk)
        return s;
    if (m_result.rows() == 0)
        return StatusEndOfFile;
    const int got = m_capturedKey ? 6 : 4;
    if (m_result.isNull(0, got)) {
        retry = true;
        return StatusOk;
    }
    if (m_result.integer(0, got) == 0)
        return StatusRecordLocked;
    found(m_capturedKey, out);
    std::vector<Owner>& holders = m_locks[out.recno];
    if (holders.empty())
        holders.push_back(ask.owner);
    if (ask.replaces != 0 && ask.replaces != out.recno) {
        if (endReplaced)
            m_locks.erase(ask.replaces);
        else if (replaced != m_locks.end())
            std::erase(replaced->second, ask.owner);
    }
    return StatusOk;
}

Status PgFile::readLocking(const SeekStep& seek, const LockAsk& ask, FoundRecord& out)
{
    if (ask.refuse)
        return StoreFile::readLocking(seek, ask, out);
    for (int i = 0; i < LockingTries; ++i) {
        m_captured = nullptr;
        m_capturing = true;
        FoundRecord ignored;
        seek(ignored);
        m_capturing = false;
        if (!m_captured)
            break;
        bool retry = false;
        const Status s = runLocking(ask, out, retry);
        if (!retry)
            return s;
    }
    return StoreFile::readLocking(seek, ask, out);
}

Status PgFile::insertWhole(RecordWrite& rec, const PrepareStep& prepare, int64_t& recno, int64_t& version,
                           int64_t& seq)
{
    Status s = StatusOk;
    if (!prepareAlone(prepare, nullptr, s))
        return StoreFile::insertWhole(rec, prepare, recno, version, seq);
    if (s != StatusOk)
        return s;
    m_params.clear();
    m_params.bytes(rec.data, rec.length);
    for (const KeyEntry& k : rec.keys)
        k.present ? m_params.bytes(k.value) : m_params.null();
    for (const int64_t a : rec.autoValues)
        m_params.integer(a);
    if ((s = numbered(m_insertWhole, recno, version, seq, 2)) != StatusOk)
        return s;
    remember(recno, version, reinterpret_cast<const char*>(rec.data), rec.length);
    return StatusOk;
}

Status PgFile::updateChecked(const WriteCheck& check, RecordWrite& rec, const PrepareStep& prepare, int64_t& version,
                             int64_t& seq)
{
    if (lockedHere(check.recno, check.owner))
        return StatusRecordLocked;
    auto seen = m_seen.find(check.recno);
    if (seen == m_seen.end() || seen->second.version != check.version) {
        FoundRecord f;
        if (const Status s = readRecord(check.recno, f); s != StatusOk && s != StatusEndOfFile)
            return s;
        seen = m_seen.find(check.recno);
    }
    // Only a record as the handle read it goes on alone; the rest needs the composed checks.
    if (seen == m_seen.end() || seen->second.version != check.version)
        return StoreFile::updateChecked(check, rec, prepare, version, seq);
    const FoundRecord old{check.recno, check.version, 0, &seen->second.data, nullptr};
    Status s = StatusOk;
    if (!prepareAlone(prepare, &old, s) || s != StatusOk)
        return StoreFile::updateChecked(check, rec, prepare, version, seq);
    bool needRank = false, keysChanged = false;
    rec.changes(m_spec, needRank, keysChanged);
    const auto held = m_locks.find(check.recno);
    const bool endLock = check.dropLock && held != m_locks.end();
    m_params.clear();
    m_params.integer(check.recno).integer(check.version).bytes(rec.data, rec.length);
    if (keysChanged) {
        for (size_t i = 0; i < m_spec.keys.size(); ++i) {
            const KeyEntry& k = rec.keys[i];
            k.present ? m_params.bytes(k.value) : m_params.null();
            if (m_spec.keys[i].duplicates)
                m_params.integer(k.present && rec.keyValueChanged[i] ? 1 : 0);
        }
        for (const int64_t a : rec.autoValues)
            m_params.integer(a);
    }
    m_params.integer(endLock ? 1 : 0);
    const std::string& text = !keysChanged ? m_updateData : needRank ? m_updateRank : m_updateKeys;
    if ((s = runWrite(text, 3)) != StatusOk)
        return s;
    if (m_result.rows() == 0)
        return StoreFile::updateChecked(check, rec, prepare, version, seq);
    version = m_result.integer(0, 0);
    seq = needRank ? m_result.integer(0, 1) : 0;
    remember(check.recno, version, reinterpret_cast<const char*>(rec.data), rec.length);
    if (endLock)
        m_locks.erase(held);
    return StatusOk;
}

Status PgFile::deleteChecked(const WriteCheck& check)
{
    if (lockedHere(check.recno, check.owner))
        return StatusRecordLocked;
    // Only this handle can hold a lock on the record here: its end goes with the record.
    const bool endLock = m_locks.count(check.recno) != 0;
    m_params.clear();
    m_params.integer(check.recno).integer(check.version).integer(check.holdsLock ? 1 : 0).integer(endLock ? 1 : 0);
    if (const Status s = runWrite(m_deleteChecked, 2); s != StatusOk)
        return s;
    if (m_result.rows() == 0)
        return StoreFile::deleteChecked(check);
    m_seen.erase(check.recno);
    m_locks.erase(check.recno);
    return StatusOk;
}

Status PgFile::unlockAll(const Owner& owner, const std::vector<int64_t>& recnos)
{
    std::vector<int64_t> ended;
    for (const int64_t recno : recnos) {
        const auto it = m_locks.find(recno);
        if (it == m_locks.end())
            continue;
        std::erase(it->second, owner);
        if (!it->second.empty())
            continue;
        ended.push_back(recno);
        m_locks.erase(it);
    }
    if (ended.empty())
        return StatusOk;
    m_params.clear();
    return m_conn->run(m_unlockAll, m_params.integers(ended));
}

}  // namespace recman::postgres
