// A PostgreSQL server of the tests' own, for running suites on the server store.
//
// With TARSEL_TEST_STORE=server in the environment, every test program
// starts a server before its first test (initdb into a temporary folder, pg_ctl on a Unix socket
// there, as the unprivileged user `nobody` when run as root), points the record manager at it
// through TARSEL_SERVER (so that child processes reach it too) and stops it after the last test.
// Without the variable nothing starts and the embedded store serves.
#pragma once

#include <string>

namespace testsupport {

class PostgresServer {
public:
    PostgresServer() = default;
    ~PostgresServer() { stop(); }
    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;

    // Starts the server; an empty string when it runs, else what went wrong.
    std::string start();
    void stop();
    // libpq connection string of the running server.
    const std::string& conninfo() const { return m_conninfo; }
    // Runs one SQL statement through psql; its output, trimmed.
    std::string sql(const std::string& statement) const;

private:
    std::string m_dir, m_bin, m_conninfo, m_asUser;
};

#if defined(_WIN32)
// The Windows build has no server store: the suites run on the embedded store.
inline PostgresServer* ActiveServer() { return nullptr; }
#else
// The server the program's environment started, or null when the suites run on the embedded store.
PostgresServer* ActiveServer();

// Registers the environment described above; true when TARSEL_TEST_STORE=server.
bool UseServerStoreWhenAsked();
inline const bool kServerStoreAsked = UseServerStoreWhenAsked();
#endif

}  // namespace testsupport
