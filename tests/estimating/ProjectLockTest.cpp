// The project lock file: who is logged in, super users, job locks and change notices.
#include "REProjectLock.h"

#include "RESharedHelpers.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

class ProjectLockTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(lock.CreateNewFile(path.c_str()), 1);
        ASSERT_EQ(lock.Initialize(path.c_str()), 1);
    }

    PROJECTLOCKINFO Find(const char* name) {
        PROJECTLOCKINFO rec{};
        EXPECT_EQ(lock.FindUser(name, &rec), 1) << name;
        return rec;
    }

    // Logs users in with the given super-user flags and stores their job locks.
    void LogInWithLocks(const std::vector<std::pair<std::string, int>>& usersAndLocks) {
        const int keep = 0;
        for (const auto& [name, job] : usersAndLocks) {
            ASSERT_EQ(lock.LogIn(name.c_str(), 0), 1);
            ASSERT_EQ(lock.UpdateLockStatus(name.c_str(), &job, &keep), 1);
        }
    }

    testsupport::TempDir dir;
    std::string path = dir.file("PROJ.RDK");
    REProjectLock lock;
};

TEST_F(ProjectLockTest, SameNameInAnyCaseIsRefused) {
    struct Case {
        const char* first;
        const char* second;
        int expected;
    };
    const Case cases[] = {
        {"SMITH", "Smith", 0},
        {"smith", "SMITH", 0},
        {"HOST\\\\Jones", "host\\\\JONES", 0},
        {"Smith", "Smyth", 1},
        {"Smith", "Smith2", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.first) + " then " + c.second);
        ASSERT_EQ(lock.DeleteAllRecords(), 1);
        ASSERT_EQ(lock.LogIn(c.first, 0), 1);
        EXPECT_EQ(lock.LogIn(c.second, 0), c.expected);
        std::vector<PROJECTLOCKINFO*> users;
        lock.GetAllRecords(users);
        EXPECT_EQ(users.size(), c.expected ? 2u : 1u);
        DeallocatePtrArray(users);
    }
}

TEST_F(ProjectLockTest, LogInStoresAFreshRecordAndLogOutRemovesItInAnyCase) {
    ASSERT_EQ(lock.LogIn("Smith", 1), 1);
    PROJECTLOCKINFO rec = Find("SMITH");
    EXPECT_STREQ(rec.szUserName, "Smith");
    EXPECT_EQ(rec.nSuperUser, 1);
    EXPECT_EQ(rec.nLockedJobId, 0);
    EXPECT_EQ(rec.nUpdatePending, 0);
    EXPECT_STREQ(rec.szUpdatedBy, "");

    EXPECT_EQ(lock.LogOut("sMITH"), 1);
    EXPECT_EQ(lock.FindUser("Smith", nullptr), 0);
    EXPECT_EQ(lock.LogOut("Smith"), 0);
    EXPECT_EQ(lock.LogIn("Smith", 0), 1);
}

TEST_F(ProjectLockTest, NamesLongerThanTheFieldAreCutAndStillRecognised) {
    const std::string longName(300, 'x');
    ASSERT_EQ(lock.LogIn(longName.c_str(), 0), 1);
    EXPECT_EQ(lock.LogIn(std::string(300, 'X').c_str(), 0), 0);
    PROJECTLOCKINFO rec = Find(longName.c_str());
    EXPECT_EQ(std::strlen(rec.szUserName), sizeof rec.szUserName - 1);
    EXPECT_EQ(lock.LogOut(longName.c_str()), 1);
}

TEST_F(ProjectLockTest, NullArgumentsFailQuietly) {
    testsupport::MessageCapture messages;
    const int zero = 0;
    EXPECT_EQ(lock.LogIn(nullptr, 0), 0);
    EXPECT_EQ(lock.LogOut(nullptr), 0);
    EXPECT_EQ(lock.FindUser(nullptr, nullptr), 0);
    EXPECT_EQ(lock.InformSelfUpd(nullptr), 0);
    EXPECT_EQ(lock.UpdateLockStatus(nullptr, nullptr, &zero), 0);
    ASSERT_EQ(lock.LogIn("a", 0), 1);
    EXPECT_EQ(lock.UpdateLockStatus("a", &zero, nullptr), 0);
    EXPECT_EQ(lock.UpdateOtherUseres(nullptr, 3), 0);
    EXPECT_EQ(messages.count(), 0u);
}

