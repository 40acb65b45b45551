#include "platform/ndcp/client.h"

#include "platform/ndcp/device_record.h"
#include "platform/ndcp/known_devices.h"
#include "platform/ndcp/log.h"

#include <utility>

namespace ndcp {

Client::Client(std::shared_ptr<base::LoopThread> worker, ndcp_callback callback, void *user)
    : m_worker(std::move(worker))
    , m_callback(callback)
    , m_user(user)
    , m_table(std::make_shared<std::vector<ndcp_device>>())
{
}

Client::~Client()
{
    // Jobs posted before run before; callbacks run on that thread too, so none is running then.
    m_worker->postAndWait([this] {
        m_search.reset();
        m_tasks.clear();
    });
}

void Client::discover()
{
    {
        const std::lock_guard lock(m_mutex);
        m_older.clear();
    }
    m_worker->post([this] { startSearch(); });
}

std::int32_t Client::count() const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<std::int32_t>(m_table->size());
}

const ndcp_device *Client::device(std::int32_t index) const
{
    const std::lock_guard lock(m_mutex);
    const bool isInTable = index >= 0 && static_cast<std::size_t>(index) < m_table->size();
    return isInTable ? &(*m_table)[static_cast<std::size_t>(index)] : nullptr;
}

void Client::configure(ConfigurationTask::Kind kind, ndcp_device *record)
{
    m_worker->post([this, kind, copy = *record, record] { startTask(kind, copy, record); });
}

void Client::startSearch()
{
    // The end of the one that is running answers both.
    if (m_search)
        return;
    m_search = std::make_unique<onvif::DiscoverySearch>(
        m_worker->context(), onvif::SearchScope::fromEnvironment(),
        [this](const onvif::SearchResult &result) { searchDone(result); });
}

void Client::searchDone(const onvif::SearchResult &result)
{
    KnownDevices &known = KnownDevices::instance();
    std::vector<ndcp_device> table;
    table.reserve(result.devices.size());
    for (const onvif::DiscoveredDevice &device : result.devices) {
        const int webPort = known.device(device.uid).webPort;
        table.push_back(recordOf(device, webPort != 0 ? webPort : usualWebPort));
        known.setService(device.uid, device.serviceAddress);
    }
    g_log(logDomain, G_LOG_LEVEL_DEBUG, "a search has found %zu devices", table.size());
    {
        const std::lock_guard lock(m_mutex);
        m_older.push_back(std::exchange(
            m_table, std::make_shared<const std::vector<ndcp_device>>(std::move(table))));
    }
    m_search.reset();
    m_callback(NDCP_EVENT_DISCOVERY, 0, m_user);
}

void Client::startTask(ConfigurationTask::Kind kind, const ndcp_device &record, ndcp_device *target)
{
    const auto place = m_tasks.emplace(m_tasks.end());
    *place = std::make_unique<ConfigurationTask>(
        m_worker->context(), kind, record,
        [this, kind, target, place](int error, const ndcp_device &result) {
            const bool isRead = kind == ConfigurationTask::Kind::Read;
            if (isRead && error == 0)
                *target = result;
            m_tasks.erase(place);
            m_callback(isRead ? NDCP_EVENT_GET_CONF : NDCP_EVENT_SET_CONF, error, m_user);
        });
}

} // namespace ndcp
