#include "recman/postgres/PgConnection.h"

#include <libpq-fe.h>

#include <cstring>
#include <string>
#include <unistd.h>

namespace recman::postgres {

namespace {

constexpr const char* UniqueViolation = "23505";

uint64_t loadBE(const char* p, int n)
{
    uint64_t v = 0;
    for (int i = 0; i < n; ++i)
        v = (v << 8) | uint8_t(p[i]);
    return v;
}

}  // namespace

Params& Params::integer(int64_t v)
{
    m_values.push_back(std::to_string(v));
    m_isNull.push_back(false);
    m_binary.push_back(false);
    return *this;
}

Params& Params::integers(const std::vector<int64_t>& v)
{
    std::string text = "{";
    for (size_t i = 0; i < v.size(); ++i) {
        if (i)
            text.push_back(',');
        text += std::to_string(v[i]);
    }
    text.push_back('}');
    m_values.push_back(std::move(text));
    m_isNull.push_back(false);
    m_binary.push_back(false);
    return *this;
}

Params& Params::bytes(const void* data, size_t length)
{
    m_values.emplace_back(static_cast<const char*>(data), length);
    m_isNull.push_back(false);
    m_binary.push_back(true);
    return *this;
}

Params& Params::null()
{
    m_values.emplace_back();
    m_isNull.push_back(true);
    m_binary.push_back(false);
    return *this;
}

void Params::clear()
{
    m_values.clear();
    m_isNull.clear();
    m_binary.clear();
}

Result::~Result() { PQclear(m_result); }

Result& Result::operator=(Result&& o) noexcept
{
    if (this != &o) {
        PQclear(m_result);
        m_result = o.m_result;
        o.m_result = nullptr;
    }
    return *this;
}

int Result::rows() const { return m_result ? PQntuples(m_result) : 0; }

bool Result::isNull(int row, int col) const { return PQgetisnull(m_result, row, col) != 0; }

int64_t Result::integer(int row, int col) const
{
    const int n = PQgetlength(m_result, row, col);
    return n == 4 ? int64_t(int32_t(loadBE(PQgetvalue(m_result, row, col), 4)))
                  : int64_t(loadBE(PQgetvalue(m_result, row, col), n));
}

void Result::bytes(int row, int col, std::string& out) const
{
    out.assign(PQgetvalue(m_result, row, col), size_t(PQgetlength(m_result, row, col)));
}

namespace {

// The session is named after this process ("tarsel 4711") unless the connection string names it:
// the server's activity view then shows which workstation process holds a session.
pg_conn* Connect(const std::string& conninfo)
{
    const std::string name = "tarsel " + std::to_string(::getpid());
    const char* const keys[] = {"dbname", "fallback_application_name", nullptr};
    const char* const values[] = {conninfo.c_str(), name.c_str(), nullptr};
    return PQconnectdbParams(keys, values, 1);
}

}  // namespace

Connection::Connection(const std::string& conninfo) : m_conn(Connect(conninfo)) {}

Connection::~Connection() { PQfinish(m_conn); }

bool Connection::ok() const { return m_conn && !m_broken && PQstatus(m_conn) == CONNECTION_OK; }

Status Connection::statusOf(pg_result* r) const
{
    const ExecStatusType t = PQresultStatus(r);
    if (t == PGRES_COMMAND_OK || t == PGRES_TUPLES_OK)
        return StatusOk;
    const char* state = PQresultErrorField(r, PG_DIAG_SQLSTATE);
    if (state && std::strcmp(state, UniqueViolation) == 0)
        return StatusDuplicateKey;
    return StatusStoreFailure;
}

const std::string* Connection::prepared(const std::string& text)
{
    auto it = m_prepared.find(text);
    if (it == m_prepared.end()) {
        std::string name = "t";
        name += std::to_string(m_prepared.size());
        Result made(PQprepare(m_conn, name.c_str(), text.c_str(), 0, nullptr));
        if (statusOf(made.raw()) != StatusOk)
            return nullptr;
        it = m_prepared.emplace(text, name).first;
    }
    return &it->second;
}

namespace {

// A statement's parameters in the arrays libpq takes.
struct Bound {
    Bound(const std::vector<std::string>& v, const std::vector<bool>& isNull, const std::vector<bool>& binary)
        : values(v.size()), lengths(v.size()), formats(v.size())
    {
        for (size_t i = 0; i < v.size(); ++i) {
            values[i] = isNull[i] ? nullptr : v[i].data();
            lengths[i] = int(v[i].size());
            formats[i] = binary[i] ? 1 : 0;
        }
    }
    std::vector<const char*> values;
    std::vector<int> lengths, formats;
};

}  // namespace

Status Connection::run(const std::string& text, const Params& params, Result& out)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    if (!ok())
        return StatusStoreFailure;
    const std::string* name = prepared(text);
    if (!name)
        return StatusStoreFailure;
    const Bound b(params.m_values, params.m_isNull, params.m_binary);
    pg_result* r = PQexecPrepared(m_conn, name->c_str(), int(b.values.size()), b.values.data(), b.lengths.data(),
                                  b.formats.data(), 1);
    out = Result(r);
    return statusOf(r);
}

