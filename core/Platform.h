// The library's one layer over the operating system: paths, the computer name, whole-file
// operations, file search and the record-manager engine process. Only Platform.cpp includes
// operating-system headers; every other file of the library goes through these functions.
#pragma once

#include "REErrorMessages.h"

#include <cstddef>
#include <string>
#include <vector>

namespace platform {

// The platform's path separator, and whether `c` separates path components here ('\\' and '/'
// on Windows, '/' elsewhere).
char PathSeparator();
bool IsPathSeparator(char c);

// Short (8.3) form of `path` on Windows, "" when it cannot be made; the path itself elsewhere.
std::string ShortPathName(const std::string& path);

// Longest short form of a path that Open hands on: on Windows the record manager is given the
// 8.3 form, which must keep within 64 characters; elsewhere only the key buffer limits it.
#if defined(_WIN32)
inline constexpr size_t kShortPathLimit = 64;
#else
inline constexpr size_t kShortPathLimit = static_cast<size_t>(-1);
#endif

// Name of this computer (the host name outside Windows); "" when it cannot be read.
std::string ComputerName();

// Whole-file operations; each returns true on success and never throws. A copy without
// `overwrite`, and every move, fail when the target exists; RemoveFile removes regular files only.
// (Named apart from the Windows API macros CopyFile, MoveFile and DeleteFile.)
bool FileExists(const std::string& path);
bool CopyFileTo(const std::string& from, const std::string& to, bool overwrite);
bool MoveFileTo(const std::string& from, const std::string& to);
bool RemoveFile(const std::string& path);

// Outcome of looking a path up in the file system.
enum class PathState { Missing, Exists, Invalid };
// Missing when nothing is there (or a component of the path does not exist), Exists when
// something is, Invalid when the file system rejects the path (malformed, too long, no access).
PathState LookUpPath(const std::string& path);

// Names (not paths) of the regular files in `directory` that match `pattern`, whose '*' and '?'
// are the usual wildcards; matching ignores letter case, as the Windows file search does.
// Sorted by name; empty when the directory cannot be read.
std::vector<std::string> FindFiles(const std::string& directory, const std::string& pattern);
bool MatchesWildcard(const std::string& name, const std::string& pattern);

// A path cut into its directory (with its trailing separator), base name and extension (with
// its dot), and put back together.
struct PathParts {
    std::string directory;
    std::string name;
    std::string extension;
};
PathParts SplitPath(const std::string& path);
std::string MakePath(const std::string& directory, const std::string& name, const std::string& extension);

// The engine process: the record manager runs inside this process, so both start and stop
// nothing and return false, on every platform.
bool StartEngineProcess(const char* commandLine, PROCESS_INFORMATION* info);
bool StopEngineProcess(PROCESS_INFORMATION* info);

}  // namespace platform
