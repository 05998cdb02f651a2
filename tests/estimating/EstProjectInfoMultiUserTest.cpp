// Several users on one estimating project: refused logins, lock probes that name the holder,
// change notices, and a user whose process dies. Users run as two objects in one process and
// as two processes.
#include "REEstProjectInfo.h"
#include "REMessageHandler.h"

#include "ChildProcess.h"
#include "RESharedHelpers.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

const char kAlreadyLoggedIn[] =
    "Can't open the specfied project using current user name\nOne user already logged in with the same name.";

std::string Identity(const REEstProjectInfo& project) {
    std::string user;
    int super = 0;
    const_cast<REEstProjectInfo&>(project).GetCurUserDetail(user, super);
    return user;
}

JOBDETAIL Job(const char* name) {
    JOBDETAIL job{};
    std::strncpy(job.szJobName, name, sizeof job.szJobName - 1);
    return job;
}

std::string& ChildLastMessage() {
    static std::string text;
    return text;
}

void RememberMessage(const char*, const char* text, unsigned int) {
    std::string& last = ChildLastMessage();
    last.clear();
    for (const char* c = text; *c != '\0'; ++c)
        last += *c == '\n' ? std::string("\\n") : std::string(1, *c);
}

// A second user in its own process. Commands, one a line:
//   open <path> <user>   -> "<result> <message shown, '\n' written as \\n>"
//   lock <id>            -> "<result> <holder named on refusal>"
//   save <id>            -> "<result>"
//   notice               -> "<nUpdatePending> <nUpdatedJobId> <szUpdatedBy>"
//   jobs                 -> "<result> <number of jobs>"
//   close                -> "<result>"
TARSEL_CHILD_ROUTINE(ProjectUser) {
    RESetMessageHandler(&RememberMessage);
    std::unique_ptr<REEstProjectInfo> project;
    std::string line;
    while (channel.readLine(line)) {
        std::istringstream in(line);
        std::string command, path, user;
        long id = 0;
        in >> command;
        if (command == "open") {
            in >> path >> user;
            ChildLastMessage().clear();
            project = std::make_unique<REEstProjectInfo>(user);
            const int result = project->Initialize(path.c_str());
            channel.writeLine(std::to_string(result) + " " + ChildLastMessage());
        } else if (command == "lock") {
            in >> id;
            std::string holder;
            const int result = project->LockJob(id, &holder);
            channel.writeLine(std::to_string(result) + " " + holder);
        } else if (command == "save") {
            in >> id;
            channel.writeLine(std::to_string(project->UpdJobDetail(id, Job("saved by child"))));
        } else if (command == "notice") {
            PROJECTLOCKINFO rec{};
            project->GetProjectLockFilePtr()->FindUser(Identity(*project).c_str(), &rec);
            channel.writeLine(std::to_string(rec.nUpdatePending) + " " + std::to_string(rec.nUpdatedJobId) + " " +
                              rec.szUpdatedBy);
        } else if (command == "jobs") {
            std::vector<TSLESTIMATEDATA*> jobs;
            const int result = project->GetAllJobRecs(jobs);
            channel.writeLine(std::to_string(result) + " " + std::to_string(jobs.size()));
            DeallocatePtrArray(jobs);
        } else if (command == "close") {
            channel.writeLine(std::to_string(project->Close(1)));
        }
    }
}

class ProjectUsersTest : public ::testing::Test {
protected:
    void SetUp() override {
        REEstProjectInfo maker{"maker"};
        ASSERT_EQ(maker.CreateNewFile(path.c_str()), 1);
        ASSERT_EQ(maker.Initialize(path.c_str()), 1);
        PROJINFORMATION info{};
        std::strcpy(info.szProjName, "Bridge42");
        ASSERT_EQ(maker.AddProjectDetail(&info), 1);
        for (const char* name : {"girders", "stairs"}) {
            long id = 0;
            ASSERT_EQ(maker.AddJob(id, Job(name)), 1);
        }
        ASSERT_EQ(alice.Initialize(path.c_str()), 1);
    }

