#include "core/Platform.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <climits>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace platform {

namespace {

#if !defined(_WIN32)
fs::path ToPath(const std::string& text) { return fs::path(text); }
#endif

bool EqualIgnoringCase(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

}  // namespace

char PathSeparator() {
#if defined(_WIN32)
    return '\\';
#else
    return '/';
#endif
}

bool IsPathSeparator(char c) {
#if defined(_WIN32)
    return c == '\\' || c == '/';
#else
    return c == '/';
#endif
}

std::string ShortPathName(const std::string& path) {
#if defined(_WIN32)
    char shortPath[MAX_PATH] = {0};
    DWORD length = GetShortPathNameA(path.c_str(), shortPath, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return std::string();
    return std::string(shortPath, length);
#else
    return path;
#endif
}

std::string ComputerName() {
#if defined(_WIN32)
    char name[MAX_COMPUTERNAME_LENGTH + 1] = {0};
    DWORD length = sizeof name;
    if (!GetComputerNameA(name, &length))
        return std::string();
    return std::string(name, length);
#else
    char name[HOST_NAME_MAX + 1] = {0};
    if (gethostname(name, sizeof name - 1) != 0)
        return std::string();
    return std::string(name);
#endif
}

#if defined(_WIN32)
// On Windows the whole-file operations go through the Win32 calls, with the same narrow (ANSI)
// paths the rest of the library hands to the system: CopyFileA and MoveFileExA refuse an existing
// target themselves, and DeleteFileA removes files only.
bool FileExists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

bool CopyFileTo(const std::string& from, const std::string& to, bool overwrite) {
    return CopyFileA(from.c_str(), to.c_str(), overwrite ? FALSE : TRUE) != 0;
}

bool MoveFileTo(const std::string& from, const std::string& to) {
    return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_COPY_ALLOWED) != 0;
}

bool RemoveFile(const std::string& path) { return DeleteFileA(path.c_str()) != 0; }

PathState LookUpPath(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos)
        return PathState::Invalid;
    if (GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES)
        return PathState::Exists;
    switch (GetLastError()) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_DIRECTORY:  // a component that is a file
        return PathState::Missing;
    default:
        return PathState::Invalid;
    }
}
#else
bool FileExists(const std::string& path) {
    std::error_code error;
    return fs::exists(ToPath(path), error);
}

bool CopyFileTo(const std::string& from, const std::string& to, bool overwrite) {
    std::error_code error;
    const auto options = overwrite ? fs::copy_options::overwrite_existing : fs::copy_options::none;
    return fs::copy_file(ToPath(from), ToPath(to), options, error) && !error;
}

bool MoveFileTo(const std::string& from, const std::string& to) {
    std::error_code error;
    if (fs::exists(ToPath(to), error))
        return false;
    fs::rename(ToPath(from), ToPath(to), error);
    return !error;
}

bool RemoveFile(const std::string& path) {
    std::error_code error;
    if (!fs::is_regular_file(ToPath(path), error))
        return false;
    return fs::remove(ToPath(path), error) && !error;
}

PathState LookUpPath(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos)
        return PathState::Invalid;
    std::error_code error;
    fs::file_status status = fs::status(ToPath(path), error);
    if (fs::exists(status))
        return PathState::Exists;
    if (!error || error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory)
        return PathState::Missing;
    return PathState::Invalid;
}
#endif

bool MatchesWildcard(const std::string& name, const std::string& pattern) {
    // Greedy match with one backtrack point for the last '*'.
    size_t n = 0, p = 0, starP = std::string::npos, starN = 0;
    while (n < name.size()) {
        if (p < pattern.size() && (pattern[p] == '?' || EqualIgnoringCase(pattern[p], name[n]))) {
            ++n;
            ++p;
        } else if (p < pattern.size() && pattern[p] == '*') {
            starP = p++;
            starN = n;
        } else if (starP != std::string::npos) {
            p = starP + 1;
            n = ++starN;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*')
        ++p;
    return p == pattern.size();
}

std::vector<std::string> FindFiles(const std::string& directory, const std::string& pattern) {
    std::vector<std::string> names;
#if defined(_WIN32)
    // Every entry is listed and matched here: the system's own wildcard match also looks at the
    // 8.3 names, so "*.RDB" would find "A.RDBX" through its short form.
    std::string all = directory.empty() ? std::string(".") : directory;
    if (!IsPathSeparator(all.back()) && all.back() != ':')
        all += '\\';
    all += '*';
    WIN32_FIND_DATAA entry;
    HANDLE search = FindFirstFileA(all.c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return names;
    do {
        if (entry.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE))
            continue;
        if (MatchesWildcard(entry.cFileName, pattern))
            names.emplace_back(entry.cFileName);
    } while (FindNextFileA(search, &entry));
    FindClose(search);
#else
    std::error_code error;
    fs::directory_iterator it(directory.empty() ? fs::path(".") : ToPath(directory), error);
    for (; !error && it != fs::directory_iterator(); it.increment(error)) {
        std::error_code typeError;
        if (!it->is_regular_file(typeError))
            continue;
        std::string name = it->path().filename().string();
        if (MatchesWildcard(name, pattern))
            names.push_back(std::move(name));
    }
#endif
    std::sort(names.begin(), names.end());
    return names;
}

PathParts SplitPath(const std::string& path) {
    PathParts parts;
    size_t nameStart = 0;
    for (size_t i = path.size(); i > 0; --i) {
        if (IsPathSeparator(path[i - 1])) {
            nameStart = i;
            break;
        }
    }
#if defined(_WIN32)
    // A drive without a separator ("C:name") belongs to the directory part.
    if (nameStart == 0 && path.size() >= 2 && path[1] == ':')
        nameStart = 2;
#endif
    parts.directory = path.substr(0, nameStart);
    std::string file = path.substr(nameStart);
    size_t dot = file.rfind('.');
    if (dot == std::string::npos) {
        parts.name = file;
    } else {
        parts.name = file.substr(0, dot);
        parts.extension = file.substr(dot);
    }
    return parts;
}

std::string MakePath(const std::string& directory, const std::string& name, const std::string& extension) {
    std::string path = directory;
    if (!path.empty() && !IsPathSeparator(path.back())
#if defined(_WIN32)
        && path.back() != ':'
#endif
    )
        path += PathSeparator();
    path += name;
    if (!extension.empty() && extension.front() != '.')
        path += '.';
    path += extension;
    return path;
}

// The record manager is embedded in the process on every platform, Windows included: there is
// no outside engine to start or stop.
bool StartEngineProcess(const char* /*commandLine*/, PROCESS_INFORMATION* /*info*/) { return false; }

bool StopEngineProcess(PROCESS_INFORMATION* /*info*/) { return false; }

}  // namespace platform
