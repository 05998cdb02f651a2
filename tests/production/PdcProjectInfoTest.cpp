// The production project in the shared project-directory suite, and what only it does: the
// project path kept in the project record, its open-dialog filter and its messages.
#include "REPdcProjectInfo.h"

#include "ProjectDirectorySuite.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

namespace {

PDCPROJINFORMATION PdcInfo(const char* name, const char* path) {
    PDCPROJINFORMATION info{};
    std::strncpy(info.szProjName, name, sizeof info.szProjName - 1);
    std::strncpy(info.szProjPath, path, sizeof info.szProjPath - 1);
    return info;
}

struct PdcProjectTraits {
    using Project = REPdcProjectInfo;
    using Info = PDCPROJINFORMATION;
    using Job = PDCJOBDETAIL;
    using Data = TSLPRODUCTIONDATA;
    static constexpr const char* kProjectFile = "SHOP.RDP";
    static constexpr const char* kLockFile = "SHOP.RPK";
    static constexpr const char* kChildRoutine = "PdcProjectUser";
    static Info MakeInfo(const char* name) { return PdcInfo(name, "C:\\shop"); }
    static int AddInfo(Project& project, const Info& info) { return project.AddProjectDetail(info); }
    static long IdOf(const Data& data) { return data.nJobId; }
};

TARSEL_PROJECT_USER_ROUTINE(PdcProjectTraits);

class PdcProjectInfoTest : public ::testing::Test {
protected:
    void SetUp() override { testsupport::CreateAndOpen(project, path); }

    testsupport::TempDir dir;
    std::string path = dir.file("SHOP.RDP");
    REPdcProjectInfo project{"alice", 3};
};

TEST_F(PdcProjectInfoTest, ProjectRecordKeepsItsPath) {
    EXPECT_EQ(0, project.AddProjectDetail(PdcInfo("", "C:\\shop")));
    ASSERT_EQ(1, project.AddProjectDetail(PdcInfo("AB12cd", "C:\\Shop")));

    PDCPROJINFORMATION changed = PdcInfo("AB12cd", "c:\\SHOP");
    changed.appData[3000] = 7;
    EXPECT_EQ(1, project.UpdProjectDetail(changed));
    EXPECT_EQ(0, project.UpdProjectDetail(PdcInfo("AB12cd", "D:\\elsewhere")));
    PDCPROJINFORMATION stored{};
    ASSERT_EQ(1, project.GetProjectDetail(&stored, 0));
    EXPECT_STREQ("c:\\SHOP", stored.szProjPath);
    EXPECT_EQ(7, stored.appData[3000]);

    project.Close(1);
    EXPECT_EQ(0, project.IsOpen());
    EXPECT_EQ(1, project.Reset(1));  // nothing left to close
}

TEST_F(PdcProjectInfoTest, OpenFilterAndFilesOfAnotherLength) {
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

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Production, ProjectDirectoryPattern, PdcProjectTraits);
