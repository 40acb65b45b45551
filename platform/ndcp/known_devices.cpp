#include "platform/ndcp/known_devices.h"

#include "platform/onvif/text.h"

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

std::string KnownDevices::service(const std::string &uid) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_services.find(onvif::lowerAscii(uid));
    return found == m_services.end() ? std::string() : found->second;
}

void KnownDevices::setService(const std::string &uid, const std::string &service)
{
    if (uid.empty())
        return;
    const std::lock_guard lock(m_mutex);
    if (m_services.size() >= maxKnown)
        m_services.clear();
    m_services[onvif::lowerAscii(uid)] = service;
}

} // namespace ndcp
