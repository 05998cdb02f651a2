// The job records of a project and their locks.
#include "REEstProjectInfo.h"

#include "core/ProjectDirectory.h"

#include <cstdlib>

int REEstProjectInfo::GetAllJobRecs(std::vector<TSLESTIMATEDATA*>& jobs) {
    TSLESTIMATEDATA rec;
    for (int found = _GetAtOrAbove(m_iConstJobIDForFirstJob, &rec); found && rec.nId > m_iConstJobIDForProjInfo;
         found = _ReadNext(&rec)) {
        auto* copy = static_cast<TSLESTIMATEDATA*>(std::malloc(sizeof rec));
        *copy = rec;
        jobs.push_back(copy);
    }
    // Reading the job list is how a user takes in other users' changes.
    m_projectLock.InformSelfUpd(m_strCurUser.c_str());
    return jobs.empty() ? 0 : 1;
}

int REEstProjectInfo::GetNoOfJobs() {
    TSLESTIMATEDATA rec;
    int count = 0;
    for (int found = _GetAtOrAbove(m_iConstJobIDForFirstJob, &rec); found && rec.nId > m_iConstJobIDForProjInfo;
         found = _ReadNext(&rec))
        ++count;
    return count > 0 ? count : -1;
}

int REEstProjectInfo::AddJob(long& id, const JOBDETAIL& job) {
    TSLESTIMATEDATA rec{};
    rec.nId = 0;  // the record manager gives the next id
    rec.data = job;
    SetKeyNumber(0);
    if (!_AddNewRecord(&rec))
        return 0;
    id = rec.nId;
    return 1;
}

int REEstProjectInfo::GetJobDetail(const long& id, JOBDETAIL* job, const int& lock) {
    // The locked form is a probe: only another user's lock refuses it.
    if (lock != 0)
        return _LockedProbe(id) == kStatusRecordInUse ? 0 : 1;
    TSLESTIMATEDATA rec;
    if (!_GetAtOrAbove(id, &rec) || rec.nId != id)
        return 0;
    if (job != nullptr)
        *job = rec.data;
    return 1;
}

int REEstProjectInfo::UpdJobDetail(const long& id, const JOBDETAIL& job) {
    if (!GetJobDetail(id, nullptr, 0))
        return 0;
    TSLESTIMATEDATA rec{};
    rec.nId = static_cast<int32_t>(id);
    rec.data = job;
    if (!_UpdateCurrent(&rec))
        return 0;
    m_projectLock.UpdateOtherUseres(m_strCurUser.c_str(), static_cast<int>(id));
    return 1;
}

int REEstProjectInfo::DeleteJob(const long& id) {
    TSLESTIMATEDATA rec;
    if (!_GetAtOrAbove(id, &rec))
        return 0;
    return _DeleteCurrent();
}

int REEstProjectInfo::LockJob(const long& id, std::string* lockedBy) {
    return _NoteLock(id, lockedBy, GetJobDetail(id, nullptr, 1));
}

int REEstProjectInfo::SetActiveJob(const long& id, std::string* lockedBy) { return LockJob(id, lockedBy); }

int REEstProjectInfo::LockProjectInfo(std::string* lockedBy) {
    return _NoteLock(m_iConstJobIDForProjInfo, lockedBy, GetProjectDetail(nullptr, 1));
}

// Records a lock just taken in the lock file, or names the user who holds the record.
int REEstProjectInfo::_NoteLock(long id, std::string* lockedBy, int locked) {
    return projectdir::NoteLock(m_projectLock, m_strCurUser, id, lockedBy, locked != 0 ? 1 : 0);
}
