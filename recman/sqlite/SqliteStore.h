// The embedded SQLite store: one SQLite database per record-manager file, at the caller's path,
// in WAL mode (companion -wal and -shm files exist only while a connection is open).
#pragma once

#include "recman/FileOperations.h"
#include "recman/Platform.h"
#include "recman/Store.h"

struct sqlite3;

namespace recman {
class ProcessMark;
}

namespace recman::sqlite {

class SqliteStore final : public Store, public FileOperations {
public:
    // `forkedChild`: connections keep their locks to themselves (OwnLockVfs.h), as a process
    // forked from one with open files needs.
    explicit SqliteStore(bool forkedChild);

    Status create(const std::string& path, const FileSpec& spec, bool replace) override;
    // The key is the file's device and inode; the ticket holds the process's mark on the file.
    Status resolve(const std::string& path, bool readOnly, std::unique_ptr<OpenTicket>& out) override;
    // Opens a file known to exist and be a regular file; StatusNotEngineFile for a foreign one.
    Status open(const std::string& path, bool writable, std::unique_ptr<StoreFile>& out);

    FileOperations* fileOperations() override { return this; }

    // Whole-file operations (SqliteFileOps.cpp). A copy is SQLite's online backup, taken in one
    // read transaction; move and delete take the replace gate (ProcessMark.h) and refuse a file
    // that a live handle has open.
    REPathState lookUp(const std::string& path) override;
    Status copy(const std::string& from, const std::string& to, bool replace) override;
    Status move(const std::string& from, const std::string& to) override;
    Status remove(const std::string& path) override;
    Status search(const std::string& directory, const std::string& pattern, std::vector<std::string>& names) override;
    Status check(const std::string& path, bool repair, const CheckProgress& progress,
                 RERecordFileCheck& report) override;

private:
    // Opens `path` when it is a file of this engine; the status tells why not.
    Status connect(const std::string& path, bool writable, sqlite3*& db, FileSpec& spec) const;
    // True when a live handle of any process has the file at `path` open (`mark`: this process's
    // mark on it).
    bool openSomewhere(const std::string& path, const ProcessMark& mark) const;
    // connect() for a regular file at `path` (StatusFileNotFound for anything else); `id` is its identity.
    Status connectFile(const std::string& path, bool writable, sqlite3*& db, FileSpec& spec,
                       platform::FileIdentity& id) const;
    // Takes the replace gate on the file at `path` and makes sure that it is a file of this engine
    // that no live handle has open and that holds everything committed without companions.
    Status claimClosed(const std::string& path, ProcessMark& gate) const;

    const char* m_vfs = nullptr;  // null: SQLite's default
};

// A path beside `path` for a file being built, unique to this process and call.
std::string buildingPath(const std::string& path);
// Removes the file at `path` and any companions SQLite left beside it.
void removeWithCompanions(const std::string& path);
// Renames the finished file `temp` over `path`, whose stale companions go first; `gate` is the
// replace gate held on `path` (given up first on Windows). False when the system refuses.
bool putInPlace(const std::string& temp, const std::string& path, ProcessMark& gate);

}  // namespace recman::sqlite
