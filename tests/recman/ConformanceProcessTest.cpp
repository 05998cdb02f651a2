// Two processes on one file: locks, exclusive opens, visibility, crashes and fork.
#include "ChildProcess.h"
#include "ConformanceFixture.h"

#include <filesystem>
#include <set>
#include <sstream>
#include <unistd.h>
#if !defined(_WIN32)
#include <sys/wait.h>
#endif

namespace conformance {
namespace {

namespace fs = std::filesystem;
using testsupport::ChildProcess;

// A second user of a twoKeyFile(): one handle, driven line by line. Every reply starts with the
// status; "read" adds the tag and key 1, "auto" the ids it was given.
//   open PATH MODE | close | insert TAG KEY0 KEY1 | insertmany FIRST COUNT | read KEY0 | lock KEY0
//   update KEY0 KEY1 (the current record) | delete | count | auto COUNT (an autoincrement file)
//   stream FIRST COUNT (as insertmany, one reply line per insert) | quit (ends at once, closing nothing)
//   block (the position block in hex)
TARSEL_CHILD_ROUTINE(recmanUser) {
    Handle h;
    std::string line;
    while (channel.readLine(line)) {
        std::istringstream in(line);
        std::string command;
        in >> command;
        std::ostringstream reply;
        if (command == "open") {
            std::string path;
            int mode = 0;
            in >> path >> mode;
            reply << h.open(path, int8_t(mode));
        } else if (command == "close") {
            reply << h.close();
        } else if (command == "insert") {
            int tag = 0, key0 = 0, key1 = 0;
            in >> tag >> key0 >> key1;
            reply << h.insert(twoKeyRecord(tag, key0, key1));
        } else if (command == "insertmany") {
            int first = 0, count = 0;
            in >> first >> count;
            int16_t status = st::Ok;
            for (int i = first; i < first + count && status == st::Ok; ++i)
                status = h.insert(twoKeyRecord(i % 256, i, i));
            reply << status;
        } else if (command == "stream") {
            int first = 0, count = 0;
            in >> first >> count;
            for (int i = first; i < first + count; ++i)
                channel.writeLine(std::to_string(h.insert(twoKeyRecord(i % 256, i, i))));
            continue;
        } else if (command == "read" || command == "lock") {
            int key0 = 0;
            in >> key0;
            int16_t status = h.find(op::GetEqual + (command == "lock" ? op::Single : 0), int32Key(key0));
            reply << status;
            if (status == st::Ok)
                reply << ' ' << int(h.data[0]) << ' ' << int32_t(readLe(h.data.data() + 8, 4));
        } else if (command == "update") {
            int key0 = 0, key1 = 0;
            in >> key0 >> key1;
            reply << h.update(twoKeyRecord(h.data.empty() ? 0 : h.data[0], key0, key1));
        } else if (command == "delete") {
            reply << h.erase();
        } else if (command == "block") {
            static const char kHex[] = "0123456789abcdef";
            reply << "0 ";
            for (uint8_t byte : h.block)
                reply << kHex[byte >> 4] << kHex[byte & 15];
        } else if (command == "root") {
            // The prefix this workstation mounts the shop's files under (server store).
            std::string root;
            in >> root;
#if defined(_WIN32)
            _putenv_s("TARSEL_SERVER_ROOT", root.c_str());
#else
            setenv("TARSEL_SERVER_ROOT", root.c_str(), 1);
#endif
            reply << 0;
        } else if (command == "quit") {
            ::_exit(0);
        } else if (command == "count") {
            Bytes stat;
            int16_t status = h.stat(stat);
            reply << status << ' ' << (status == st::Ok ? readLe(stat.data() + 6, 4) : 0);
        } else if (command == "auto") {
            int count = 0;
            in >> count;
            int16_t status = st::Ok;
            std::ostringstream ids;
            for (int i = 0; i < count && status == st::Ok; ++i) {
                status = h.insert(record(8, {}));
                ids << ' ' << readLe(h.written.data(), 4);
            }
            reply << status << ids.str();
        } else {
            reply << "unknown " << command;
        }
        channel.writeLine(reply.str());
    }
}

class Processes : public Conformance {
protected:
    void SetUp() override {
        file = makeFile(twoKeyFile());
        ASSERT_EQ(st::Ok, h.open(file));
        for (int t : {1, 2, 3})
            ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(t, 10 * t, 0)));
    }
    static int16_t lock(Handle& handle, int32_t key0) {
        return handle.find(op::GetEqual + op::Single, int32Key(key0));
    }
    std::string openLine(int mode = 0) const { return "open " + file + " " + std::to_string(mode); }

