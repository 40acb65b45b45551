#include "platform/ndcp/known_devices.h"

#include "platform/base/text.h"

#include <algorithm>
#include <iterator>

namespace ndcp {

namespace {

// Several searches' worth of devices; beyond that a network is making them up.
constexpr std::size_t maxKnown = 10'000;

} // namespace

KnownDevices &KnownDevices::instance()
{
    static KnownDevices known;
    return known;
}

KnownDevices::Device KnownDevices::device(const std::string &uid) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_devices.find(base::lowerAscii(uid));
    return found == m_devices.end() ? Device() : found->second;
}

void KnownDevices::setService(const std::string &uid, const std::string &service)
{
    const std::lock_guard lock(m_mutex);
    if (!uid.empty())
        place(uid).service = service;
}

void KnownDevices::setWebPort(const std::string &uid, int port)
{
    const std::lock_guard lock(m_mutex);
    if (!uid.empty())
        place(uid).webPort = port;
}

void KnownDevices::setRecord(const std::string &uid, const std::optional<ndcp_device> &record)
{
    const std::lock_guard lock(m_mutex);
    if (uid.empty())
        return;
    std::optional<ndcp_device> &kept = place(uid).record;
    kept = record;
    if (kept) {
        std::fill(std::begin(kept->username), std::end(kept->username), '\0');
        std::fill(std::begin(kept->password), std::end(kept->password), '\0');
    }
}

KnownDevices::Device &KnownDevices::place(const std::string &uid)
{
    if (m_devices.size() >= maxKnown)
        m_devices.clear();
    return m_devices[base::lowerAscii(uid)];
}

} // namespace ndcp
