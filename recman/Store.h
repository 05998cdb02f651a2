// The store: where a record-manager file's records, keys, counters, open handles and record locks
// live. The engine above it owns currencies and the order of checks; a store keeps data and answers
// seeks. One StoreFile is one process's connection to one file, shared by that process's handles;
// its calls are serialised by the engine.
//
// Transactions: reads outside begin()/commit() each see the latest committed state. Writes happen
// between begin() and commit(); a failing status inside means the caller calls rollback().
#pragma once

#include "recman/Codes.h"
#include "recman/FileSpec.h"
#include "recman/ProcessMark.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace recman {

// Who holds an open handle or a record lock: a handle of a run of a process.
struct Owner {
    int64_t pid = 0;
    int64_t startToken = 0;
    uint64_t handle = 0;
    bool operator==(const Owner&) const = default;
};

enum class Seek { Equal, Greater, GreaterOrEqual, Less, LessOrEqual, First, Last, Next, Previous };

// A record a seek or read found. `data` is owned by the StoreFile and valid until its next call.
struct FoundRecord {
    int64_t recno = 0;
    int64_t version = 0;
    int64_t seq = 0;             // duplicate rank in the key sought (0 for unique keys)
    const std::string* data = nullptr;
    const std::string* keyValue = nullptr;  // encoded value in the key sought
};

// A record's entry in one key: its encoded value, or none (null key).
struct KeyEntry {
    bool present = false;
    std::string value;
};

struct RecordWrite {
    const uint8_t* data = nullptr;
    uint32_t length = 0;
    std::vector<KeyEntry> keys;          // one per key
    std::vector<bool> keyValueChanged;    // update: the key's value changed (takes a new rank)
    std::vector<int64_t> autoValues;      // one per autoincrement field
};

class StoreFile {
public:
    virtual ~StoreFile() = default;

    virtual const FileSpec& spec() const = 0;
    // Distinct autoincrement fields (offset, length) in the order autoValues lists them.
    virtual const std::vector<const SegmentSpec*>& autoFields() const = 0;

    virtual Status begin() = 0;
    virtual Status commit() = 0;
    virtual void rollback() = 0;

    // Reads: StatusOk, or StatusEndOfFile when nothing is there (StatusKeyNotFound is the caller's).
    virtual Status seekKey(int key, Seek how, const std::string& value, int64_t seq, FoundRecord& out) = 0;
    // First, Last, Next (record number above `recno`), Previous (below it).
    virtual Status seekPhysical(Seek how, int64_t recno, FoundRecord& out) = 0;
    virtual Status readRecord(int64_t recno, FoundRecord& out) = 0;
    virtual Status recordCount(uint32_t& count) = 0;

    // Writes (inside a transaction). Insert and Update answer StatusDuplicateKey on a unique key.
    virtual Status highestAutoValue(size_t field, int64_t& value) = 0;
    virtual Status autoValueExists(size_t field, int64_t value, bool& exists) = 0;
    virtual Status insertRecord(const RecordWrite& rec, int64_t& recno, int64_t& version, int64_t& seq) = 0;
    virtual Status updateRecord(int64_t recno, int64_t newVersion, const RecordWrite& rec, int64_t& seq) = 0;
    virtual Status deleteRecord(int64_t recno) = 0;

    // Open handles, for exclusive opens and "open somewhere".
    virtual Status openHandles(std::vector<std::pair<Owner, bool>>& owners) = 0;  // (owner, exclusive)
    virtual Status addHandle(const Owner& owner, bool exclusive) = 0;
    virtual Status removeHandle(const Owner& owner) = 0;
    // Removes every trace (handle, locks) of an owner that is gone.
    virtual Status removeOwner(const Owner& owner) = 0;

    // Record locks.
    virtual Status lockHolders(int64_t recno, std::vector<Owner>& owners) = 0;
    virtual Status addLock(int64_t recno, const Owner& owner) = 0;
    virtual Status removeLock(int64_t recno, const Owner& owner) = 0;
};

// A kind of store: makes and opens files.
class Store {
public:
    virtual ~Store() = default;
    // Create's file checks and the making of the file; the specification block is already valid. `replace` false
    // refuses an existing file (59); a file open anywhere answers 25, a full disk 18.
    virtual Status create(const std::string& path, const FileSpec& spec, bool replace) = 0;
    // Opens a file known to exist and be a regular file; StatusNotEngineFile for a foreign one.
    virtual Status open(const std::string& path, bool writable, std::unique_ptr<StoreFile>& out) = 0;
};

// The store this build uses. A forked child's store shares no store state with what the process
// inherited from its parent.
std::unique_ptr<Store> makeDefaultStore(bool forkedChild);

// True while the owner's process runs: its id and start token still name a running process, and
// it still holds its mark on the file (`mark` is this process's descriptor on that file).
bool ownerAlive(const Owner& owner, const ProcessMark& mark);

}  // namespace recman