    std::string file;
    Handle h;
};

TEST_F(Processes, LocksConflictAcrossProcessesAndDieWithTheirHolder) {
    ChildProcess child("recmanUser");
    ASSERT_EQ("0", child.request(openLine()));
    ASSERT_EQ("0 1 0", child.request("lock 10"));
    EXPECT_EQ(st::Locked, lock(h, 10));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(10)));
    EXPECT_EQ(st::Locked, h.update(twoKeyRecord(1, 10, 5)));
    EXPECT_EQ(st::Locked, h.erase());

    ASSERT_EQ(st::Ok, lock(h, 20));
    EXPECT_EQ("84", child.request("lock 20"));
    EXPECT_EQ("0 2 0", child.request("read 20"));
    EXPECT_EQ("84", child.request("update 20 7"));
    ASSERT_EQ(st::Ok, h.unlock(0));
    EXPECT_EQ("0", child.request("update 20 7"));

    child.kill();
    EXPECT_EQ(st::Ok, lock(h, 10)) << "a killed holder's lock blocks no one";
    ASSERT_EQ(st::Ok, h.unlock(0));

    ChildProcess quitter("recmanUser");
    ASSERT_EQ("0", quitter.request(openLine()));
    ASSERT_EQ("0 3 0", quitter.request("lock 30"));
    EXPECT_EQ(st::Locked, lock(h, 30));
    quitter.send("quit");
    EXPECT_EQ(0, quitter.finish());
    EXPECT_EQ(st::Ok, lock(h, 30)) << "nor does the lock of a process that ended without closing";
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(20)));
    EXPECT_EQ(twoKeyRecord(2, 20, 7), h.data);
}

TEST_F(Processes, ExclusiveOpensAcrossProcesses) {
    ChildProcess child("recmanUser");
    EXPECT_EQ("88", child.request(openLine(-4)));
    ASSERT_EQ(st::Ok, h.close());
    ASSERT_EQ("0", child.request(openLine(-4)));
    EXPECT_EQ(st::FileLocked, Handle().open(file));
    EXPECT_EQ(st::FileLocked, Handle().open(file, -4));
    EXPECT_EQ(st::CannotCreate, create(file, twoKeyFile()));
    ASSERT_EQ("0", child.request("close"));
    ASSERT_EQ(st::Ok, h.open(file));
    ASSERT_EQ("88", child.request(openLine(-4)));
    ASSERT_EQ(st::Ok, h.close());

    ASSERT_EQ("0", child.request(openLine(-4)));
    child.kill();
    ASSERT_EQ(st::Ok, h.open(file, -4)) << "a killed exclusive holder blocks no one";
    EXPECT_EQ(3u, h.count());
}

TEST_F(Processes, CommittedWritesAreSeenAtTheNextOperation) {
    ChildProcess child("recmanUser");
    ASSERT_EQ("0", child.request(openLine()));
    ASSERT_EQ("0", child.request("insert 4 40 4"));
    EXPECT_EQ(4u, h.count());
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(40)));
    EXPECT_EQ(twoKeyRecord(4, 40, 4), h.data);

    ASSERT_EQ(st::Ok, h.update(twoKeyRecord(4, 40, 44)));
    EXPECT_EQ("0 4 44", child.request("read 40"));
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(40)));
    ASSERT_EQ(st::Ok, h.update(twoKeyRecord(4, 40, 45)));
    EXPECT_EQ("80", child.request("update 40 46")) << "changed by the other process since it was read";
    EXPECT_EQ("80", child.request("delete"));
    ASSERT_EQ("0 4 45", child.request("read 40"));
    ASSERT_EQ("0", child.request("delete"));

    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(30)));
    ASSERT_EQ("0 3 0", child.request("read 30"));
    ASSERT_EQ("0", child.request("delete"));
    EXPECT_EQ(st::Changed, h.update(twoKeyRecord(3, 30, 1)));

    // A position continues into records the other process added meanwhile.
    ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(10)));
    ASSERT_EQ("0", child.request("insert 5 15 0"));
    ASSERT_EQ(st::Ok, h.get(op::GetNext));
    EXPECT_EQ(5, h.data[0]);
    ASSERT_EQ(st::Ok, h.step(op::StepLast));
    EXPECT_EQ(5, h.data[0]);
    EXPECT_EQ(3u, h.count());
    EXPECT_EQ((std::vector<int>{1, 5, 2}), tags(h.readAll()));

    // The last user to close, whichever process it is, leaves the file alone at its path.
    ASSERT_EQ(st::Ok, h.close());
    ASSERT_EQ("0", child.request("close"));
    for (const auto& entry : fs::directory_iterator(dir.path()))
        EXPECT_EQ(file, entry.path().string()) << "companion file left behind";
}

