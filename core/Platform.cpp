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

fs::path ToPath(const std::string& text) { return fs::path(text); }

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
