#include "recman/ProcessMark.h"
#include "recman/MarkLock.h"

#include <map>
#include <mutex>
#include <shared_mutex>
#include <utility>
#include <vector>

namespace recman {

// The process's use of one file: its handle (and any more it had to open on the same file
// before it knew, closed with it), its marks, and the gate as this process holds it.
struct MarkEntry {
    platform::FileIdentity identity;
    marklock::FileHandle file{};
    std::vector<marklock::FileHandle> spare;
    int refs = 0;                // marks using the entry; guarded by g_mutex
    std::shared_mutex gate;      // opens of this process shared, a replace exclusive
    std::mutex sharedMutex;      // guards sharedHolders
    int sharedHolders = 0;       // opens holding the gate byte through the handle
};

namespace {

// Lock bytes of a record-manager file, beyond the ones the store uses (from 0x40000000 on) and
// beyond any data, so that mandatory locks never cover a byte anyone reads or writes.
constexpr uint64_t MarkBase = 0x50000000;
constexpr uint64_t GateByte = MarkBase - 1;

std::mutex g_mutex;
std::map<platform::FileIdentity, MarkEntry*> g_entries;

void closeEntry(MarkEntry* e)
{
    marklock::closeFile(e->file);
    for (marklock::FileHandle f : e->spare)
        marklock::closeFile(f);
}

// A forked child closes every handle it inherited: a shared description would keep the parent's
// mark held for as long as the child lives. It holds no lock of the parent, so the closes drop
// nothing; the parent's entries are left to the parent's abandoned engine.
void lockEntries() { g_mutex.lock(); }
void unlockEntries() { g_mutex.unlock(); }
void closeInherited()
{
    for (auto& [id, e] : g_entries)
        closeEntry(e);
    g_entries.clear();
    g_mutex.unlock();
}

// The entry of the file `path` names, with a reference taken; null when the path names no
// regular file after all. Opens a handle only when the process has none on the file yet.
MarkEntry* acquire(const std::string& path, const platform::FileIdentity& seen)
{
    static std::once_flag once;
    std::call_once(once, [] { marklock::onFork(lockEntries, unlockEntries, closeInherited); });
    std::lock_guard<std::mutex> lock(g_mutex);
    if (const auto it = g_entries.find(seen); it != g_entries.end()) {
        ++it->second->refs;
        return it->second;
    }
    marklock::FileHandle file;
    platform::FileIdentity opened;
    if (!marklock::openFile(path, file, opened))
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
        marklock::lockByte(file, MarkBase + uint64_t(platform::currentProcessId()), false, false);
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
        closeEntry(m_entry);
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
            marklock::lockByte(m_entry->file, GateByte, true, true);
        } else {
            m_entry->gate.lock_shared();
            std::lock_guard<std::mutex> lock(m_entry->sharedMutex);
            if (m_entry->sharedHolders++ == 0)
                marklock::lockByte(m_entry->file, GateByte, false, true);
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
        marklock::unlockByte(m_entry->file, GateByte);
        m_entry->gate.unlock();
        return;
    }
    {
        std::lock_guard<std::mutex> lock(m_entry->sharedMutex);
        if (--m_entry->sharedHolders == 0)
            marklock::unlockByte(m_entry->file, GateByte);
    }
    m_entry->gate.unlock_shared();
}

bool ProcessMark::held(int64_t pid) const
{
    if (!m_entry || pid <= 0)
        return true;
    return marklock::heldElsewhere(m_entry->file, MarkBase + uint64_t(pid));
}

}  // namespace recman
