// A process with an open handle forks; the child writes through its own handle while the parent
// closes. Every insert the child saw answered 0 must be in the file afterwards, whichever side
// closes first and whether the child runs the library as a fork or after exec.
#include "ChildProcess.h"
#include "ConformanceFixture.h"

#include <csignal>
#include <filesystem>

#include <sys/wait.h>
#include <unistd.h>

namespace conformance {
namespace {

using testsupport::ChildProcess;

constexpr int kParentRecords = 10;
constexpr int kChildRecords = 2000;
constexpr int kFirstChildKey = 1000;
constexpr int kSignalAfter = 200;  // the child tells the parent after this many inserts

struct ForkCase {
    bool exec;               // the child runs after exec (a fresh program) or as a plain fork
    bool parentClosesFirst;  // the parent closes while the child still writes, or after it ended
};

std::string caseName(const ::testing::TestParamInfo<ForkCase>& info) {
    return std::string(info.param.exec ? "Exec" : "Fork") +
           (info.param.parentClosesFirst ? "ParentClosesFirst" : "ChildEndsFirst");
}

// The child's i-th record, as the recmanUser routine's "stream" writes it.
Bytes childRecord(int i) {
    const int key = kFirstChildKey + i;
    return twoKeyRecord(key % 256, key, key);
}

class ForkWriter : public Conformance, public ::testing::WithParamInterface<ForkCase> {
protected:
    void SetUp() override {
        file = makeFile(twoKeyFile());
        ASSERT_EQ(st::Ok, parent.open(file));
        for (int i = 0; i < kParentRecords; ++i)
            ASSERT_EQ(st::Ok, parent.insert(twoKeyRecord(i, i, i)));
    }

    // Forks a child that opens the file and inserts kChildRecords records, writing one byte to
    // `progress` after kSignalAfter of them; it exits 0 when every insert answered 0, else 1.
    pid_t forkWriter(int progress) {
        pid_t pid = ::fork();
        if (pid != 0)
            return pid;
        Handle own;
        bool ok = own.open(file) == st::Ok;
        for (int i = 0; ok && i < kChildRecords; ++i) {
            ok = own.insert(childRecord(i)) == st::Ok;
            if (i + 1 == kSignalAfter && ::write(progress, "x", 1) != 1)
                ok = false;
        }
        ok = ok && own.close() == st::Ok;
        ::_exit(ok ? 0 : 1);
    }

    void runForked(bool parentClosesFirst) {
        int fds[2];
        ASSERT_EQ(0, ::pipe(fds));
        pid_t pid = forkWriter(fds[1]);
        ASSERT_GT(pid, 0);
        ::close(fds[1]);
        char byte = 0;
        ASSERT_EQ(1, ::read(fds[0], &byte, 1)) << "the child did not get going";
        ::close(fds[0]);
        if (parentClosesFirst) {
            ASSERT_EQ(st::Ok, parent.close());
        }
        int status = 0;
        ASSERT_EQ(pid, ::waitpid(pid, &status, 0));
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(0, WEXITSTATUS(status)) << "an insert in the child failed";
        if (!parentClosesFirst) {
            ASSERT_EQ(st::Ok, parent.close());
        }
    }

    void runExeced(bool parentClosesFirst) {
        ChildProcess child("recmanUser");
        ASSERT_EQ("0", child.request("open " + file + " 0"));
        child.send("stream " + std::to_string(kFirstChildKey) + " " + std::to_string(kChildRecords));
        for (int i = 0; i < kChildRecords; ++i) {
            ASSERT_EQ("0", child.receive()) << "insert " << i;
            if (i + 1 == kSignalAfter && parentClosesFirst) {
                ASSERT_EQ(st::Ok, parent.close());
            }
        }
        ASSERT_EQ("0", child.request("close"));
        EXPECT_EQ(0, child.finish());
        if (!parentClosesFirst) {
            ASSERT_EQ(st::Ok, parent.close());
        }
    }

    std::string file;
    Handle parent;
};

TEST_P(ForkWriter, EveryAcknowledgedInsertSurvivesTheParentsClose) {
    if (GetParam().exec)
        runExeced(GetParam().parentClosesFirst);
    else
        runForked(GetParam().parentClosesFirst);
    if (HasFatalFailure())
        return;

    // A third process counts; then this one walks every order.
    ChildProcess counter("recmanUser");
    ASSERT_EQ("0", counter.request("open " + file + " 0"));
    EXPECT_EQ("0 " + std::to_string(kParentRecords + kChildRecords), counter.request("count"));
    ASSERT_EQ("0", counter.request("close"));

    Handle check;
    ASSERT_EQ(st::Ok, check.open(file));
    const std::vector<Bytes> byKey = check.readAll(0);
    ASSERT_EQ(size_t(kParentRecords + kChildRecords), byKey.size());
    for (int i = 0; i < kChildRecords; ++i)
        ASSERT_EQ(childRecord(i), byKey[size_t(kParentRecords + i)]) << i;
    EXPECT_EQ(byKey.size(), check.readAllBackward(0).size());
    EXPECT_EQ(byKey.size(), check.readAll(1).size());
    EXPECT_EQ(byKey.size(), check.stepAll().size());
    ASSERT_EQ(st::Ok, check.close());
    EXPECT_EQ("ok", sqlite(file, "PRAGMA integrity_check")) << "the store's own check of the closed file";
}

// A forked writer forks again and is killed; the process it forked lives on with copies of its
// descriptors. The writer's store locks must still end with it: the last close of the file then
// folds the log in and removes the companion files.
TEST(ForkedWriterKilled, ItsStoreLocksEndWithItNotWithItsChildren) {
    testsupport::TempDir dir;
    const std::string file = dir.file("file.dat");
    ASSERT_EQ(st::Ok, create(file, twoKeyFile()));
    int ready[2], hold[2];
    ASSERT_EQ(0, ::pipe(ready));
    ASSERT_EQ(0, ::pipe(hold));
    pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        ::close(ready[0]);
        ::close(hold[1]);
        Handle h;
        if (h.open(file) != st::Ok || h.insert(twoKeyRecord(1, 1, 1)) != st::Ok)
            ::_exit(1);
        if (::fork() == 0) {
            // Tells the test it runs (its fork handlers done), then waits until the test is done.
            char byte = 'g';
            if (::write(ready[1], &byte, 1) != 1 || ::read(hold[0], &byte, 1) < 0)
                ::_exit(1);
            ::_exit(0);
        }
        for (;;)
            ::pause();
    }
    ::close(ready[1]);
    ::close(hold[0]);
    char byte = 0;
    ASSERT_EQ(1, ::read(ready[0], &byte, 1)) << "the writer's child did not start";
    ::kill(writer, SIGKILL);
    ASSERT_EQ(writer, ::waitpid(writer, nullptr, 0));

    Handle h;
    ASSERT_EQ(st::Ok, h.open(file));
    ASSERT_EQ(st::Ok, h.insert(twoKeyRecord(2, 2, 2)));
    EXPECT_EQ(2u, h.count());
    ASSERT_EQ(st::Ok, h.close());
    EXPECT_FALSE(std::filesystem::exists(file + "-wal")) << "the last close could not take the file";
    EXPECT_FALSE(std::filesystem::exists(file + "-shm"));
    ::close(hold[1]);  // the writer's child ends
    ::close(ready[0]);
}

INSTANTIATE_TEST_SUITE_P(BothOrders, ForkWriter,
                         ::testing::Values(ForkCase{false, true}, ForkCase{false, false}, ForkCase{true, true},
                                           ForkCase{true, false}),
                         caseName);

}  // namespace
}  // namespace conformance
