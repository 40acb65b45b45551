#include "platform/ndcp/configuration_writer.h"

#include "platform/ndcp/device_finder.h"
#include "platform/ndcp/device_record.h"
#include "platform/ndcp/log.h"
#include "platform/onvif/net_address.h"
#include "platform/onvif/network_interfaces.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ndcp {

using onvif::SoapStatus;

namespace {

constexpr std::array partNames = {"scopes", "DNS", "gateway", "protocols", "address", "restart"};

bool isInSubnet(onvif::Ipv4 address, onvif::Ipv4 member, onvif::Ipv4 mask)
{
    return mask != 0 && (address & mask) == (member & mask);
}

// Whether this computer reaches an address without a gateway.
bool isNeighbour(onvif::Ipv4 address)
{
    constexpr onvif::Ipv4 loopback = 0x7F000000;
    constexpr onvif::Ipv4 loopbackMask = 0xFF000000;
    const std::vector<onvif::LocalAddress> own = onvif::localAddresses();
    return isInSubnet(address, loopback, loopbackMask) ||
           std::any_of(own.begin(), own.end(), [address](const onvif::LocalAddress &local) {
               return isInSubnet(address, local.address, local.mask);
           });
}

} // namespace

ConfigurationWriter::ConfigurationWriter(GMainContext *context, Target target,
                                         const ndcp_device &record,
                                         const std::optional<ndcp_device> &base,
                                         const NetworkConfiguration &current,
                                         const ConfigurationTimes &times, Done done)
    : m_context(context)
    , m_target(std::move(target))
    , m_record(record)
    , m_base(base)
    , m_before(current)
    , m_change(changeTo(record, current, base).value_or(ConfigurationChange()))
    , m_times(times)
    , m_done(std::move(done))
    , m_start(context, std::chrono::milliseconds(0), [this] { runNext(); })
{
    m_firstService = m_target.service;
    plan();
    connectTo(m_target.service);
}

ConfigurationWriter::~ConfigurationWriter() = default;

void ConfigurationWriter::plan()
{
    std::deque<Part> order = {Part::Scopes, Part::Dns, Part::Gateway, Part::Protocols,
                              Part::Interface};
    if (goesAddressFirst())
        order = {Part::Scopes, Part::Interface, Part::Dns, Part::Gateway, Part::Protocols};
    std::copy_if(order.begin(), order.end(), std::back_inserter(m_parts),
                 [this](Part part) { return isStillToDo(part, m_before); });
}

bool ConfigurationWriter::goesAddressFirst() const
{
    return mayBeRefusedBeforeTheAddress() && !m_change.interface->dhcp &&
           (m_change.interface->address == m_before.interface.address ||
            isNeighbour(m_change.interface->address));
}

// A device with DHCP may take no gateway and DNS from others, nor a gateway that it cannot reach.
bool ConfigurationWriter::mayBeRefusedBeforeTheAddress() const
{
    const onvif::NetworkInterface &now = m_before.interface;
    const bool isGatewayOutside =
        m_change.gateway && *m_change.gateway != 0 &&
        !isInSubnet(*m_change.gateway, now.address, onvif::maskFromPrefix(now.prefixLength));
    return m_change.interface && (now.dhcp || isGatewayOutside);
}

bool ConfigurationWriter::isPlanned(Part part) const
{
    return std::find(m_parts.begin(), m_parts.end(), part) != m_parts.end();
}

void ConfigurationWriter::connectTo(const std::string &service)
{
    m_request.reset();
    m_device.reset();
    m_target.service = service;
    m_soap =
        std::make_unique<onvif::SoapClient>(m_context, service, m_target.credentials, m_times.soap);
    m_device = std::make_unique<onvif::DeviceClient>(*m_soap);
}

void ConfigurationWriter::runNext()
{
    if (m_parts.empty() && m_needsRestart)
        m_parts.push_back(Part::Restart);
    if (m_parts.empty() && !m_again.empty())
        m_parts = std::exchange(m_again, {});
    if (m_parts.empty()) {
        finish(SoapStatus::Ok);
        return;
    }
    const Part part = m_parts.front();
    m_parts.pop_front();
    m_request = send(part);
}

onvif::RequestPtr ConfigurationWriter::send(Part part)
{
    auto done = [this, part](SoapStatus status) { sent(part, status); };
    switch (part) {
    case Part::Scopes:
        return m_device->setScopes(*m_change.scopes, done);
    case Part::Dns:
        return m_device->setDns(*m_change.dns, done);
    case Part::Gateway:
        return m_device->setDefaultGateway(*m_change.gateway, done);
    case Part::Protocols:
        return m_device->setNetworkProtocols(*m_change.protocols, done);
    case Part::Interface:
        return m_device->setNetworkInterface(*m_change.interface,
                                             [this, done](SoapStatus status, bool needsRestart) {
                                                 m_needsRestart = needsRestart;
                                                 done(status);
                                             });
    case Part::Restart:
        break;
    }
    m_needsRestart = false;
    return m_device->reboot(done);
}

void ConfigurationWriter::sent(Part part, SoapStatus status)
{
    g_log(logDomain, G_LOG_LEVEL_DEBUG, "%s: %s, status %d", m_target.service.c_str(),
          partNames[static_cast<std::size_t>(part)], static_cast<int>(status));
    if (part == Part::Restart) {
        // A device that is down already has taken it. One that does not let this user restart it
        // has taken the set-up all the same.
        partDone(part);
    } else if (status == SoapStatus::Ok) {
        partDone(part);
    } else if (status == SoapStatus::NoAnswer) {
        if (part == Part::Protocols || part == Part::Interface)
            lookUntilDone(part, false);
        else
            lookToSendAgain(part);
    } else if (status == SoapStatus::Fault) {
        refusedValue(part);
    } else {
        finish(status);
    }
}