    PROJECTLOCKINFO LockRecordOf(const std::string& identity) {
        PROJECTLOCKINFO rec{};
        EXPECT_EQ(alice.GetProjectLockFilePtr()->FindUser(identity.c_str(), &rec), 1) << identity;
        return rec;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("BRIDGE.RDB");
    REEstProjectInfo alice{"alice"};
};

TEST_F(ProjectUsersTest, SameIdentityIsRefusedAndTheFirstUserStaysLoggedIn) {
    testsupport::MessageCapture messages;
    REEstProjectInfo again{"ALICE"};
    EXPECT_EQ(again.Initialize(path.c_str()), 0);
    ASSERT_EQ(messages.count(), 1u);
    EXPECT_EQ(messages.messages()[0].caption, "Error");
    EXPECT_EQ(messages.lastText(), kAlreadyLoggedIn);
    EXPECT_EQ(again.IsOpen(), 0);
    LockRecordOf(Identity(alice));

    ASSERT_EQ(alice.Close(1), 1);
    EXPECT_EQ(again.Initialize(path.c_str()), 1);
}

TEST_F(ProjectUsersTest, LockProbeNamesTheHolder) {
    REEstProjectInfo bob{"bob"};
    ASSERT_EQ(bob.Initialize(path.c_str()), 1);
    testsupport::MessageCapture messages;

    std::string holder;
    EXPECT_EQ(alice.LockJob(2, &holder), 1);
    EXPECT_EQ(LockRecordOf(Identity(alice)).nLockedJobId, 2);
    EXPECT_EQ(bob.LockJob(2, &holder), 0);
    EXPECT_EQ(holder, Identity(alice));
    EXPECT_EQ(bob.GetJobDetail(2, nullptr, 1), 0);
    EXPECT_EQ(bob.SetActiveJob(3, nullptr), 1);
    // Saving a job another user holds is refused without a message.
    EXPECT_EQ(bob.UpdJobDetail(2, Job("bob's")), 0);
    EXPECT_EQ(alice.UpdJobDetail(3, Job("alice's")), 0);

    EXPECT_EQ(alice.LockProjectInfo(nullptr), 1);
    EXPECT_EQ(bob.LockProjectInfo(&holder), 0);
    EXPECT_EQ(holder, Identity(alice));
    EXPECT_EQ(messages.count(), 0u);

    // Closing the project releases the user's record locks.
    alice.Close(1);
    EXPECT_EQ(bob.LockProjectInfo(nullptr), 1);
    EXPECT_EQ(bob.GetProjectLockFilePtr()->FindUser(Identity(alice).c_str(), nullptr), 0);
}

TEST_F(ProjectUsersTest, SavingPostsANoticeThatTheJobListAcknowledges) {
    REEstProjectInfo bob{"bob"};
    ASSERT_EQ(bob.Initialize(path.c_str()), 1);

    ASSERT_EQ(alice.LockJob(3, nullptr), 1);
    ASSERT_EQ(alice.UpdJobDetail(3, Job("stairs rev B")), 1);
    PROJECTLOCKINFO notice = LockRecordOf(Identity(bob));
    EXPECT_EQ(notice.nUpdatePending, 1);
    EXPECT_EQ(notice.nUpdatedJobId, 3);
    EXPECT_EQ(notice.szUpdatedBy, Identity(alice));
    EXPECT_EQ(LockRecordOf(Identity(alice)).nUpdatePending, 0);

    std::vector<TSLESTIMATEDATA*> jobs;
    ASSERT_EQ(bob.GetAllJobRecs(jobs), 1);
    ASSERT_EQ(jobs.size(), 2u);
    EXPECT_STREQ(jobs[1]->data.szJobName, "stairs rev B");
    DeallocatePtrArray(jobs);
    notice = LockRecordOf(Identity(bob));
    EXPECT_EQ(notice.nUpdatePending, 0);
    EXPECT_STREQ(notice.szUpdatedBy, "");

    PROJINFORMATION info{};
    ASSERT_EQ(bob.GetProjectDetail(&info, 0), 1);
    std::strcpy(info.szProjName, "Bridge43");
    ASSERT_EQ(bob.UpdProjectDetail(&info), 1);
    notice = LockRecordOf(Identity(alice));
    EXPECT_EQ(notice.nUpdatePending, 1);
    EXPECT_EQ(notice.nUpdatedJobId, 1);
}

TEST_F(ProjectUsersTest, SecondProcessIsRefusedLockedOutAndNotified) {
    testsupport::ChildProcess other("ProjectUser");
    const std::string refused = other.request("open " + path + " alice");
    EXPECT_EQ(refused.substr(0, 2), "0 ");
    EXPECT_NE(refused.find("One user already logged in with the same name."), std::string::npos) << refused;

    ASSERT_EQ(other.request("open " + path + " bob"), "1 ");
    const std::string bob = Identity(REEstProjectInfo{"bob"});
    ASSERT_EQ(alice.LockJob(2, nullptr), 1);
    EXPECT_EQ(other.request("lock 2"), "0 " + Identity(alice));
    EXPECT_EQ(other.request("lock 3"), "1 ");
    std::string holder;
    EXPECT_EQ(alice.LockJob(3, &holder), 0);
    EXPECT_EQ(holder, bob);

    ASSERT_EQ(alice.UpdJobDetail(2, Job("girders rev C")), 1);
    EXPECT_EQ(other.request("notice"), "1 2 " + Identity(alice));
    EXPECT_EQ(other.request("jobs"), "1 2");
    EXPECT_EQ(other.request("notice"), "0 2 ");

    EXPECT_EQ(other.request("save 3"), "1");
    EXPECT_EQ(LockRecordOf(Identity(alice)).nUpdatedJobId, 3);
    EXPECT_EQ(other.request("close"), "1");
    EXPECT_EQ(alice.GetProjectLockFilePtr()->FindUser(bob.c_str(), nullptr), 0);
    EXPECT_EQ(other.finish(), 0);
}

TEST_F(ProjectUsersTest, CrashedUserLosesItsRecordLockButStaysLoggedIn) {
    testsupport::ChildProcess other("ProjectUser");
    ASSERT_EQ(other.request("open " + path + " bob"), "1 ");
    ASSERT_EQ(other.request("lock 2"), "1 ");
    EXPECT_EQ(alice.GetJobDetail(2, nullptr, 1), 0);
    other.kill();

    std::string holder;
    EXPECT_EQ(alice.LockJob(2, &holder), 1);
    const std::string bob = Identity(REEstProjectInfo{"bob"});
    EXPECT_EQ(LockRecordOf(bob).nLockedJobId, 2);

    testsupport::MessageCapture messages;
    REEstProjectInfo bobAgain{"bob"};
    EXPECT_EQ(bobAgain.Initialize(path.c_str()), 0);
    EXPECT_EQ(messages.lastText(), kAlreadyLoggedIn);
}

}  // namespace
