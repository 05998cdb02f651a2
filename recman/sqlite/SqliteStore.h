// The embedded SQLite store: one SQLite database per record-manager file, at the caller's path,
// in WAL mode (companion -wal and -shm files exist only while a connection is open).
#pragma once

#include "recman/Store.h"

namespace recman::sqlite {

class SqliteStore final : public Store {
public:
    // `forkedChild`: connections keep their locks to themselves (OwnLockVfs.h), as a process
    // forked from one with open files needs.
    explicit SqliteStore(bool forkedChild);

    Status create(const std::string& path, const FileSpec& spec, bool replace) override;
    // The key is the file's device and inode; the ticket holds the process's mark on the file.
    Status resolve(const std::string& path, bool readOnly, std::unique_ptr<OpenTicket>& out) override;
    // Opens a file known to exist and be a regular file; StatusNotEngineFile for a foreign one.
    Status open(const std::string& path, bool writable, std::unique_ptr<StoreFile>& out);

private:
    const char* m_vfs = nullptr;  // null: SQLite's default
};

}  // namespace recman::sqlite
