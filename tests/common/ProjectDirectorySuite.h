// The behaviour the estimating and production project directories share, written once and run
// over both: project names, the project record and job numbering, logging in and out of the lock
// file beside the project, and a second user as another object and as another process. A suite
// joins with a traits struct (Project, Info, Job, Data, kProjectFile, kLockFile, MakeInfo,
// AddInfo, IdOf, NameOf, kChildRoutine), TARSEL_PROJECT_USER_ROUTINE(Traits) once and
// INSTANTIATE_TYPED_TEST_SUITE_P(Name, ProjectDirectoryPattern, Traits).
#pragma once

#include "REMessageHandler.h"
#include "RESharedHelpers.h"

#include "ChildProcess.h"
#include "RecordBuilders.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

inline constexpr char kProjectAlreadyLoggedIn[] =
    "Can't open the specfied project using current user name\nOne user already logged in with the same name.";

template <class Traits>
typename Traits::Job ProjectJob(const char* name) {
    typename Traits::Job job{};
    std::strncpy(job.szJobName, name, sizeof job.szJobName - 1);
    return job;
}

template <class Traits>
std::string ProjectIdentity(const typename Traits::Project& project) {
    std::string user;
    int mode = 0;
    project.GetCurUserDetail(user, mode);
    return user;
}

// A second user in its own process. Commands, one a line:
//   open <path> <user>   -> "<result> <messages shown>"
//   lock <id>            -> "<result> <holder named on refusal>"
//   save <id>            -> "<result>"
//   notice               -> "<nUpdatePending> <nUpdatedJobId> <szUpdatedBy>"
//   jobs                 -> "<result> <number of jobs>"
//   close                -> "<result>"
template <class Traits>
void ProjectUserRoutine(testsupport::ChildChannel& channel) {
    static int messages = 0;
    RESetMessageHandler([](const char*, const char*, unsigned int) { ++messages; });
    std::unique_ptr<typename Traits::Project> project;
    std::string line;
    while (channel.readLine(line)) {
        std::istringstream in(line);
        std::string command, path, user;
        long id = 0;
        in >> command;
        if (command == "open") {
            in >> path >> user;
            messages = 0;
            project = std::make_unique<typename Traits::Project>(user);
            const int result = project->Initialize(path.c_str());
            channel.writeLine(std::to_string(result) + " " + std::to_string(messages));
        } else if (command == "lock") {
            in >> id;
            std::string holder;
            const int result = project->LockJob(id, &holder);
            channel.writeLine(std::to_string(result) + " " + holder);
        } else if (command == "save") {
            in >> id;
            channel.writeLine(std::to_string(project->UpdJobDetail(id, ProjectJob<Traits>("saved by child"))));
        } else if (command == "notice") {
            PROJECTLOCKINFO rec{};
            project->GetProjectLockFilePtr()->FindUser(ProjectIdentity<Traits>(*project).c_str(), &rec);
            channel.writeLine(std::to_string(rec.nUpdatePending) + " " + std::to_string(rec.nUpdatedJobId) + " " +
                              rec.szUpdatedBy);
        } else if (command == "jobs") {
            std::vector<typename Traits::Data*> jobs;
            const int result = project->GetAllJobRecs(jobs);
            channel.writeLine(std::to_string(result) + " " + std::to_string(jobs.size()));
            DeallocatePtrArray(jobs);
        } else if (command == "close") {
            channel.writeLine(std::to_string(project->Close(1)));
        }
    }
}

// Registers the child routine of a traits struct under its kChildRoutine name.
#define TARSEL_PROJECT_USER_ROUTINE(Traits)                                                            \
    static ::testsupport::ChildRoutineRegistrar Traits##UserRegistrar __attribute__((init_priority(200)))( \
        Traits::kChildRoutine, &ProjectUserRoutine<Traits>)

template <class Traits>
class ProjectDirectoryPattern : public ::testing::Test {
protected:
    using Project = typename Traits::Project;

    void SetUp() override { testsupport::CreateAndOpen(project, path); }
    long addJob(const char* name = "job") {
        long id = 0;
        EXPECT_EQ(1, project.AddJob(id, ProjectJob<Traits>(name)));
        return id;
    }
    std::vector<long> jobIds() {
        std::vector<typename Traits::Data*> jobs;
        project.GetAllJobRecs(jobs);
        std::vector<long> ids;
        for (const auto* job : jobs)
            ids.push_back(Traits::IdOf(*job));
        DeallocatePtrArray(jobs);
        return ids;
    }
    PROJECTLOCKINFO lockRecordOf(const std::string& identity) {
        PROJECTLOCKINFO rec{};
        EXPECT_EQ(1, project.GetProjectLockFilePtr()->FindUser(identity.c_str(), &rec)) << identity;
        return rec;
    }

