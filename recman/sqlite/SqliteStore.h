// The embedded SQLite store: one SQLite database per record-manager file, at the caller's path,
// in WAL mode (companion -wal and -shm files exist only while a connection is open).
#pragma once

#include "recman/Store.h"

namespace recman::sqlite {

class SqliteStore final : public Store {
public:
    Status create(const std::string& path, const FileSpec& spec, bool replace) override;
    Status open(const std::string& path, bool writable, std::unique_ptr<StoreFile>& out) override;
};

}  // namespace recman::sqlite
