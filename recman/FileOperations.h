// Whole-file operations of a store (Store::fileOperations()): existence, copy, move, delete,
// search and check. Each store carries them out on its own files; the check's comparisons of
// records against their key entries and counters are shared (checkFile), over the few reads and
// writes a store gives it (CheckedFile).
#pragma once

#include "RERecordFileOps.h"
#include "recman/Codes.h"
#include "recman/Store.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace recman {

struct CheckProgress {
    RECheckProgress call = nullptr;
    void* context = nullptr;
};

class FileOperations {
public:
    virtual ~FileOperations() = default;

    virtual REPathState lookUp(const std::string& path) = 0;
    // StatusFileExists for an existing target without `replace`; StatusFileInUse for a target open
    // somewhere.
    virtual Status copy(const std::string& from, const std::string& to, bool replace) = 0;
    virtual Status move(const std::string& from, const std::string& to) = 0;
    virtual Status remove(const std::string& path) = 0;
    virtual Status search(const std::string& directory, const std::string& pattern,
                          std::vector<std::string>& names) = 0;
    virtual Status check(const std::string& path, bool repair, const CheckProgress& progress,
                         RERecordFileCheck& report) = 0;
};

// A record as stored: its data and the entries the store keeps for it.
struct StoredRecord {
    int64_t recno = 0;
    std::string data;
    std::vector<std::optional<std::string>> keys;  // per key: its encoded value, or none
    std::vector<std::optional<int64_t>> autoValues;  // per autoincrement field
};

// One file as a check sees it, inside one transaction the store holds for the whole check (one
// that excludes writers when repairing).
class CheckedFile {
public:
    virtual ~CheckedFile() = default;
    virtual const FileSpec& spec() const = 0;
    // The store's own test of its structures; with `repair`, rebuilds its indexes when it finds
    // fault. Adds what it finds and does to `report`.
    virtual Status integrity(bool repair, RERecordFileCheck& report) = 0;
    // The kept record count and the highest record number given so far.
    virtual Status counters(int64_t& kept, int64_t& highestGiven) = 0;
    virtual Status setCounters(int64_t kept, int64_t highestGiven) = 0;
    // Calls `visit` for every record, in record-number order; a visit answering false stops the walk.
    virtual Status walk(const std::function<bool(const StoredRecord&)>& visit) = 0;
    // Sets a record's entry in one key (a duplicates key's entry takes a new rank).
    // StatusDuplicateKey when a unique key already holds the value.
    virtual Status setKeyEntry(int64_t recno, size_t key, const std::optional<std::string>& entry) = 0;
    virtual Status setAutoValue(int64_t recno, size_t field, int64_t value) = 0;
};

// Compares the kept count and the highest record number with the records, and every record's
// key entries and autoincrement values with its data; with `repair`, sets what differs. Faults
// left go to report.findings, repairs to report.repairs.
Status checkFile(CheckedFile& file, bool repair, const CheckProgress& progress, RERecordFileCheck& report);

}  // namespace recman
