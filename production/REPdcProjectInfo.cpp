// The production project directory: the project record, the jobs and their locks, on the
// shared project-directory protocol.
#include "REPdcProjectInfo.h"

#include "REErrorMessages.h"
#include "REEstProjectInfo.h"
#include "production/PdcDataFiles.h"
#include "core/ProjectDirectory.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr unsigned kAlreadyLoggedInCode = 1500;

constexpr REKeySegment kDirectoryKeys[] = {
    {1, 4, kKeyLastSegment, kKeyTypeAutoIncrement, kKeyNullByte},  // nJobId
};
// Records are variable-length: the file's fixed part is the id, and every call moves the whole
// 3650-byte record.
constexpr uint16_t kFixedPartLength = sizeof(int32_t);
constexpr uint32_t kCreateBlockLength = 176;

}  // namespace

const RERecordFileSpec REPdcProjectInfo::kSpec = [] {
    RERecordFileSpec spec{};
    spec.className = "REPdcProjectInfo";
    spec.newSize = sizeof(TSLPRODUCTIONDATA);
    spec.statLength = kFixedPartLength;
    const REMessageCodes codes = REPdcMessages(1221, 1243, 1265);
    spec.corruptCode = codes.corrupt;
    spec.unknownErrorCode = codes.unknownError;
    spec.createCode = codes.create;
    spec.create = {.recordLength = kFixedPartLength,
                   .fileFlags = kFileFlagVariableLength,
                   .segments = kDirectoryKeys,
                   .dataLength = kCreateBlockLength};
    return spec;
}();

REPdcProjectInfo::REPdcProjectInfo(const std::string& userName, int loginMode)
    : RERecordFile(kSpec), m_strCurUser(projectdir::UserIdentity(userName)), m_nLoginMode(loginMode) {
    SetKeyNumber(0);
}

REPdcProjectInfo::~REPdcProjectInfo() {
    if (IsOpen())
        Close(1);
}

REProjectLock* REPdcProjectInfo::GetProjectLockFilePtr() { return &m_projectLock; }

void REPdcProjectInfo::GetCurUserDetail(std::string& userKey, int& loginMode) const {
    userKey = m_strCurUser;
    loginMode = m_nLoginMode;
}

int REPdcProjectInfo::Initialize(const char* path) {
    if (IsOpen())
        Close(1);
    if (path == nullptr || !_FileOpen(path))
        return 0;
    if (projectdir::LogInBeside(m_projectLock, path, m_strConstLockFileXtn, m_strCurUser, m_nLoginMode))
        return 1;
    ShowErrorMessage(kAlreadyLoggedInCode);
    // The identity in the lock file is another login's: close without logging it out.
    Reset(0);
    return 0;
}

int REPdcProjectInfo::Close(int logOut) {
    projectdir::LeaveLockFile(m_projectLock, m_strCurUser, logOut);
    m_nLoginMode = 0;
    return RERecordFileEngine::Close();
}

int REPdcProjectInfo::Close() { return Close(1); }

int REPdcProjectInfo::Reset(int logOut) {
    if (IsOpen())
        Close(logOut);
    return 1;
}

int REPdcProjectInfo::Empty() {
    TSLPRODUCTIONDATA rec{};
    return projectdir::DeleteEveryRecord(*this, &rec);
}

// The same rule as the estimating project's names.
int REPdcProjectInfo::IsValidProjName(const char* name) { return REEstProjectInfo::IsValidProjName(name); }

int REPdcProjectInfo::GetProjectDetail(PDCPROJINFORMATION* info, int lock) {
    TSLPRODUCTIONDATA rec{};
    if (lock != 0)
        return projectdir::LockAtOrAbove(*this, m_iConstJobIDForProjInfo, &rec) == kStatusSuccess ? 1 : 0;
    if (!projectdir::ReadAtOrAbove(*this, m_iConstJobIDForProjInfo, &rec) || rec.nJobId != m_iConstJobIDForProjInfo)
        return 0;
    if (info != nullptr)
        std::memcpy(info, &rec.jobDetail, sizeof *info);
    return 1;
}

int REPdcProjectInfo::AddProjectDetail(const PDCPROJINFORMATION& info) {
    if (GetProjectDetail(nullptr, 0))
        return 0;
    std::vector<TSLPRODUCTIONDATA*> jobs;
    const int hasJobs = GetAllJobRecs(jobs);
    ResetRecArray(jobs);
    char name[sizeof info.szProjName + 1] = {};
    std::memcpy(name, info.szProjName, sizeof info.szProjName);
    if (hasJobs || !IsValidProjName(name))
        return 0;
    TSLPRODUCTIONDATA rec{};
    rec.nJobId = m_iConstJobIDForProjInfo;
    std::memcpy(&rec.jobDetail, &info, sizeof info);
    SetKeyNumber(0);
    return _AddNewRecord(&rec);
}

int REPdcProjectInfo::UpdProjectDetail(const PDCPROJINFORMATION& info) {
    PDCPROJINFORMATION stored;
    if (!GetProjectDetail(&stored, 0))
        return 0;
    if (!REPdcSameText(info.szProjPath, stored.szProjPath, sizeof stored.szProjPath))
        return 0;
    TSLPRODUCTIONDATA rec{};
    rec.nJobId = m_iConstJobIDForProjInfo;
    std::memcpy(&rec.jobDetail, &info, sizeof info);
    if (!_UpdateCurrent(&rec))
        return 0;
    m_projectLock.UpdateOtherUseres(m_strCurUser.c_str(), m_iConstJobIDForProjInfo);
    return 1;
}

int REPdcProjectInfo::LockProjectInfo(std::string* lockedBy) {
    return projectdir::NoteLock(m_projectLock, m_strCurUser, m_iConstJobIDForProjInfo, lockedBy,
                                GetProjectDetail(nullptr, 1));
}
