// The job records of a production project and their locks.
#include "REPdcProjectInfo.h"

#include "core/ProjectDirectory.h"

#include <cstdlib>

int REPdcProjectInfo::AddJob(long& newJobID, const PDCJOBDETAIL& detail) {
    TSLPRODUCTIONDATA rec{};
    rec.nJobId = 0;  // the record manager gives the next id
    rec.jobDetail = detail;
    SetKeyNumber(0);
    if (!_AddNewRecord(&rec))
        return 0;
    newJobID = rec.nJobId;
    return 1;
}

int REPdcProjectInfo::GetJobDetail(long jobID, PDCJOBDETAIL* out, int lock) {
    TSLPRODUCTIONDATA rec{};
    // The locked form is a probe: only another user's lock refuses it.
    if (lock != 0)
        return projectdir::LockAtOrAbove(*this, jobID, &rec) == kStatusRecordInUse ? 0 : 1;
    if (!projectdir::ReadAtOrAbove(*this, jobID, &rec) || rec.nJobId != jobID)
        return 0;
    if (out != nullptr)
        *out = rec.jobDetail;
    return 1;
}

int REPdcProjectInfo::UpdJobDetail(long jobID, const PDCJOBDETAIL& detail) {
    if (!GetJobDetail(jobID, nullptr, 0))
        return 0;
    TSLPRODUCTIONDATA rec{};
    rec.nJobId = static_cast<int32_t>(jobID);
    rec.jobDetail = detail;
    if (!_UpdateCurrent(&rec))
        return 0;
    m_projectLock.UpdateOtherUseres(m_strCurUser.c_str(), static_cast<int>(jobID));
    return 1;
}

int REPdcProjectInfo::DeleteJob(long jobID) {
    TSLPRODUCTIONDATA rec{};
    return projectdir::ReadAtOrAbove(*this, jobID, &rec) && _DeleteCurrent();
}

int REPdcProjectInfo::LockJob(long jobID, std::string* lockedBy) {
    return projectdir::NoteLock(m_projectLock, m_strCurUser, jobID, lockedBy, GetJobDetail(jobID, nullptr, 1));
}

int REPdcProjectInfo::SetActiveJob(long jobID, std::string* lockedBy) { return LockJob(jobID, lockedBy); }

int REPdcProjectInfo::GetAllJobRecs(std::vector<TSLPRODUCTIONDATA*>& jobs) {
    TSLPRODUCTIONDATA rec{};
    if (!projectdir::ReadAtOrAbove(*this, m_iConstJobIDForFirstJob, &rec))
        return 0;
    for (int found = 1; found && rec.nJobId > m_iConstJobIDForProjInfo; found = _CallBtrieve(kOpGetNext, &rec)) {
        auto* copy = static_cast<TSLPRODUCTIONDATA*>(std::malloc(sizeof rec));
        *copy = rec;
        jobs.push_back(copy);
        rec = TSLPRODUCTIONDATA{};
    }
    // Reading the job list is how a user takes in other users' changes.
    m_projectLock.InformSelfUpd(m_strCurUser.c_str());
    return jobs.empty() ? 0 : 1;
}

long REPdcProjectInfo::GetNoOfJobs() {
    std::vector<TSLPRODUCTIONDATA*> jobs;
    const long count = GetAllJobRecs(jobs) ? static_cast<long>(jobs.size()) : -1;
    ResetRecArray(jobs);
    return count;
}
