// One process's connection to the PostgreSQL server, shared by every file it has open there.
// Statements are prepared once per connection and run with binary results; a transaction holds
// the connection for its thread from begin() to commit() or rollback().
#pragma once

#include "recman/Codes.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

struct pg_conn;
struct pg_result;

namespace recman::postgres {

// Parameters of one statement: integers and texts are sent as text, byte strings as binary.
class Params {
public:
    Params& integer(int64_t v);
    // An array of integers, as the server's text form "{1,2}" (cast it in the statement).
    Params& integers(const std::vector<int64_t>& v);
    Params& bytes(const void* data, size_t length);
    Params& bytes(const std::string& s) { return bytes(s.data(), s.size()); }
    Params& null();
    void clear();
    size_t size() const { return m_values.size(); }

private:
    friend class Connection;
    std::vector<std::string> m_values;
    std::vector<bool> m_isNull, m_binary;
};

// A statement's result: rows of binary columns.
class Result {
public:
    Result() = default;
    explicit Result(pg_result* r) : m_result(r) {}
    ~Result();
    Result(Result&& o) noexcept : m_result(o.m_result) { o.m_result = nullptr; }
    Result& operator=(Result&& o) noexcept;
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;

    int rows() const;
    bool isNull(int row, int col) const;
    int64_t integer(int row, int col) const;  // a bigint, integer or boolean column
    void bytes(int row, int col, std::string& out) const;
    pg_result* raw() const { return m_result; }

private:
    pg_result* m_result = nullptr;
};

class Connection {
public:
    // Connects; ok() tells whether it worked.
    explicit Connection(const std::string& conninfo);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool ok() const;

    // Runs `text` (prepared on first use) with `params`; StatusOk, StatusDuplicateKey for a
    // unique violation, StatusStoreFailure for anything else, the connection lost included.
    Status run(const std::string& text, const Params& params, Result& out);
    Status run(const std::string& text, const Params& params);
    // Runs statements without parameters in one round trip.
    Status script(const std::string& text);
    // Runs `first` and then `second` in one round trip, each in a transaction of its own, so that
    // the second sees what the first committed; the status of the first (its commit included),
    // then of the second. Outside a transaction only.
    Status runPair(const std::string& first, const Params& firstParams, Result& firstOut, const std::string& second,
                   const Params& secondParams, Result& secondOut, Status& secondStatus);

    // Holds the connection for this thread until commit() or rollback().
    Status begin(const std::string& text);
    Status commit();
    void rollback();

private:
    Status statusOf(pg_result* r) const;
    // The name `text` is prepared under on this connection, preparing it first; null on failure.
    const std::string* prepared(const std::string& text);
    Status sendPrepared(const std::string& text, const Params& params);

    pg_conn* m_conn = nullptr;
    std::recursive_mutex m_mutex;
    std::unordered_map<std::string, std::string> m_prepared;  // text -> statement name
    int m_held = 0;  // transactions this thread holds the mutex for
    bool m_broken = false;
};

}  // namespace recman::postgres
