// A prepared statement that resets itself after each use, and the mapping of SQLite result codes
// to record-manager statuses.
#pragma once

#include "recman/Codes.h"

#include <sqlite3.h>

#include <cstdint>
#include <string>

namespace recman::sqlite {

// Status for a failed SQLite call: a full disk (18), a busy file (85), anything else (2).
Status statusFor(int resultCode);

class Statement {
public:
    Statement() = default;
    ~Statement() { sqlite3_finalize(m_stmt); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    int prepare(sqlite3* db, const std::string& text)
    {
        sqlite3_finalize(m_stmt);
        m_stmt = nullptr;
        return sqlite3_prepare_v3(db, text.c_str(), int(text.size()), SQLITE_PREPARE_PERSISTENT, &m_stmt, nullptr);
    }
    bool ready() const { return m_stmt != nullptr; }
    sqlite3_stmt* get() const { return m_stmt; }

    void bind(int i, int64_t v) { sqlite3_bind_int64(m_stmt, i, v); }
    void bindBlob(int i, const void* p, size_t n) { sqlite3_bind_blob(m_stmt, i, p, int(n), SQLITE_STATIC); }
    void bindNull(int i) { sqlite3_bind_null(m_stmt, i); }

    // SQLITE_ROW, SQLITE_DONE or an error code.
    int step() { return sqlite3_step(m_stmt); }
    // Every use binds all parameters again, so bindings are left as they are.
    void reset() { sqlite3_reset(m_stmt); }

    int64_t integer(int c) const { return sqlite3_column_int64(m_stmt, c); }
    bool isNull(int c) const { return sqlite3_column_type(m_stmt, c) == SQLITE_NULL; }
    void blob(int c, std::string& out) const
    {
        const void* p = sqlite3_column_blob(m_stmt, c);
        const int n = sqlite3_column_bytes(m_stmt, c);
        out.assign(p ? static_cast<const char*>(p) : "", size_t(n));
    }

private:
    sqlite3_stmt* m_stmt = nullptr;
};

// Resets a statement when the scope ends.
class ResetOnExit {
public:
    explicit ResetOnExit(Statement& s) : m_s(s) {}
    ~ResetOnExit() { m_s.reset(); }
    ResetOnExit(const ResetOnExit&) = delete;
    ResetOnExit& operator=(const ResetOnExit&) = delete;

private:
    Statement& m_s;
};

}  // namespace recman::sqlite
