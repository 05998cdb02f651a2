// Chooses the store a process runs on.
#include "recman/Store.h"
#include "recman/sqlite/SqliteStore.h"
#if defined(TARSEL_HAVE_SERVER_STORE)
#include "recman/postgres/PgStore.h"
#endif

namespace recman {

namespace {

#if !defined(TARSEL_HAVE_SERVER_STORE)
// A build without the server store: a workstation told to use a server reaches no file rather
// than quietly using files of its own.
class NoServerStore final : public Store {
public:
    Status create(const std::string&, const FileSpec&, bool) override { return StatusEngineUnavailable; }
    Status resolve(const std::string&, bool, std::unique_ptr<OpenTicket>&) override { return StatusEngineUnavailable; }
};
#endif

}  // namespace

std::unique_ptr<Store> makeStore(const std::string& conninfo, bool forkedChild)
{
#if defined(TARSEL_HAVE_SERVER_STORE)
    if (!conninfo.empty())
        return std::make_unique<postgres::PgStore>(conninfo);
#else
    if (!conninfo.empty())
        return std::make_unique<NoServerStore>();
#endif
    return std::make_unique<sqlite::SqliteStore>(forkedChild);
}

}  // namespace recman
