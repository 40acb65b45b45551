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

const NetworkProtocol *httpProtocol(const std::vector<NetworkProtocol> &protocols)
{
    const auto found =
        std::find_if(protocols.begin(), protocols.end(), [](const NetworkProtocol &protocol) {
            return protocol.name == "HTTP" && protocol.isEnabled && !protocol.ports.empty();
        });
    return found == protocols.end() ? nullptr : &*found;
}

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
    return typedText(fieldText(field)) != onvif::cutUtf8(current, size - 1);
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
    const int port = httpPort(record);
    const NetworkProtocol *http = current ? httpProtocol(*current) : nullptr;
    if (port == 0 || !http || http->ports.front() == port)
        return std::nullopt;
    return std::vector<NetworkProtocol>{{"HTTP", true, {port}}};
}

std::optional<std::vector<std::string>>
changedScopes(const ndcp_device &record, const std::optional<std::vector<DeviceScope>> &current)
{
    const std::vector<DeviceScope> known = current.value_or(std::vector<DeviceScope>());
    const onvif::ScopeTexts texts = textsOf(known);
    const bool isRenamed = isChanged(record.name, texts.name);
    const bool isMoved = isChanged(record.location, texts.location);
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
    const std::string name = typedText(fieldText(record.name));
    const std::string location = typedText(fieldText(record.location));
    if (isRenamed && !name.empty())
        scopes.push_back(onvif::scopeFor("name", name));
    if (isMoved && !location.empty())
        scopes.push_back(onvif::scopeFor("location", location));
    return scopes;
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
        if (candidate.address == address)
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
    if (configuration.gateway)
        record.gateway = *configuration.gateway;
    if (configuration.dns) {
        const std::vector<Ipv4> &servers = configuration.dns->servers;
        record.manual_dns = configuration.dns->dhcp ? 0 : 1;
        record.dns1 = !servers.empty() ? servers[0] : 0;
        record.dns2 = servers.size() > 1 ? servers[1] : 0;
    }
    if (configuration.protocols) {
        if (const NetworkProtocol *http = httpProtocol(*configuration.protocols))
            setHttpPort(record, http->ports.front());
    }
    if (configuration.scopes) {
        const onvif::ScopeTexts texts = textsOf(*configuration.scopes);
        setField(record.name, texts.name);
        setField(record.location, texts.location);
    }
    if (!configuration.model.empty())
        setField(record.model, configuration.model);
}

ConfigurationChange changeTo(const ndcp_device &record, const NetworkConfiguration &current)
{
    ConfigurationChange change;
    change.scopes = changedScopes(record, current.scopes);
    change.dns = changedDns(record, current.dns);
    // With DHCP the gateway comes from there.
    const bool setsGateway = record.manual_ip != 0 && record.gateway != current.gateway.value_or(0);
    if (setsGateway)
        change.gateway = record.gateway;
    change.protocols = changedProtocols(record, current.protocols);
    change.interface = changedInterface(record, current.interface);
    return change;
}

} // namespace ndcp