    testsupport::TempDir dir;
    std::string path = dir.file(Traits::kProjectFile);
    Project project{"alice", 1};
};

TYPED_TEST_SUITE_P(ProjectDirectoryPattern);

TYPED_TEST_P(ProjectDirectoryPattern, ProjectNamesAreLettersAndDigitsOnly) {
    const std::pair<const char*, int> cases[] = {
        {"Bridge42", 1}, {"X", 1}, {"", 0}, {"Main_St", 0}, {"Main St", 0}, {"Caf\xe9", 0}, {"a-b", 0},
    };
    for (const auto& [name, expected] : cases)
        EXPECT_EQ(expected, TypeParam::Project::IsValidProjName(name)) << name;
    EXPECT_EQ(0, TypeParam::Project::IsValidProjName(nullptr));
}

TYPED_TEST_P(ProjectDirectoryPattern, OpeningLogsTheUserInBesideTheProjectAndClosingLogsOut) {
    std::string user;
    int mode = 0;
    this->project.GetCurUserDetail(user, mode);
    EXPECT_EQ(1, mode);
    EXPECT_EQ("alice", user.substr(user.size() - 5));
    EXPECT_EQ(1, this->project.GetProjectLockFilePtr()->FindUser(user.c_str(), nullptr));

    this->project.Close(1);
    EXPECT_EQ(0, this->project.IsOpen());
    REProjectLock lock;
    ASSERT_EQ(1, lock.Initialize(this->dir.file(TypeParam::kLockFile).c_str()));
    EXPECT_EQ(0, lock.FindUser(user.c_str(), nullptr));
}

// The project record takes id 1 and jobs follow from 2; deleting a missing id deletes the next
// job above it.
TYPED_TEST_P(ProjectDirectoryPattern, JobsFollowTheProjectRecordInIncreasingIds) {
    auto& project = this->project;
    EXPECT_EQ(-1, project.GetNoOfJobs());
    std::vector<typename TypeParam::Data*> jobs;
    EXPECT_EQ(0, project.GetAllJobRecs(jobs));
    EXPECT_EQ(0, project.GetProjectDetail(nullptr, 0));
    EXPECT_EQ(0, TypeParam::AddInfo(project, TypeParam::MakeInfo("Main St")));
    ASSERT_EQ(1, TypeParam::AddInfo(project, TypeParam::MakeInfo("Bridge42")));
    EXPECT_EQ(0, TypeParam::AddInfo(project, TypeParam::MakeInfo("Other")));
    EXPECT_EQ(-1, project.GetNoOfJobs());
    for (long expected = 2; expected <= 7; ++expected)
        EXPECT_EQ(expected, this->addJob(expected == 3 ? "second" : "job"));
    EXPECT_EQ(6, project.GetNoOfJobs());

    typename TypeParam::Job job{};
    ASSERT_EQ(1, project.GetJobDetail(3, &job, 0));
    EXPECT_STREQ("second", job.szJobName);
    EXPECT_EQ(0, project.GetJobDetail(9, &job, 0));
    EXPECT_EQ(1, project.GetJobDetail(3, nullptr, 0));
    EXPECT_EQ(1, project.GetJobDetail(9, nullptr, 1));  // the locked form only probes
    EXPECT_EQ(1, project.UpdJobDetail(3, ProjectJob<TypeParam>("renamed")));
    ASSERT_EQ(1, project.GetJobDetail(3, &job, 0));
    EXPECT_STREQ("renamed", job.szJobName);
    EXPECT_EQ(0, project.UpdJobDetail(9, ProjectJob<TypeParam>("nobody")));

    for (long id : {4, 5, 6})
        ASSERT_EQ(1, project.DeleteJob(id));
    EXPECT_EQ((std::vector<long>{2, 3, 7}), this->jobIds());
    EXPECT_EQ(1, project.DeleteJob(5));
    EXPECT_EQ((std::vector<long>{2, 3}), this->jobIds());
    EXPECT_EQ(0, project.DeleteJob(5));
}

