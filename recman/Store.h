// The store: where a record-manager file's records, keys, counters, open handles and record locks
// live. The engine above it owns currencies and the order of checks; a store keeps data, answers
// seeks, and judges who holds a file or a record (owner liveness is the store's: process marks on
// one machine, server sessions on a server). One StoreFile is one process's use of one file, shared
// by that process's handles; its calls are serialised by the engine.
//
// The engine asks for each record operation in one call sized by it (readLocking, insertWhole,
// updateChecked, deleteChecked, unlockAll), atomic, and on a server one round trip where the
// store can; plain reads are single seeks or runs of them.
//
// Isolation: reads outside begin()/commit() each see the latest committed state (a store may keep
// one read open across calls only while its change mark says nothing was committed since). The
// operation calls run their check-then-act sequences between begin() and commit(): begin()
// excludes every other writer of the file until commit() or rollback(), so what a check saw still
// holds when the act follows. A failing status inside means rollback().
#pragma once

#include "recman/Codes.h"
#include "recman/FileSpec.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace recman {

class FileOperations;  // recman/FileOperations.h

// Who holds an open handle or a record lock: a handle of a run of a process on a machine.
struct Owner {
    int64_t host = 0;  // the machine (platform::hostToken())
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

// A record a run of seeks found, held by the caller.
struct RecordCopy {
    int64_t recno = 0;
    int64_t version = 0;
    int64_t seq = 0;
    std::string data;
    std::string keyValue;  // empty for a physical run
};

// The committed state of a file as last seen: equal marks taken by two calls mean that no process
// committed a write to the file in between.
struct ChangeMark {
    uint64_t words[6] = {};
    bool operator==(const ChangeMark&) const = default;
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

    // Of an update: whether a duplicates key takes a new value (and so a new rank), and whether
    // any key's value changes at all.
    void changes(const FileSpec& spec, bool& needRank, bool& keysChanged) const
    {
        for (size_t i = 0; i < spec.keys.size(); ++i) {
            needRank = needRank || (spec.keys[i].duplicates && keys[i].present && keyValueChanged[i]);
            keysChanged = keysChanged || keyValueChanged[i];
        }
    }
};

// An Update or Delete of the record a handle last read or wrote.
struct WriteCheck {
    int64_t recno = 0;
    int64_t version = 0;     // the version the handle read or wrote
    Owner owner;
    bool holdsLock = false;  // the handle locks the record: a version changed since is no conflict
    bool dropLock = false;   // Update: the handle's single lock on the record ends with it
};

// What a locking read asks for beside the record.
struct LockAsk {
    Owner owner;
    int64_t replaces = 0;  // the handle's single lock the new one replaces (0: none)
    bool refuse = false;   // the caller's buffer cannot take the record: once found and free, 22, no lock
};

class StoreFile;
// A seek of the store, run inside a locking read.
using SeekStep = std::function<Status(FoundRecord&)>;
// The engine's part of a write, run inside it: fills the RecordWrite from what the write replaces
// (the stored record of an Update, null for an Insert); a failing status ends the write unmade.
using PrepareStep = std::function<Status(const FoundRecord* old)>;

class StoreFile {
public:
    virtual ~StoreFile() = default;

    virtual const FileSpec& spec() const = 0;
    // Distinct autoincrement fields (offset, length) in the order autoValues lists them.
    virtual const std::vector<const SegmentSpec*>& autoFields() const = 0;

    // The record operations, each sized as one call (one round trip on a server) and atomic.
    // Defaults compose the finer calls below in one transaction (OpSupport.cpp).
    //
    // A locking Get or Step: the seek, then StatusRecordLocked when another live handle locks the
    // record, then StatusBufferTooShort when `ask.refuse`, else the lock taken (and the replaced
    // single lock released). StatusEndOfFile when the seek finds nothing.
    virtual Status readLocking(const SeekStep& seek, const LockAsk& ask, FoundRecord& out);
    // Insert: `prepare(nullptr)` fills `rec` (it may ask highestAutoValue and autoValueExists),
    // then the record is stored.
    virtual Status insertWhole(RecordWrite& rec, const PrepareStep& prepare, int64_t& recno, int64_t& version,
                               int64_t& seq);
    // Update: StatusRecordLocked, StatusConflict (record gone, or another version unless the
    // handle locks it), then `prepare(stored)`, then the write with the next version.
    virtual Status updateChecked(const WriteCheck& check, RecordWrite& rec, const PrepareStep& prepare,
                                 int64_t& version, int64_t& seq);
    // Delete, with Update's checks.
    virtual Status deleteChecked(const WriteCheck& check);
    // Releases the owner's locks on `recnos`.
    virtual Status unlockAll(const Owner& owner, const std::vector<int64_t>& recnos);

    virtual Status begin() = 0;
    virtual Status commit() = 0;
    virtual void rollback() = 0;

