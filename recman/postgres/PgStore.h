// The server store: record-manager files kept on a PostgreSQL server, shared by every workstation
// that connects to it. A file is named on the server by its path, normalised (serverName), so
// that workstations mounting the shop's folder in different places reach the same file. The
// process has one connection, shared by all its files; it connects again for the next Open or
// Create when the server dropped it.
#pragma once

#include "recman/FileOperations.h"
#include "recman/Store.h"

#include <map>
#include <memory>
#include <mutex>

namespace recman::postgres {

class Connection;

class PgStore final : public Store, public FileOperations {
public:
    explicit PgStore(std::string conninfo);
    ~PgStore() override;

    Status create(const std::string& path, const FileSpec& spec, bool replace) override;
    Status resolve(const std::string& path, bool readOnly, std::unique_ptr<OpenTicket>& out) override;

    FileOperations* fileOperations() override { return this; }

    // Whole-file operations on the server's files, by normalised name (PgFileOps.cpp): a copy is
    // the file's table and counters copied in one snapshot; move renames, delete drops. A file
    // open in any session is neither moved, deleted nor replaced. A path "exists" when a file of
    // that name is on the server; a search lists the names under a folder's name.
    REPathState lookUp(const std::string& path) override;
    Status copy(const std::string& from, const std::string& to, bool replace) override;
    Status move(const std::string& from, const std::string& to) override;
    Status remove(const std::string& path) override;
    Status search(const std::string& directory, const std::string& pattern, std::vector<std::string>& names) override;
    Status check(const std::string& path, bool repair, const CheckProgress& progress,
                 RERecordFileCheck& report) override;

private:
    // The live connection with the schema in place, or null.
    std::shared_ptr<Connection> connection();
    std::string nameOf(const std::string& path) const;

    const std::string m_conninfo;
    std::mutex m_mutex;
    std::shared_ptr<Connection> m_conn;
};

}  // namespace recman::postgres
