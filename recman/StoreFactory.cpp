// Chooses the store this build runs on.
#include "recman/Platform.h"
#include "recman/Store.h"
#include "recman/sqlite/SqliteStore.h"

namespace recman {

std::unique_ptr<Store> makeDefaultStore(bool forkedChild)
{
    return std::make_unique<sqlite::SqliteStore>(forkedChild);
}

bool ownerAlive(const Owner& owner) { return platform::processAlive(owner.pid, owner.startToken); }

}  // namespace recman
