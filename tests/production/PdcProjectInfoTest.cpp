// The production project directory: project and job records, the lock file beside the project,
// and two users (a second process) sharing the project through it.
#include "REPdcProjectInfo.h"
#include "REMessageHandler.h"
#include "RESharedHelpers.h"

#include "ChildProcess.h"
#include "RawRecordFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

const char kAlreadyLoggedIn[] =
    "Can't open the specfied project using current user name\nOne user already logged in with the same name.";

PDCJOBDETAIL Job(const char* name) {
    PDCJOBDETAIL job{};
    std::strncpy(job.szJobName, name, sizeof job.szJobName - 1);
    return job;
}

PDCPROJINFORMATION Info(const char* name, const char* path) {
    PDCPROJINFORMATION info{};
    std::strncpy(info.szProjName, name, sizeof info.szProjName - 1);
    std::strncpy(info.szProjPath, path, sizeof info.szProjPath - 1);
    return info;
}

std::vector<long> JobIds(REPdcProjectInfo& project) {
    std::vector<TSLPRODUCTIONDATA*> jobs;
    project.GetAllJobRecs(jobs);
    std::vector<long> ids;
    for (const TSLPRODUCTIONDATA* job : jobs)
        ids.push_back(job->nJobId);
    DeallocatePtrArray(jobs);
    return ids;
}

// A second user in its own process: "open <path> <user>" -> "<result> <message count>",
// "lock <id>" -> "<result> <holder>", "save <id>" -> "<result>", "close" -> "<result>".
TARSEL_CHILD_ROUTINE(PdcProjectUser) {
    static int messages = 0;
    RESetMessageHandler([](const char*, const char*, unsigned int) { ++messages; });
    std::unique_ptr<REPdcProjectInfo> project;
    std::string line;
    while (channel.readLine(line)) {
        std::istringstream in(line);
        std::string command, path, user;
        long id = 0;
        in >> command;
        if (command == "open") {
            in >> path >> user;
            messages = 0;
            project = std::make_unique<REPdcProjectInfo>(user, 0);
            const int result = project->Initialize(path.c_str());
            channel.writeLine(std::to_string(result) + " " + std::to_string(messages));
        } else if (command == "lock") {
            in >> id;
            std::string holder;
            const int result = project->LockJob(id, &holder);
            channel.writeLine(std::to_string(result) + " " + holder);
        } else if (command == "save") {
            in >> id;
            channel.writeLine(std::to_string(project->UpdJobDetail(id, Job("saved by child"))));
        } else if (command == "close") {
            channel.writeLine(std::to_string(project->Close(1)));
        }
    }
}

class PdcProjectInfoTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(1, project.CreateNewFile(path.c_str()));
        ASSERT_EQ(1, project.Initialize(path.c_str()));
    }
    void addJobs(int count) {
        for (int i = 0; i < count; ++i) {
            long id = 0;
            ASSERT_EQ(1, project.AddJob(id, Job("job")));
        }
    }

    testsupport::TempDir dir;
    std::string path = dir.file("SHOP.RDP");
    REPdcProjectInfo project{"alice", 3};
};

TEST_F(PdcProjectInfoTest, ProjectRecordComesFirstAndKeepsItsPath) {
    EXPECT_TRUE(std::filesystem::exists(dir.file("SHOP.RPK")));
    std::string user;
    int mode = 0;
    project.GetCurUserDetail(user, mode);
    EXPECT_EQ(3, mode);
    EXPECT_EQ("alice", user.substr(user.size() - 5));
    EXPECT_EQ(1, project.GetProjectLockFilePtr()->FindUser(user.c_str(), nullptr));

    EXPECT_EQ(0, project.AddProjectDetail(Info("Job 12", "C:\\shop")));
    EXPECT_EQ(0, project.AddProjectDetail(Info("", "C:\\shop")));
    EXPECT_EQ(0, project.GetProjectDetail(nullptr, 0));
    ASSERT_EQ(1, project.AddProjectDetail(Info("AB12cd", "C:\\Shop")));
    EXPECT_EQ(0, project.AddProjectDetail(Info("Other", "C:\\Shop")));

    PDCPROJINFORMATION changed = Info("AB12cd", "c:\\SHOP");
    changed.appData[3000] = 7;
    EXPECT_EQ(1, project.UpdProjectDetail(changed));
    EXPECT_EQ(0, project.UpdProjectDetail(Info("AB12cd", "D:\\elsewhere")));
    PDCPROJINFORMATION stored{};
    ASSERT_EQ(1, project.GetProjectDetail(&stored, 0));
    EXPECT_STREQ("c:\\SHOP", stored.szProjPath);
    EXPECT_EQ(7, stored.appData[3000]);

    long id = 0;
    ASSERT_EQ(1, project.AddJob(id, Job("girders")));
    EXPECT_EQ(2, id);
    ASSERT_EQ(1, project.AddJob(id, Job("stairs")));
    EXPECT_EQ(3, id);
    EXPECT_EQ(2, project.GetNoOfJobs());
    PDCJOBDETAIL job{};
    ASSERT_EQ(1, project.GetJobDetail(3, &job, 0));
    EXPECT_STREQ("stairs", job.szJobName);
    EXPECT_EQ(0, project.GetJobDetail(4, &job, 0));
    EXPECT_EQ(1, project.UpdJobDetail(2, Job("beams")));
    EXPECT_EQ(0, project.UpdJobDetail(9, Job("beams")));
    ASSERT_EQ(1, project.GetJobDetail(2, &job, 0));
    EXPECT_STREQ("beams", job.szJobName);
}

