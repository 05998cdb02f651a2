#if !defined(_WIN32)

#include "recman/sqlite/OwnLockShm.h"

#include "recman/sqlite/OfdLock.h"

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace recman::sqlite {

namespace {

// One byte per WAL lock from LockBase, then the "someone uses this file" (DMS) byte.
constexpr off_t LockBase = (22 + SQLITE_SHM_NLOCK) * 4;
constexpr off_t DmsByte = LockBase + SQLITE_SHM_NLOCK;
constexpr off_t Page = 4096;

}  // namespace

// Joins the file as SQLite does: the first user (nobody holds the DMS byte) empties it under a
// write lock; every user then holds a read lock on the DMS byte while it is attached.
int OwnLockShm::attach(mode_t mode)
{
    m_fd = ::open(m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, mode);
    if (m_fd < 0)
        return SQLITE_CANTOPEN;
    keepFromChildren(m_fd);
    int rc = SQLITE_OK;
    const int holder = ofdHolder(m_fd, F_WRLCK, DmsByte);
    if (holder < 0) {
        rc = SQLITE_IOERR_LOCK;
    } else if (holder == F_UNLCK) {
        rc = ofdLock(m_fd, F_WRLCK, DmsByte, 1);
        if (rc == SQLITE_OK && ::ftruncate(m_fd, 3) != 0)
            rc = SQLITE_IOERR_SHMOPEN;
    } else if (holder == F_WRLCK) {
        rc = SQLITE_BUSY;
    }
    if (rc == SQLITE_OK)
        rc = ofdLock(m_fd, F_RDLCK, DmsByte, 1);
    if (rc != SQLITE_OK)
        unmap(false);
    return rc;
}

int OwnLockShm::map(const std::string& database, mode_t mode, int region, int size, bool extend, void volatile** out)
{
    *out = nullptr;
    if (m_fd < 0) {
        m_path = database + "-shm";
        if (const int rc = attach(mode); rc != SQLITE_OK)
            return rc;
    }
    m_regionSize = size_t(size);
    const size_t wanted = size_t(region) + 1;
    if (m_regions.size() < wanted) {
        struct stat st;
        if (::fstat(m_fd, &st) != 0)
            return SQLITE_IOERR_SHMSIZE;
        const off_t bytes = off_t(wanted * m_regionSize);
        if (st.st_size < bytes) {
            if (!extend)
                return SQLITE_OK;
            // Write one byte per page so that the space is really there (no SIGBUS on a full disk).
            for (off_t pg = st.st_size / Page; pg < bytes / Page; ++pg)
                if (::pwrite(m_fd, "", 1, pg * Page + Page - 1) != 1)
                    return SQLITE_IOERR_SHMSIZE;
        }
        while (m_regions.size() < wanted) {
            void* p = ::mmap(nullptr, m_regionSize, PROT_READ | PROT_WRITE, MAP_SHARED, m_fd,
                             off_t(m_regions.size() * m_regionSize));
            if (p == MAP_FAILED)
                return SQLITE_IOERR_SHMMAP;
            m_regions.push_back(p);
        }
    }
    *out = m_regions[size_t(region)];
    return SQLITE_OK;
}

int OwnLockShm::lock(int offset, int n, int flags)
{
    if (m_fd < 0)
        return SQLITE_IOERR_SHMLOCK;
    const uint16_t mask = uint16_t((1u << (offset + n)) - (1u << offset));
    const off_t start = LockBase + offset;
    if (flags & SQLITE_SHM_UNLOCK) {
        if ((m_shared | m_exclusive) & mask)
            if (ofdLock(m_fd, F_UNLCK, start, n) != SQLITE_OK)
                return SQLITE_IOERR_SHMLOCK;
        m_shared &= uint16_t(~mask);
        m_exclusive &= uint16_t(~mask);
        return SQLITE_OK;
    }
    const bool exclusive = flags & SQLITE_SHM_EXCLUSIVE;
    if ((exclusive ? m_exclusive : uint16_t(m_shared | m_exclusive)) & mask)
        return SQLITE_OK;
    if (const int rc = ofdLock(m_fd, exclusive ? F_WRLCK : F_RDLCK, start, n); rc != SQLITE_OK)
        return rc;
    (exclusive ? m_exclusive : m_shared) |= mask;
    return SQLITE_OK;
}

void OwnLockShm::unmap(bool deleteFile)
{
    for (void* r : m_regions)
        ::munmap(r, m_regionSize);
    m_regions.clear();
    if (m_fd >= 0) {
        closeKept(m_fd);  // drops every WAL lock this connection held
        if (deleteFile)
            ::unlink(m_path.c_str());
    }
    m_fd = -1;
    m_shared = m_exclusive = 0;
}

}  // namespace recman::sqlite

#endif