TEST_F(ProjectLockTest, SuperUserIsOnlyAStoredOne) {
    struct Case {
        std::vector<int> flags;
        int expected;
    };
    const Case cases[] = {{{}, 0}, {{0, 2}, 0}, {{0, 2, 1}, 1}, {{1}, 1}};
    for (const Case& c : cases) {
        ASSERT_EQ(lock.DeleteAllRecords(), 1);
        for (size_t i = 0; i < c.flags.size(); ++i)
            ASSERT_EQ(lock.LogIn(("user" + std::to_string(i)).c_str(), c.flags[i]), 1);
        PROJECTLOCKINFO rec{};
        EXPECT_EQ(lock.IsSuperUserLoggedIn(&rec), c.expected) << testing::PrintToString(c.flags);
        if (c.expected) {
            EXPECT_EQ(rec.nSuperUser, 1);
        }
        EXPECT_EQ(lock.IsSuperUserLoggedIn(nullptr), c.expected);
    }
}

TEST_F(ProjectLockTest, NoticeReachesEveryOtherUserAndIsAcknowledged) {
    for (const char* name : {"a", "b", "c"})
        ASSERT_EQ(lock.LogIn(name, 0), 1);
    // A scan on the notice key itself would move each record it flags; the notice must still
    // reach everyone whatever key the object last used.
    lock.SetKeyNumber(3);
    EXPECT_EQ(lock.UpdateOtherUseres("A", 7), 1);

    EXPECT_EQ(Find("a").nUpdatePending, 0);
    for (const char* name : {"b", "c"}) {
        PROJECTLOCKINFO rec = Find(name);
        EXPECT_EQ(rec.nUpdatePending, 1) << name;
        EXPECT_EQ(rec.nUpdatedJobId, 7) << name;
        EXPECT_STREQ(rec.szUpdatedBy, "A") << name;
    }

    EXPECT_EQ(lock.InformSelfUpd("b"), 1);
    PROJECTLOCKINFO b = Find("b");
    EXPECT_EQ(b.nUpdatePending, 0);
    EXPECT_STREQ(b.szUpdatedBy, "");
    EXPECT_EQ(b.nUpdatedJobId, 7);

    const int clear = 1;
    EXPECT_EQ(lock.UpdateLockStatus("c", nullptr, &clear), 1);
    PROJECTLOCKINFO c = Find("c");
    EXPECT_EQ(c.nUpdatePending, 0);
    EXPECT_STREQ(c.szUpdatedBy, "");
    EXPECT_EQ(c.nUpdatedJobId, -1);

    EXPECT_EQ(lock.InformSelfUpd("nobody"), 0);
}

TEST_F(ProjectLockTest, JobLocksAreCollectedAndNamed) {
    std::vector<unsigned int> ids{99};
    EXPECT_EQ(lock.GetLockedJobIDArray(ids), 1);
    EXPECT_EQ(ids, std::vector<unsigned int>{99});

    LogInWithLocks({{"a", 3}, {"b", -1}, {"c", 0}});
    ids.clear();
    EXPECT_EQ(lock.GetLockedJobIDArray(ids), 1);
    EXPECT_EQ(ids, (std::vector<unsigned int>{0, 3}));

    std::string holder = "unchanged";
    EXPECT_EQ(lock.IsJobLocked(3, holder), 1);
    EXPECT_EQ(holder, "a");
    holder = "unchanged";
    EXPECT_EQ(lock.IsJobLocked(4, holder), 0);
    EXPECT_EQ(holder, "unchanged");

    const int release = -1, keep = 0;
    EXPECT_EQ(lock.UpdateLockStatus("a", &release, &keep), 1);
    EXPECT_EQ(lock.IsJobLocked(3, holder), 0);
    EXPECT_EQ(lock.UpdateLockStatus("nobody", &release, &keep), 0);
}

TEST_F(ProjectLockTest, GetAllRecordsDumpsEveryUserToTheTrace) {
    std::vector<PROJECTLOCKINFO*> users;
    EXPECT_EQ(lock.GetAllRecords(users), 0);

    LogInWithLocks({{"a", 3}, {"b", -1}});
    lock.UpdateOtherUseres("b", 9);
    testsupport::TraceCapture traces;
    EXPECT_EQ(lock.GetAllRecords(users), 1);
    ASSERT_EQ(users.size(), 2u);
    EXPECT_STREQ(users[1]->szUserName, "b");
    EXPECT_EQ(traces.traces(), (std::vector<std::string>{
                                   "REProjectLock::GetAllRecords >>Dump..............\n",
                                   "REProjectLock:: #1>> [a] [0] [3] [1] [b] [9]\n",
                                   "REProjectLock:: #2>> [b] [0] [-1] [0] [] [0]\n",
                               }));
    DeallocatePtrArray(users);
}

}  // namespace
