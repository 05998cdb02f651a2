// Chooses the store a process runs on.
#include "recman/Store.h"
#include "recman/sqlite/SqliteStore.h"

namespace recman {

std::unique_ptr<Store> makeStore(const std::string& conninfo, bool forkedChild)
{
    (void)conninfo;
    return std::make_unique<sqlite::SqliteStore>(forkedChild);
}

}  // namespace recman