void ConfigurationWriter::refusedValue(Part part)
{
    const bool mayFollow = part == Part::Gateway || (part == Part::Dns && m_before.interface.dhcp);
    if (mayFollow && mayBeRefusedBeforeTheAddress() &&
        (isPlanned(Part::Interface) || m_needsRestart)) {
        m_again.push_back(part);
        runNext();
    } else {
        finish(SoapStatus::Fault);
    }
}

void ConfigurationWriter::partDone(Part part)
{
    const bool isMoving = (part == Part::Interface && !m_needsRestart) || part == Part::Restart;
    const bool hasMore = !m_parts.empty() || !m_again.empty();
    if (hasMore && (isMoving || part == Part::Protocols))
        lookUntilDone(part == Part::Restart ? Part::Interface : part, true);
    else
        runNext();
}

void ConfigurationWriter::lookUntilDone(Part part, bool wasAnswered)
{
    const auto isDone = [this, part](const std::string &service,
                                     const NetworkConfiguration &configuration) {
        return !isStillToDo(part, configuration) && hasArrived(part, service);
    };
    look(isDone, wasAnswered ? m_times.settle : m_times.look,
         [this, wasAnswered](const std::string &service, bool isThere) {
             // Some devices never report their new configuration: an answered request counts
             // without that, a lost one does not.
             if (!isThere && !(wasAnswered && !service.empty())) {
                 finish(SoapStatus::NoAnswer);
                 return;
             }
             connectTo(service);
             runNext();
         });
}

// It may be restarting because of the part before.
void ConfigurationWriter::lookToSendAgain(Part part)
{
    if (std::exchange(m_wasSentAgain, true)) {
        finish(SoapStatus::NoAnswer);
        return;
    }
    look([](const std::string &, const NetworkConfiguration &) { return true; }, m_times.look,
         [this, part](const std::string &service, bool isThere) {
             if (!isThere) {
                 finish(SoapStatus::NoAnswer);
                 return;
             }
             connectTo(service);
             m_request = send(part);
         });
}

void ConfigurationWriter::look(
    std::function<bool(const std::string &, const NetworkConfiguration &)> isThere,
    unsigned patience, std::function<void(const std::string &, bool)> done)
{
    DeviceFinder::Wanted wanted;
    wanted.uid = m_target.uid;
    wanted.macs = m_before.macs;
    wanted.places = possiblePlaces();
    wanted.isThere = std::move(isThere);
    wanted.patience = patience;
    m_request =
        std::make_unique<DeviceFinder>(m_context, std::move(wanted), m_target.credentials, m_times,
                                       [done = std::move(done)](const DeviceFinder::Found &found) {
                                           done(found.service, found.isThere);
                                       });
}

bool ConfigurationWriter::isStillToDo(Part part, const NetworkConfiguration &configuration) const
{
    const ConfigurationChange change =
        changeTo(m_record, configuration, m_base).value_or(ConfigurationChange());
    switch (part) {
    case Part::Scopes:
        return change.scopes.has_value();
    case Part::Dns:
        return change.dns.has_value();
    case Part::Gateway:
        return change.gateway.has_value();
    case Part::Protocols:
        return change.protocols.has_value();
    case Part::Interface:
        return change.interface.has_value();
    case Part::Restart:
        break;
    }
    return false;
}

// A device may report its new configuration while it is still at its old place.
bool ConfigurationWriter::hasArrived(Part part, const std::string &service) const
{
    const std::optional<onvif::HttpAddress> place = onvif::parseHttpAddress(service);
    const std::optional<onvif::HttpAddress> old = onvif::parseHttpAddress(m_firstService);
    if (!place || !old)
        return false;
    if (part == Part::Protocols)
        return old->port != webPort(m_before) || place->port != old->port;
    return part != Part::Interface || m_change.interface->dhcp || !isDirect() ||
           place->host == onvif::ipv4Text(m_change.interface->address);
}

// Behind address translation the address of the service is another than the device's own.
bool ConfigurationWriter::isDirect() const
{
    const std::optional<onvif::HttpAddress> old = onvif::parseHttpAddress(m_firstService);
    return old && old->host == onvif::ipv4Text(m_before.interface.address);
}

// Where the device may be now, the likeliest first: at the new address or the old one, at the new
// port when the device service shared the port of the web pages, or at the old one.
std::vector<std::string> ConfigurationWriter::possiblePlaces() const
{
    std::vector<std::string> places;
    const std::optional<onvif::HttpAddress> now = onvif::parseHttpAddress(m_target.service);
    if (!now)
        return places;
    std::vector<std::string> hosts = {now->host};
    if (m_change.interface && !m_change.interface->dhcp && isDirect())
        hosts.insert(hosts.begin(), onvif::ipv4Text(m_change.interface->address));
    std::vector<int> ports = {now->port};
    if (m_change.protocols && !now->secure && now->port == webPort(m_before))
        ports.insert(ports.begin(), httpPort(m_record));
    for (const std::string &host : hosts) {
        for (const int port : ports) {
            onvif::HttpAddress place = *now;
            place.host = host;
            place.port = port;
            if (std::find(places.begin(), places.end(), place.text()) == places.end())
                places.push_back(place.text());
        }
    }
    return places;
}

void ConfigurationWriter::finish(SoapStatus status)
{
    std::string service = m_target.service;
    if (status == SoapStatus::Ok) {
        const std::vector<std::string> places = possiblePlaces();
        const bool isSomewhere = m_change.interface && m_change.interface->dhcp;
        if (isSomewhere)
            service.clear();
        else if (!places.empty())
            service = places.front();
    }
    // The receiver may destroy this object.
    const Done done = std::move(m_done);
    done(status, service);
}

} // namespace ndcp
