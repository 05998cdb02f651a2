// users and logout on a project's lock file, and the usage errors of every command.
#include "REEstProjectInfo.h"
#include "REProjectLock.h"
#include "TestSupport.h"
#include "ToolRunner.h"
#include "tools/Commands.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using toolsupport::RunTool;

class ProjectLogins : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(REEstProjectInfo().CreateNewFile(m_project));
        REProjectLock lock;
        ASSERT_TRUE(lock.CreateNewFile(m_lock));
        ASSERT_TRUE(lock.Initialize(m_lock));
        // Logins left behind: the workstations' programs ended without logging out.
        ASSERT_TRUE(lock.LogIn("WS1\\\\ann", 1));
        ASSERT_TRUE(lock.LogIn("WS2\\\\bob"));
        const int job = 7, keep = 0;
        ASSERT_TRUE(lock.UpdateLockStatus("WS2\\\\bob", &job, &keep));
        ASSERT_TRUE(lock.UpdateOtherUseres("WS2\\\\bob", 7));
    }

    testsupport::TempDir m_dir;
    std::string m_project = (m_dir.path() / "SHOP.RDB").string();
    std::string m_lock = (m_dir.path() / "SHOP.RDK").string();
};

TEST_F(ProjectLogins, UsersListsLoginsLocksAndNotices) {
    for (const std::string& given : {m_project, m_lock}) {
        const auto result = RunTool({"users", given});
        ASSERT_EQ(0, result.exitStatus) << result.err;
        EXPECT_NE(std::string::npos, result.out.find("WS2\\\\bob")) << result.out;
        EXPECT_NE(std::string::npos, result.out.find("no    7")) << result.out;
        EXPECT_NE(std::string::npos, result.out.find("yes   -          job 7 changed by WS2\\\\bob")) << result.out;
        EXPECT_NE(std::string::npos, result.out.find("2 logged in\n"));
    }
}

TEST_F(ProjectLogins, LogoutRemovesAStaleLoginOnlyWhileNoProgramHasTheProjectOpen) {
    {
        // A running program: the project open with its own login.
        REEstProjectInfo running("carl");
        ASSERT_TRUE(running.Initialize(m_project.c_str()));
        const auto refused = RunTool({"logout", m_project, "ws1\\\\ANN"});
        EXPECT_EQ(1, refused.exitStatus);
        EXPECT_NE(std::string::npos, refused.err.find("open in a running program")) << refused.err;
        REProjectLock lock;
        ASSERT_TRUE(lock.Initialize(m_lock));
        EXPECT_TRUE(lock.FindUser("WS1\\\\ann"));
    }
    const auto done = RunTool({"logout", m_lock, "ws1\\\\ANN"});
    EXPECT_EQ(0, done.exitStatus) << done.err;
    REProjectLock lock;
    ASSERT_TRUE(lock.Initialize(m_lock));
    EXPECT_FALSE(lock.FindUser("WS1\\\\ann"));
    EXPECT_TRUE(lock.FindUser("WS2\\\\bob"));
    lock.Close();
    const auto again = RunTool({"logout", m_project, "WS1\\\\ann"});
    EXPECT_EQ(1, again.exitStatus);
    EXPECT_NE(std::string::npos, again.err.find("is not logged in")) << again.err;
}

TEST(ToolUsage, MistakesInTheCommandLineExitWithTwoAndHelpWithZero) {
    const std::vector<std::vector<std::string>> mistakes = {
        {},
        {"frobnicate"},
        {"stat"},
        {"stat", "a", "b"},
        {"dump", "x.dat", "--format", "xml"},
        {"dump", "x.dat", "--format"},
        {"dump", "x.dat", "--colour", "red"},
        {"load", "x.dat"},
        {"load", "x.dat", "--format", "table"},
        {"users", "project.txt"},
        {"logout", "SHOP.RDB"},
    };
    for (const auto& args : mistakes) {
        const auto result = RunTool(args);
        EXPECT_EQ(2, result.exitStatus) << (args.empty() ? "(none)" : args[0]);
        EXPECT_FALSE(result.err.empty());
    }
    for (const tool::Command& command : tool::Commands()) {
        const auto help = RunTool({command.name, "--help"});
        EXPECT_EQ(0, help.exitStatus) << command.name;
        EXPECT_EQ(0u, help.out.find(std::string("usage: tarsel ") + command.name)) << help.out;
    }
    EXPECT_EQ(0, RunTool({"--help"}).exitStatus);
    EXPECT_EQ(1, RunTool({"stat", "/nonexistent/JOB.dat"}).exitStatus);
}

}  // namespace
