// REPdcProjectInfo: the directory file of a production project (".RDP").
// A program constructs it with the user's name, opens a project with Initialize(path), which
// logs the user in to the lock file beside it, and closes it with Close(1) or the destructor,
// which log the user out.
//
// The file holds one project record (id 1) and one record per job (ids 2 and up, given by the
// record manager). Opening a project logs the workstation in to the project's lock file (".RPK"
// beside it); saving a record posts a change notice to the other users, and reading the job list
// acknowledges the user's own notice. Project and job records are locked for editing with the
// record manager's no-wait single-record lock.
#pragma once

#include "REProjectLock.h"
#include "detail/RERecordFile.h"
#include "tarsel_export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#pragma pack(push, 1)
// The project record's data. Beyond the name and the project path, the bytes are the
// application's.
//
// OFFSET SIZE FIELD
//      0   20 szProjName   letters and digits only, NUL-terminated
//     20  260 szProjPath   NUL-terminated; an update may not change it (case aside)
//    280 3366 appData      the application's
struct PDCPROJINFORMATION {
    char szProjName[20];
    char szProjPath[260];
    uint8_t appData[3366];
};

// One job's data, carried as it is.
//
// OFFSET SIZE FIELD
//      0   40 szJobName    NUL-terminated
//     40 1920 appData      the application's
struct PDCJOBDETAIL {
    char szJobName[40];
    uint8_t appData[1920];
};

// A whole record of the directory: the id and, for a job, its data (the rest zero). The project
// record holds a PDCPROJINFORMATION from offset 4 on.
struct TSLPRODUCTIONDATA {
    int32_t nJobId;
    PDCJOBDETAIL jobDetail;
    uint8_t reserved1964[1686];
};
#pragma pack(pop)
static_assert(sizeof(PDCPROJINFORMATION) == 3646);
static_assert(offsetof(PDCPROJINFORMATION, szProjPath) == 20);
static_assert(offsetof(PDCPROJINFORMATION, appData) == 280);
static_assert(sizeof(PDCJOBDETAIL) == 1960);
static_assert(sizeof(TSLPRODUCTIONDATA) == 3650);
static_assert(offsetof(TSLPRODUCTIONDATA, jobDetail) == 4);
static_assert(offsetof(TSLPRODUCTIONDATA, reserved1964) == 1964);

class TARSEL_API REPdcProjectInfo : public RERecordFile<REPdcProjectInfo, TSLPRODUCTIONDATA> {
public:
    static constexpr char m_strConstFileExtn[] = ".RDP";
    static constexpr char m_strConstLockFileXtn[] = ".RPK";
    // Filter of the file-open dialog, and its flags (hide read-only, share-aware, no read-only
    // return).
    static constexpr char m_strConstFOpenFilter[] = "Project Files (*.RDP)|*.RDP||";
    static constexpr uint32_t m_uiConstFOpenDlgFlags = 0xC004;
    static constexpr int m_iConstJobIDForProjInfo = 1;
    static constexpr int m_iConstJobIDForFirstJob = 2;

    // The user's identity in the lock file is this computer's name, two backslashes and
    // `userName`; `loginMode` goes with it into the lock file at login.
    explicit REPdcProjectInfo(const std::string& userName = std::string(), int loginMode = 0);
    // Logs the user out and closes the project when open.
    ~REPdcProjectInfo() override;
    REPdcProjectInfo(const REPdcProjectInfo&) = default;
    REPdcProjectInfo& operator=(const REPdcProjectInfo&) = default;

    REProjectLock* GetProjectLockFilePtr();
    void GetCurUserDetail(std::string& userKey, int& loginMode) const;

    // Opens the project (closing an open one first), then its lock file (created when missing),
    // and logs the user in. An identity already logged in is refused with the already-logged-in
    // message and the project is closed again without logging anybody out.
    int Initialize(const char* path) override;
    int Initialize(const std::string& path) { return Initialize(path.c_str()); }
    // Logs the user out when `logOut` is non-zero, closes the lock file and the project, and
    // drops the login mode.
    int Close(int logOut);
    int Close() override;
    // Close when open; 1.
    int Reset(int logOut = 1);

    // Deletes every record; 1 when the file is empty afterwards.
    int Empty();

    // 1 when `name` is not empty and holds ASCII letters and digits only.
    static int IsValidProjName(const char* name);

    // Reads the project record into `info` (unless null). With `lock` it only takes the record's
    // lock instead: 0 when that fails.
    int GetProjectDetail(PDCPROJINFORMATION* info, int lock = 0);
    // Adds the project record to a directory without one and without jobs, if its name is valid.
    int AddProjectDetail(const PDCPROJINFORMATION& info);
    // Rewrites the project record (its path must stay) and notifies the other users.
    int UpdProjectDetail(const PDCPROJINFORMATION& info);
    // Takes the project record's lock and notes it; on refusal names the holder in `*lockedBy`.
    int LockProjectInfo(std::string* lockedBy = nullptr);

    // Adds a job; the record manager's new id is returned in `newJobID`.
    int AddJob(long& newJobID, const PDCJOBDETAIL& detail);
    // Reads job `jobID` into `out` (unless null). With `lock` it only probes the job's lock
    // instead: 0 only when another user holds it.
    int GetJobDetail(long jobID, PDCJOBDETAIL* out, int lock = 0);
    // Rewrites job `jobID` and notifies the other users.
    int UpdJobDetail(long jobID, const PDCJOBDETAIL& detail);
    // Deletes job `jobID`, or the next job above it when `jobID` does not exist.
    int DeleteJob(long jobID);
    // Takes the job's lock and notes it in the lock file; on refusal names the holder.
    int LockJob(long jobID, std::string* lockedBy = nullptr);
    int SetActiveJob(long jobID, std::string* lockedBy = nullptr);

    // Appends a heap copy of every job record in id order, then acknowledges the user's change
    // notice. 1 when the array is not empty afterwards.
    int GetAllJobRecs(std::vector<TSLPRODUCTIONDATA*>& jobs);
    // Number of jobs; -1 when there are none.
    long GetNoOfJobs();

    // The user's identity, the project's lock file and the login mode; readable by callers like
    // the base's state.
    std::string m_strCurUser;
    REProjectLock m_projectLock;
    int32_t m_nLoginMode;

protected:
    // Reset through a base: with log-out, as Reset() on the class.
    int _Reset() override { return Reset(1); }

private:
    static const RERecordFileSpec kSpec;
};
