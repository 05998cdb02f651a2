// Chooses the store a process runs on.
#include "recman/Store.h"
#include "recman/postgres/PgStore.h"
#include "recman/sqlite/SqliteStore.h"

namespace recman {

std::unique_ptr<Store> makeStore(const std::string& conninfo, bool forkedChild)
{
    if (!conninfo.empty())
        return std::make_unique<postgres::PgStore>(conninfo);
    return std::make_unique<sqlite::SqliteStore>(forkedChild);
}

}  // namespace recman
