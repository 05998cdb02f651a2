// The project-directory protocol over the lock file and the id-keyed directory file, shared by
// the estimating and the production project.
#include "core/ProjectDirectory.h"

#include "RERecordFileOps.h"
#include "core/Platform.h"

#include <algorithm>
#include <limits>

namespace projectdir {

namespace {

constexpr char kUnknownComputer[] = "\\\\Unknown Computer\\";
constexpr char kIdentitySeparator[] = "\\\\";

// Record ids are 32-bit; a wider id saturates so that it can never alias a small one.
int32_t KeyId(long id) {
    return static_cast<int32_t>(std::clamp<long>(id, std::numeric_limits<int32_t>::min(),
                                                 std::numeric_limits<int32_t>::max()));
}

}  // namespace

std::string UserIdentity(const std::string& userName) {
    const std::string computer = platform::ComputerName();
    return (computer.empty() ? std::string(kUnknownComputer) : computer + kIdentitySeparator) + userName;
}

int LogInBeside(REProjectLock& lock, const char* projectPath, const char* extension, const std::string& user,
                int loginMode) {
    const platform::PathParts parts = platform::SplitPath(projectPath);
    const std::string lockPath = platform::MakePath(parts.directory, parts.name, extension);
    if (RELookUpRecordFile(lockPath) != REPathState::Exists)
        lock.CreateNewFile(lockPath.c_str());
    lock.Initialize(lockPath.c_str());
    return lock.LogIn(user.c_str(), loginMode);
}

void LeaveLockFile(REProjectLock& lock, const std::string& user, int logOut) {
    if (lock.FindUser(user.c_str(), nullptr) && logOut != 0)
        lock.LogOut(user.c_str());
    lock.Close();
}

int NoteLock(REProjectLock& lock, const std::string& user, long id, std::string* lockedBy, int locked) {
    const int jobId = static_cast<int>(id);
    if (locked) {
        const int keepNotice = 0;
        lock.UpdateLockStatus(user.c_str(), &jobId, &keepNotice);
    } else if (lockedBy != nullptr) {
        lock.IsJobLocked(jobId, *lockedBy);
    }
    return locked;
}

int ReadAtOrAbove(RERecordFileEngine& file, long id, void* rec) {
    int32_t key = KeyId(id);
    file.SetKeyNumber(0);
    file.SetKeyBuffer(&key, sizeof key);
    return file._CallBtrieve(REBtrieveBase::kOpGetGreaterOrEqual, rec);
}

int16_t LockAtOrAbove(RERecordFileEngine& file, long id, void* rec) {
    int32_t key = KeyId(id);
    file.SetKeyNumber(0);
    file.SetKeyBuffer(&key, sizeof key);
    return file._CallStatus(REBtrieveBase::kOpGetGreaterOrEqual + REBtrieveBase::kBiasSingleNoWaitLock, rec);
}

int DeleteEveryRecord(RERecordFileEngine& file, void* rec) {
    for (int16_t status = file._CallStatus(REBtrieveBase::kOpStepFirst, rec); status == REBtrieveBase::kStatusSuccess;
         status = file._CallStatus(REBtrieveBase::kOpStepNext, rec)) {
        if (file._CallStatus(REBtrieveBase::kOpDelete, rec) != REBtrieveBase::kStatusSuccess)
            return 0;
    }
    return 1;
}

}  // namespace projectdir
