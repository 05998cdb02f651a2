// Chooses the store this build runs on.
#include "recman/Platform.h"
#include "recman/Store.h"
#include "recman/sqlite/SqliteStore.h"

namespace recman {

std::unique_ptr<Store> makeDefaultStore(bool forkedChild)
{
    return std::make_unique<sqlite::SqliteStore>(forkedChild);
}

bool ownerAlive(const Owner& owner, const ProcessMark& mark)
{
    if (!platform::processAlive(owner.pid, owner.startToken))
        return false;
    // This process's own mark is not seen through its own descriptor; it runs, as asked.
    return owner.pid == platform::currentProcessId() || mark.held(owner.pid);
}

}  // namespace recman