TEST_F(PdcProjectInfoTest, JobsWithoutAProjectRecordBlockIt) {
    EXPECT_EQ(-1, project.GetNoOfJobs());
    std::vector<TSLPRODUCTIONDATA*> jobs;
    EXPECT_EQ(0, project.GetAllJobRecs(jobs));
    addJobs(2);  // the first takes id 1, the project record's
    EXPECT_EQ(1, project.GetProjectDetail(nullptr, 0));
    EXPECT_EQ(0, project.AddProjectDetail(Info("Shop", "p")));
    ASSERT_EQ(1, project.Empty());
    EXPECT_EQ(1, project.Empty());
    EXPECT_EQ(0, project.GetProjectDetail(nullptr, 0));
}

TEST_F(PdcProjectInfoTest, DeleteJobTakesTheNextJobAboveAMissingOne) {
    ASSERT_EQ(1, project.AddProjectDetail(Info("Shop", "p")));
    addJobs(6);  // ids 2 to 7
    for (long id : {4, 5, 6})
        ASSERT_EQ(1, project.DeleteJob(id));
    EXPECT_EQ((std::vector<long>{2, 3, 7}), JobIds(project));
    EXPECT_EQ(1, project.DeleteJob(5));
    EXPECT_EQ((std::vector<long>{2, 3}), JobIds(project));
    EXPECT_EQ(0, project.DeleteJob(5));
    // A lock probe beyond the last job finds nothing, which is not a refusal.
    EXPECT_EQ(1, project.GetJobDetail(9, nullptr, 1));
}

TEST_F(PdcProjectInfoTest, ValidNamesAndFilesOfAnotherLength) {
    EXPECT_EQ(1, REPdcProjectInfo::IsValidProjName("AB12cd"));
    for (const char* name : {"", "Job 12", "a_b", "caf\xe9"})
        EXPECT_EQ(0, REPdcProjectInfo::IsValidProjName(name)) << name;
    EXPECT_STREQ("Project Files (*.RDP)|*.RDP||", REPdcProjectInfo::m_strConstFOpenFilter);

    const std::string other = dir.file("OTHER.RDP");
    ASSERT_EQ(0, testsupport::CreateRawFile(other, 8));
    testsupport::MessageCapture messages;
    REPdcProjectInfo bob{"bob"};
    EXPECT_EQ(0, bob.Initialize(other.c_str()));
    EXPECT_EQ("Pdc project information file is corrupt.", messages.lastText());
    EXPECT_EQ(0, bob.IsOpen());
    EXPECT_FALSE(std::filesystem::exists(dir.file("OTHER.RPK")));

    EXPECT_EQ(0, bob.CreateNewFile(dir.file("no dir/X.RDP").c_str()));
    EXPECT_EQ("Unknown error to create PDC project info. database file. [Error# 25]", messages.lastText());
}

TEST_F(PdcProjectInfoTest, SecondUserIsRefusedTheSameNameAndLockedJobsNameTheirHolder) {
    ASSERT_EQ(1, project.AddProjectDetail(Info("Shop", "p")));
    addJobs(2);
    {
        testsupport::MessageCapture messages;
        REPdcProjectInfo twin{"ALICE"};
        EXPECT_EQ(0, twin.Initialize(path.c_str()));
        EXPECT_EQ(kAlreadyLoggedIn, messages.lastText());
        EXPECT_EQ(0, twin.IsOpen());
    }
    std::string me;
    int mode = 0;
    project.GetCurUserDetail(me, mode);
    // The refused twin logged nobody out.
    EXPECT_EQ(1, project.GetProjectLockFilePtr()->FindUser(me.c_str(), nullptr));

    testsupport::ChildProcess bob("PdcProjectUser");
    ASSERT_EQ("1 0", bob.request("open " + path + " bob"));
    ASSERT_EQ(1, project.LockJob(2));
    const std::string holder = bob.request("lock 2");
    EXPECT_EQ("0 " + me, holder);
    EXPECT_EQ("1 ", bob.request("lock 3"));
    std::string lockedBy = "none";
    EXPECT_EQ(0, project.SetActiveJob(3, &lockedBy));
    EXPECT_NE(std::string::npos, lockedBy.find("bob"));

    // Bob's save reaches alice as a notice; reading the job list acknowledges it.
    EXPECT_EQ("1", bob.request("save 3"));
    PROJECTLOCKINFO rec{};
    ASSERT_EQ(1, project.GetProjectLockFilePtr()->FindUser(me.c_str(), &rec));
    EXPECT_EQ(1, +rec.nUpdatePending);
    EXPECT_EQ(3, +rec.nUpdatedJobId);
    EXPECT_NE(nullptr, std::strstr(rec.szUpdatedBy, "bob"));
    EXPECT_EQ(2, project.GetNoOfJobs());
    ASSERT_EQ(1, project.GetProjectLockFilePtr()->FindUser(me.c_str(), &rec));
    EXPECT_EQ(0, +rec.nUpdatePending);

    EXPECT_EQ("1", bob.request("close"));
    EXPECT_EQ(0, bob.finish());
    std::vector<PROJECTLOCKINFO*> users;
    project.GetProjectLockFilePtr()->GetAllRecords(users);
    EXPECT_EQ(1u, users.size());
    DeallocatePtrArray(users);
    project.Close(1);
    EXPECT_EQ(0, project.IsOpen());
    EXPECT_EQ(1, project.Reset(1));
}

}  // namespace
