// The server's tables of one record-manager file: r<id> for its records, and the test of whether
// any session has the file open.
#pragma once

#include "recman/FileSpec.h"
#include "recman/postgres/PgConnection.h"

#include <string>

namespace recman::postgres {

// Second key of the advisory lock that gates a file's writers: an update that changes no key
// takes it shared instead of the file's row; a transaction that must see no writer (begin(), a
// repair) takes it exclusive before the row.
inline constexpr const char* WriterGate = "-1";
// Second key of the advisory lock between read-ahead leases (exclusive) and the writes made in
// one statement (shared, from the lease check to their commit).
inline constexpr const char* LeaseGate = "-2";

// Appended rather than "r" + ...: GCC 12 warns falsely on that form in release builds.
inline std::string tableOf(int64_t id)
{
    std::string t = "r";
    t += std::to_string(id);
    return t;
}

// The statements that make file `id`'s record table and its indexes for `spec`.
std::string createTable(int64_t id, const FileSpec& spec);

// The creation block in column `col` of a result's first row, and the file layout it gives;
// StatusNotEngineFile when it describes none.
Status specOf(const Result& r, int col, std::string& block, FileSpec& spec);

// Whether a session (this one included) holds file `id` open. Call inside a transaction: the
// test is of the server's lock table, so it sees this session's own handles too.
Status openAnywhere(Connection& conn, int64_t id, bool& open);

}  // namespace recman::postgres
