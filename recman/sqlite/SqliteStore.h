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
    Status open(const std::string& path, bool writable, std::unique_ptr<StoreFile>& out) override;

private:
    const char* m_vfs = nullptr;  // null: SQLite's default
};

}  // namespace recman::sqlite
