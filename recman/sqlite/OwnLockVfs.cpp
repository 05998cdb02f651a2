#include "recman/sqlite/OwnLockVfs.h"

#include "recman/RegularFile.h"

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
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace recman::sqlite {

namespace {

// Lock bytes, as every SQLite process on this system uses them. Database file: one pending byte,
// one reserved byte, then the shared range. Shared-memory file: one byte per WAL lock from
// ShmLockBase, then the "someone uses this file" byte.
constexpr off_t PendingByte = 0x40000000;
constexpr off_t ReservedByte = PendingByte + 1;
constexpr off_t SharedFirst = PendingByte + 2;
constexpr off_t SharedSize = 510;
constexpr off_t ShmLockBase = (22 + SQLITE_SHM_NLOCK) * 4;
constexpr off_t ShmDmsByte = ShmLockBase + SQLITE_SHM_NLOCK;
constexpr off_t ShmPage = 4096;

constexpr const char* VfsName = "recman-ownlock";

sqlite3_vfs g_vfs;
sqlite3_vfs* g_unix = nullptr;

// Sets or clears a lock on [start, start+len) of the descriptor's open file description.
// SQLITE_OK, SQLITE_BUSY when another holder conflicts, or an I/O error.
int ofdLock(int fd, short type, off_t start, off_t len)
{
    struct flock fl {};
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = start;
    fl.l_len = len;
    while (::fcntl(fd, F_OFD_SETLK, &fl) != 0) {
        if (errno == EINTR)
            continue;
        // EBADF: a write lock through a read-only descriptor, which can never be had.
        return errno == EAGAIN || errno == EACCES || errno == EBADF ? SQLITE_BUSY : SQLITE_IOERR_LOCK;
    }
    return SQLITE_OK;
}

// True when a lock of `type` on the byte would conflict with one held through another description.
bool lockedElsewhere(int fd, short type, off_t start, int& rc)
{
    struct flock fl {};
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = start;
    fl.l_len = 1;
    rc = ::fcntl(fd, F_OFD_GETLK, &fl) == 0 ? SQLITE_OK : SQLITE_IOERR_CHECKRESERVEDLOCK;
    return rc == SQLITE_OK && fl.l_type != F_UNLCK;
}

// A connection's shared-memory file: its own descriptor, its mappings and the WAL locks it holds.
struct Shm {
    int fd = -1;
    std::vector<void*> regions;
    size_t regionSize = 0;
    uint16_t shared = 0, exclusive = 0;
};

struct OwnFile {
    sqlite3_file base;  // first: SQLite sees an OwnFile as a sqlite3_file
    int fd = -1;
    int level = SQLITE_LOCK_NONE;
    mode_t mode = 0644;
    std::string path;
    Shm shm;
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
    int rc = SQLITE_OK;
    *reserved = o.level >= SQLITE_LOCK_RESERVED || lockedElsewhere(o.fd, F_WRLCK, ReservedByte, rc);
    return rc;
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

void unmapShm(Shm& shm)
{
    for (void* r : shm.regions)
        ::munmap(r, shm.regionSize);
    shm.regions.clear();
    if (shm.fd >= 0)
        ::close(shm.fd);  // drops every WAL lock this connection held
    shm = Shm{};
}

// Joins the shared-memory file as SQLite does: the first user (nobody holds the DMS byte) empties
// it under a write lock; every user then holds a read lock on the DMS byte while it is attached.
int attachShm(OwnFile& o)
{
    o.shm.fd = ::open((o.path + "-shm").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, o.mode);
    if (o.shm.fd < 0)
        return SQLITE_CANTOPEN;
    int rc = SQLITE_OK;
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    fl.l_start = ShmDmsByte;
    fl.l_len = 1;
    if (::fcntl(o.shm.fd, F_OFD_GETLK, &fl) != 0) {
        rc = SQLITE_IOERR_LOCK;
    } else if (fl.l_type == F_UNLCK) {
        rc = ofdLock(o.shm.fd, F_WRLCK, ShmDmsByte, 1);
        if (rc == SQLITE_OK && ::ftruncate(o.shm.fd, 3) != 0)
            rc = SQLITE_IOERR_SHMOPEN;
    } else if (fl.l_type == F_WRLCK) {
        rc = SQLITE_BUSY;
    }
    if (rc == SQLITE_OK)
        rc = ofdLock(o.shm.fd, F_RDLCK, ShmDmsByte, 1);
    if (rc != SQLITE_OK)
        unmapShm(o.shm);
    return rc;
}

int ioShmMap(sqlite3_file* f, int region, int size, int extend, void volatile** out)
{
    OwnFile& o = own(f);
    *out = nullptr;
    if (o.shm.fd < 0)
        if (const int rc = attachShm(o); rc != SQLITE_OK)
            return rc;
    o.shm.regionSize = size_t(size);
    const size_t wanted = size_t(region) + 1;
    if (o.shm.regions.size() < wanted) {
        struct stat st;
        if (::fstat(o.shm.fd, &st) != 0)
            return SQLITE_IOERR_SHMSIZE;
        const off_t bytes = off_t(wanted * size_t(size));
        if (st.st_size < bytes) {
            if (!extend)
                return SQLITE_OK;
            // Write one byte per page so that the space is really there (no SIGBUS on a full disk).
            for (off_t pg = st.st_size / ShmPage; pg < bytes / ShmPage; ++pg)
                if (::pwrite(o.shm.fd, "", 1, pg * ShmPage + ShmPage - 1) != 1)
                    return SQLITE_IOERR_SHMSIZE;
        }
        while (o.shm.regions.size() < wanted) {
            void* p = ::mmap(nullptr, size_t(size), PROT_READ | PROT_WRITE, MAP_SHARED, o.shm.fd,
                             off_t(o.shm.regions.size() * size_t(size)));
            if (p == MAP_FAILED)
                return SQLITE_IOERR_SHMMAP;
            o.shm.regions.push_back(p);
        }
    }
    *out = o.shm.regions[size_t(region)];
    return SQLITE_OK;
}

int ioShmLock(sqlite3_file* f, int offset, int n, int flags)
{
    Shm& shm = own(f).shm;
    if (shm.fd < 0)
        return SQLITE_IOERR_SHMLOCK;
    const uint16_t mask = uint16_t((1u << (offset + n)) - (1u << offset));
    const off_t start = ShmLockBase + offset;
    if (flags & SQLITE_SHM_UNLOCK) {
        if ((shm.shared | shm.exclusive) & mask)
            if (ofdLock(shm.fd, F_UNLCK, start, n) != SQLITE_OK)
                return SQLITE_IOERR_SHMLOCK;
        shm.shared &= uint16_t(~mask);
        shm.exclusive &= uint16_t(~mask);
        return SQLITE_OK;
    }
    const bool exclusive = flags & SQLITE_SHM_EXCLUSIVE;
    if ((exclusive ? shm.exclusive : uint16_t(shm.shared | shm.exclusive)) & mask)
        return SQLITE_OK;
    if (const int rc = ofdLock(shm.fd, exclusive ? F_WRLCK : F_RDLCK, start, n); rc != SQLITE_OK)
        return rc;
    (exclusive ? shm.exclusive : shm.shared) |= mask;
    return SQLITE_OK;
}

void ioShmBarrier(sqlite3_file*) { __sync_synchronize(); }

int ioShmUnmap(sqlite3_file* f, int deleteFile)
{
    OwnFile& o = own(f);
    const bool had = o.shm.fd >= 0;
    unmapShm(o.shm);
    // SQLite asks for deletion only while it holds the database exclusively: nobody else uses it.
    if (had && deleteFile)
        ::unlink((o.path + "-shm").c_str());
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
    unmapShm(o.shm);
    // Unlock before closing: a process forked meanwhile may still share the description.
    ofdLock(o.fd, F_UNLCK, PendingByte, 2 + SharedSize);
    ::close(o.fd);
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
