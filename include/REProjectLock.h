// REProjectLock: the lock file of a project, shared by every workstation that has it open.
// A program (or the project classes, which own one) opens it with Initialize(path) and logs
// users in and out with LogIn and LogOut; CreateNewFile makes an empty lock file.
//
// One record per logged-in user says who the user is, whether a super user, which job the user
// holds locked, and whether another user has changed the project since this user last read it
// (a change notice, with who changed which job). The class takes no record locks itself; the
// record manager keeps each write whole.
#pragma once

#include "detail/RERecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#pragma pack(push, 1)
// One logged-in user of a project, as stored in the project's lock file.
//
// OFFSET SIZE FIELD
//      0  200 szUserName      user identity, NUL-terminated; key 0
//    200    4 nSuperUser      1 for a super user; key 1
//    204    4 nLockedJobId    job the user holds locked, 0 or negative when none; key 2
//    208    4 nUpdatePending  1: another user changed the project since this one acknowledged; key 3
//    212  200 szUpdatedBy     who made that change, empty when none
//    412    4 nUpdatedJobId   job that was changed, -1 when none
struct PROJECTLOCKINFO {
    char szUserName[200];
    int32_t nSuperUser;
    int32_t nLockedJobId;
    int32_t nUpdatePending;
    char szUpdatedBy[200];
    int32_t nUpdatedJobId;
};
#pragma pack(pop)
static_assert(sizeof(PROJECTLOCKINFO) == 416);
static_assert(offsetof(PROJECTLOCKINFO, szUserName) == 0);
static_assert(offsetof(PROJECTLOCKINFO, nSuperUser) == 200);
static_assert(offsetof(PROJECTLOCKINFO, nLockedJobId) == 204);
static_assert(offsetof(PROJECTLOCKINFO, nUpdatePending) == 208);
static_assert(offsetof(PROJECTLOCKINFO, szUpdatedBy) == 212);
static_assert(offsetof(PROJECTLOCKINFO, nUpdatedJobId) == 412);

class TARSEL_API REProjectLock : public RERecordFile<REProjectLock, PROJECTLOCKINFO> {
public:
    // Key numbers of the lock file.
    enum Key : int { kKeyUserName = 0, kKeySuperUser = 1, kKeyLockedJob = 2, kKeyUpdatePending = 3 };

    REProjectLock();
    REProjectLock(const REProjectLock& other);
    REProjectLock& operator=(const REProjectLock& other);
    ~REProjectLock() override;

    using RERecordFile::GetAllRecords;
    // Every user record in the order of the current key, each a heap copy owned by the caller;
    // the records are also dumped to the debug trace. 1 when the array is not empty afterwards.
    int GetAllRecords(std::vector<PROJECTLOCKINFO*>& users);

    // Finds the record of `userName` (letter case does not matter); a null `rec` only tests.
    int FindUser(const char* userName, PROJECTLOCKINFO* rec = nullptr);
    // Adds a record for the user; 0 when the name (in any case) is already logged in.
    int LogIn(const char* userName, int superUser = 0);
    // Removes the user's record; 0 when the user is not logged in.
    int LogOut(const char* userName);
    // 1 when a user with nSuperUser exactly 1 is logged in; that record goes to `rec` unless null.
    int IsSuperUserLoggedIn(PROJECTLOCKINFO* rec = nullptr);
    // Stores the job the user holds locked (when `jobId` is given) and, when *clearNotice is
    // non-zero, clears the user's change notice. REQUIRES: `clearNotice` is not null.
    int UpdateLockStatus(const char* userName, const int* jobId, const int* clearNotice);
    // The user acknowledges a change notice (the changed job's id is kept).
    int InformSelfUpd(const char* userName);
    // Posts a change notice of job `jobId` by `userName` to every other logged-in user.
    int UpdateOtherUseres(const char* userName, int jobId);
    // Appends the locked job id (0 or more) of every user, in job order; 1.
    int GetLockedJobIDArray(std::vector<unsigned int>& jobIds);
    // 1 with the holder's name in `userName` when a user has job `jobId` locked.
    int IsJobLocked(const int& jobId, std::string& userName);

private:
    static const RERecordFileSpec kSpec;

    int _FindUserIgnoringCase(const char* storedName, PROJECTLOCKINFO* found);
};
