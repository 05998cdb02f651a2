#include "REEstProjectInfo.h"

#include "REErrorMessages.h"
#include "RERecordFileOps.h"
#include "core/Platform.h"
#include "core/ProjectDirectory.h"
#include "core/RecordFileSpec.h"
#include "estimating/EstProjectTraits.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <limits>

namespace {

constexpr unsigned kAlreadyLoggedInCode = 1500;

constexpr char kLockFileExtension[] = ".RDK";

// Compares two fixed text fields up to their first NUL, ignoring letter case.
template <size_t N>
bool SameTextIgnoringCase(const char (&a)[N], const char (&b)[N]) {
    for (size_t i = 0; i < N; ++i) {
        const unsigned char ca = static_cast<unsigned char>(a[i]), cb = static_cast<unsigned char>(b[i]);
        if (std::toupper(ca) != std::toupper(cb))
            return false;
        if (ca == '\0')
            return true;
    }
    return true;
}

}  // namespace

const RERecordFileSpec REEstProjectInfo::kSpec = REMakeSpec<EstProjectTraits, REEstProjectInfo>();

REEstProjectInfo::REEstProjectInfo(const std::string& userName, int superUser)
    : RERecordFile(kSpec), m_bSuperUser(superUser) {
    m_strCurUser = projectdir::UserIdentity(userName.empty() ? std::string(m_strConstSysUsrName) : userName);
    SetKeyNumber(0);
}

REEstProjectInfo::~REEstProjectInfo() {
    if (IsOpen())
        Close(1);
}

REProjectLock* REEstProjectInfo::GetProjectLockFilePtr() { return &m_projectLock; }

void REEstProjectInfo::GetCurUserDetail(std::string& user, int& superUser) const {
    user = m_strCurUser;
    superUser = m_bSuperUser;
}

int REEstProjectInfo::Initialize(const char* path) {
    if (IsOpen())
        Close(1);
    if (path == nullptr || !_FileOpen(path))
        return 0;
    const platform::PathParts parts = platform::SplitPath(path);
    if (_InitializeLockFile(platform::MakePath(parts.directory, parts.name, kLockFileExtension).c_str()))
        return 1;
    ShowErrorMessage(kAlreadyLoggedInCode);
    // The identity in the lock file is another user's: close without logging it out.
    Reset(0);
    return 0;
}

int REEstProjectInfo::_InitializeLockFile(const char* lockPath) {
    if (RELookUpRecordFile(lockPath) != REPathState::Exists)
        m_projectLock.CreateNewFile(lockPath);
    if (!m_projectLock.Initialize(lockPath))
        return 0;
    return m_projectLock.LogIn(m_strCurUser.c_str(), m_bSuperUser);
}

int REEstProjectInfo::Close(const int& logOut) {
    if (logOut != 0 && m_projectLock.FindUser(m_strCurUser.c_str(), nullptr))
        m_projectLock.LogOut(m_strCurUser.c_str());
    m_projectLock.Close();
    m_bSuperUser = 0;
    return RERecordFileEngine::Close();
}

int REEstProjectInfo::Close() { return Close(1); }

int REEstProjectInfo::Reset(const int& logOut) {
    if (IsOpen())
        Close(logOut);
    return 1;
}

int REEstProjectInfo::CreateImageFile(const std::string& path) {
    if (!CreateNewFile(path.c_str()))
        return 0;
    REBtrieveBase image;
    if (!image.Open(path.c_str()))
        return 0;
    TSLESTIMATEDATA rec{};
    uint8_t key[kKeyBufferSize] = {};
    for (int found = GetFirstRecord(&rec); found; found = GetNextRecord(&rec)) {
        uint32_t length = sizeof rec;
        image.Btrieve(kOpInsert, nullptr, &rec, &length, key, sizeof key, 0);
        rec = TSLESTIMATEDATA{};
    }
    image.Close();
    return 1;
}

int REEstProjectInfo::Empty() {
    TSLESTIMATEDATA rec{};
    int16_t status = _CallStatus(kOpStepFirst, &rec);
    while (status == kStatusSuccess) {
        if (!_DeleteCurrent())
            return 0;
        status = _CallStatus(kOpStepNext, &rec);
    }
    return status == kStatusEndOfFile ? 1 : 0;
}

int REEstProjectInfo::IsValidProjName(const char* name) {
    if (name == nullptr || *name == '\0')
        return 0;
    for (; *name != '\0'; ++name) {
        const char c = *name;
        if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')))
            return 0;
    }
    return 1;
}

int REEstProjectInfo::_GetAtOrAbove(long id, TSLESTIMATEDATA* rec) {
    *rec = TSLESTIMATEDATA{};
    return projectdir::ReadAtOrAbove(*this, id, rec);
}

int REEstProjectInfo::_ReadNext(TSLESTIMATEDATA* rec) {
    *rec = TSLESTIMATEDATA{};
    return _CallBtrieve(kOpGetNext, rec);
}

int16_t REEstProjectInfo::_LockedProbe(long id) {
    TSLESTIMATEDATA rec{};
    return projectdir::LockAtOrAbove(*this, id, &rec);
}

int REEstProjectInfo::GetProjectDetail(PROJINFORMATION* info, const int& lock) {
    if (lock != 0)
        return _LockedProbe(m_iConstJobIDForProjInfo) == kStatusSuccess ? 1 : 0;
    TSLESTIMATEDATA rec;
    if (!_GetAtOrAbove(m_iConstJobIDForProjInfo, &rec) || rec.nId != m_iConstJobIDForProjInfo)
        return 0;
    if (info != nullptr)
        std::memcpy(info, &rec.data, sizeof *info);
    return 1;
}

int REEstProjectInfo::AddProjectDetail(PROJINFORMATION* info) {
    if (info == nullptr || GetProjectDetail(nullptr, 0) || GetNoOfJobs() != -1)
        return 0;
    char name[sizeof info->szProjName + 1] = {};
    std::memcpy(name, info->szProjName, sizeof info->szProjName);
    if (!IsValidProjName(name))
        return 0;
    TSLESTIMATEDATA rec{};
    rec.nId = m_iConstJobIDForProjInfo;
    std::memcpy(&rec.data, info, sizeof *info);
    SetKeyNumber(0);
    return _AddNewRecord(&rec);
}

int REEstProjectInfo::UpdProjectDetail(PROJINFORMATION* info) {
    if (info == nullptr)
        return 0;
    TSLESTIMATEDATA rec;
    if (!_GetAtOrAbove(m_iConstJobIDForProjInfo, &rec) || rec.nId != m_iConstJobIDForProjInfo)
        return 0;
    PROJINFORMATION stored;
    std::memcpy(&stored, &rec.data, sizeof stored);
    if (!SameTextIgnoringCase(info->sText20, stored.sText20))
        return 0;
    rec = TSLESTIMATEDATA{};
    rec.nId = m_iConstJobIDForProjInfo;
    std::memcpy(&rec.data, info, sizeof *info);
    if (!_UpdateCurrent(&rec))
        return 0;
    m_projectLock.UpdateOtherUseres(m_strCurUser.c_str(), m_iConstJobIDForProjInfo);
    return 1;
}
