#include "recman/Engine.h"

#include "recman/ByteOrder.h"
#include "recman/FileSpec.h"
#include "recman/OpSupport.h"
#include "recman/RecordOps.h"

#include <atomic>
#include <cstring>

namespace recman {

namespace {

// Position block layout: OFFSET SIZE DESCRIPTION
//   0  8  signature   8  8  handle number   16  8  process token   24  104  zero
enum BlockOffset : uint32_t { BlockSignature = 0, BlockHandle = 8, BlockToken = 16 };
constexpr uint64_t PositionSignature = 0x314B4C4252535254ull;  // "TRSRBLK1"

std::atomic<Engine*> g_engine{nullptr};
std::once_flag g_atforkOnce;

// Ends an Open's hold on the replace gate, however the Open ends.
struct EndGate {
    SharedFile& file;
    ~EndGate() { file.mark.endGate(); }
};

}  // namespace

std::string pathFromKey(const void* key, uint8_t keyLength)
{
    if (!key)
        return {};
    const char* p = static_cast<const char*>(key);
    const size_t n = keyLength ? size_t(keyLength) : size_t(DefaultPathLength);
    const void* nul = std::memchr(p, 0, n);
    return std::string(p, nul ? static_cast<const char*>(nul) - p : n);
}

Engine::Engine(bool forkedChild)
    : m_token(platform::randomToken()), m_pid(platform::currentProcessId()),
      m_startToken(platform::processStartToken(m_pid)), m_store(makeDefaultStore(forkedChild))
{
}

void Engine::afterForkInChild()
{
    // The parent's engine stays allocated and untouched: its connections belong to the parent.
    // They are never used, finalised or closed here, and the child's own connections keep apart
    // from the store state they left in the process.
    Engine* parent = g_engine.exchange(nullptr);
    if (parent) {
        Engine* child = new Engine(true);
        child->m_abandoned = parent;
        g_engine.store(child);
    }
}

Engine& Engine::instance()
{
    // A forked child gets its own engine from the fork handler, so no call pays for asking the pid.
    Engine* e = g_engine.load(std::memory_order_acquire);
    if (e)
        return *e;
    std::call_once(g_atforkOnce, [] { platform::callInChildAfterFork(&Engine::afterForkInChild); });
    Engine* fresh = new Engine(false);
    if (!g_engine.compare_exchange_strong(e, fresh)) {
        delete fresh;
        return *e;
    }
    return *fresh;
}

std::shared_ptr<Handle> Engine::lookup(const void* posBlock)
{
    if (!posBlock)
        return nullptr;
    const auto* b = static_cast<const uint8_t*>(posBlock);
    if (loadLE64(b + BlockSignature) != PositionSignature || loadLE64(b + BlockToken) != m_token)
        return nullptr;
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_handles.find(loadLE64(b + BlockHandle));
    return it == m_handles.end() ? nullptr : it->second;
}

std::shared_ptr<SharedFile> Engine::acquireFile(const platform::FileIdentity& id)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::shared_ptr<SharedFile>& f = m_files[id];
    if (!f)
        f = std::make_shared<SharedFile>();
    ++f->refs;
    return f;
}

void Engine::releaseFile(const platform::FileIdentity& id, const std::shared_ptr<SharedFile>& file)
{
    bool last = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        last = --file->refs == 0;
        if (last) {
            const auto it = m_files.find(id);
            if (it != m_files.end() && it->second == file)
                m_files.erase(it);
        }
    }
    // REQUIRES: the caller holds file->mutex, so no call is using the connection.
    if (last)
        file->store.reset();
}

Status Engine::call(const CallArgs& a)
{
    switch (a.op) {
    case OpVersion: return version(a);
    case OpCreate: return create(a);
    case OpOpen: return open(a);
    case OpClose: return close(a);
    default: break;
    }
    const std::shared_ptr<Handle> h = lookup(a.posBlock);
    if (!h)
        return StatusNoHandle;
    std::lock_guard<std::mutex> lock(h->file->mutex);
    if (!h->open)
        return StatusNoHandle;
    switch (a.op) {
    case OpStat: return stat(*h, a);
    case OpInsert: return ops::insert(*h, a);
    case OpUpdate: return ops::update(*h, a);
    case OpDelete: return ops::remove(*h, a);
    case OpUnlock: return ops::unlock(*h, a);
    case OpStepNext: case OpStepFirst: case OpStepLast: case OpStepPrevious: return ops::step(*h, a);
    default: return ops::get(*h, a);
    }
}

