#if defined(_WIN32)

#include "recman/Platform.h"


#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#include <io.h>

namespace recman::platform {

namespace {

// A process handle for `pid`, closed when the holder goes out of scope; null when the process
// is gone (or was never there).
struct ProcessHandle {
    explicit ProcessHandle(int64_t pid)
        : h(pid > 0 ? ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, DWORD(pid))
                    : nullptr)
    {
    }
    ~ProcessHandle()
    {
        if (h)
            ::CloseHandle(h);
    }
    ProcessHandle(const ProcessHandle&) = delete;
    ProcessHandle& operator=(const ProcessHandle&) = delete;
    HANDLE h;
};

int64_t creationTime(HANDLE process)
{
    FILETIME created, exited, kernel, user;
    if (!::GetProcessTimes(process, &created, &exited, &kernel, &user))
        return 0;
    return int64_t((uint64_t(created.dwHighDateTime) << 32) | created.dwLowDateTime);
}

}  // namespace

int64_t currentProcessId() { return int64_t(::GetCurrentProcessId()); }

std::string hostName()
{
    char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = sizeof name;
    return ::GetComputerNameA(name, &size) ? std::string(name, size) : std::string();
}

int64_t processStartToken(int64_t pid)
{
    const ProcessHandle process(pid);
    return process.h ? creationTime(process.h) : 0;
}

bool processAlive(int64_t pid, int64_t startToken)
{
    const ProcessHandle process(pid);
    if (!process.h)
        // A process we may not open still runs; one that is gone cannot be opened at all.
        return pid > 0 && ::GetLastError() == ERROR_ACCESS_DENIED;
    // A process that has ended stays openable while anyone holds a handle to it.
    if (::WaitForSingleObject(process.h, 0) != WAIT_TIMEOUT)
        return false;
    return startToken == 0 || creationTime(process.h) == startToken;
}

PathKind inspectPath(const std::string& path, FileIdentity& identity)
{
    const DWORD attributes = ::GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return PathKind::Missing;
    // Backup semantics let a directory be opened too; no access is asked, only its identity.
    HANDLE file = ::CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        BY_HANDLE_FILE_INFORMATION info;
        if (::GetFileInformationByHandle(file, &info)) {
            identity.device = info.dwVolumeSerialNumber;
            identity.inode = (uint64_t(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
        }
        ::CloseHandle(file);
    }
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        return PathKind::Directory;
    return (attributes & FILE_ATTRIBUTE_DEVICE) ? PathKind::Other : PathKind::File;
}

bool canRead(const std::string& path) { return ::_access(path.c_str(), 4) == 0; }
bool canWrite(const std::string& path) { return ::_access(path.c_str(), 2) == 0; }

// Windows processes do not fork: nothing to register.
void callInChildAfterFork(void (*)()) {}

void keepLibraryLoaded()
{
    HMODULE self = nullptr;
    ::GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                         reinterpret_cast<LPCSTR>(&keepLibraryLoaded), &self);
}

bool replaceFile(const std::string& from, const std::string& to)
{
    return ::MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

}  // namespace recman::platform

#endif
