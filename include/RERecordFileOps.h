// Whole-file operations on record-manager files: existence, copy, move, delete, search and an
// integrity check. The record manager carries them out on the store that serves the process
// (files on this machine, or on the shop's server), so a program never touches a record-manager
// file on the disk itself. Price lists and other plain files are not record-manager files.
#pragma once

#include "tarsel_export.h"

#include <cstdint>
#include <string>
#include <vector>

// Result of a whole-file operation: 0, or the record manager's status that fits.
enum REFileOpStatus : int16_t {
    kREFileOpOk = 0,
    kREFileOpStoreFailure = 2,    // the store failed: an I/O error, a damaged file, the server gone
    kREFileOpBadPath = 11,        // an empty path, or one the system rejects
    kREFileOpNotFound = 12,       // no record-manager file at the path (or no directory to search)
    kREFileOpDiskFull = 18,
    kREFileOpNoStore = 20,        // the process's store offers no file operations
    kREFileOpCannotMake = 25,     // the target cannot be made or replaced
    kREFileOpNotEngineFile = 30,  // the path holds something other than a record-manager file
    kREFileOpExists = 59,         // the target exists and is not to be replaced
    kREFileOpInUse = 88,          // the file is open somewhere (in any process, on any workstation)
};

// What is at a path: nothing (or a component of the path is missing), something, or a path the
// system rejects (malformed, too long, no access).
enum class REPathState { Missing, Exists, Invalid };

// What a check found, and what a repair did.
struct RERecordFileCheck {
    uint64_t records = 0;               // records the file holds
    int64_t keptCount = 0;              // the record count the file keeps, as found
    std::vector<std::string> findings;  // one line per fault found and not repaired
    std::vector<std::string> repairs;   // one line per fault repaired
};

// Called during a check's walk over the records: records looked at so far, and in all.
using RECheckProgress = void (*)(uint64_t done, uint64_t total, void* context);

// Whether something is at `path` (on the server: a record-manager file of that name).
TARSEL_API REPathState RELookUpRecordFile(const std::string& path);

// Copies the file at `from` to `to`, consistent as of one moment even while other processes have
// it open and write it; the copy has no handles and no locks. With `replace`, a file at `to` is
// replaced unless it is open somewhere (88); without, an existing `to` answers 59.
TARSEL_API int16_t RECopyRecordFile(const std::string& from, const std::string& to, bool replace);

// Renames the file at `from` to `to`: 59 when `to` exists, 88 while `from` is open somewhere.
TARSEL_API int16_t REMoveRecordFile(const std::string& from, const std::string& to);

// Deletes the file at `path`: 88 while it is open somewhere, 12 when there is none.
TARSEL_API int16_t REDeleteRecordFile(const std::string& path);

// Names (not paths) of the files in `directory` that match `pattern` ('*' and '?', letter case
// ignored), sorted. An unreadable or missing directory gives no names.
TARSEL_API int16_t REFindRecordFiles(const std::string& directory, const std::string& pattern,
                                     std::vector<std::string>& names);

// Checks the file at `path`: the store's own integrity test, the kept record count against the
// records, and every key's entries (and autoincrement values) against the records' data. With
// `repair`, rebuilds what can be rebuilt (indexes, the count, key entries) and lists it in
// `result.repairs`; what cannot be repaired stays in `result.findings`. The file is locked against
// writers for a repair only. 0 when the check ran (its findings are in `result`).
TARSEL_API int16_t RECheckRecordFile(const std::string& path, bool repair, RERecordFileCheck& result,
                                     RECheckProgress progress = nullptr, void* context = nullptr);
