#include "platform/ndcp/network_configuration.h"

#include "platform/ndcp/device_record.h"
#include "platform/onvif/scopes.h"

#include <algorithm>

namespace ndcp {

namespace {

using onvif::DeviceScope;
using onvif::DnsInformation;
using onvif::Ipv4;
using onvif::NetworkProtocol;

// Texts that can be changed count before fixed ones of the same kind.
onvif::ScopeTexts textsOf(const std::vector<DeviceScope> &scopes)
{
    std::vector<std::string> uris;
    for (const bool isFixed : {false, true}) {
        for (const DeviceScope &scope : scopes)
            if (scope.isFixed == isFixed)
                uris.push_back(scope.uri);
    }
    return onvif::textsFromScopes(uris);
}

// A text that was cut to its field on the way to the user has not been changed by him.
template <std::size_t size>
bool isChanged(const char (&field)[size], const std::string &current)
{
    return fieldText(field) != base::cutUtf8(current, size - 1);
}

// Which parts of the record the user may have changed since it was read.
struct Touched
{
    bool name = true;
    bool location = true;
    bool interface = true;
    bool gateway = true;
    bool dns = true;
};

Touched touchedParts(const ndcp_device &record, const std::optional<ndcp_device> &base)
{
    if (!base)
        return {};
    Touched touched;
    touched.name = fieldText(record.name) != fieldText(base->name);
    touched.location = fieldText(record.location) != fieldText(base->location);
    // Without a manual address the field may hold any.
    touched.interface =
        (record.manual_ip != 0) != (base->manual_ip != 0) ||
        (record.manual_ip != 0 && (record.ip != base->ip || record.mask != base->mask));
    touched.gateway = record.gateway != base->gateway;
    touched.dns = (record.manual_dns != 0) != (base->manual_dns != 0) ||
                  record.dns1 != base->dns1 || record.dns2 != base->dns2;
    return touched;
}

DnsInformation wantedDns(const ndcp_device &record)
{
    DnsInformation dns;
    dns.dhcp = record.manual_dns == 0;
    for (const Ipv4 server : {record.dns1, record.dns2})
        if (!dns.dhcp && server != 0)
            dns.servers.push_back(server);
    return dns;
}

std::optional<DnsInformation> changedDns(const ndcp_device &record,
                                         const std::optional<DnsInformation> &current)
{
    const DnsInformation wanted = wantedDns(record);
    if (!wasRead(record, ReadDns) && wanted.servers.empty())
        return std::nullopt;
    if (!current)
        return wanted.servers.empty() ? std::nullopt : std::optional(wanted);
    if (wanted.dhcp != current->dhcp)
        return wanted;
    // The record holds two servers; further ones of the device do not count as a difference.
    std::vector<Ipv4> shown = current->servers;
    shown.resize(std::min<std::size_t>(shown.size(), 2));
    return wanted.dhcp || wanted.servers == shown ? std::nullopt : std::optional(wanted);
}

std::optional<std::vector<NetworkProtocol>>
changedProtocols(const ndcp_device &record,
                 const std::optional<std::vector<NetworkProtocol>> &current)
{
    if (!current || !isPortChanged(record))
        return std::nullopt;
    // Some devices take the list for the whole: all of it is sent back, with one port changed.
    std::vector<NetworkProtocol> wanted = *current;
    const auto http = std::find_if(wanted.begin(), wanted.end(), onvif::isHttp);
    if (http == wanted.end() || http->ports.front() == httpPort(record))
        return std::nullopt;
    http->ports.front() = httpPort(record);
    return wanted;
}

// A device with several locations reports them as one text, see onvif::ScopeTexts.
std::vector<std::string> locationsIn(std::string_view text, bool areSeveral)
{
    constexpr std::string_view separator = ", ";
    std::vector<std::string> locations;
    while (!text.empty()) {
        const std::size_t end =
            areSeveral ? std::min(text.find(separator), text.size()) : text.size();
        if (end > 0)
            locations.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + separator.size(), text.size()));
    }
    return locations;
}

std::optional<std::vector<std::string>>
changedScopes(const ndcp_device &record, const std::optional<std::vector<DeviceScope>> &current,
              const Touched &touched)
{
    const std::vector<DeviceScope> known = current.value_or(std::vector<DeviceScope>());
    const onvif::ScopeTexts texts = textsOf(known);
    const bool isRenamed = touched.name && isChanged(record.name, texts.name);
    const bool isMoved = touched.location && isChanged(record.location, texts.location);
    if (!current || (!isRenamed && !isMoved))
        return std::nullopt;
    // Setting replaces all scopes that are not fixed: the others are handed back as they were.
    std::vector<std::string> scopes;
    for (const DeviceScope &scope : known) {
        const bool isReplaced = (isRenamed && onvif::isScopeOf(scope.uri, "name")) ||
                                (isMoved && onvif::isScopeOf(scope.uri, "location"));
        if (!scope.isFixed && !isReplaced)
            scopes.push_back(scope.uri);
    }
    const std::string name = fieldText(record.name);
    const std::string location = fieldText(record.location);
    if (isRenamed && !name.empty())
        scopes.push_back(onvif::scopeFor("name", name));
    const auto locations = std::count_if(known.begin(), known.end(), [](const DeviceScope &scope) {
        return onvif::isScopeOf(scope.uri, "location");
    });
    if (isMoved)
        for (const std::string &one : locationsIn(location, locations > 1))
            scopes.push_back(onvif::scopeFor("location", one));
    return scopes;
}

