#if defined(_WIN32)

// The mark through Win32: a handle of the process's own on the file, holding a shared LockFileEx
// lock on the byte MarkBase + process id. Windows releases a process's locks when it ends, killed
// or not, so the byte tells a live owner from a dead one. The gate is a LockFileEx lock on
// GateByte, shared for opens and exclusive for a replace. Handles are not inheritable, so a child
// process never holds a parent's mark.

#include "recman/ProcessMark.h"

#include <windows.h>

#include <map>
#include <mutex>
#include <shared_mutex>
#include <utility>
#include <vector>

namespace recman {

// The process's use of one file: its handle (and any more it opened on the same file before it
// knew, closed with it), its marks, and the gate as this process holds it.
struct MarkEntry {
    platform::FileIdentity identity;
    HANDLE file = INVALID_HANDLE_VALUE;
    std::vector<HANDLE> spare;
    int refs = 0;               // marks using the entry; guarded by g_mutex
    std::shared_mutex gate;     // opens of this process shared, a replace exclusive
    std::mutex sharedMutex;     // guards sharedHolders
    int sharedHolders = 0;      // opens holding the gate byte through the handle
};

namespace {

// Lock bytes of a record-manager file, beyond the ones the store uses (from 0x40000000 on) and
// beyond any data, so that the mandatory Windows locks never cover a byte anyone reads or writes.
constexpr uint64_t MarkBase = 0x50000000;
constexpr uint64_t GateByte = MarkBase - 1;

std::mutex g_mutex;
std::map<platform::FileIdentity, MarkEntry*> g_entries;

OVERLAPPED at(uint64_t offset)
{
    OVERLAPPED o{};
    o.Offset = DWORD(offset & 0xFFFFFFFFu);
    o.OffsetHigh = DWORD(offset >> 32);
    return o;
}

bool lockByte(HANDLE file, uint64_t offset, bool exclusive, bool wait)
{
    OVERLAPPED o = at(offset);
    const DWORD flags = (exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0) | (wait ? 0 : LOCKFILE_FAIL_IMMEDIATELY);
    return ::LockFileEx(file, flags, 0, 1, 0, &o) != 0;
}

void unlockByte(HANDLE file, uint64_t offset)
{
    OVERLAPPED o = at(offset);
    ::UnlockFileEx(file, 0, 1, 0, &o);
}

// Opens `path` for locking only; INVALID_HANDLE_VALUE unless it is a regular file. `identity`
// describes the file the handle reaches.
HANDLE openRegularFile(const std::string& path, platform::FileIdentity& identity)
{
    HANDLE file = ::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return file;
    BY_HANDLE_FILE_INFORMATION info;
    if (::GetFileType(file) != FILE_TYPE_DISK || !::GetFileInformationByHandle(file, &info) ||
        (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
        ::CloseHandle(file);
        return INVALID_HANDLE_VALUE;
    }
    identity.device = info.dwVolumeSerialNumber;
    identity.inode = (uint64_t(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
    return file;
}

// The entry of the file `path` names, with a reference taken; null when the path names no
// regular file after all. Opens a handle only when the process has none on the file yet.
MarkEntry* acquire(const std::string& path, const platform::FileIdentity& seen)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    if (const auto it = g_entries.find(seen); it != g_entries.end()) {
        ++it->second->refs;
        return it->second;
    }
    platform::FileIdentity opened;
    HANDLE file = openRegularFile(path, opened);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    // Replaced since it was looked at: the handle reaches another file, which may already be in
    // use here; then it stays open with that file's entry rather than dropping its locks.
    MarkEntry*& e = g_entries[opened];
    if (e) {
        e->spare.push_back(file);
    } else {
        e = new MarkEntry;
        e->identity = opened;
        e->file = file;
        lockByte(file, MarkBase + uint64_t(platform::currentProcessId()), false, false);
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
        const auto it = g_entries.find(m_entry->identity);
        if (it != g_entries.end() && it->second == m_entry)
            g_entries.erase(it);
        // Closing the handle drops the mark and any gate lock it still held.
        ::CloseHandle(m_entry->file);
        for (HANDLE h : m_entry->spare)
            ::CloseHandle(h);
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
        if (!m_entry)
            return platform::inspectPath(path, identity);
        m_gate = use;
        if (use == Use::Replace) {
            m_entry->gate.lock();
            lockByte(m_entry->file, GateByte, true, true);
        } else {
            m_entry->gate.lock_shared();
            std::lock_guard<std::mutex> lock(m_entry->sharedMutex);
            if (m_entry->sharedHolders++ == 0)
                lockByte(m_entry->file, GateByte, false, true);
        }
        m_gated = true;
        // A replace may have put another file at the path while we waited: look again.
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
        unlockByte(m_entry->file, GateByte);
        m_entry->gate.unlock();
        return;
    }
    {
        std::lock_guard<std::mutex> lock(m_entry->sharedMutex);
        if (--m_entry->sharedHolders == 0)
            unlockByte(m_entry->file, GateByte);
    }
    m_entry->gate.unlock_shared();
}

bool ProcessMark::held(int64_t pid) const
{
    if (!m_entry || pid <= 0)
        return true;
    // An exclusive lock is granted only when no process holds the byte. Windows has no lock
    // query, so the test takes the lock and gives it back at once.
    const uint64_t byte = MarkBase + uint64_t(pid);
    if (lockByte(m_entry->file, byte, true, false)) {
        unlockByte(m_entry->file, byte);
        return false;
    }
    // Held, or the lock could not be tried at all: either way the owner is not known to be gone.
    return true;
}

}  // namespace recman

#endif
