// Opening a path only when it holds a regular file (POSIX systems).
#pragma once

#if !defined(_WIN32)

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace recman {

// Opens `path` with `flags`, never blocking (a FIFO or device found there cannot hang the call),
// and keeps the descriptor only when it is a regular file; -1 otherwise. `st` describes the file.
inline int openRegularFile(const char* path, int flags, struct stat& st, mode_t mode = 0644)
{
    const int fd = ::open(path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, mode);
    if (fd < 0)
        return -1;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return -1;
    }
    return fd;
}

}  // namespace recman

#endif