// A search leaves all of these as they are.
bool hasNetworkValues(const ndcp_device &record)
{
    return record.manual_ip != 0 || record.mask != 0 || record.gateway != 0 ||
           record.manual_dns != 0 || record.dns1 != 0 || record.dns2 != 0 || isPortChanged(record);
}

std::optional<onvif::InterfaceSetup> changedInterface(const ndcp_device &record,
                                                      const onvif::NetworkInterface &current)
{
    onvif::InterfaceSetup wanted;
    wanted.token = current.token;
    wanted.dhcp = record.manual_ip == 0;
    if (!wanted.dhcp) {
        wanted.address = record.ip;
        wanted.prefixLength = onvif::prefixFromMask(record.mask);
    }
    const bool isSameAddress =
        wanted.address == current.address && wanted.prefixLength == current.prefixLength;
    if (wanted.dhcp == current.dhcp && (wanted.dhcp || isSameAddress))
        return std::nullopt;
    return wanted;
}

} // namespace

std::optional<onvif::NetworkInterface>
chooseInterface(const std::vector<onvif::NetworkInterface> &interfaces, Ipv4 address)
{
    std::optional<onvif::NetworkInterface> chosen;
    for (const onvif::NetworkInterface &candidate : interfaces) {
        if (!candidate.hasIpv4)
            continue;
        if (address != 0 && candidate.address == address)
            return candidate;
        if (!chosen || (candidate.isEnabled && !chosen->isEnabled))
            chosen = candidate;
    }
    return chosen;
}

void fillRecord(ndcp_device &record, const NetworkConfiguration &configuration)
{
    const onvif::NetworkInterface &interface = configuration.interface;
    if (interface.mac)
        std::copy(interface.mac->begin(), interface.mac->end(), record.mac);
    if (interface.address != 0) {
        record.ip = interface.address;
        record.mask = onvif::maskFromPrefix(interface.prefixLength);
    }
    record.manual_ip = interface.dhcp ? 0 : 1;
    unsigned parts = ReadInterface;
    if (configuration.gateway) {
        record.gateway = *configuration.gateway;
        parts |= ReadGateway;
    }
    if (configuration.dns) {
        const std::vector<Ipv4> &servers = configuration.dns->servers;
        record.manual_dns = configuration.dns->dhcp ? 0 : 1;
        record.dns1 = !servers.empty() ? servers[0] : 0;
        record.dns2 = servers.size() > 1 ? servers[1] : 0;
        parts |= ReadDns;
    }
    setHttpPort(record, webPort(configuration) != 0 ? webPort(configuration) : httpPort(record));
    markRead(record, parts);
    if (configuration.scopes) {
        const onvif::ScopeTexts texts = textsOf(*configuration.scopes);
        setField(record.name, texts.name);
        setField(record.location, texts.location);
    }
    if (!configuration.model.empty())
        setField(record.model, configuration.model);
}

int webPort(const NetworkConfiguration &configuration)
{
    if (!configuration.protocols)
        return 0;
    const std::vector<NetworkProtocol> &protocols = *configuration.protocols;
    const auto http = std::find_if(protocols.begin(), protocols.end(), onvif::isHttp);
    return http == protocols.end() ? 0 : http->ports.front();
}

std::optional<ConfigurationChange> changeTo(const ndcp_device &record,
                                            const NetworkConfiguration &current,
                                            const std::optional<ndcp_device> &base)
{
    const Touched touched = touchedParts(record, base);
    ConfigurationChange change;
    change.scopes = changedScopes(record, current.scopes, touched);
    if (!wasRead(record, ReadInterface))
        return hasNetworkValues(record) ? std::nullopt : std::optional(change);
    if (touched.dns)
        change.dns = changedDns(record, current.dns);
    // With DHCP the gateway comes from there; leaving it, the device may have none.
    const bool leavesDhcp = current.interface.dhcp && touched.interface && record.gateway != 0;
    const bool mayDiffer = wasRead(record, ReadGateway) || record.gateway != 0;
    const bool differs = touched.gateway && record.gateway != current.gateway.value_or(0);
    if (record.manual_ip != 0 && mayDiffer && (leavesDhcp || differs))
        change.gateway = record.gateway;
    change.protocols = changedProtocols(record, current.protocols);
    if (touched.interface)
        change.interface = changedInterface(record, current.interface);
    return change;
}

} // namespace ndcp
