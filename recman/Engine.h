// The engine: the process's handle table, its shared file connections, and the file operations
// (Open, Close, Create, Stat, Version). Record operations run in RecordOps under the file's mutex.
//
// One engine per process: a child after fork starts with an empty one and leaves its parent's
// connections alone.
#pragma once

#include "recman/CallArgs.h"
#include "recman/Handle.h"
#include "recman/Platform.h"
#include "recman/Store.h"

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace recman {

class Engine {
public:
    static Engine& instance();

    // Chooses the store for this process: the server at `conninfo` (a libpq connection string),
    // or the embedded store when null or empty. Takes effect while no handle of the process is
    // open; files already open stay on their store.
    static void selectServer(const char* conninfo);

    // REQUIRES: the operation code is one offered (the entry point checked it).
    Status call(const CallArgs& a);

    // The store every new handle uses, chosen anew while no file is open (selectServer()). A
    // store once made stays alive for the life of the process.
    Store& store();

private:
    explicit Engine(bool forkedChild);

    Status open(const CallArgs& a);
    Status close(const CallArgs& a);
    Status create(const CallArgs& a);
    Status stat(Handle& h, const CallArgs& a);
    static Status version(const CallArgs& a);

    // The live handle a position block names, or null.
    std::shared_ptr<Handle> lookup(const void* posBlock);
    std::shared_ptr<SharedFile> acquireFile(const std::string& key);
    void releaseFile(const std::string& key, const std::shared_ptr<SharedFile>& file);
    static void afterForkInChild();
    // After a record operation: a store that keeps a read open between calls is let go of once
    // the file has been idle for a moment, by a thread of the engine.
    void noteCall(SharedFile& file);
    void releaseIdleFiles();

    std::mutex m_mutex;  // guards the tables below, never held while waiting for a file
    std::unordered_map<uint64_t, std::shared_ptr<Handle>> m_handles;
    std::map<std::string, std::shared_ptr<SharedFile>> m_files;
    uint64_t m_nextHandle = 1;
    const uint64_t m_token;
    const int64_t m_pid;
    const int64_t m_startToken;
    const bool m_forkedChild;
    std::unique_ptr<Store> m_store;
    std::string m_storeServer;  // the connection string m_store was made for
    std::vector<std::unique_ptr<Store>> m_retired;
    Engine* m_abandoned = nullptr;  // a parent's engine, kept reachable and untouched after fork
    std::mutex m_idleMutex;  // guards the two flags below
    std::condition_variable m_idleWake;
    bool m_idleWanted = false;
    bool m_releaserStarted = false;
};

// The path a key buffer carries: its first keyLength bytes (255 when 0) up to the first NUL.
std::string pathFromKey(const void* key, uint8_t keyLength);

}  // namespace recman
