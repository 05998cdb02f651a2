// A handle: what one successful Open creates. All state of a position block lives here, so copies
// of a block share one position and one set of locks. Guarded by its file's mutex.
#pragma once

#include "recman/Store.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace recman {

// One process's use of one file: the store connection its handles share.
struct SharedFile {
    std::mutex mutex;
    std::unique_ptr<StoreFile> store;  // opened by the first handle
    bool writable = false;
    int refs = 0;                      // handles and opens under way; guarded by the engine's mutex
    // The store keeps a read open since the call that ended at `lastCall` (steady ms); set and
    // cleared under `mutex`, read by the engine's idle releaser.
    std::atomic<bool> holding{false};
    std::atomic<int64_t> lastCall{0};
};

enum class Logical { None, On, Broken };

// Records read ahead for a handle's Next or Previous calls, valid while the file's change mark is
// the one taken before they were read. `entries[next]` is what the seek from the position
// (value, seq) of key `key`, or from record number `recno` when `physical`, finds.
struct ReadWindow {
    bool valid = false;
    bool physical = false;
    bool atEnd = false;  // nothing lies beyond the entries
    int key = 0;
    Seek how = Seek::Next;
    ChangeMark mark;
    std::string value;
    int64_t seq = 0;
    int64_t recno = 0;
    size_t next = 0;
    std::vector<RecordCopy> entries;
};

struct Handle {
    uint64_t number = 0;
    Owner owner;
    std::shared_ptr<SharedFile> file;
    std::string fileKey;  // the store's name for the file (Store::resolve)
    bool open = true;
    bool readOnly = false;

    // Current record, with the version read or written (passive conflict).
    bool hasCurrent = false;
    int64_t currentRecno = 0;
    int64_t currentVersion = 0;

    // Logical currency: key, encoded value, duplicate rank of the last entry reached.
    Logical logical = Logical::None;
    int logicalKey = 0;
    std::string logicalValue;
    int64_t logicalSeq = 0;

    // Physical position: a record number, or before the first record.
    bool physicalBefore = true;
    int64_t physicalRecno = 0;

    // Locks this handle holds.
    bool hasSingle = false;
    int64_t singleLock = 0;
    std::set<int64_t> multipleLocks;

    ReadWindow window;

    // Scratch buffers reused across calls.
    std::string scratch, search, oldRecord, oldValue;
    std::vector<uint8_t> keyValue, oldKey;
    RecordWrite write;

    bool holdsLock(int64_t recno) const
    {
        return (hasSingle && singleLock == recno) || multipleLocks.count(recno) != 0;
    }
};

}  // namespace recman
