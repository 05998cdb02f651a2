// What only the server store shows: workstations that mount the shop's files under different
// prefixes, a workstation that dies or loses its connection while it holds a lock. The naming of
// files on the server is checked on either store.
#include "ChildProcess.h"
#include "ConformanceFixture.h"
#include "ServerStore.h"
#include "recman/postgres/ServerName.h"

#include <chrono>
#include <cstdlib>
#include <sstream>
#include <unistd.h>

using namespace conformance;
using recman::postgres::serverName;
using testsupport::ChildProcess;

namespace {

// The count kept in bytes 12..15 of a twoKeyRecord, outside its keys.
uint32_t tally(const Bytes& r) { return uint32_t(readLe(r.data() + 12, 4)); }

// Adds 1 to the tally of the record with key 0 `key`, `times` times: under a no-wait lock taken
// again while another holds it, or by a plain read and an update tried again on 80 or 84.
int16_t addTo(Handle& h, int key, int times, bool locking) {
    for (int i = 0; i < times; ++i) {
        int16_t status = st::Locked;
        while (status == st::Locked || status == st::Changed) {
            status = h.find(op::GetEqual + (locking ? op::Single : 0), int32Key(key));
            if (status == st::Locked)
                continue;
            if (status != st::Ok)
                return status;
            const Bytes counted = le(tally(h.data) + 1, 4);
            std::copy(counted.begin(), counted.end(), h.data.begin() + 12);
            status = h.update(h.data);
            if (locking && status != st::Ok)
                return status;  // the lock kept every other write out
        }
        if (status != st::Ok)
            return status;
    }
    return st::Ok;
}

}  // namespace

// A workstation on a twoKeyFile(); every reply starts with the status.
//   open PATH | lock KEY0 | mlock KEY0 (a multiple lock) | unlock (every multiple lock)
//   update KEY1 (the current record) | delete | add KEY0 TIMES lock|plain (addTo)
TARSEL_CHILD_ROUTINE(serverDesk) {
    Handle h;
    std::string line;
    while (channel.readLine(line)) {
        std::istringstream in(line);
        std::string command, arg;
        int key = 0, times = 0;
        in >> command;
        int16_t status = st::BadOperation;
        if (command == "open" && in >> arg) {
            status = h.open(arg);
        } else if ((command == "lock" || command == "mlock") && in >> key) {
            status = h.find(op::GetEqual + (command == "lock" ? op::Single : op::Multiple), int32Key(key));
        } else if (command == "unlock") {
            status = h.unlock(-2);
        } else if (command == "update" && in >> key) {
            const Bytes k1 = int32Key(key);
            std::copy(k1.begin(), k1.end(), h.data.begin() + 8);
            status = h.update(h.data);
        } else if (command == "delete") {
            status = h.erase();
        } else if (command == "add" && in >> key >> times >> arg) {
            status = addTo(h, key, times, arg == "lock");
        }
        channel.writeLine(std::to_string(status));
    }
}

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
    // The session is named after this process, so the server's activity view can tell whose it is.
    EXPECT_EQ("1", testsupport::ActiveServer()->sql("SELECT count(*) FROM pg_stat_activity WHERE application_name='tarsel " +
                                                     std::to_string(::getpid()) + "'"));
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

// A server database made before scans read ahead lacks the files' lease column: a workstation
// that connects adds it, and the files and their records are as they were.
TEST_F(ServerStore, ADatabaseOfTheEarlierLayoutIsBroughtUpToDateOnConnecting) {
    std::string p = makeFile(twoKeyFile());
    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    for (int t = 1; t <= 6; ++t)
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(t, 10 * t)));
    const testsupport::PostgresServer& server = *testsupport::ActiveServer();
    const std::string column = "SELECT count(*) FROM pg_attribute WHERE attrelid='tarsel_files'::regclass AND "
                               "attname='leased_until' AND NOT attisdropped";
    server.sql("ALTER TABLE tarsel_files DROP COLUMN leased_until");
    ASSERT_EQ("0", server.sql(column));

    ChildProcess desk("recmanUser");
    ASSERT_EQ("0", desk.request("open " + p));
    EXPECT_EQ("1", server.sql(column));
    EXPECT_EQ("0 6", desk.request("count"));
    EXPECT_EQ("0", desk.request("insert 7 70 0"));
    EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5, 6, 7}), tags(h.readAll()));
}

