// The estimating project directory for one user, beyond the shared project-directory suite: the
// system user, the project record's identity text, image copies.
#include "REEstProjectInfo.h"

#include "RESharedHelpers.h"
#include "RecordBuilders.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

PROJINFORMATION Project(const char* name, const char* text20) {
    PROJINFORMATION info{};
    std::strncpy(info.szProjName, name, sizeof info.szProjName - 1);
    std::strncpy(info.sText20, text20, sizeof info.sText20 - 1);
    return info;
}

JOBDETAIL Job(const char* name) {
    JOBDETAIL job{};
    std::strncpy(job.szJobName, name, sizeof job.szJobName - 1);
    return job;
}

class EstProjectInfoTest : public ::testing::Test {
protected:
    void SetUp() override { testsupport::CreateAndOpen(project, path); }

    long AddJob(const char* name) {
        long id = 0;
        EXPECT_EQ(project.AddJob(id, Job(name)), 1);
        return id;
    }

    testsupport::TempDir dir;
    std::string path = dir.file("BRIDGE.RDB");
    REEstProjectInfo project{"estimator"};
};

TEST(EstProjectInfoUser, IdentityIsComputerAndUserName) {
    std::string user;
    int super = -1;
    REEstProjectInfo named("smith", 1);
    named.GetCurUserDetail(user, super);
    EXPECT_EQ(super, 1);
    const size_t split = user.find("\\\\");
    ASSERT_NE(split, std::string::npos) << user;
    EXPECT_EQ(user.substr(split + 2), "smith");

    REEstProjectInfo system("");
    system.GetCurUserDetail(user, super);
    EXPECT_EQ(super, 0);
    EXPECT_EQ(user.substr(user.find("\\\\") + 2), REEstProjectInfo::m_strConstSysUsrName);
}

TEST_F(EstProjectInfoTest, ProjectRecordKeepsItsIdentityText) {
    PROJINFORMATION read{};
    EXPECT_EQ(project.AddProjectDetail(nullptr), 0);

    PROJINFORMATION info = Project("Bridge42", "A-1");
    info.appData[0] = 7;
    ASSERT_EQ(project.AddProjectDetail(&info), 1);
    ASSERT_EQ(project.GetProjectDetail(&read, 0), 1);
    EXPECT_EQ(std::memcmp(&read, &info, sizeof info), 0);
    EXPECT_EQ(project.GetProjectDetail(nullptr, 0), 1);

    PROJINFORMATION changed = Project("Bridge43", "a-1");
    EXPECT_EQ(project.UpdProjectDetail(&changed), 1);
    ASSERT_EQ(project.GetProjectDetail(&read, 0), 1);
    EXPECT_STREQ(read.szProjName, "Bridge43");
    PROJINFORMATION foreign = Project("Bridge43", "B-2");
    EXPECT_EQ(project.UpdProjectDetail(&foreign), 0);
    EXPECT_EQ(project.UpdProjectDetail(nullptr), 0);
}

TEST_F(EstProjectInfoTest, IdentityTextIsComparedOverItsWholePathLength) {
    std::string text(120, 'p');
    PROJINFORMATION info = Project("Bridge42", text.c_str());
    ASSERT_EQ(project.AddProjectDetail(&info), 1);
    text[110] = 'q';
    PROJINFORMATION moved = Project("Bridge42", text.c_str());
    EXPECT_EQ(project.UpdProjectDetail(&moved), 0);
    text[110] = 'P';
    PROJINFORMATION recased = Project("Bridge43", text.c_str());
    EXPECT_EQ(project.UpdProjectDetail(&recased), 1);
}

TEST_F(EstProjectInfoTest, ImageCopiesEveryRecordAndEmptyClearsTheFile) {
    PROJINFORMATION info = Project("Bridge42", "A-1");
    ASSERT_EQ(project.AddProjectDetail(&info), 1);
    AddJob("first");
    AddJob("second");
    ASSERT_EQ(project.DeleteJob(2), 1);

    const std::string image = dir.file("IMAGE.RDB");
    ASSERT_EQ(project.CreateImageFile(image), 1);
    REEstProjectInfo copy{"reader"};
    ASSERT_EQ(copy.Initialize(image.c_str()), 1);
    PROJINFORMATION read{};
    EXPECT_EQ(copy.GetProjectDetail(&read, 0), 1);
    EXPECT_STREQ(read.szProjName, "Bridge42");
    JOBDETAIL job{};
    EXPECT_EQ(copy.GetJobDetail(3, &job, 0), 1);
    EXPECT_STREQ(job.szJobName, "second");
    EXPECT_EQ(copy.GetNoOfJobs(), 1);

    EXPECT_EQ(project.Empty(), 1);
    EXPECT_EQ(project.GetProjectDetail(nullptr, 0), 0);
    EXPECT_EQ(project.GetNoOfJobs(), -1);
    EXPECT_EQ(project.Empty(), 1);
}

// Opening and resetting through the record-file base does what the project does on its own:
// the user is logged in and out of the lock file.
TEST_F(EstProjectInfoTest, InitializeAndResetThroughTheBaseLogTheUserInAndOut) {
    RERecordFileEngine& base = project;
    ASSERT_EQ(1, base.Reset());
    EXPECT_EQ(0, project.IsOpen());
    REProjectLock lock;
    ASSERT_EQ(1, lock.Initialize(dir.file("BRIDGE.RDK")));
    EXPECT_EQ(0, lock.FindUser(project.m_strCurUser.c_str(), nullptr));
    ASSERT_EQ(1, base.Initialize(path.c_str()));
    EXPECT_EQ(1, lock.FindUser(project.m_strCurUser.c_str(), nullptr));
}

}  // namespace
