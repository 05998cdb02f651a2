// Open-file-description locks for the forked child's VFS: owned by one open of a file, so they
// conflict with every other open (of this process too) and no other descriptor's close drops them.
#pragma once

#if !defined(_WIN32)

#include <sqlite3.h>

#include <cerrno>

#include <fcntl.h>

namespace recman::sqlite {

// Sets or clears a lock on [start, start+len) of the descriptor's open file description.
// SQLITE_OK, SQLITE_BUSY when another holder conflicts, or an I/O error.
inline int ofdLock(int fd, short type, off_t start, off_t len)
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

// The type of lock another description holds on the byte that conflicts with `type`, F_UNLCK
// when none does; -1 when the system cannot tell.
inline int ofdHolder(int fd, short type, off_t at)
{
    struct flock fl {};
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = at;
    fl.l_len = 1;
    return ::fcntl(fd, F_OFD_GETLK, &fl) == 0 ? fl.l_type : -1;
}

// Descriptors that hold such locks, closed in every child forked later: a child would share
// their open file descriptions, and with them the locks, for as long as it lives.
void keepFromChildren(int fd);
// Closes a descriptor kept from children.
void closeKept(int fd);

}  // namespace recman::sqlite

#endif
