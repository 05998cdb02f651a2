#if !defined(_WIN32)

#include "recman/ProcessMark.h"
#include "recman/RegularFile.h"

#include <cerrno>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace recman {

// The process's use of one file: its descriptor (and any more it had to open on the same file
// before it knew, closed with it), its marks, and the gate as this process holds it.
struct MarkEntry {
    platform::FileIdentity identity;
    int fd = -1;
    std::vector<int> spare;
    int refs = 0;                // marks using the entry; guarded by g_mutex
    std::shared_mutex gate;      // opens of this process shared, a replace exclusive
    std::mutex sharedMutex;      // guards sharedHolders
    int sharedHolders = 0;       // opens holding the gate byte through fd
};

namespace {

// Lock bytes of a record-manager file, far from the ones the store uses (from 0x40000000 on).
constexpr off_t MarkBase = 0x50000000;
constexpr off_t GateByte = MarkBase - 1;

std::mutex g_mutex;
std::map<platform::FileIdentity, MarkEntry*> g_entries;

// A forked child closes every descriptor it inherited: a shared description would keep the
// parent's mark held for as long as the child lives. It holds no POSIX lock of the parent, so the
// closes drop nothing; the parent's entries are left to the parent's abandoned engine.
void lockEntries() { g_mutex.lock(); }
void unlockEntries() { g_mutex.unlock(); }
void closeInherited()
{
    for (auto& [id, e] : g_entries) {
        ::close(e->fd);
        for (int fd : e->spare)
            ::close(fd);
    }
    g_entries.clear();
    g_mutex.unlock();
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

// The entry of the file `path` names, with a reference taken; null when the path names no
// regular file after all. Opens a descriptor only when the process has none on the file yet.
MarkEntry* acquire(const std::string& path, const platform::FileIdentity& seen)
{
    static std::once_flag once;
    std::call_once(once, [] { pthread_atfork(lockEntries, unlockEntries, closeInherited); });
    std::lock_guard<std::mutex> lock(g_mutex);
    if (const auto it = g_entries.find(seen); it != g_entries.end()) {
        ++it->second->refs;
        return it->second;
    }
    struct stat st;
    int fd = openRegularFile(path.c_str(), O_RDWR, st);
    if (fd < 0)
        fd = openRegularFile(path.c_str(), O_RDONLY, st);
    if (fd < 0)
        return nullptr;
    // Replaced since it was looked at: the descriptor is another file's, which may already be in
    // use here; then it stays open with that file's entry rather than dropping its locks.
    MarkEntry*& e = g_entries[identityOf(st)];
    if (e) {
        e->spare.push_back(fd);
    } else {
        e = new MarkEntry;
        e->identity = identityOf(st);
        e->fd = fd;
        setLock(fd, F_RDLCK, MarkBase + off_t(platform::currentProcessId()), false);
    }
    ++e->refs;
    return e;
}

}  // namespace

ProcessMark::~ProcessMark() { release(); }

ProcessMark::ProcessMark(ProcessMark&& other) noexcept
    : m_entry(std::exchange(other.m_entry, nullptr)), m_gate(other.m_gate), m_gated(std::exchange(other.m_gated, false))
{
}

ProcessMark& ProcessMark::operator=(ProcessMark&& other) noexcept
{
    if (this != &other) {
        release();
        m_entry = std::exchange(other.m_entry, nullptr);
        m_gate = other.m_gate;
        m_gated = std::exchange(other.m_gated, false);
    }
    return *this;
}

void ProcessMark::release()
{
    endGate();
    if (!m_entry)
        return;
    std::lock_guard<std::mutex> lock(g_mutex);
    if (--m_entry->refs == 0) {
        // Nothing of this process uses the file any more: no store lock is left to drop.
        const auto it = g_entries.find(m_entry->identity);
        if (it != g_entries.end() && it->second == m_entry)
            g_entries.erase(it);
        ::close(m_entry->fd);
        for (int fd : m_entry->spare)
            ::close(fd);
        delete m_entry;
    }
    m_entry = nullptr;
}

platform::PathKind ProcessMark::attach(const std::string& path, Use use, platform::FileIdentity& identity)
{
    release();
    for (;;) {
        const platform::PathKind kind = platform::inspectPath(path, identity);
        if (kind != platform::PathKind::File)
            return kind;
        m_entry = acquire(path, identity);
        if (!m_entry) {
            // Not readable (the caller's checks answer), or no regular file any more.
            return platform::inspectPath(path, identity);
        }
        m_gate = use;
        if (use == Use::Replace) {
            m_entry->gate.lock();
            setLock(m_entry->fd, F_WRLCK, GateByte, true);
        } else {
            m_entry->gate.lock_shared();
            std::lock_guard<std::mutex> lock(m_entry->sharedMutex);
            if (m_entry->sharedHolders++ == 0)
                setLock(m_entry->fd, F_RDLCK, GateByte, true);
        }
        m_gated = true;
        // A replace may have renamed another file over the path while we waited: look again.
        platform::FileIdentity now;
        if (platform::inspectPath(path, now) == platform::PathKind::File && now == m_entry->identity) {
            identity = now;
            return kind;
        }
        release();
    }
}

void ProcessMark::endGate()
{
    if (!m_gated)
        return;
    m_gated = false;
    if (m_gate == Use::Replace) {
        setLock(m_entry->fd, F_UNLCK, GateByte, false);
        m_entry->gate.unlock();
        return;
    }
    {
        std::lock_guard<std::mutex> lock(m_entry->sharedMutex);
        if (--m_entry->sharedHolders == 0)
            setLock(m_entry->fd, F_UNLCK, GateByte, false);
    }
    m_entry->gate.unlock_shared();
}

bool ProcessMark::held(int64_t pid) const
{
    if (!m_entry || pid <= 0)
        return true;
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    fl.l_start = MarkBase + off_t(pid);
    fl.l_len = 1;
    if (::fcntl(m_entry->fd, F_OFD_GETLK, &fl) != 0)
        return true;
    return fl.l_type != F_UNLCK;
}

}  // namespace recman

#endif
