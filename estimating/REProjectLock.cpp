#include "REProjectLock.h"

#include "core/Messages.h"
#include "estimating/ProjectLockTraits.h"

#include <cctype>
#include <cstring>

namespace {

// Copies `text` into a fixed text field, cut to fit with its NUL.
template <size_t N>
void CopyName(char (&field)[N], const char* text) {
    std::memset(field, 0, N);
    std::memcpy(field, text, strnlen(text, N - 1));
}

// User names are case-blind: the same user may sign on in other letters.
bool SameName(const char* a, const char* b) {
    for (; *a != '\0' && *b != '\0'; ++a, ++b) {
        if (std::toupper(static_cast<unsigned char>(*a)) != std::toupper(static_cast<unsigned char>(*b)))
            return false;
    }
    return *a == *b;
}

// A stored name field, which holds its NUL unless a foreign writer filled it.
std::string StoredName(const char (&field)[200]) { return std::string(field, strnlen(field, sizeof field)); }

}  // namespace

const RERecordFileSpec REProjectLock::kSpec = REMakeSpec<ProjectLockTraits, REProjectLock>();

REProjectLock::REProjectLock() : RERecordFile(kSpec) {}
REProjectLock::REProjectLock(const REProjectLock& other) = default;
REProjectLock& REProjectLock::operator=(const REProjectLock& other) = default;
REProjectLock::~REProjectLock() = default;

int REProjectLock::GetAllRecords(std::vector<PROJECTLOCKINFO*>& users) {
    const size_t before = users.size();
    const int result = RERecordFile::GetAllRecords(users);
    RETrace("REProjectLock::GetAllRecords >>Dump..............\n");
    for (size_t i = before; i < users.size(); ++i) {
        const PROJECTLOCKINFO& u = *users[i];
        RETrace("REProjectLock:: #%d>> [%s] [%d] [%d] [%d] [%s] [%d]\n", static_cast<int>(i - before + 1),
                StoredName(u.szUserName).c_str(), u.nSuperUser, u.nLockedJobId, u.nUpdatePending,
                StoredName(u.szUpdatedBy).c_str(), u.nUpdatedJobId);
    }
    return result;
}

int REProjectLock::FindUser(const char* userName, PROJECTLOCKINFO* rec) {
    if (userName == nullptr)
        return 0;
    PROJECTLOCKINFO found{};
    CopyName(found.szUserName, userName);
    char wanted[sizeof found.szUserName];
    std::memcpy(wanted, found.szUserName, sizeof wanted);

    SetKeyNumber(kKeyUserName);
    SetKeyBuffer(&found, sizeof found.szUserName);
    const bool hit = (_CallStatus(kOpGetEqual, &found) == kStatusSuccess &&
                      SameName(StoredName(found.szUserName).c_str(), wanted)) ||
                     _FindUserIgnoringCase(wanted, &found);
    if (!hit)
        return 0;
    if (rec != nullptr)
        *rec = found;
    return 1;
}

// The user-name key compares letter case, so a name stored in other letters is missed by the
// exact search; the file holds one record per logged-in user, so a walk is cheap. The walk
// leaves the found record current for a following update or delete.
int REProjectLock::_FindUserIgnoringCase(const char* storedName, PROJECTLOCKINFO* found) {
    for (int16_t status = _CallStatus(kOpStepFirst, found); status == kStatusSuccess;
         status = _CallStatus(kOpStepNext, found)) {
        if (SameName(StoredName(found->szUserName).c_str(), storedName))
            return 1;
    }
    return 0;
}

int REProjectLock::LogIn(const char* userName, int superUser) {
    if (userName == nullptr || FindUser(userName, nullptr))
        return 0;
    PROJECTLOCKINFO rec{};
    CopyName(rec.szUserName, userName);
    rec.nSuperUser = superUser;
    SetKeyNumber(kKeyUserName);
    return _AddNewRecord(&rec);
}

int REProjectLock::LogOut(const char* userName) {
    if (!FindUser(userName, nullptr))
        return 0;
    return _DeleteCurrent();
}

int REProjectLock::IsSuperUserLoggedIn(PROJECTLOCKINFO* rec) {
    PROJECTLOCKINFO found{};
    int32_t superUser = 1;
    SetKeyNumber(kKeySuperUser);
    SetKeyBuffer(&superUser, sizeof superUser);
    if (!_CallBtrieve(kOpGetGreaterOrEqual, &found) || found.nSuperUser != 1)
        return 0;
    if (rec != nullptr)
        *rec = found;
    return 1;
}

int REProjectLock::UpdateLockStatus(const char* userName, const int* jobId, const int* clearNotice) {
    PROJECTLOCKINFO rec{};
    if (clearNotice == nullptr || !FindUser(userName, &rec))
        return 0;
    if (jobId != nullptr)
        rec.nLockedJobId = *jobId;
    if (*clearNotice != 0) {
        rec.nUpdatePending = 0;
        std::memset(rec.szUpdatedBy, 0, sizeof rec.szUpdatedBy);
        rec.nUpdatedJobId = -1;
    }
    return _UpdateCurrent(&rec);
}

int REProjectLock::InformSelfUpd(const char* userName) {
    PROJECTLOCKINFO rec{};
    if (!FindUser(userName, &rec))
        return 0;
    rec.nUpdatePending = 0;
    std::memset(rec.szUpdatedBy, 0, sizeof rec.szUpdatedBy);
    return _UpdateCurrent(&rec);
}

int REProjectLock::UpdateOtherUseres(const char* userName, int jobId) {
    if (userName == nullptr)
        return 0;
    char self[sizeof PROJECTLOCKINFO::szUserName];
    CopyName(self, userName);
    // Walk by name: flagging a user changes the notice key, which would move the record under a
    // walk in that key's order.
    SetKeyNumber(kKeyUserName);
    PROJECTLOCKINFO rec{};
    for (int found = GetFirstRecord(&rec); found; found = GetNextRecord(&rec)) {
        if (SameName(StoredName(rec.szUserName).c_str(), self))
            continue;
        CopyName(rec.szUpdatedBy, self);
        rec.nUpdatedJobId = jobId;
        rec.nUpdatePending = 1;
        _UpdateCurrent(&rec);
    }
    return 1;
}

int REProjectLock::GetLockedJobIDArray(std::vector<unsigned int>& jobIds) {
    PROJECTLOCKINFO rec{};
    int32_t noJob = 0;
    SetKeyNumber(kKeyLockedJob);
    SetKeyBuffer(&noJob, sizeof noJob);
    for (int found = _CallBtrieve(kOpGetGreaterOrEqual, &rec); found; found = _CallBtrieve(kOpGetNext, &rec)) {
        if (rec.nLockedJobId >= 0)
            jobIds.push_back(static_cast<unsigned int>(rec.nLockedJobId));
    }
    return 1;
}

int REProjectLock::IsJobLocked(const int& jobId, std::string& userName) {
    PROJECTLOCKINFO rec{};
    int32_t wanted = jobId;
    SetKeyNumber(kKeyLockedJob);
    SetKeyBuffer(&wanted, sizeof wanted);
    if (_CallStatus(kOpGetEqual, &rec) != kStatusSuccess || rec.nLockedJobId != jobId)
        return 0;
    userName = StoredName(rec.szUserName);
    return 1;
}