TEST_F(ServerStore, AnotherWorkstationsLocksAndWritesRefuseTheWritesTheyMust) {
    std::string p = makeFile(twoKeyFile());
    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    for (int k : {10, 20, 30})
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(k, k)));
    ChildProcess desk("serverDesk");
    ASSERT_EQ("0", desk.request("open " + p));

    // Its multiple locks keep our locks, updates and deletes out until it lets them go.
    ASSERT_EQ("0", desk.request("mlock 10"));
    ASSERT_EQ("0", desk.request("mlock 20"));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(10)));
    EXPECT_EQ(st::Locked, h.update(twoKeyRecord(11, 10)));
    EXPECT_EQ(st::Locked, h.erase());
    EXPECT_EQ(st::Locked, h.find(op::GetEqual + op::Single, int32Key(20)));
    ASSERT_EQ("0", desk.request("unlock"));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(10)));
    EXPECT_EQ(st::Ok, h.update(twoKeyRecord(11, 10)));

    // A single lock moves with its next locking read and ends with its update.
    ASSERT_EQ("0", desk.request("lock 20"));
    ASSERT_EQ("0", desk.request("lock 30"));
    EXPECT_EQ(st::Ok, h.find(op::GetEqual + op::Single, int32Key(20)));
    EXPECT_EQ(st::Locked, h.find(op::GetEqual + op::Single, int32Key(30)));
    ASSERT_EQ("0", desk.request("update 5"));
    EXPECT_EQ(st::Ok, h.find(op::GetEqual + op::Single, int32Key(30)));

    // A record the desk changed or deleted after we read it answers 80; nothing half done.
    ASSERT_EQ(st::Ok, h.unlock(0));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(30)));
    ASSERT_EQ("0", desk.request("lock 30"));
    ASSERT_EQ("0", desk.request("update 7"));
    EXPECT_EQ(st::Changed, h.update(twoKeyRecord(31, 30)));
    EXPECT_EQ(st::Changed, h.erase());
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(20)));
    ASSERT_EQ("0", desk.request("lock 20"));
    ASSERT_EQ("0", desk.request("delete"));
    EXPECT_EQ(st::Changed, h.erase());
    EXPECT_EQ(2u, h.count());
    EXPECT_EQ(st::Duplicate, h.insert(twoKeyRecord(1, 30)));
    EXPECT_EQ(2u, h.count());
}

// Two workstations add to one record at once, one under locks and one by plain reads: a lock
// handed out on a record as a write commits must read that write, or an increment is lost.
TEST_F(ServerStore, LockingAndPlainWritersAtOnceLoseNoWrite) {
    std::string p = makeFile(twoKeyFile());
    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(1, 10)));
    ChildProcess locking("serverDesk"), plain("serverDesk");
    ASSERT_EQ("0", locking.request("open " + p));
    ASSERT_EQ("0", plain.request("open " + p));
    constexpr int times = 300;
    locking.send("add 10 " + std::to_string(times) + " lock");
    plain.send("add 10 " + std::to_string(times) + " plain");
    EXPECT_EQ("0", locking.receive());
    EXPECT_EQ("0", plain.receive());
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(10)));
    EXPECT_EQ(uint32_t(2 * times), tally(h.data));
}

// Scans read ahead on the server; a write that another workstation has been told is done before
// a scan's next call is what that call meets, in key and in physical order.
TEST_F(ServerStore, AScanMeetsWhatAnotherWorkstationWroteBeforeItsNextCall) {
    std::string p = makeFile(twoKeyFile());
    Handle h;
    ASSERT_EQ(st::Ok, h.open(p));
    for (int t = 1; t <= 12; ++t)
        ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(t, 10 * t, t)));
    ChildProcess desk("recmanUser");
    ASSERT_EQ("0", desk.request("open " + p));
    const auto key1 = [&] { return int32_t(readLe(h.data.data() + 8, 4)); };

    ASSERT_EQ(st::Ok, h.get(op::GetFirst));
    ASSERT_EQ(st::Ok, h.get(op::GetNext));  // tag 2, with tags 3 to 6 read ahead
    ASSERT_EQ("0 3 3", desk.request("read 30"));
    ASSERT_EQ("0", desk.request("delete"));
    ASSERT_EQ(st::Ok, h.get(op::GetNext));
    EXPECT_EQ(4, h.data[0]);
    ASSERT_EQ("0 5 5", desk.request("read 50"));
    ASSERT_EQ("0", desk.request("update 50 55"));
    ASSERT_EQ(st::Ok, h.get(op::GetNext));
    EXPECT_EQ(5, h.data[0]);
    EXPECT_EQ(55, key1());
    ASSERT_EQ("0", desk.request("insert 13 55 0"));
    ASSERT_EQ(st::Ok, h.get(op::GetNext));
    EXPECT_EQ(13, h.data[0]);

    ASSERT_EQ(st::Ok, h.step(op::StepFirst));
    ASSERT_EQ(st::Ok, h.step(op::StepNext));  // tag 2, with the next four read ahead
    ASSERT_EQ("0 4 4", desk.request("read 40"));
    ASSERT_EQ("0", desk.request("delete"));
    ASSERT_EQ(st::Ok, h.step(op::StepNext));
    EXPECT_EQ(5, h.data[0]);
    ASSERT_EQ(st::Ok, h.step(op::StepNext));
    EXPECT_EQ(6, h.data[0]);
}