    // Reads: StatusOk, or StatusEndOfFile when nothing is there (StatusKeyNotFound is the caller's).
    virtual Status seekKey(int key, Seek how, const std::string& value, int64_t seq, FoundRecord& out) = 0;
    // First, Last, Next (record number above `recno`), Previous (below it).
    virtual Status seekPhysical(Seek how, int64_t recno, FoundRecord& out) = 0;
    virtual Status readRecord(int64_t recno, FoundRecord& out) = 0;
    // Up to `max` records a Next or Previous seek and the ones after it would find in turn, in
    // one read; fewer only at the end. `out` is resized to the number found.
    virtual Status seekKeyRun(int key, Seek how, const std::string& value, int64_t seq, size_t max,
                              std::vector<RecordCopy>& out)
    {
        return runOf(max, out, [&](const RecordCopy& last, bool first, FoundRecord& f) {
            return first ? seekKey(key, how, value, seq, f) : seekKey(key, how, last.keyValue, last.seq, f);
        });
    }
    virtual Status seekPhysicalRun(Seek how, int64_t recno, size_t max, std::vector<RecordCopy>& out)
    {
        return runOf(max, out, [&](const RecordCopy& last, bool first, FoundRecord& f) {
            return seekPhysical(how, first ? recno : last.recno, f);
        });
    }
    // Takes the file's change mark without asking the file: false when the store cannot tell
    // (every read then goes to the file). A mark taken before a read stays equal only while the
    // records that read found are still the file's.
    virtual bool changeMark(ChangeMark& mark)
    {
        (void)mark;
        return false;
    }
    // Whether the file keeps a read open between calls (one that stays current while the change
    // mark does), and letting go of it once the file has been idle a while: an open read keeps
    // other processes' writes from being folded back into the file.
    virtual bool holdsRead() const { return false; }
    virtual void idle() {}
    virtual Status recordCount(uint32_t& count) = 0;

    // Writes (inside a transaction). Insert and Update answer StatusDuplicateKey on a unique key.
    virtual Status highestAutoValue(size_t field, int64_t& value) = 0;
    virtual Status autoValueExists(size_t field, int64_t value, bool& exists) = 0;
    virtual Status insertRecord(const RecordWrite& rec, int64_t& recno, int64_t& version, int64_t& seq) = 0;
    virtual Status updateRecord(int64_t recno, int64_t newVersion, const RecordWrite& rec, int64_t& seq) = 0;
    virtual Status deleteRecord(int64_t recno) = 0;

    // Open handles. Registers a handle, atomically with its checks: StatusFileLocked when a live
    // handle has the file open exclusively, StatusFileInUse when `exclusive` and another live
    // handle has it open. Runs its own transaction.
    virtual Status registerHandle(const Owner& owner, bool exclusive) = 0;
    // Ends a handle: its registration and every lock it holds. Runs its own transaction.
    virtual Status releaseHandle(const Owner& owner) = 0;
    // Lets an Open that waited on a replace go on once its handle is registered (see Store::resolve).
    virtual void endOpen() {}

    // Record locks (inside a transaction). StatusRecordLocked when a live handle other than
    // `owner` locks the record; traces of owners that are gone are cleared on the way.
    virtual Status lockConflict(int64_t recno, const Owner& owner) = 0;
    // Takes a lock; StatusRecordLocked when another live handle holds it.
    virtual Status addLock(int64_t recno, const Owner& owner) = 0;
    virtual Status removeLock(int64_t recno, const Owner& owner) = 0;

private:
    template <typename Seek1>
    Status runOf(size_t max, std::vector<RecordCopy>& out, Seek1 seek)
    {
        out.resize(max);
        for (size_t i = 0; i < max; ++i) {
            FoundRecord f;
            const Status s = seek(i ? out[i - 1] : out[0], i == 0, f);
            if (s != StatusOk) {
                out.resize(i);
                return s == StatusEndOfFile ? StatusOk : s;
            }
            out[i] = RecordCopy{f.recno, f.version, f.seq, *f.data, f.keyValue ? *f.keyValue : std::string()};
        }
        return StatusOk;
    }
};

// A file an Open has named, held between naming and registration: the file cannot be replaced
// under it meanwhile.
class OpenTicket {
public:
    virtual ~OpenTicket() = default;
    // Opaque identity: two paths that reach one file give the same key.
    virtual const std::string& key() const = 0;
    // Whether this process may write the file.
    virtual bool writable() const = 0;
    // Opens the process's StoreFile for the file (the first handle of the process on it).
    virtual Status open(std::unique_ptr<StoreFile>& out) = 0;
};

// A kind of store: makes and opens files.
class Store {
public:
    virtual ~Store() = default;
    // Create's file checks and the making of the file; the creation block is already valid. `replace` false
    // refuses an existing file (59); a file open anywhere answers 25, a full disk 18.
    virtual Status create(const std::string& path, const FileSpec& spec, bool replace) = 0;
    // Names the file at `path` for an Open: StatusFileNotFound where there is none (or something
    // that is no file), StatusAccessDenied without the permissions the mode needs.
    virtual Status resolve(const std::string& path, bool readOnly, std::unique_ptr<OpenTicket>& out) = 0;
    // Whole-file operations on the store's files (existence, copy, move, delete, search, check);
    // null when the store offers none.
    virtual FileOperations* fileOperations() { return nullptr; }
};

// The store a process uses: the server store when `conninfo` (a libpq connection string) is not
// empty, else the embedded one. A forked child's store shares no store state with what the
// process inherited from its parent.
std::unique_ptr<Store> makeStore(const std::string& conninfo, bool forkedChild);

}  // namespace recman