Status Engine::version(const CallArgs& a)
{
    if (a.dataSize() < VersionBlockSize)
        return StatusBufferTooShort;
    const uint8_t block[VersionBlockSize] = {1, 0, 0, 0, 'E'};
    std::memcpy(a.data, block, sizeof block);
    *a.dataLength = VersionBlockSize;
    return StatusOk;
}

Status Engine::create(const CallArgs& a)
{
    const std::string path = pathFromKey(a.key, a.keyLength);
    if (path.empty())
        return StatusBadPath;
    FileSpec spec;
    if (const Status s = FileSpec::parse(a.dataBytes(), a.dataSize(), spec); s != StatusOk)
        return s;
    return m_store->create(path, spec, a.keyNumber != CreateNoReplace);
}

Status Engine::stat(Handle& h, const CallArgs& a)
{
    uint32_t count = 0;
    if (const Status s = h.file->store->recordCount(count); s != StatusOk)
        return s;
    const std::string block = h.file->store->spec().statBlock(count);
    const uint32_t cap = a.dataSize();
    if (cap < block.size()) {
        if (cap)
            std::memcpy(a.data, block.data(), cap);
        return StatusBufferTooShort;
    }
    std::memcpy(a.data, block.data(), block.size());
    *a.dataLength = uint32_t(block.size());
    return StatusOk;
}

Status Engine::registerHandle(SharedFile& file, const Owner& owner, bool exclusive)
{
    StoreFile& store = *file.store;
    ops::Transaction txn(store);
    if (const Status s = txn.begin(); s != StatusOk)
        return s;
    std::vector<std::pair<Owner, bool>> owners;
    if (const Status s = store.openHandles(owners); s != StatusOk)
        return s;
    bool othersOpen = false;
    for (const auto& [o, excl] : owners) {
        if (!ownerAlive(o, file.mark)) {
            if (const Status s = store.removeOwner(o); s != StatusOk)
                return s;
            continue;
        }
        if (excl)
            return StatusFileLocked;
        othersOpen = true;
    }
    if (exclusive && othersOpen)
        return StatusFileInUse;
    if (const Status s = store.addHandle(owner, exclusive); s != StatusOk)
        return s;
    return txn.commit();
}

Status Engine::open(const CallArgs& a)
{
    if (!a.posBlock)
        return StatusNoHandle;
    const std::string path = pathFromKey(a.key, a.keyLength);
    if (path.empty())
        return StatusBadPath;
    // A FIFO, device or socket is never opened, not even to be looked at: like a directory, it
    // is no file. The mark holds the gate: the path names this file until the handle is registered.
    platform::FileIdentity id;
    ProcessMark mark;
    if (mark.attach(path, ProcessMark::Use::Open, id) != platform::PathKind::File)
        return StatusFileNotFound;
    const bool readOnly = a.keyNumber == ModeReadOnly;
    const bool writable = platform::canWrite(path);
    if (!platform::canRead(path) || (!readOnly && !writable))
        return StatusAccessDenied;

    auto h = std::make_shared<Handle>();
    h->readOnly = readOnly;
    h->owner = Owner{m_pid, m_startToken, 0};
    h->file = acquireFile(id);
    std::lock_guard<std::mutex> fileLock(h->file->mutex);
    const EndGate endGate{*h->file};
    if (!h->file->store) {
        if (const Status s = m_store->open(path, writable, h->file->store); s != StatusOk) {
            releaseFile(id, h->file);
            return s;
        }
        h->file->writable = writable;
        h->file->mark = std::move(mark);
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        h->number = m_nextHandle++;
    }
    h->owner.handle = h->number;
    if (h->file->writable) {
        if (const Status s = registerHandle(*h->file, h->owner, a.keyNumber == ModeExclusive); s != StatusOk) {
            releaseFile(id, h->file);
            return s;
        }
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_handles[h->number] = h;
    }
    h->identity = id;
    auto* b = static_cast<uint8_t*>(a.posBlock);
    std::memset(b, 0, PositionBlockSize);
    storeLE64(b + BlockSignature, PositionSignature);
    storeLE64(b + BlockHandle, h->number);
    storeLE64(b + BlockToken, m_token);
    return StatusOk;
}

Status Engine::close(const CallArgs& a)
{
    const std::shared_ptr<Handle> h = lookup(a.posBlock);
    if (!h)
        return StatusNoHandle;
    std::lock_guard<std::mutex> fileLock(h->file->mutex);
    if (!h->open)
        return StatusNoHandle;
    if (const Status s = ops::release(*h); s != StatusOk)
        return s;
    h->open = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_handles.erase(h->number);
    }
    releaseFile(h->identity, h->file);
    std::memset(a.posBlock, 0, PositionBlockSize);
    return StatusOk;
}

}  // namespace recman
