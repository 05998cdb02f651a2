// The operating-system calls the record manager needs: process identity and liveness, and the
// identity of a file. Everything platform-specific of the engine is here.
#pragma once

#include <cstdint>
#include <string>

namespace recman::platform {

struct FileIdentity {
    uint64_t device = 0;
    uint64_t inode = 0;
    bool operator==(const FileIdentity&) const = default;
    bool operator<(const FileIdentity& o) const
    {
        return device != o.device ? device < o.device : inode < o.inode;
    }
};

enum class PathKind { Missing, Directory, File, Other };

int64_t currentProcessId();

// A value that tells this run of a process from an earlier process with the same id
// (its start time); 0 when it cannot be read.
int64_t processStartToken(int64_t pid);

// This machine, as a number that every process on it computes alike (a hash of its name); never 0.
int64_t hostToken();

// True while a process with that id and start token runs.
bool processAlive(int64_t pid, int64_t startToken);

// Kind of object at `path`; `identity` filled for an existing object.
PathKind inspectPath(const std::string& path, FileIdentity& identity);

bool canRead(const std::string& path);
bool canWrite(const std::string& path);

// A path naming `name` in the directory of `path`.
std::string siblingPath(const std::string& path, const std::string& name);

// Renames `from` to `to`, replacing a file there in one step; false when the system refuses (on
// Windows, while any handle has `to` open).
bool replaceFile(const std::string& from, const std::string& to);

// This machine's name as the system gives it; "" when it cannot be read.
std::string hostName();

// A random 64-bit value, different in every process.
uint64_t randomToken();

// Keeps the library that holds this code loaded until the process ends, whatever the application
// unloads: a thread of the library must never find its code gone.
void keepLibraryLoaded();

// Registers `handler` to run in the child after every fork (where processes fork at all).
void callInChildAfterFork(void (*handler)());

}  // namespace recman::platform