TEST_F(Processes, AKilledWriterLosesNothingItCommitted) {
    ASSERT_EQ(st::Ok, h.close());
    ChildProcess child("recmanUser");
    ASSERT_EQ("0", child.request(openLine()));
    ASSERT_EQ("0", child.request("insertmany 100 300"));
    ASSERT_EQ("0 101 101", child.request("read 101"));
    ASSERT_EQ("0", child.request("update 101 7"));
    ASSERT_EQ("0 102 102", child.request("read 102"));
    ASSERT_EQ("0", child.request("delete"));
    ASSERT_EQ("0 103 103", child.request("lock 103"));
    EXPECT_EQ(st::CannotCreate, create(file, twoKeyFile())) << "open in another process";
    child.kill();

    ASSERT_EQ(st::Ok, h.open(file));
    EXPECT_EQ(302u, h.count());
    std::vector<Bytes> all = h.readAll();
    ASSERT_EQ(302u, all.size());
    EXPECT_EQ(twoKeyRecord(101 % 256, 101, 7), all[4]);
    EXPECT_EQ(twoKeyRecord(103 % 256, 103, 103), all[5]);
    EXPECT_EQ(st::Ok, lock(h, 103));
    ASSERT_EQ(st::Ok, h.close());

    // Closed normally by its last user, the file stands alone and can be copied.
    for (const auto& entry : fs::directory_iterator(dir.path()))
        EXPECT_EQ(file, entry.path().string()) << "companion file left behind";
    fs::copy_file(file, path("copy.dat"));
    Handle copy;
    ASSERT_EQ(st::Ok, copy.open(path("copy.dat")));
    EXPECT_EQ(302u, copy.count());
}

TEST_F(Processes, ABlockFromAnotherProcessAnswers3) {
    ChildProcess child("recmanUser");
    ASSERT_EQ("0", child.request(openLine()));
    std::string reply = child.request("block");
    ASSERT_EQ(2 + 2 * kBlockSize, reply.size());
    Handle foreign;
    for (size_t i = 0; i < kBlockSize; ++i)
        foreign.block[i] = uint8_t(std::stoi(reply.substr(2 + 2 * i, 2), nullptr, 16));
    ASSERT_NE((std::array<uint8_t, kBlockSize>{}), foreign.block);
    EXPECT_EQ(st::NotOpen, foreign.get(op::GetFirst));
    EXPECT_EQ(st::NotOpen, foreign.insert(twoKeyRecord(9, 90)));
    EXPECT_EQ(st::NotOpen, foreign.close());
    EXPECT_EQ("0 1 0", child.request("read 10")) << "the child's handle is untouched";
    EXPECT_EQ(3u, h.count());
}

// Killed while it inserts as fast as it can: every acknowledged record is there, and every key
// and the count agree on what the file holds.
TEST_F(Processes, AWriterKilledMidStreamLeavesAConsistentFile) {
    ChildProcess child("recmanUser");
    ASSERT_EQ("0", child.request(openLine()));
    child.send("stream 1000 100000");
    for (int acknowledged = 0; acknowledged < 300; ++acknowledged)
        ASSERT_EQ("0", child.receive());
    child.kill();

    uint32_t count = h.count();
    EXPECT_GE(count, 303u);
    EXPECT_EQ(count, h.readAll(0).size());
    EXPECT_EQ(count, h.readAll(1).size());
    EXPECT_EQ(count, h.stepAll().size());
    for (int32_t key : {1000, 1150, 1299}) {
        SCOPED_TRACE(key);
        ASSERT_EQ(st::Ok, h.find(op::GetEqual, int32Key(key)));
        EXPECT_EQ(twoKeyRecord(key % 256, key, key), h.data);
    }
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(7, 7, 7)));
    EXPECT_EQ(count + 1, h.count());
}

