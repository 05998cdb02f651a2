#include "ServerStore.h"

#include "BTRCALL.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <glob.h>
#include <unistd.h>

namespace testsupport {

namespace {

std::string run(const std::string& command)
{
    std::string out;
    FILE* p = popen(command.c_str(), "r");
    if (!p)
        return out;
    std::array<char, 512> buf{};
    while (fgets(buf.data(), int(buf.size()), p))
        out += buf.data();
    const int rc = pclose(p);
    while (!out.empty() && (out.back() == '\n' || out.back() == ' '))
        out.pop_back();
    return rc == 0 ? out : "failed(" + std::to_string(rc) + "): " + out;
}

std::string serverBinaries()
{
    glob_t g{};
    std::string bin;
    if (glob("/usr/lib/postgresql/*/bin/initdb", 0, nullptr, &g) == 0 && g.gl_pathc > 0)
        bin = std::filesystem::path(g.gl_pathv[g.gl_pathc - 1]).parent_path().string();
    globfree(&g);
    return bin;
}

PostgresServer* g_server = nullptr;

class ServerEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        const std::string error = m_server.start();
        ASSERT_EQ("", error) << "the PostgreSQL server for the server-store tests did not start";
        setenv("TARSEL_SERVER", m_server.conninfo().c_str(), 1);
        RESetServer(m_server.conninfo().c_str());
        g_server = &m_server;
    }
    void TearDown() override
    {
        g_server = nullptr;
        RESetServer(nullptr);
        m_server.stop();
    }

private:
    PostgresServer m_server;
};

}  // namespace

std::string PostgresServer::start()
{
    m_bin = serverBinaries();
    if (m_bin.empty())
        return "no PostgreSQL server installed (Debian package postgresql)";
    char pattern[] = "/tmp/tarsel-pg-XXXXXX";
    if (!mkdtemp(pattern))
        return "no temporary folder";
    m_dir = pattern;
    // The server refuses to run as root: it then runs as nobody, in a folder nobody owns.
    if (geteuid() == 0) {
        if (chown(m_dir.c_str(), 65534, 65534) != 0)
            return "cannot hand the folder to nobody";
        m_asUser = "runuser -u nobody -- ";
    }
    std::string out = run(m_asUser + m_bin + "/initdb -D " + m_dir + "/data -U tarsel -A trust --no-sync -E UTF8 "
                          "--locale=C >" + m_dir + "/initdb.log 2>&1");
    if (!out.empty())
        return "initdb " + out + ": see " + m_dir + "/initdb.log";
    out = run(m_asUser + m_bin + "/pg_ctl -D " + m_dir + "/data -l " + m_dir + "/server.log -w -s -o \"-k " + m_dir +
              " -c listen_addresses= -F -c max_connections=300\" start");
    if (!out.empty()) {
        const std::string failed = "pg_ctl " + out + ": see " + m_dir + "/server.log";
        m_dir.clear();
        return failed;
    }
    m_conninfo = "host=" + m_dir + " dbname=postgres user=tarsel";
    return "";
}

void PostgresServer::stop()
{
    if (m_dir.empty())
        return;
    if (!m_conninfo.empty())
        run(m_asUser + m_bin + "/pg_ctl -D " + m_dir + "/data -m immediate -w -s stop >/dev/null 2>&1");
    std::error_code ec;
    std::filesystem::remove_all(m_dir, ec);
    m_dir.clear();
    m_conninfo.clear();
}

std::string PostgresServer::sql(const std::string& statement) const
{
    return run(m_bin + "/psql -X -q -A -t -h " + m_dir + " -U tarsel -d postgres -c \"" + statement + "\" 2>&1");
}

PostgresServer* ActiveServer() { return g_server; }

bool UseServerStoreWhenAsked()
{
    static const bool asked = [] {
        const char* v = std::getenv("TARSEL_TEST_STORE");
        if (!v || std::string(v) != "server" || std::getenv("TARSEL_TEST_CHILD"))
            return false;
        ::testing::AddGlobalTestEnvironment(new ServerEnvironment);
        return true;
    }();
    return asked;
}

namespace {

// Every test program registers the environment, whether or not its tests include the header.
[[maybe_unused]] const bool g_registered = UseServerStoreWhenAsked();

}  // namespace

}  // namespace testsupport
