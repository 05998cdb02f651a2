#if !defined(_WIN32)

#include "recman/ProcessMark.h"

#include <cerrno>
#include <mutex>
#include <set>
#include <utility>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace recman {

namespace {

// Lock bytes of a record-manager file, far from the ones the store uses (from 0x40000000 on).
constexpr off_t MarkBase = 0x50000000;
constexpr off_t GateByte = MarkBase - 1;

// Every mark descriptor of the process, so that a forked child can close the ones it inherited:
// a shared description would keep the parent's mark held for as long as the child lives.
std::mutex g_marksMutex;
std::set<int> g_marks;

void lockMarks() { g_marksMutex.lock(); }
void unlockMarks() { g_marksMutex.unlock(); }
void closeInheritedMarks()
{
    for (int fd : g_marks)
        ::close(fd);
    g_marks.clear();
    g_marksMutex.unlock();
}

void remember(int fd)
{
    static std::once_flag once;
    std::call_once(once, [] { pthread_atfork(lockMarks, unlockMarks, closeInheritedMarks); });
    std::lock_guard<std::mutex> lock(g_marksMutex);
    g_marks.insert(fd);
}

void forget(int fd)
{
    std::lock_guard<std::mutex> lock(g_marksMutex);
    g_marks.erase(fd);
    ::close(fd);
}

int setLock(int fd, short type, off_t at, bool wait)
{
    struct flock fl {};
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = at;
    fl.l_len = 1;
    int rc;
    while ((rc = ::fcntl(fd, wait ? F_OFD_SETLKW : F_OFD_SETLK, &fl)) != 0 && errno == EINTR) {
    }
    return rc;
}

platform::FileIdentity identityOf(const struct stat& st) { return {uint64_t(st.st_dev), uint64_t(st.st_ino)}; }

}  // namespace

ProcessMark::~ProcessMark()
{
    if (m_fd >= 0)
        forget(m_fd);
}

ProcessMark::ProcessMark(ProcessMark&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}

ProcessMark& ProcessMark::operator=(ProcessMark&& other) noexcept
{
    if (this != &other) {
        if (m_fd >= 0)
            forget(m_fd);
        m_fd = std::exchange(other.m_fd, -1);
    }
    return *this;
}

platform::PathKind ProcessMark::attach(const std::string& path, Use use, platform::FileIdentity& identity)
{
    for (;;) {
        const platform::PathKind kind = platform::inspectPath(path, identity);
        if (kind != platform::PathKind::File)
            return kind;
        // Non-blocking: should the path turn into a FIFO or device after the look, opening it
        // cannot hang, and the check below refuses it.
        const int access = use == Use::Replace ? O_RDWR : O_RDONLY;
        const int fd = ::open(path.c_str(), access | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
        if (fd < 0)
            return kind;  // no permission or gone: the caller's checks answer
        struct stat st;
        if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
            ::close(fd);
            continue;
        }
        if (setLock(fd, use == Use::Replace ? F_WRLCK : F_RDLCK, GateByte, true) != 0) {
            ::close(fd);
            return kind;
        }
        // A replace may have renamed another file over the path while we waited: look again.
        platform::FileIdentity now;
        if (platform::inspectPath(path, now) != platform::PathKind::File || !(now == identityOf(st))) {
            ::close(fd);
            continue;
        }
        if (use == Use::Open)
            setLock(fd, F_RDLCK, MarkBase + off_t(platform::currentProcessId()), false);
        if (m_fd >= 0)
            forget(m_fd);
        m_fd = fd;
        remember(fd);
        identity = identityOf(st);
        return kind;
    }
}

void ProcessMark::endGate()
{
    if (m_fd >= 0)
        setLock(m_fd, F_UNLCK, GateByte, false);
}

bool ProcessMark::held(int64_t pid) const
{
    if (m_fd < 0 || pid <= 0)
        return true;
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    fl.l_start = MarkBase + off_t(pid);
    fl.l_len = 1;
    if (::fcntl(m_fd, F_OFD_GETLK, &fl) != 0)
        return true;
    return fl.l_type != F_UNLCK;
}

}  // namespace recman

#endif
