#include "camera/session_registry.h"

#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace zelvaro {
namespace {

/// Never destroyed: a library's thread may still call while the process ends.
struct Registry
{
    std::shared_mutex mutex; ///< protects sessions; held shared while a message is posted
    std::unordered_map<void *, CCameraCore *> sessions;
};

Registry &registry()
{
    static Registry &instance = *new Registry;
    return instance;
}

} // namespace

void SessionRegistry::enter(CCameraCore *session)
{
    const std::unique_lock lock(registry().mutex);
    registry().sessions.emplace(session, session);
}

void SessionRegistry::leave(CCameraCore *session)
{
    const std::unique_lock lock(registry().mutex);
    registry().sessions.erase(session);
}

SessionRegistry::Hold::Hold(void *context)
{
    registry().mutex.lock_shared();
    const auto found = registry().sessions.find(context);
    session = found == registry().sessions.end() ? nullptr : found->second;
}

SessionRegistry::Hold::~Hold()
{
    registry().mutex.unlock_shared();
}

} // namespace zelvaro
