// The server store: record-manager files kept on a PostgreSQL server, shared by every workstation
// that connects to it. A file is named on the server by its path, normalised (serverName), so
// that workstations mounting the shop's folder in different places reach the same file. The
// process has one connection, shared by all its files; it connects again for the next Open or
// Create when the server dropped it.
#pragma once

#include "recman/Store.h"

#include <map>
#include <memory>
#include <mutex>

namespace recman::postgres {

class Connection;

class PgStore final : public Store {
public:
    explicit PgStore(std::string conninfo);
    ~PgStore() override;

    Status create(const std::string& path, const FileSpec& spec, bool replace) override;
    Status resolve(const std::string& path, bool readOnly, std::unique_ptr<OpenTicket>& out) override;

private:
    // The live connection with the schema in place, or null.
    std::shared_ptr<Connection> connection();
    std::string nameOf(const std::string& path) const;

    const std::string m_conninfo;
    std::mutex m_mutex;
    std::shared_ptr<Connection> m_conn;
};

}  // namespace recman::postgres
