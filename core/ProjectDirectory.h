// What a project directory shares with every other one: the identity under which a workstation
// logs in to the project's lock file, the lock file beside the project file, the positioned and
// locking reads by record id, and the emptying of the file. The directory keeps the records;
// these functions keep the protocol.
#pragma once

#include "REProjectLock.h"
#include "detail/RERecordFile.h"

#include <cstdint>
#include <string>

namespace projectdir {

// This computer's name and two backslashes ("\\Unknown Computer\" when it cannot be read),
// followed by `userName`.
std::string UserIdentity(const std::string& userName);

// Opens the lock file at the drive, folder and base name of `projectPath` with `extension`
// (created first when missing) and logs `user` in; 0 when the login is refused.
int LogInBeside(REProjectLock& lock, const char* projectPath, const char* extension, const std::string& user,
                int loginMode);
// Logs `user` out when asked and found, and closes the lock file.
void LeaveLockFile(REProjectLock& lock, const std::string& user, int logOut);
// Notes a record lock just taken for `user`, or names the holder in `*lockedBy` (when given).
// Returns `locked`.
int NoteLock(REProjectLock& lock, const std::string& user, long id, std::string* lockedBy, int locked);

// Get Greater or Equal on key 0 with `id` through the file's judged call; 1 when a record is
// found.
int ReadAtOrAbove(RERecordFileEngine& file, long id, void* rec);
// The same with the single no-wait lock, judging nothing: the record manager's status.
int16_t LockAtOrAbove(RERecordFileEngine& file, long id, void* rec);
// Deletes every record in physical order; 1 when the file is empty or emptied, 0 when a delete
// fails.
int DeleteEveryRecord(RERecordFileEngine& file, void* rec);

}  // namespace projectdir
