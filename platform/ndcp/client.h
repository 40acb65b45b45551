#pragma once

#include "platform/base/loop_thread.h"
#include "platform/ndcp/configuration_task.h"
#include "platform/ndcp/ndcp.h"
#include "platform/onvif/discovery_search.h"

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

namespace ndcp {

/// The object behind a handle of the C interface. The public functions belong to the thread of the
/// caller, everything marked "worker" to the worker's thread.
class Client
{
public:
    Client(std::shared_ptr<base::LoopThread> worker, ndcp_callback callback, void *user);
    /// Cancels what is running; no callback runs during or after it.
    ~Client();
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;

    void discover();
    [[nodiscard]] std::int32_t count() const;
    [[nodiscard]] const ndcp_device *device(std::int32_t index) const;
    void configure(ConfigurationTask::Kind kind, ndcp_device *record);

private:
    using Tasks = std::list<onvif::RequestPtr>;
    using Table = std::shared_ptr<const std::vector<ndcp_device>>;

    void startSearch();
    void searchDone(const onvif::SearchResult &result);
    void startTask(ConfigurationTask::Kind kind, const ndcp_device &record, ndcp_device *target);

    std::shared_ptr<base::LoopThread> m_worker;
    ndcp_callback m_callback;
    void *m_user;
    onvif::RequestPtr m_search; ///< worker
    Tasks m_tasks;              ///< worker
    mutable std::mutex m_mutex; ///< protects what follows
    Table m_table;              ///< of the last search that has finished
    std::vector<Table> m_older; ///< whose devices were handed out before the present search
};

} // namespace ndcp