TYPED_TEST_P(ProjectDirectoryPattern, WithoutAProjectRecordTheFirstJobTakesItsId) {
    EXPECT_EQ(1, this->addJob());
    EXPECT_EQ(2, this->addJob());
    EXPECT_EQ(1, this->project.GetProjectDetail(nullptr, 0));
    ASSERT_EQ(1, this->project.DeleteJob(1));
    EXPECT_EQ(0, TypeParam::AddInfo(this->project, TypeParam::MakeInfo("Bridge42")));  // a job remains
    ASSERT_EQ(1, this->project.Empty());
    EXPECT_EQ(1, this->project.Empty());
    EXPECT_EQ(0, this->project.GetProjectDetail(nullptr, 0));
    EXPECT_EQ(-1, this->project.GetNoOfJobs());
}

TYPED_TEST_P(ProjectDirectoryPattern, SameIdentityIsRefusedAndTheFirstUserStaysLoggedIn) {
    testsupport::MessageCapture messages;
    typename TypeParam::Project again{"ALICE"};
    EXPECT_EQ(0, again.Initialize(this->path.c_str()));
    ASSERT_EQ(1u, messages.count());
    EXPECT_EQ("Error", messages.messages()[0].caption);
    EXPECT_EQ(kProjectAlreadyLoggedIn, messages.lastText());
    EXPECT_EQ(0, again.IsOpen());
    this->lockRecordOf(ProjectIdentity<TypeParam>(this->project));

    ASSERT_EQ(1, this->project.Close(1));
    EXPECT_EQ(1, again.Initialize(this->path.c_str()));
}

TYPED_TEST_P(ProjectDirectoryPattern, SecondProcessIsRefusedLockedOutAndNotified) {
    auto& alice = this->project;
    ASSERT_EQ(1, TypeParam::AddInfo(alice, TypeParam::MakeInfo("Bridge42")));
    this->addJob("girders");
    this->addJob("stairs");
    const std::string me = ProjectIdentity<TypeParam>(alice);

    testsupport::ChildProcess other(TypeParam::kChildRoutine);
    EXPECT_EQ("0 1", other.request("open " + this->path + " alice"));
    ASSERT_EQ("1 0", other.request("open " + this->path + " bob"));
    const std::string bob = ProjectIdentity<TypeParam>(typename TypeParam::Project{"bob"});
    ASSERT_EQ(1, alice.LockJob(2, nullptr));
    EXPECT_EQ("0 " + me, other.request("lock 2"));
    EXPECT_EQ("1 ", other.request("lock 3"));
    std::string holder;
    EXPECT_EQ(0, alice.LockJob(3, &holder));
    EXPECT_EQ(bob, holder);
    holder = "none";
    EXPECT_EQ(0, alice.SetActiveJob(3, &holder));
    EXPECT_EQ(bob, holder);

    ASSERT_EQ(1, alice.UpdJobDetail(2, ProjectJob<TypeParam>("girders rev C")));
    EXPECT_EQ("1 2 " + me, other.request("notice"));
    EXPECT_EQ("1 2", other.request("jobs"));
    EXPECT_EQ("0 2 ", other.request("notice"));

    // Bob's save reaches alice as a notice; reading the job list acknowledges it.
    EXPECT_EQ("1", other.request("save 3"));
    PROJECTLOCKINFO rec = this->lockRecordOf(me);
    EXPECT_EQ(1, +rec.nUpdatePending);
    EXPECT_EQ(3, +rec.nUpdatedJobId);
    EXPECT_EQ(bob, rec.szUpdatedBy);
    EXPECT_EQ((std::vector<long>{2, 3}), this->jobIds());
    EXPECT_EQ(0, +this->lockRecordOf(me).nUpdatePending);

    EXPECT_EQ("1", other.request("close"));
    EXPECT_EQ(0, alice.GetProjectLockFilePtr()->FindUser(bob.c_str(), nullptr));
    EXPECT_EQ(0, other.finish());
}

REGISTER_TYPED_TEST_SUITE_P(ProjectDirectoryPattern,
                            ProjectNamesAreLettersAndDigitsOnly,
                            OpeningLogsTheUserInBesideTheProjectAndClosingLogsOut,
                            JobsFollowTheProjectRecordInIncreasingIds,
                            WithoutAProjectRecordTheFirstJobTakesItsId,
                            SameIdentityIsRefusedAndTheFirstUserStaysLoggedIn,
                            SecondProcessIsRefusedLockedOutAndNotified);
