// What only the server store shows: workstations that mount the shop's files under different
// prefixes, a workstation that dies or loses its connection while it holds a lock. The naming of
// files on the server is checked on either store.
#include "ChildProcess.h"
#include "ConformanceFixture.h"
#include "ServerStore.h"
#include "recman/postgres/ServerName.h"

#include <chrono>
#include <cstdlib>

using namespace conformance;
using recman::postgres::serverName;
using testsupport::ChildProcess;

TEST(ServerName, PrefixesAndWindowsPathsReachOneName) {
    EXPECT_EQ("/bridge.rdb", serverName("S:\\Shop\\BRIDGE.RDB", "S:\\Shop"));
    EXPECT_EQ("/bridge.rdb", serverName("\\\\srv\\shop\\bridge.rdb", "\\\\SRV\\Shop\\"));
    EXPECT_EQ("/bridge.rdb", serverName("/mnt/shop/bridge.rdb", "/mnt/shop"));
    EXPECT_EQ("/jobs/a.dat", serverName("/mnt/shop/x/../jobs/./a.dat", "/mnt/shop/"));
    // POSIX paths keep their case; a prefix matches whole components only.
    EXPECT_EQ("/mnt/shop/Bridge.rdb", serverName("/mnt/shop/Bridge.rdb", ""));
    EXPECT_EQ("/mnt/shopping/a.dat", serverName("/mnt/shopping/a.dat", "/mnt/shop"));
    EXPECT_EQ("/", serverName("/mnt/shop", "/mnt/shop"));
}

class ServerStore : public Conformance {
protected:
    void SetUp() override {
        if (!testsupport::ActiveServer())
            GTEST_SKIP() << "needs the server store: run with TARSEL_TEST_STORE=server (CTest label server)";
    }
    // Retries a locking read until it stops answering 84, for at most `seconds`: the server ends a
    // dead client's session when it reads the closed socket, a moment after the kill.
    static int16_t lockWhenFreed(Handle& h, const Bytes& key, int seconds) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
        int16_t status = st::Locked;
        while (status == st::Locked && std::chrono::steady_clock::now() < deadline)
            status = h.find(op::GetEqual + op::Single, key);
        return status;
    }
};

TEST_F(ServerStore, TwoWorkstationsWithDifferentPrefixesReachOneFile) {
    const std::string mine = dir.path().string();
    setenv("TARSEL_SERVER_ROOT", mine.c_str(), 1);
    std::string p = makeFile(twoKeyFile(), "bridge.rdb");
    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 10)));

    // The other desk mounts the same folder as drive S: and writes the name in upper case.
    ChildProcess desk("recmanUser");
    ASSERT_EQ("0", desk.request("root S:\\SHOP"));
    EXPECT_EQ("0", desk.request("open S:\\SHOP\\BRIDGE.RDB"));
    EXPECT_EQ("0 1", desk.request("count"));
    EXPECT_EQ("0 1 0", desk.request("lock 10"));
    EXPECT_EQ(st::Locked, h.find(op::GetEqual + op::Single, int32Key(10)));
    EXPECT_EQ("0", desk.request("insert 2 20 0"));
    EXPECT_EQ(2u, h.count());
    // An exclusive open from here clashes with the desk's handle.
    Handle exclusive;
    EXPECT_EQ(st::InUse, exclusive.open(p, -4));
    EXPECT_EQ("0", desk.request("close"));
    EXPECT_EQ(st::Ok, h.find(op::GetEqual + op::Single, int32Key(10)));
    unsetenv("TARSEL_SERVER_ROOT");
}

TEST_F(ServerStore, AKilledWorkstationsLockIsFreeAtOnce) {
    std::string p = makeFile(twoKeyFile());
    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 10)));
    ChildProcess desk("recmanUser");
    ASSERT_EQ("0", desk.request("open " + p));
    ASSERT_EQ("0 1 0", desk.request("lock 10"));
    EXPECT_EQ(st::Locked, h.find(op::GetEqual + op::Single, int32Key(10)));
    desk.kill();
    EXPECT_EQ(st::Ok, lockWhenFreed(h, int32Key(10), 10));
    // And the desk's handle no longer keeps an exclusive open out.
    ASSERT_EQ(st::Ok, h.close());
    Handle exclusive;
    EXPECT_EQ(st::Ok, exclusive.open(p, -4));
}

TEST_F(ServerStore, ACutConnectionAnswersAStatusAndTheNextOpenConnectsAgain) {
    std::string p = makeFile(twoKeyFile());
    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 10)));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual + op::Single, int32Key(10)));
    const std::string ended = testsupport::ActiveServer()->sql(
        "SELECT count(*) FROM (SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE "
        "backend_type='client backend' AND pid<>pg_backend_pid()) t");
    ASSERT_EQ("1", ended);
    EXPECT_EQ(st::StoreFailure, h.insert(twoKeyRecord(2, 20)));
    EXPECT_EQ(st::StoreFailure, h.find(op::GetFirst, int32Key(0)));
    EXPECT_EQ(st::Ok, h.close());
    // The session's locks went with it; a new handle works on a new connection.
    Handle again;
    ASSERT_EQ(st::Ok, again.open(p));
    EXPECT_EQ(1u, again.count());
    EXPECT_EQ(st::Ok, again.find(op::GetEqual + op::Single, int32Key(10)));
}
