#include "recman/sqlite/OwnLockVfs.h"

#include "recman/RegularFile.h"
#include "recman/sqlite/OfdLock.h"
#include "recman/sqlite/OwnLockShm.h"

#if defined(_WIN32)

namespace recman::sqlite {
const char* ownLockVfs() { return nullptr; }
}  // namespace recman::sqlite

#else

#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <new>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace recman::sqlite {

namespace {

// Lock bytes of the database file, as every SQLite process on this system uses them: one pending
// byte, one reserved byte, then the shared range.
constexpr off_t PendingByte = 0x40000000;
constexpr off_t ReservedByte = PendingByte + 1;
constexpr off_t SharedFirst = PendingByte + 2;
constexpr off_t SharedSize = 510;

constexpr const char* VfsName = "recman-ownlock";

sqlite3_vfs g_vfs;
sqlite3_vfs* g_unix = nullptr;

struct OwnFile {
    sqlite3_file base;  // first: SQLite sees an OwnFile as a sqlite3_file
    int fd = -1;
    int level = SQLITE_LOCK_NONE;
    mode_t mode = 0644;
    std::string path;
    OwnLockShm shm;
};

OwnFile& own(sqlite3_file* f) { return *reinterpret_cast<OwnFile*>(f); }

int ioClose(sqlite3_file* f);
int ioRead(sqlite3_file* f, void* buf, int amount, sqlite3_int64 offset)
{
    auto* p = static_cast<char*>(buf);
    size_t left = size_t(amount);
    while (left > 0) {
        const ssize_t n = ::pread(own(f).fd, p, left, off_t(offset));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return SQLITE_IOERR_READ;
        if (n == 0) {
            std::memset(p, 0, left);
            return SQLITE_IOERR_SHORT_READ;
        }
        p += n;
        left -= size_t(n);
        offset += n;
    }
    return SQLITE_OK;
}

int ioWrite(sqlite3_file* f, const void* buf, int amount, sqlite3_int64 offset)
{
    const auto* p = static_cast<const char*>(buf);
    size_t left = size_t(amount);
    while (left > 0) {
        const ssize_t n = ::pwrite(own(f).fd, p, left, off_t(offset));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return n < 0 && (errno == ENOSPC || errno == EDQUOT) ? SQLITE_FULL : SQLITE_IOERR_WRITE;
        p += n;
        left -= size_t(n);
        offset += n;
    }
    return SQLITE_OK;
}

int ioTruncate(sqlite3_file* f, sqlite3_int64 size)
{
    return ::ftruncate(own(f).fd, off_t(size)) == 0 ? SQLITE_OK : SQLITE_IOERR_TRUNCATE;
}

int ioSync(sqlite3_file* f, int flags)
{
    const int rc = (flags & 0x0F) == SQLITE_SYNC_FULL ? ::fsync(own(f).fd) : ::fdatasync(own(f).fd);
    return rc == 0 ? SQLITE_OK : SQLITE_IOERR_FSYNC;
}

int ioFileSize(sqlite3_file* f, sqlite3_int64* size)
{
    struct stat st;
    if (::fstat(own(f).fd, &st) != 0)
        return SQLITE_IOERR_FSTAT;
    *size = st.st_size;
    return SQLITE_OK;
}

int ioLock(sqlite3_file* f, int level)
{
    OwnFile& o = own(f);
    if (o.level >= level)
        return SQLITE_OK;
    if (level == SQLITE_LOCK_SHARED) {
        // No new reader while a writer waits on the pending byte.
        int rc = ofdLock(o.fd, F_RDLCK, PendingByte, 1);
        if (rc != SQLITE_OK)
            return rc;
        rc = ofdLock(o.fd, F_RDLCK, SharedFirst, SharedSize);
        ofdLock(o.fd, F_UNLCK, PendingByte, 1);
        if (rc == SQLITE_OK)
            o.level = SQLITE_LOCK_SHARED;
        return rc;
    }
    if (level == SQLITE_LOCK_RESERVED) {
        const int rc = ofdLock(o.fd, F_WRLCK, ReservedByte, 1);
        if (rc == SQLITE_OK)
            o.level = SQLITE_LOCK_RESERVED;
        return rc;
    }
    if (o.level < SQLITE_LOCK_PENDING) {
        if (const int rc = ofdLock(o.fd, F_WRLCK, PendingByte, 1); rc != SQLITE_OK)
            return rc;
        o.level = SQLITE_LOCK_PENDING;
    }
    if (level == SQLITE_LOCK_EXCLUSIVE) {
        if (const int rc = ofdLock(o.fd, F_WRLCK, SharedFirst, SharedSize); rc != SQLITE_OK)
            return rc;
        o.level = SQLITE_LOCK_EXCLUSIVE;
    }
    return SQLITE_OK;
}

int ioUnlock(sqlite3_file* f, int level)
{
    OwnFile& o = own(f);
    if (o.level <= level)
        return SQLITE_OK;
    int rc = SQLITE_OK;
    if (level == SQLITE_LOCK_SHARED) {
        if (o.level == SQLITE_LOCK_EXCLUSIVE)
            rc = ofdLock(o.fd, F_RDLCK, SharedFirst, SharedSize);
        if (rc == SQLITE_OK)
            rc = ofdLock(o.fd, F_UNLCK, PendingByte, 2);
    } else {
        rc = ofdLock(o.fd, F_UNLCK, PendingByte, 2 + SharedSize);
    }
    if (rc != SQLITE_OK)
        return SQLITE_IOERR_UNLOCK;
    o.level = level;
    return SQLITE_OK;
}

int ioCheckReserved(sqlite3_file* f, int* reserved)
{
    OwnFile& o = own(f);
    if (o.level >= SQLITE_LOCK_RESERVED) {
        *reserved = 1;
        return SQLITE_OK;
    }
    const int holder = ofdHolder(o.fd, F_WRLCK, ReservedByte);
    *reserved = holder >= 0 && holder != F_UNLCK;
    return holder < 0 ? SQLITE_IOERR_CHECKRESERVEDLOCK : SQLITE_OK;
}

int ioFileControl(sqlite3_file* f, int op, void* arg)
{
    switch (op) {
    case SQLITE_FCNTL_LOCKSTATE:
        *static_cast<int*>(arg) = own(f).level;
        return SQLITE_OK;
    case SQLITE_FCNTL_HAS_MOVED: {
        struct stat st;
        *static_cast<int*>(arg) = ::fstat(own(f).fd, &st) != 0 || st.st_nlink == 0;
        return SQLITE_OK;
    }
    default:
        return SQLITE_NOTFOUND;
    }
}

int ioSectorSize(sqlite3_file*) { return 4096; }
int ioDeviceCharacteristics(sqlite3_file*) { return SQLITE_IOCAP_POWERSAFE_OVERWRITE; }

int ioShmMap(sqlite3_file* f, int region, int size, int extend, void volatile** out)
{
    OwnFile& o = own(f);
    return o.shm.map(o.path, o.mode, region, size, extend != 0, out);
}

int ioShmLock(sqlite3_file* f, int offset, int n, int flags) { return own(f).shm.lock(offset, n, flags); }

void ioShmBarrier(sqlite3_file*) { __sync_synchronize(); }

int ioShmUnmap(sqlite3_file* f, int deleteFile)
{
    own(f).shm.unmap(deleteFile != 0);
    return SQLITE_OK;
}

const sqlite3_io_methods g_methods = {
    2, ioClose, ioRead, ioWrite, ioTruncate, ioSync, ioFileSize, ioLock, ioUnlock, ioCheckReserved,
    ioFileControl, ioSectorSize, ioDeviceCharacteristics, ioShmMap, ioShmLock, ioShmBarrier, ioShmUnmap,
    nullptr, nullptr,
};

int ioClose(sqlite3_file* f)
{
    OwnFile& o = own(f);
    o.shm.unmap(false);
    // Unlock before closing, should a child forked meanwhile not have closed its copy yet.
    ofdLock(o.fd, F_UNLCK, PendingByte, 2 + SharedSize);
    closeKept(o.fd);
    o.~OwnFile();
    return SQLITE_OK;
}

int vfsOpen(sqlite3_vfs*, const char* name, sqlite3_file* f, int flags, int* outFlags)
{
    if (!name || !(flags & SQLITE_OPEN_MAIN_DB))
        return g_unix->xOpen(g_unix, name, f, flags, outFlags);
    f->pMethods = nullptr;
    int oflags = (flags & SQLITE_OPEN_READWRITE) ? O_RDWR : O_RDONLY;
    if (flags & SQLITE_OPEN_CREATE)
        oflags |= O_CREAT;
    if (flags & SQLITE_OPEN_EXCLUSIVE)
        oflags |= O_EXCL;
    struct stat st;
    const int fd = openRegularFile(name, oflags, st);
    if (fd < 0)
        return SQLITE_CANTOPEN;
    keepFromChildren(fd);
    OwnFile* o = new (f) OwnFile;
    o->base.pMethods = &g_methods;
    o->fd = fd;
    o->mode = st.st_mode & 0777;
    o->path = name;
    if (outFlags)
        *outFlags = flags;
    return SQLITE_OK;
}

}  // namespace

const char* ownLockVfs()
{
    static std::once_flag once;
    static bool ready = false;
    std::call_once(once, [] {
        g_unix = sqlite3_vfs_find("unix");
        if (!g_unix)
            return;
        g_vfs = *g_unix;
        g_vfs.pNext = nullptr;
        g_vfs.zName = VfsName;
        g_vfs.szOsFile = std::max(g_unix->szOsFile, int(sizeof(OwnFile)));
        g_vfs.xOpen = vfsOpen;
        ready = sqlite3_vfs_register(&g_vfs, 0) == SQLITE_OK;
    });
    return ready ? VfsName : nullptr;
}

}  // namespace recman::sqlite

#endif
