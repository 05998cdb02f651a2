// A process that has ended holds nothing, also before its parent reaps it: a killed child stays
// a zombie with its process id and start time, yet its locks, its exclusive open and its open
// handle block no one.
#include "ChildProcess.h"
#include "ConformanceFixture.h"

#include <csignal>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace conformance {
namespace {

using testsupport::ChildProcess;

// Kills the child and waits until it has ended, leaving it unreaped.
void killLeavingZombie(ChildProcess& child) {
    ASSERT_EQ(0, ::kill(child.pid(), SIGKILL));
    siginfo_t info{};
    ASSERT_EQ(0, ::waitid(P_PID, id_t(child.pid()), &info, WEXITED | WNOWAIT));
    ASSERT_EQ(CLD_KILLED, info.si_code);
    ASSERT_EQ(0, ::kill(child.pid(), 0)) << "the zombie still answers to its id";
}

// "hold PATH": opens the file, locks key 10 of a twoKeyFile() and forks a process that waits for
// its input to end; that process answers "0 PID" with its id.
TARSEL_CHILD_ROUTINE(forkingHolder) {
    std::string line;
    if (!channel.readLine(line))
        return;
    Handle h;
    int16_t status = h.open(line.substr(5));
    if (status == st::Ok)
        status = h.find(op::GetEqual + op::Single, int32Key(10));
    if (status != st::Ok) {
        channel.writeLine(std::to_string(status) + " 0");
        return;
    }
    // The forked process answers, so the answer comes after its fork handlers have run.
    if (::fork() == 0) {
        channel.writeLine("0 " + std::to_string(::getpid()));
        char byte;
        while (::read(0, &byte, 1) > 0) {
        }
        ::_exit(0);
    }
    while (channel.readLine(line)) {
    }
}

class EndedHolder : public Conformance {
protected:
    void SetUp() override {
        file = makeFile(twoKeyFile());
        Handle setup;
        ASSERT_EQ(st::Ok, setup.open(file));
        for (int t : {1, 2, 3})
            ASSERT_EQ(st::Ok, setup.insert(twoKeyRecord(t, 10 * t, 0)));
    }
    std::string openLine(int mode = 0) const { return "open " + file + " " + std::to_string(mode); }
    std::string file;
};

TEST_F(EndedHolder, AZombiesRecordLockBlocksNoOne) {
    ChildProcess child("recmanUser");
    ASSERT_EQ("0", child.request(openLine()));
    ASSERT_EQ("0 1 0", child.request("lock 10"));
    Handle h;
    ASSERT_EQ(st::Ok, h.open(file));
    ASSERT_EQ(st::Locked, h.find(op::GetEqual + op::Single, int32Key(10))) << "held while the child runs";

    killLeavingZombie(child);
    EXPECT_EQ(st::Ok, h.find(op::GetEqual + op::Single, int32Key(10)));
    ASSERT_EQ(st::Ok, h.update(twoKeyRecord(1, 10, 9)));
    child.kill();
}

TEST_F(EndedHolder, AZombiesExclusiveOpenBlocksNeitherOpenNorReplace) {
    ChildProcess child("recmanUser");
    ASSERT_EQ("0", child.request(openLine(-4)));
    ASSERT_EQ(st::FileLocked, Handle().open(file));
    ASSERT_EQ(st::CannotCreate, create(file, twoKeyFile()));

    killLeavingZombie(child);
    {
        Handle h;
        ASSERT_EQ(st::Ok, h.open(file, -4));
        EXPECT_EQ(3u, h.count());
    }
    EXPECT_EQ(st::Ok, create(file, twoKeyFile())) << "no live handle has it open";
    Handle h;
    ASSERT_EQ(st::Ok, h.open(file));
    EXPECT_EQ(0u, h.count());
    child.kill();
}

// A process forked by the holder outlives it, and with it every descriptor the holder had
// open; the holder's lock must still end with the holder.
TEST_F(EndedHolder, ALockEndsWithItsHolderNotWithTheHoldersChildren) {
    ChildProcess holder("forkingHolder");
    std::istringstream reply(holder.request("hold " + file));
    int status = -1;
    pid_t forked = 0;
    reply >> status >> forked;
    ASSERT_EQ(0, status);
    ASSERT_GT(forked, 0);
    Handle h;
    ASSERT_EQ(st::Ok, h.open(file));
    EXPECT_EQ(st::Locked, h.find(op::GetEqual + op::Single, int32Key(10)));

    killLeavingZombie(holder);
    EXPECT_EQ(st::Ok, h.find(op::GetEqual + op::Single, int32Key(10)));
    ::kill(forked, SIGKILL);
    holder.kill();
}

// The mark of a running process is seen by every other one, whatever else happens to the file
// in between: a second user opening and closing its handles does not drop it.
TEST_F(EndedHolder, ALiveHoldersLockOutlastsOtherUsersComingAndGoing) {
    ChildProcess child("recmanUser");
    ASSERT_EQ("0", child.request(openLine()));
    ASSERT_EQ("0 2 0", child.request("lock 20"));
    for (int round = 0; round < 3; ++round) {
        Handle h;
        ASSERT_EQ(st::Ok, h.open(file));
        EXPECT_EQ(st::Locked, h.find(op::GetEqual + op::Single, int32Key(20))) << round;
        ASSERT_EQ(st::Ok, h.close());
    }
    ASSERT_EQ("0", child.request("close"));
    Handle h;
    ASSERT_EQ(st::Ok, h.open(file));
    EXPECT_EQ(st::Ok, h.find(op::GetEqual + op::Single, int32Key(20)));
}

// Holders of another machine cannot be looked at from here: the embedded store keeps their locks
// and opens, however dead their process ids look on this machine. The same rows with this
// machine's own mark are swept.
TEST_F(EndedHolder, AnOwnerOfAnotherMachineIsNeverSwept) {
    std::string hostHere;
    {
        Handle h;
        ASSERT_EQ(st::Ok, h.open(file));
        hostHere = sqlite(file, "SELECT host FROM opens");
    }
    ASSERT_FALSE(hostHere.empty() || hostHere.rfind("error", 0) == 0) << hostHere;
    const int64_t here = std::stoll(hostHere);
    const int64_t deadPid = 0x7FFFFFF0;  // no process here has that id
    for (const bool otherMachine : {true, false}) {
        SCOPED_TRACE(otherMachine ? "holder on another machine" : "holder on this machine");
        const int64_t host = otherMachine ? here ^ 2 : here;
        const std::string rows = "DELETE FROM locks; DELETE FROM opens; INSERT INTO locks VALUES((SELECT n FROM rec "
                                 "WHERE v>0 ORDER BY n LIMIT 1), " + std::to_string(host) + ", " +
                                 std::to_string(deadPid) + ", 1, 1); INSERT INTO opens VALUES(" +
                                 std::to_string(host) + ", " + std::to_string(deadPid) + ", 1, 1, 1)";
        ASSERT_EQ("", sqlite(file, rows));

        Handle h;
        EXPECT_EQ(otherMachine ? st::FileLocked : st::Ok, h.open(file)) << "an exclusive open of that holder";
        if (otherMachine) {
            ASSERT_EQ("", sqlite(file, "UPDATE opens SET excl=0"));
            ASSERT_EQ(st::Ok, h.open(file));
        }
        EXPECT_EQ(otherMachine ? st::Locked : st::Ok, h.find(op::GetEqual + op::Single, int32Key(10)));
    }
}

}  // namespace
}  // namespace conformance