Status Connection::sendPrepared(const std::string& text, const Params& params)
{
    const std::string* name = prepared(text);
    if (!name)
        return StatusStoreFailure;
    const Bound b(params.m_values, params.m_isNull, params.m_binary);
    return PQsendQueryPrepared(m_conn, name->c_str(), int(b.values.size()), b.values.data(), b.lengths.data(),
                               b.formats.data(), 1) == 1
               ? StatusOk
               : StatusStoreFailure;
}

Status Connection::runPair(const std::string& first, const Params& firstParams, Result& firstOut,
                           const std::string& second, const Params& secondParams, Result& secondOut,
                           Status& secondStatus)
{
    static const std::string Begin = "BEGIN", Commit = "COMMIT";
    static const Params None;
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    secondStatus = StatusStoreFailure;
    if (!ok() || m_held > 0 || !prepared(Begin) || !prepared(Commit) || !prepared(first) || !prepared(second))
        return StatusStoreFailure;
    if (PQenterPipelineMode(m_conn) != 1)
        return StatusStoreFailure;
    // The first statement in a transaction committed before the second begins, and one sync
    // point for all: one message out, one answer back.
    Result begun, committed;
    const std::pair<const std::string*, const Params*> sends[4] = {
        {&Begin, &None}, {&first, &firstParams}, {&Commit, &None}, {&second, &secondParams}};
    Result* outs[4] = {&begun, &firstOut, &committed, &secondOut};
    Status statuses[4] = {StatusStoreFailure, StatusStoreFailure, StatusStoreFailure, StatusStoreFailure};
    bool sent = true;
    for (const auto& [text, params] : sends)
        sent = sent && sendPrepared(*text, *params) == StatusOk;
    sent = sent && PQpipelineSync(m_conn) == 1;
    // Each statement answers its result (aborted once one before it failed) and then null; the
    // sync point comes last.
    for (int i = 0; i < 4 && sent; ++i) {
        pg_result* r = PQgetResult(m_conn);
        if (!r) {
            sent = false;
            break;
        }
        statuses[i] = statusOf(r);
        *outs[i] = Result(r);
        Result end(PQgetResult(m_conn));
        sent = !end.raw();
    }
    if (sent) {
        Result sync(PQgetResult(m_conn));
        sent = sync.raw() && PQresultStatus(sync.raw()) == PGRES_PIPELINE_SYNC;
    }
    // A pipeline left half read cannot be left: the connection is given up (and made anew).
    if (PQexitPipelineMode(m_conn) != 1)
        m_broken = true;
    // A first statement that failed leaves its transaction open (the rest was skipped).
    if (!m_broken && PQtransactionStatus(m_conn) != PQTRANS_IDLE)
        Result(PQexec(m_conn, "ROLLBACK"));
    if (!sent || m_broken)
        return StatusStoreFailure;
    secondStatus = statuses[3];
    if (statuses[1] != StatusOk)
        return statuses[1];
    return statuses[0] == StatusOk && statuses[2] == StatusOk ? StatusOk : StatusStoreFailure;
}

Status Connection::run(const std::string& text, const Params& params)
{
    Result ignored;
    return run(text, params, ignored);
}

Status Connection::script(const std::string& text)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    if (!ok())
        return StatusStoreFailure;
    Result r(PQexec(m_conn, text.c_str()));
    return statusOf(r.raw());
}

Status Connection::begin(const std::string& text)
{
    m_mutex.lock();
    const Status s = script(text);
    if (s != StatusOk) {
        script("ROLLBACK");
        m_mutex.unlock();
        return s;
    }
    ++m_held;
    return s;
}

Status Connection::commit()
{
    const Status s = script("COMMIT");
    if (m_held > 0) {
        --m_held;
        m_mutex.unlock();
    }
    return s;
}

void Connection::rollback()
{
    script("ROLLBACK");
    if (m_held > 0) {
        --m_held;
        m_mutex.unlock();
    }
}

}  // namespace recman::postgres
