#include "recman/sqlite/SqliteFile.h"

#include "recman/Platform.h"

#include <atomic>

namespace recman::sqlite {

namespace {
constexpr int WalIndexRegion = 32768;  // the size SQLite maps the shared index in
}  // namespace

bool ownerAlive(const Owner& owner, const ProcessMark& mark)
{
    // A process of another machine cannot be looked at from here: it counts as alive.
    if (owner.host != platform::hostToken())
        return true;
    if (!platform::processAlive(owner.pid, owner.startToken))
        return false;
    // This process's own mark is not seen through its own descriptor; it runs, as asked.
    return owner.pid == platform::currentProcessId() || mark.held(owner.pid);
}

namespace {

// Binds an owner's host, process id, start token and handle from parameter `first` on.
void bindOwner(Statement& st, int first, const Owner& owner)
{
    st.bind(first, owner.host);
    st.bind(first + 1, owner.pid);
    st.bind(first + 2, owner.startToken);
    st.bind(first + 3, int64_t(owner.handle));
}

}  // namespace

SqliteFile::SqliteFile(sqlite3* db, FileSpec spec)
    : m_db(db), m_spec(std::move(spec)), m_sql(SqlText::forSpec(m_spec)), m_autoFields(autoIncrementFields(m_spec)),
      m_fixed(new Statement[FixedCount])
{
    m_seek.reserve(m_spec.keys.size());
    for (size_t i = 0; i < m_spec.keys.size(); ++i)
        m_seek.emplace_back(size_t(Seek::Previous) + 1);
    m_autoMax = std::vector<Statement>(m_autoFields.size());
    m_autoExists = std::vector<Statement>(m_autoFields.size());
    // A run is its single seek with a limit of ?9.
    const auto run = [](const std::string& single) { return single.substr(0, single.rfind("LIMIT 1")) + "LIMIT ?9"; };
    for (size_t i = 0; i < m_spec.keys.size(); ++i)
        for (Seek how : {Seek::Next, Seek::Previous})
            m_runTexts.push_back(run(m_sql.seekKey[i][size_t(how)]));
    m_runTexts.push_back(run(m_sql.physicalNext));
    m_runTexts.push_back(run(m_sql.physicalPrevious));
    m_runs = std::vector<Statement>(m_runTexts.size());
}

SqliteFile::~SqliteFile()
{
    if (m_inTransaction)
        rollback();
    endRead();
    // Statements first: the connection closes cleanly (and checkpoints) only without them.
    m_seek.clear();
    m_autoMax.clear();
    m_autoExists.clear();
    m_runs.clear();
    m_fixed.reset();
    sqlite3_close_v2(m_db);
}

Statement* SqliteFile::prepared(Statement& st, const std::string& text)
{
    if (!st.ready() && st.prepare(m_db, text) != SQLITE_OK)
        return nullptr;
    return &st;
}

Statement* SqliteFile::fixed(Fixed which)
{
    static const char* const texts[] = {
        sql::Begin, sql::BeginRead, sql::Commit, sql::Rollback, sql::Counters, sql::AppendCounter, sql::CountDelete, sql::GiveRank,
        sql::Opens, sql::AddOpen, sql::RemoveOpen, sql::RemoveOwnerLocks, sql::LockHolders, sql::AddLock,
        sql::RemoveLock, sql::RemoveRecordLocks, sql::RemoveChecked,
    };
    Statement& st = m_fixed[which];
    if (st.ready())
        return &st;
    switch (which) {
    case FPhysFirst: return prepared(st, m_sql.physicalFirst);
    case FPhysLast: return prepared(st, m_sql.physicalLast);
    case FPhysNext: return prepared(st, m_sql.physicalNext);
    case FPhysPrev: return prepared(st, m_sql.physicalPrevious);
    case FRead: return prepared(st, m_sql.readRecord);
    case FUpdate: return prepared(st, m_sql.update);
    case FUpdateData: return prepared(st, m_sql.updateData);
    case FRemove: return prepared(st, m_sql.remove);
    default: return prepared(st, texts[which]);
    }
}

Status SqliteFile::rowStatus(int rc) const
{
    return statusFor(rc == SQLITE_ERROR ? sqlite3_extended_errcode(m_db) : rc);
}

Status SqliteFile::run(Statement* st)
{
    if (!st)
        return rowStatus(sqlite3_errcode(m_db));
    ResetOnExit r(*st);
    const int rc = st->step();
    if (rc == SQLITE_DONE || rc == SQLITE_ROW)
        return StatusOk;
    return rowStatus(rc);
}

Status SqliteFile::readCurrent()
{
    if (m_inTransaction)
        return StatusOk;
    ChangeMark now;
    if (!changeMark(now)) {
        endRead();
        return StatusOk;
    }
    if (m_reading && now == m_readMark)
        return StatusOk;
    endRead();
    // The read begins at the next statement, so it sees at least what the mark saw.
    const Status s = run(fixed(FBeginRead));
    m_reading = s == StatusOk;
    m_readMark = now;
    return s;
}

void SqliteFile::endRead()
{
    if (!m_reading)
        return;
    m_reading = false;
    if (!sqlite3_get_autocommit(m_db) && run(fixed(FCommit)) != StatusOk)
        run(fixed(FRollback));
}

Status SqliteFile::begin()
{
    endRead();
    const Status s = run(fixed(FBegin));
    m_inTransaction = s == StatusOk;
    return s;
}

Status SqliteFile::commit()
{
    const Status s = run(fixed(FCommit));
    if (s != StatusOk)
        rollback();
    m_inTransaction = false;
    return s;
}

void SqliteFile::rollback()
{
    if (!sqlite3_get_autocommit(m_db))
        run(fixed(FRollback));
    m_inTransaction = false;
}

Status SqliteFile::fetch(Statement* st, bool withKey, FoundRecord& out)
{
    if (!st)
        return rowStatus(sqlite3_errcode(m_db));
    ResetOnExit r(*st);
    const int rc = st->step();
    if (rc == SQLITE_DONE)
        return StatusEndOfFile;
    if (rc != SQLITE_ROW) {
        const Status s = rowStatus(rc);
        st->reset();
        endRead();
        return s;
    }
    out.recno = st->integer(0);
    out.version = st->integer(1);
    st->blob(2, m_data);
    out.data = &m_data;
    out.seq = 0;
    out.keyValue = nullptr;
    if (withKey) {
        st->blob(3, m_key);
        out.keyValue = &m_key;
        out.seq = st->integer(4);
    }
    return StatusOk;
}

Status SqliteFile::seekKey(int key, Seek how, const std::string& value, int64_t seq, FoundRecord& out)
{
    if (const Status s = readCurrent(); s != StatusOk)
        return s;
    Statement* st = prepared(m_seek[size_t(key)][size_t(how)], m_sql.seekKey[size_t(key)][size_t(how)]);
    if (st && how != Seek::First && how != Seek::Last) {
        st->bindBlob(1, value.data(), value.size());
        if (m_spec.keys[size_t(key)].duplicates && (how == Seek::Next || how == Seek::Previous))
            st->bind(2, seq);
    }
    return fetch(st, true, out);
}

Status SqliteFile::seekPhysical(Seek how, int64_t recno, FoundRecord& out)
{
    if (const Status s = readCurrent(); s != StatusOk)
        return s;
    Statement* st = nullptr;
    switch (how) {
    case Seek::First: st = fixed(FPhysFirst); break;
    case Seek::Last: st = fixed(FPhysLast); break;
    case Seek::Next: st = fixed(FPhysNext); break;
    default: st = fixed(FPhysPrev); break;
    }
    if (st && (how == Seek::Next || how == Seek::Previous))
        st->bind(1, recno);
    return fetch(st, false, out);
}

Status SqliteFile::readRecord(int64_t recno, FoundRecord& out)
{
    if (const Status s = readCurrent(); s != StatusOk)
        return s;
    Statement* st = fixed(FRead);
    if (st)
        st->bind(1, recno);
    return fetch(st, false, out);
}

Status SqliteFile::fetchRun(Statement* st, bool withKey, size_t max, std::vector<RecordCopy>& out)
{
    out.clear();
    if (!st)
        return rowStatus(sqlite3_errcode(m_db));
    ResetOnExit r(*st);
    st->bind(9, int64_t(max));
    out.resize(max);
    size_t n = 0;
    int rc;
    while (n < max && (rc = st->step()) == SQLITE_ROW) {
        RecordCopy& c = out[n++];
        c.recno = st->integer(0);
        c.version = st->integer(1);
        st->blob(2, c.data);
        c.seq = withKey ? st->integer(4) : 0;
        if (withKey)
            st->blob(3, c.keyValue);
        else
            c.keyValue.clear();
    }
    out.resize(n);
    if (n == max || rc == SQLITE_DONE)
        return StatusOk;
    const Status s = rowStatus(rc);
    st->reset();
    endRead();
    return s;
}

Status SqliteFile::seekKeyRun(int key, Seek how, const std::string& value, int64_t seq, size_t max,
                              std::vector<RecordCopy>& out)
{
    if (const Status s = readCurrent(); s != StatusOk)
        return s;
    if (how != Seek::Next && how != Seek::Previous)
        return StoreFile::seekKeyRun(key, how, value, seq, max, out);
    const size_t at = size_t(key) * 2 + (how == Seek::Next ? 0 : 1);
    Statement* st = prepared(m_runs[at], m_runTexts[at]);
    if (st) {
        st->bindBlob(1, value.data(), value.size());
        if (m_spec.keys[size_t(key)].duplicates)
            st->bind(2, seq);
    }
    return fetchRun(st, true, max, out);
}

Status SqliteFile::seekPhysicalRun(Seek how, int64_t recno, size_t max, std::vector<RecordCopy>& out)
{
    if (const Status s = readCurrent(); s != StatusOk)
        return s;
    if (how != Seek::Next && how != Seek::Previous)
        return StoreFile::seekPhysicalRun(how, recno, max, out);
    const size_t at = m_spec.keys.size() * 2 + (how == Seek::Next ? 0 : 1);
    Statement* st = prepared(m_runs[at], m_runTexts[at]);
    if (st)
        st->bind(1, recno);
    return fetchRun(st, false, max, out);
}

bool SqliteFile::changeMark(ChangeMark& mark)
{
    // Region 0 of the log's shared index starts with the index header: two copies of 48 bytes,
    // the first rewritten last by every commit (and by recovery). Mapped by SQLite's first read;
    // asking the file for it again maps nothing new.
    if (!m_walIndex && !m_walIndexTried) {
        m_walIndexTried = true;
        sqlite3_file* file = nullptr;
        if (sqlite3_file_control(m_db, "main", SQLITE_FCNTL_FILE_POINTER, &file) == SQLITE_OK && file &&
            file->pMethods && file->pMethods->iVersion >= 2 && file->pMethods->xShmMap) {
            void volatile* region = nullptr;
            if (file->pMethods->xShmMap(file, 0, WalIndexRegion, 0, &region) == SQLITE_OK)
                m_walIndex = const_cast<const void*>(region);
        }
    }
    if (!m_walIndex)
        return false;
    std::atomic_thread_fence(std::memory_order_acquire);
    const auto* header = static_cast<const volatile uint64_t*>(m_walIndex);
    for (size_t i = 0; i < 6; ++i)
        mark.words[i] = header[i];
    std::atomic_thread_fence(std::memory_order_acquire);
    // isInit (byte 12) is set once the header is valid.
    return (mark.words[1] >> 32 & 0xFF) == 1;
}

Status SqliteFile::counters(int64_t& count, int64_t& highest)
{
    Statement* st = fixed(FCounters);
    if (!st)
        return rowStatus(sqlite3_errcode(m_db));
    ResetOnExit r(*st);
    const int rc = st->step();
    if (rc != SQLITE_ROW)
        return rc == SQLITE_DONE ? StatusStoreFailure : rowStatus(rc);
    highest = st->integer(0) - 1;
    count = st->integer(1);
    return StatusOk;
}

Status SqliteFile::recordCount(uint32_t& count)
{
    if (const Status s = readCurrent(); s != StatusOk)
        return s;
    int64_t n = 0, highest = 0;
    const Status s = counters(n, highest);
    count = uint32_t(n);
    return s;
}

Status SqliteFile::highestAutoValue(size_t field, int64_t& value)
{
    Statement* st = prepared(m_autoMax[field], m_sql.autoMax[field]);
    if (!st)
        return rowStatus(sqlite3_errcode(m_db));
    ResetOnExit r(*st);
    const int rc = st->step();
    if (rc != SQLITE_ROW)
        return rowStatus(rc);
    value = st->isNull(0) ? 0 : st->integer(0);
    return StatusOk;
}

Status SqliteFile::autoValueExists(size_t field, int64_t value, bool& exists)
{
    Statement* st = prepared(m_autoExists[field], m_sql.autoExists[field]);
    if (!st)
        return rowStatus(sqlite3_errcode(m_db));
    ResetOnExit r(*st);
    st->bind(1, value);
    const int rc = st->step();
    if (rc != SQLITE_ROW && rc != SQLITE_DONE)
        return rowStatus(rc);
    exists = rc == SQLITE_ROW;
    return StatusOk;
}

void SqliteFile::bindRecord(Statement& st, const RecordWrite& rec, int64_t seq, bool keepUnchangedRank)
{
    st.bindBlob(3, rec.data, rec.length);
    int p = 4;
    for (size_t i = 0; i < m_spec.keys.size(); ++i, p += 2) {
        const KeyEntry& k = rec.keys[i];
        if (k.present)
            st.bindBlob(p, k.value.data(), k.value.size());
        else
            st.bindNull(p);
        const bool newRank = !keepUnchangedRank || rec.keyValueChanged[i];
        if (m_spec.keys[i].duplicates && k.present && newRank)
            st.bind(p + 1, seq);
        else if (keepUnchangedRank)
            st.bindNull(p + 1);
        else
            st.bind(p + 1, 0);
    }
    for (size_t j = 0; j < m_autoFields.size(); ++j)
        st.bind(p++, rec.autoValues[j]);
}

Status SqliteFile::insertRecord(const RecordWrite& rec, int64_t& recno, int64_t& version, int64_t& seq)
{
    int64_t count = 0, highest = 0;
    if (const Status s = counters(count, highest); s != StatusOk)
        return s;
    recno = seq = highest + 1;
    version = 1;
    // The counter row becomes the record; a new one goes behind it.
    Statement* st = fixed(FUpdate);
    if (!st)
        return rowStatus(sqlite3_errcode(m_db));
    st->bind(1, recno);
    st->bind(2, version);
    bindRecord(*st, rec, seq, false);
    if (const Status s = run(st); s != StatusOk)
        return s;
    Statement* counter = fixed(FAppendCounter);
    if (counter) {
        counter->bind(1, recno + 1);
        counter->bind(2, count + 1);
    }
    return run(counter);
}

Status SqliteFile::updateRecord(int64_t recno, int64_t newVersion, const RecordWrite& rec, int64_t& seq)
{
    seq = 0;
    bool needRank = false, keysChanged = false;
    rec.changes(m_spec, needRank, keysChanged);
    if (!keysChanged) {
        // Autoincrement fields are key segments, so they stay too: no index is touched.
        Statement* st = fixed(FUpdateData);
        if (!st)
            return rowStatus(sqlite3_errcode(m_db));
        st->bind(1, recno);
        st->bind(2, newVersion);
        st->bindBlob(3, rec.data, rec.length);
        return run(st);
    }
    if (needRank) {
        int64_t count = 0;
        if (const Status s = counters(count, seq); s != StatusOk)
            return s;
        Statement* given = fixed(FGiveRank);
        if (given) {
            given->bind(1, ++seq);
            given->bind(2, seq + 1);
        }
        if (const Status s = run(given); s != StatusOk)
            return s;
    }
    Statement* st = fixed(FUpdate);
    if (!st)
        return rowStatus(sqlite3_errcode(m_db));
    st->bind(1, recno);
    st->bind(2, newVersion);
    bindRecord(*st, rec, seq, true);
    return run(st);
}

Status SqliteFile::deleteRecord(int64_t recno)
{
    for (Fixed f : {FRemove, FRemoveRecordLocks}) {
        Statement* st = fixed(f);
        if (st)
            st->bind(1, recno);
        if (const Status s = run(st); s != StatusOk)
            return s;
    }
    return run(fixed(FCountDelete));
}

Status SqliteFile::deleteChecked(const WriteCheck& check)
{
    if (const Status s = begin(); s != StatusOk)
        return s;
    Status s = lockConflict(check.recno, check.owner);
    const bool locked = !m_holders.empty();
    if (s == StatusOk) {
        Statement* st = fixed(FRemoveChecked);
        if (st) {
            st->bind(1, check.recno);
            st->bind(2, check.version);
            st->bind(3, check.holdsLock ? 1 : 0);
        }
        s = run(st);
        if (s == StatusOk && sqlite3_changes(m_db) == 0)
            s = StatusConflict;
    }
    if (s == StatusOk && locked) {
        Statement* st = fixed(FRemoveRecordLocks);
        if (st)
            st->bind(1, check.recno);
        s = run(st);
    }
    if (s == StatusOk)
        s = run(fixed(FCountDelete));
    if (s != StatusOk) {
        rollback();
        return s;
    }
    return commit();
}

Status SqliteFile::openHandles(std::vector<std::pair<Owner, bool>>& owners)
{
    owners.clear();
    Statement* st = fixed(FOpens);
    if (!st)
        return rowStatus(sqlite3_errcode(m_db));
    ResetOnExit r(*st);
    int rc;
    while ((rc = st->step()) == SQLITE_ROW)
        owners.push_back({Owner{st->integer(0), st->integer(1), st->integer(2), uint64_t(st->integer(3))},
                          st->integer(4) != 0});
    return rc == SQLITE_DONE ? StatusOk : rowStatus(rc);
}

Status SqliteFile::ownerStatement(Fixed which, const Owner& owner)
{
    Statement* st = fixed(which);
    if (st) {
        bindOwner(*st, 1, owner);
    }
    return run(st);
}

Status SqliteFile::registerHandle(const Owner& owner, bool exclusive)
{
    if (const Status s = begin(); s != StatusOk)
        return s;
    if (const Status s = registerInTransaction(owner, exclusive); s != StatusOk) {
        rollback();
        return s;
    }
    return commit();
}

Status SqliteFile::registerInTransaction(const Owner& owner, bool exclusive)
{
    if (const Status s = openHandles(m_owners); s != StatusOk)
        return s;
    bool othersOpen = false;
    for (const auto& [o, excl] : m_owners) {
        if (!ownerAlive(o, m_mark)) {
            if (const Status s = removeOwner(o); s != StatusOk)
                return s;
            continue;
        }
        if (excl)
            return StatusFileLocked;
        othersOpen = true;
    }
    if (exclusive && othersOpen)
        return StatusFileInUse;

    Statement* st = fixed(FAddOpen);
    if (st) {
        bindOwner(*st, 1, owner);
        st->bind(5, exclusive ? 1 : 0);
    }
    return run(st);
}

Status SqliteFile::releaseHandle(const Owner& owner)
{
    if (const Status s = begin(); s != StatusOk)
        return s;
    if (const Status s = removeOwner(owner); s != StatusOk) {
        rollback();
        return s;
    }
    return commit();
}

Status SqliteFile::removeOwner(const Owner& owner)
{
    if (const Status s = ownerStatement(FRemoveOpen, owner); s != StatusOk)
        return s;
    return ownerStatement(FRemoveOwnerLocks, owner);
}

Status SqliteFile::lockConflict(int64_t recno, const Owner& owner)
{
    m_holders.clear();
    Statement* st = fixed(FLockHolders);
    if (!st)
        return rowStatus(sqlite3_errcode(m_db));
    {
        ResetOnExit r(*st);
        st->bind(1, recno);
        int rc;
        while ((rc = st->step()) == SQLITE_ROW)
            m_holders.push_back(Owner{st->integer(0), st->integer(1), st->integer(2), uint64_t(st->integer(3))});
        if (rc != SQLITE_DONE)
            return rowStatus(rc);
    }
    for (const Owner& o : m_holders) {
        if (o == owner)
            continue;
        if (ownerAlive(o, m_mark))
            return StatusRecordLocked;
        if (const Status s = removeOwner(o); s != StatusOk)
            return s;
    }
    return StatusOk;
}

Status SqliteFile::addLock(int64_t recno, const Owner& owner)
{
    Statement* st = fixed(FAddLock);
    if (st) {
        st->bind(1, recno);
        bindOwner(*st, 2, owner);
    }
    return run(st);
}

Status SqliteFile::removeLock(int64_t recno, const Owner& owner)
{
    Statement* st = fixed(FRemoveLock);
    if (st) {
        st->bind(1, recno);
        bindOwner(*st, 2, owner);
    }
    return run(st);
}

}  // namespace recman::sqlite
