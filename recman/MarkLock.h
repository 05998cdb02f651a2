// The byte locks behind process marks: a file handle of the process's own, and one-byte locks on
// it that the system drops when the process ends, killed or not (open file description locks on
// POSIX systems, LockFileEx locks on Windows).
#pragma once

#include "recman/Platform.h"

#include <cstdint>
#include <string>

namespace recman::marklock {

#if defined(_WIN32)
using FileHandle = void*;
#else
using FileHandle = int;
#endif

// Opens `path` for locking only, when it names a regular file; false otherwise. `identity`
// describes the file the handle reaches.
bool openFile(const std::string& path, FileHandle& file, platform::FileIdentity& identity);
void closeFile(FileHandle file);

bool lockByte(FileHandle file, uint64_t offset, bool exclusive, bool wait);
void unlockByte(FileHandle file, uint64_t offset);
// Whether another process holds a lock on the byte; true when it cannot be told.
bool heldElsewhere(FileHandle file, uint64_t offset);

// Calls the three around every fork, as pthread_atfork does; nothing where processes do not fork.
void onFork(void (*prepare)(), void (*parent)(), void (*child)());

}  // namespace recman::marklock