// A killed user holds the file open no longer: Create may replace it, and nothing it wrote
// comes back into the new file.
TEST_F(Processes, CreateReplacesAFileLeftByAKilledWriter) {
    ASSERT_EQ(st::Ok, h.close());
    ChildProcess child("recmanUser");
    ASSERT_EQ("0", child.request(openLine()));
    ASSERT_EQ("0", child.request("insertmany 100 200"));
    child.kill();

    FileLayout other{32, {{seg(1, 4, type::Integer)}}};
    ASSERT_EQ(st::Ok, create(file, other));
    ASSERT_EQ(st::Ok, h.open(file));
    EXPECT_EQ(0u, h.count());
    EXPECT_EQ(st::End, h.get(op::GetFirst));
    Bytes stat;
    ASSERT_EQ(st::Ok, h.stat(stat));
    EXPECT_EQ(createBlock(other), stat);
    ASSERT_EQ(st::Ok, h.insert(record(32, {{0, int32Key(5)}})));
    ASSERT_EQ(st::Ok, h.close());
    ASSERT_EQ(st::Ok, h.open(file));
    EXPECT_EQ(1u, h.count());
}

TEST_F(Processes, AutoincrementNeverGivesOneValueTwice) {
    std::string autoFile = makeFile({8, {{seg(1, 4, type::AutoIncrement)}}}, "auto.dat");
    ChildProcess first("recmanUser"), second("recmanUser");
    ASSERT_EQ("0", first.request("open " + autoFile + " 0"));
    ASSERT_EQ("0", second.request("open " + autoFile + " 0"));
    first.send("auto 40");
    second.send("auto 40");
    std::set<int> ids;
    for (ChildProcess* child : {&first, &second}) {
        std::istringstream reply(child->receive());
        int status = -1, id = 0;
        reply >> status;
        EXPECT_EQ(0, status);
        while (reply >> id)
            EXPECT_TRUE(ids.insert(id).second) << "id " << id << " given twice";
    }
    EXPECT_EQ(80u, ids.size());
    EXPECT_EQ(1, *ids.begin());
    EXPECT_EQ(80, *ids.rbegin());
}

// In a forked child the inherited block is dead; the child's own handles are another user.
TEST_F(Processes, AForkedChildCannotUseTheParentsHandle) {
#if defined(_WIN32)
    GTEST_SKIP() << "Windows processes do not fork";
#else
    ASSERT_EQ(st::Ok, lock(h, 10));
    ASSERT_EQ(st::Ok, h.get(op::GetFirst));
    pid_t pid = ::fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        int failures = 0;
        Bytes stat;
        failures |= (h.stat(stat) != st::NotOpen) << 0;
        failures |= (h.get(op::GetNext) != st::NotOpen) << 1;
        failures |= (h.insert(twoKeyRecord(9, 90)) != st::NotOpen) << 2;
        failures |= (h.call(op::Close, nullptr, nullptr, 0) != st::NotOpen) << 3;
        Handle own;
        failures |= (own.open(file) != st::Ok) << 4;
        failures |= (lock(own, 10) != st::Locked) << 5;
        failures |= (lock(own, 20) != st::Ok) << 6;
        failures |= (own.stat(stat) != st::Ok || readLe(stat.data() + 6, 4) != 3) << 7;
        failures |= (own.insert(twoKeyRecord(9, 90)) != st::Ok) << 8;
        failures |= (own.close() != st::Ok) << 9;
        ::_exit(failures == 0 ? 0 : 100 + __builtin_ctz(failures));
    }
    int status = 0;
    ASSERT_EQ(pid, ::waitpid(pid, &status, 0));
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status)) << "100 + the number of the first failed check";

    // The parent's handle and lock are intact.
    ASSERT_EQ(st::Ok, h.get(op::GetNext));
    EXPECT_EQ(2, h.data[0]);
    Handle other;
    ASSERT_EQ(st::Ok, other.open(file));
    EXPECT_EQ(st::Locked, lock(other, 10));
    EXPECT_EQ(st::Ok, lock(other, 20));
    EXPECT_EQ(st::Ok, other.find(op::GetEqual, int32Key(90))) << "the child's insert";
#endif
}

}  // namespace
}  // namespace conformance
