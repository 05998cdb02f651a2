// Read-ahead on the server: a scan fetches a window of records in one round trip, and its handle
// serves the next calls from it while the window's lease holds.
//
// A window is read together with a lease: in the same round trip, but in a transaction of its
// own committed before the window's, the session notes in tarsel_leases that it reads the file
// until a moment from now, and moves the file's leased_until to at least that moment. A write
// then waits, before it is acknowledged, until the leases of the other sessions' windows that
// could miss it have run out:
// - a write made in one statement locks the file's row (an update that changes no key takes the
//   writer gate instead, and counts as if the row said "leased") and, when the row says that a
//   lease may still run, reads the leases (tarsel_readers) under the file's lease gate, held
//   shared until it commits. A lease takes the row and then the gate exclusive. So either the
//   lease committed before the write read the row and the leases (the write sees it), or the
//   lease, and so the window read after it, came after the write committed (the window has it);
// - a transaction of writes reads the leases once it has committed, so a lease it does not see
//   came after the commit, and so did its window.
// The handle trusts a window only within the lease period in which its change mark was taken,
// which ends no later than the lease the server holds; this process's own writes change the
// mark at once.
#include "recman/postgres/PgFile.h"
#include "recman/postgres/PgTables.h"

#include <chrono>
#include <thread>

namespace recman::postgres {

namespace {

constexpr int64_t LeaseMicroseconds = 3000;

int64_t leasePeriod()
{
    using namespace std::chrono;
    return int64_t(steady_clock::now().time_since_epoch() / microseconds(LeaseMicroseconds));
}

}  // namespace

void PgFile::buildLeaseStatements()
{
    const std::string id = std::to_string(m_id);
    const std::string until = "clock_timestamp() + interval '" + std::to_string(LeaseMicroseconds) + " microseconds'";
    // The file's row first, then the gate: the order in which a write takes them.
    m_lease = "WITH r AS (UPDATE tarsel_files SET leased_until=greatest(leased_until, " + until + ") WHERE id=" + id +
              " RETURNING id), g AS (SELECT pg_advisory_xact_lock(" + id + ", " + LeaseGate +
              ") FROM r) INSERT INTO tarsel_leases SELECT " + id + ", pg_backend_pid(), " + until +
              " FROM g ON CONFLICT (file, session) DO UPDATE SET until=EXCLUDED.until";
    m_readers = "SELECT tarsel_readers(" + id + ")";
    m_endLease = "DELETE FROM tarsel_leases WHERE file=" + id + " AND session=pg_backend_pid()";
}

bool PgFile::changeMark(ChangeMark& mark)
{
    // Inside a transaction a lease would not be seen before it commits.
    if (m_inTransaction)
        return false;
    mark = ChangeMark{};
    mark.words[0] = m_writes;
    mark.words[1] = uint64_t(leasePeriod());
    return true;
}

Status PgFile::seekKeyRun(int key, Seek how, const std::string& value, int64_t seq, size_t max,
                          std::vector<RecordCopy>& out)
{
    if (how != Seek::Next && how != Seek::Previous)
        return StoreFile::seekKeyRun(key, how, value, seq, max, out);
    m_params.clear();
    m_params.bytes(value);
    if (m_spec.keys[size_t(key)].duplicates)
        m_params.integer(seq);
    return readRun(m_sql.seekKey[size_t(key)][size_t(how)], true, max, out);
}

Status PgFile::seekPhysicalRun(Seek how, int64_t recno, size_t max, std::vector<RecordCopy>& out)
{
    if (how != Seek::Next && how != Seek::Previous)
        return StoreFile::seekPhysicalRun(how, recno, max, out);
    m_params.clear();
    m_params.integer(recno);
    return readRun(how == Seek::Next ? m_sql.physicalNext : m_sql.physicalPrevious, false, max, out);
}

Status PgFile::readRun(const std::string& seekText, bool withKey, size_t max, std::vector<RecordCopy>& out)
{
    std::string& text = m_runs[&seekText];
    if (text.empty()) {
        // The seek's "LIMIT 1" becomes a limit given as the last parameter.
        text = seekText.substr(0, seekText.rfind("LIMIT 1")) + "LIMIT $" + std::to_string(m_params.size() + 1);
    }
    m_params.integer(int64_t(max));
    Result lease;
    Status windowStatus = StatusOk;
    if (const Status s = m_conn->runPair(m_lease, Params(), lease, text, m_params, m_result, windowStatus);
        s != StatusOk)
        return s;
    if (windowStatus != StatusOk)
        return windowStatus;
    m_leased = true;
    const int rows = m_result.rows();
    out.resize(size_t(rows));
    for (int i = 0; i < rows; ++i) {
        RecordCopy& r = out[size_t(i)];
        r.recno = m_result.integer(i, 0);
        r.version = m_result.integer(i, 1);
        m_result.bytes(i, 2, r.data);
        r.keyValue.clear();
        r.seq = 0;
        if (withKey) {
            m_result.bytes(i, 3, r.keyValue);
            r.seq = m_result.integer(i, 4);
        }
        remember(r.recno, r.version, r.data.data(), r.data.size());
    }
    return StatusOk;
}

Status PgFile::runWrite(const std::string& text, int readersColumn)
{
    const Status s = m_conn->run(text, m_params, m_result);
    ++m_writes;
    if (s == StatusOk && readersColumn >= 0 && m_result.rows() == 1)
        outlast(m_result.integer(0, readersColumn));
    return s;
}

Status PgFile::awaitReaders()
{
    ++m_writes;
    Result readers;
    if (const Status s = m_conn->run(m_readers, Params(), readers); s != StatusOk)
        return s;
    outlast(readers.rows() == 1 ? readers.integer(0, 0) : 0);
    return StatusOk;
}

void PgFile::outlast(int64_t microseconds)
{
    if (microseconds > 0)
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

void PgFile::endLease()
{
    if (m_leased)
        m_conn->run(m_endLease, Params());
    m_leased = false;
}

}  // namespace recman::postgres
