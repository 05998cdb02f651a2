// REEstProjectInfo: the project file of an estimating project (".RDB").
// A program constructs it with the user's name, opens a project with Initialize(path), which
// logs the user in to the lock file beside it, and closes it with Close(1) or the destructor,
// which log the user out.
//
// The file holds one project record (id 1) and one record per job (ids 2 and up, given by the
// record manager), each job pointing to the job's own data files. Opening a project logs the
// user in to the project's lock file (".RDK" beside it); saving a record posts a change notice
// to the other users, and reading the job list acknowledges the user's own notice. Project and
// job records are locked for editing with the record manager's no-wait single-record lock.
#pragma once

#include "REProjectLock.h"
#include "detail/RERecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#pragma pack(push, 1)
// The project record's data. Beyond the name and the project's identity text, the bytes are
// the application's.
//
// OFFSET SIZE FIELD
//      0   20 szProjName   project name, letters and digits only, NUL-terminated
//     20  260 sText20      identity text of the project (a path); an update may not change it
//                          (case aside)
//    280  606 appData      the application's
struct PROJINFORMATION {
    char szProjName[20];
    char sText20[260];
    uint8_t appData[606];
};

// One job's data. Beyond the name and the job item file, the bytes are the application's.
//
// OFFSET SIZE FIELD
//      0   40 szJobName      job name, NUL-terminated
//     40  260 szJobItemFile  path of the job's item file
//    300  820 appData        the application's
struct JOBDETAIL {
    char szJobName[40];
    char szJobItemFile[260];
    uint8_t appData[820];
};

// A record of the project file as callers see it in job lists: the id and the job's data. The
// project record (id 1) holds a PROJINFORMATION in `data`, zero-padded.
struct TSLESTIMATEDATA {
    int32_t nId;
    JOBDETAIL data;
};
#pragma pack(pop)
static_assert(sizeof(PROJINFORMATION) == 886);
static_assert(offsetof(PROJINFORMATION, szProjName) == 0);
static_assert(offsetof(PROJINFORMATION, sText20) == 20);
static_assert(offsetof(PROJINFORMATION, appData) == 280);
static_assert(sizeof(JOBDETAIL) == 1120);
static_assert(sizeof(TSLESTIMATEDATA) == 1124);
static_assert(offsetof(TSLESTIMATEDATA, nId) == 0);
static_assert(offsetof(TSLESTIMATEDATA, data) == 4);

class TARSEL_API REEstProjectInfo : public RERecordFile<REEstProjectInfo, RELayout<TSLESTIMATEDATA>> {
public:
    // User-name part of the identity when the constructor is given no user name.
    static constexpr char m_strConstSysUsrName[] = "$SysUsr$";
    // Id of the project record; jobs follow it.
    static constexpr int m_iConstJobIDForProjInfo = 1;
    static constexpr int m_iConstJobIDForFirstJob = 2;
    // What an application shows when it cannot open a new job's files.
    static constexpr char m_strConstNewJobOpenError[] =
        "Btrieve Database Engine error : New Job Cannot Be Opened.\nMake Sure That BTrieve Microkernel is "
        "properly running.\nThen Try Again";

    // The user's identity is this computer's name, two backslashes and `userName`.
    explicit REEstProjectInfo(const std::string& userName = std::string(), int superUser = 0);
    // Logs the user out and closes the project when open.
    ~REEstProjectInfo() override;
    // A copy shares the open project and lock files, as every record-manager file object does;
    // whichever copy closes first logs the user out.
    REEstProjectInfo(const REEstProjectInfo&) = default;
    REEstProjectInfo& operator=(const REEstProjectInfo&) = default;

    REProjectLock* GetProjectLockFilePtr();
    void GetCurUserDetail(std::string& user, int& superUser) const;

    // Opens the project (closing an open one first), then its lock file (created when missing),
    // and logs the user in. A user already logged in under the same identity is refused with the
    // already-logged-in message and the project is closed again.
    int Initialize(const char* path) override;
    using RERecordFile::Initialize;
    // Logs the user out of the lock file when `logOut` is non-zero, closes the lock file and the
    // project, and drops the super-user flag.
    int Close(const int& logOut);
    // Close with log-out.
    int Close() override;
    int Reset(const int& logOut = 1);

    // Creates a project file at `path` holding a copy of every record of this one, ids kept.
    int CreateImageFile(const std::string& path);
    // Deletes every record of the project file; 1 when it is empty afterwards.
    int Empty();

    // 1 when `name` is not empty and holds ASCII letters and digits only.
    static int IsValidProjName(const char* name);

    // Reads the project record into `info` (unless null). With `lock` it only takes the record's
    // lock instead: 0 when another user holds it.
    int GetProjectDetail(PROJINFORMATION* info, const int& lock = 0);
    // Adds the project record to a project without one and without jobs, if its name is valid.
    int AddProjectDetail(PROJINFORMATION* info);
    // Rewrites the project record (its identity text must stay) and notifies the other users.
    int UpdProjectDetail(PROJINFORMATION* info);

    // Appends a heap copy of every job record in id order, then acknowledges the user's change
    // notice. 1 when the array is not empty afterwards.
    int GetAllJobRecs(std::vector<TSLESTIMATEDATA*>& jobs);
    // Number of jobs; -1 when there are none.
    int GetNoOfJobs();
    // Adds a job; the record manager's new id is returned in `id`.
    int AddJob(long& id, const JOBDETAIL& job);
    // Reads job `id` into `job` (unless null). With `lock` it only probes the job's lock
    // instead: 0 only when another user holds it.
    int GetJobDetail(const long& id, JOBDETAIL* job, const int& lock = 0);
    // Rewrites job `id` and notifies the other users.
    int UpdJobDetail(const long& id, const JOBDETAIL& job);
    // Deletes job `id`, or the next job above it when `id` does not exist.
    int DeleteJob(const long& id);

    // Takes job `id`'s lock and notes it in the lock file; when another user holds it, 0 and
    // that user's name in `*lockedBy` (when given).
    int LockJob(const long& id, std::string* lockedBy = nullptr);
    int SetActiveJob(const long& id, std::string* lockedBy = nullptr);
    // The same for the project record.
    int LockProjectInfo(std::string* lockedBy = nullptr);

    // The user's identity (computer, two backslashes, user name), the project's lock file and
    // the super-user flag given at construction; readable by callers like the base's state.
    std::string m_strCurUser;
    REProjectLock m_projectLock;
    int32_t m_bSuperUser;

protected:
    // Reset through a base: with log-out, as Reset() on the class.
    int _Reset() override { return Reset(1); }

private:
    static const RERecordFileSpec kSpec;

    int _InitializeLockFile(const char* lockPath);
    // Positions on the first record with an id at or above `id`; 1 when one is found.
    int _GetAtOrAbove(long id, TSLESTIMATEDATA* rec);
    int _ReadNext(TSLESTIMATEDATA* rec);
    // Get Greater Than or Equal on `id` with the single no-wait lock; the record manager's status.
    int16_t _LockedProbe(long id);
    int _NoteLock(long id, std::string* lockedBy, int locked);
};
