#if !defined(_WIN32)

#include "recman/MarkLock.h"
#include "recman/RegularFile.h"

#include <cerrno>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace recman::marklock {

namespace {

int setLock(int fd, int command, short type, uint64_t offset)
{
    struct flock fl {};
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = off_t(offset);
    fl.l_len = 1;
    int rc;
    while ((rc = ::fcntl(fd, command, &fl)) != 0 && errno == EINTR) {
    }
    return rc;
}

}  // namespace

bool openFile(const std::string& path, FileHandle& file, platform::FileIdentity& identity)
{
    struct stat st;
    file = openRegularFile(path.c_str(), O_RDWR, st);
    if (file < 0)
        file = openRegularFile(path.c_str(), O_RDONLY, st);
    if (file < 0)
        return false;
    identity = {uint64_t(st.st_dev), uint64_t(st.st_ino)};
    return true;
}

void closeFile(FileHandle file) { ::close(file); }

bool lockByte(FileHandle file, uint64_t offset, bool exclusive, bool wait)
{
    return setLock(file, wait ? F_OFD_SETLKW : F_OFD_SETLK, exclusive ? F_WRLCK : F_RDLCK, offset) == 0;
}

void unlockByte(FileHandle file, uint64_t offset) { setLock(file, F_OFD_SETLK, F_UNLCK, offset); }

bool heldElsewhere(FileHandle file, uint64_t offset)
{
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    fl.l_start = off_t(offset);
    fl.l_len = 1;
    if (::fcntl(file, F_OFD_GETLK, &fl) != 0)
        return true;
    return fl.l_type != F_UNLCK;
}

void onFork(void (*prepare)(), void (*parent)(), void (*child)()) { pthread_atfork(prepare, parent, child); }

}  // namespace recman::marklock

#endif
