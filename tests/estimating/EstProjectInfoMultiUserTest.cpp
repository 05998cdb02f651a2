// The estimating project in the shared project-directory suite, and what only it does with
// several users: lock probes of the project record, notices of an in-process save, and a user
// whose process dies.
#include "REEstProjectInfo.h"

#include "ProjectDirectorySuite.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

struct EstProjectTraits {
    using Project = REEstProjectInfo;
    using Info = PROJINFORMATION;
    using Job = JOBDETAIL;
    using Data = TSLESTIMATEDATA;
    static constexpr const char* kProjectFile = "BRIDGE.RDB";
    static constexpr const char* kLockFile = "BRIDGE.RDK";
    static constexpr const char* kChildRoutine = "EstProjectUser";
    static Info MakeInfo(const char* name) {
        Info info{};
        std::strncpy(info.szProjName, name, sizeof info.szProjName - 1);
        return info;
    }
    static int AddInfo(Project& project, Info info) { return project.AddProjectDetail(&info); }
    static long IdOf(const Data& data) { return data.nId; }
};

TARSEL_PROJECT_USER_ROUTINE(EstProjectTraits);

std::string Identity(const REEstProjectInfo& project) { return ProjectIdentity<EstProjectTraits>(project); }
JOBDETAIL Job(const char* name) { return ProjectJob<EstProjectTraits>(name); }

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

TEST_F(ProjectUsersTest, CrashedUserLosesItsRecordLockButStaysLoggedIn) {
    testsupport::ChildProcess other(EstProjectTraits::kChildRoutine);
    ASSERT_EQ(other.request("open " + path + " bob"), "1 0");
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
    EXPECT_EQ(messages.lastText(), kProjectAlreadyLoggedIn);
}

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Estimating, ProjectDirectoryPattern, EstProjectTraits);
