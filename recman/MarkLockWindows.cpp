#if defined(_WIN32)

#include "recman/MarkLock.h"

#include <windows.h>

namespace recman::marklock {

namespace {

OVERLAPPED at(uint64_t offset)
{
    OVERLAPPED o{};
    o.Offset = DWORD(offset & 0xFFFFFFFFu);
    o.OffsetHigh = DWORD(offset >> 32);
    return o;
}

}  // namespace

bool openFile(const std::string& path, FileHandle& file, platform::FileIdentity& identity)
{
    // Not inheritable: a child process never holds its parent's marks.
    file = ::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    BY_HANDLE_FILE_INFORMATION info;
    if (::GetFileType(file) != FILE_TYPE_DISK || !::GetFileInformationByHandle(file, &info) ||
        (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
        ::CloseHandle(file);
        return false;
    }
    identity.device = info.dwVolumeSerialNumber;
    identity.inode = (uint64_t(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
    return true;
}

void closeFile(FileHandle file) { ::CloseHandle(file); }

bool lockByte(FileHandle file, uint64_t offset, bool exclusive, bool wait)
{
    OVERLAPPED o = at(offset);
    const DWORD flags = (exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0) | (wait ? 0 : LOCKFILE_FAIL_IMMEDIATELY);
    return ::LockFileEx(file, flags, 0, 1, 0, &o) != 0;
}

void unlockByte(FileHandle file, uint64_t offset)
{
    OVERLAPPED o = at(offset);
    ::UnlockFileEx(file, 0, 1, 0, &o);
}

bool heldElsewhere(FileHandle file, uint64_t offset)
{
    // Windows has no lock query: an exclusive lock is granted only when no process holds the
    // byte, so the test takes it and gives it back at once.
    if (lockByte(file, offset, true, false)) {
        unlockByte(file, offset);
        return false;
    }
    return true;
}

void onFork(void (*)(), void (*)(), void (*)()) {}

}  // namespace recman::marklock

#endif
