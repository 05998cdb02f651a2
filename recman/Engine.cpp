#include "recman/Engine.h"

#include "recman/ByteOrder.h"
#include "recman/FileSpec.h"
#include "recman/OpSupport.h"
#include "recman/RecordOps.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#if !defined(_WIN32)
#include <pthread.h>
#endif

namespace recman {

namespace {

// Position block layout: OFFSET SIZE DESCRIPTION
//   0  8  signature   8  8  handle number   16  8  process token   24  104  zero
enum BlockOffset : uint32_t { BlockSignature = 0, BlockHandle = 8, BlockToken = 16 };
constexpr uint64_t PositionSignature = 0x314B4C4252535254ull;  // "TRSRBLK1"

std::atomic<Engine*> g_engine{nullptr};
std::once_flag g_atforkOnce;

// The server chosen for the process: TARSEL_SERVER until RESetServer says otherwise.
std::mutex g_serverMutex;
bool g_serverSet = false;
std::string g_server;

std::string chosenServer()
{
    std::lock_guard<std::mutex> lock(g_serverMutex);
    if (!g_serverSet) {
        const char* env = std::getenv("TARSEL_SERVER");
        g_server = env ? env : "";
        g_serverSet = true;
    }
    return g_server;
}

// How long a file goes without a call before a read its store keeps open is let go of.
constexpr int64_t IdleMs = 5;

int64_t steadyMs()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Held by the idle releaser while it is inside a store, and by fork() around the fork: a child
// never starts with a store call half done by a thread it does not have.
std::mutex g_releasing;

#if !defined(_WIN32)
void forkPrepare() { g_releasing.lock(); }
void forkParent() { g_releasing.unlock(); }
void forkChild() { g_releasing.unlock(); }
#endif

// Ends an Open's hold on the file, however the Open ends.
struct EndOpen {
    SharedFile& file;
    ~EndOpen()
    {
        if (file.store)
            file.store->endOpen();
    }
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
      m_startToken(platform::processStartToken(m_pid)), m_forkedChild(forkedChild),
      m_storeServer(chosenServer())
{
    m_store = makeStore(m_storeServer, forkedChild);
}

void Engine::selectServer(const char* conninfo)
{
    std::lock_guard<std::mutex> lock(g_serverMutex);
    g_server = conninfo ? conninfo : "";
    g_serverSet = true;
}

Store& Engine::store()
{
    const std::string server = chosenServer();
    std::lock_guard<std::mutex> lock(m_mutex);
    if (server != m_storeServer && m_files.empty()) {
        // The old store may still serve an Open under way on another thread: it is kept.
        m_retired.push_back(std::move(m_store));
        m_store = makeStore(server, m_forkedChild);
        m_storeServer = server;
    }
    return *m_store;
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

std::shared_ptr<SharedFile> Engine::acquireFile(const std::string& key)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::shared_ptr<SharedFile>& f = m_files[key];
    if (!f)
        f = std::make_shared<SharedFile>();
    ++f->refs;
    return f;
}

void Engine::releaseFile(const std::string& key, const std::shared_ptr<SharedFile>& file)
{
    bool last = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        last = --file->refs == 0;
        if (last) {
            const auto it = m_files.find(key);
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
    Status s;
    switch (a.op) {
    case OpStat: s = stat(*h, a); break;
    case OpInsert: s = ops::insert(*h, a); break;
    case OpUpdate: s = ops::update(*h, a); break;
    case OpDelete: s = ops::remove(*h, a); break;
    case OpUnlock: s = ops::unlock(*h, a); break;
    case OpStepNext: case OpStepFirst: case OpStepLast: case OpStepPrevious: s = ops::step(*h, a); break;
    default: s = ops::get(*h, a); break;
    }
    noteCall(*h->file);
    return s;
}

void Engine::noteCall(SharedFile& file)
{
    if (!file.store->holdsRead())
        return;
    file.lastCall.store(steadyMs(), std::memory_order_relaxed);
    if (file.holding.exchange(true))
        return;
    std::lock_guard<std::mutex> lock(m_idleMutex);
    if (!m_releaserStarted) {
#if !defined(_WIN32)
        static std::once_flag atfork;
        std::call_once(atfork, [] { pthread_atfork(forkPrepare, forkParent, forkChild); });
#endif
        try {
            // The releaser waits inside the library for as long as the process runs.
            platform::keepLibraryLoaded();
            std::thread(&Engine::releaseIdleFiles, this).detach();
            m_releaserStarted = true;
        } catch (...) {
            // No thread to let go of it later: the read ends with the call.
            file.store->idle();
            file.holding.store(false);
            return;
        }
    }
    m_idleWanted = true;
    m_idleWake.notify_one();
}

void Engine::releaseIdleFiles()
{
    std::unique_lock<std::mutex> lock(m_idleMutex);
    std::vector<std::shared_ptr<SharedFile>> files;
    for (;;) {
        m_idleWake.wait(lock, [this] { return m_idleWanted; });
        m_idleWanted = false;
        lock.unlock();
        for (bool holding = true; holding;) {
            std::this_thread::sleep_for(std::chrono::milliseconds(IdleMs));
            holding = false;
            {
                std::lock_guard<std::mutex> tables(m_mutex);
                files.clear();
                for (const auto& entry : m_files)
                    files.push_back(entry.second);
            }
            for (const auto& f : files) {
                if (!f->holding.load())
                    continue;
                if (steadyMs() - f->lastCall.load(std::memory_order_relaxed) < IdleMs || !f->mutex.try_lock()) {
                    holding = true;
                    continue;
                }
                {
                    std::lock_guard<std::mutex> inside(g_releasing);
                    if (f->store)
                        f->store->idle();
                }
                f->holding.store(false);
                f->mutex.unlock();
            }
            files.clear();
        }
        lock.lock();
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
    return store().create(path, spec, a.keyNumber != CreateNoReplace);
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

Status Engine::open(const CallArgs& a)
{
    if (!a.posBlock)
        return StatusNoHandle;
    const std::string path = pathFromKey(a.key, a.keyLength);
    if (path.empty())
        return StatusBadPath;
    const bool readOnly = a.keyNumber == ModeReadOnly;
    // The ticket keeps the path naming this file until the handle is registered.
    std::unique_ptr<OpenTicket> ticket;
    if (const Status s = store().resolve(path, readOnly, ticket); s != StatusOk)
        return s;
    const std::string& key = ticket->key();

    auto h = std::make_shared<Handle>();
    h->readOnly = readOnly;
    h->owner = Owner{platform::hostToken(), m_pid, m_startToken, 0};
    h->file = acquireFile(key);
    std::lock_guard<std::mutex> fileLock(h->file->mutex);
    const EndOpen endOpen{*h->file};
    if (!h->file->store) {
        if (const Status s = ticket->open(h->file->store); s != StatusOk) {
            releaseFile(key, h->file);
            return s;
        }
        h->file->writable = ticket->writable();
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        h->number = m_nextHandle++;
    }
    h->owner.handle = h->number;
    if (h->file->writable) {
        if (const Status s = h->file->store->registerHandle(h->owner, a.keyNumber == ModeExclusive); s != StatusOk) {
            releaseFile(key, h->file);
            return s;
        }
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_handles[h->number] = h;
    }
    h->fileKey = key;
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
    releaseFile(h->fileKey, h->file);
    std::memset(a.posBlock, 0, PositionBlockSize);
    return StatusOk;
}

}  // namespace recman
