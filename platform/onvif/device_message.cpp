#include "platform/onvif/device_message.h"

#include "platform/base/text.h"
#include "platform/onvif/xml_message.h"

#include <algorithm>

namespace onvif {

namespace {

constexpr std::size_t maxEntries = 64;
constexpr std::size_t maxScopes = 256;
constexpr std::size_t maxTokenLength = 256;
constexpr std::size_t maxInformationText = 256;
constexpr std::string_view mediaNamespace = "http://www.onvif.org/ver10/media/wsdl";
constexpr std::string_view media2Namespace = "http://www.onvif.org/ver20/media/wsdl";

std::string element(const std::string &name, const std::string &content)
{
    return '<' + name + '>' + content + "</" + name + '>';
}

std::string boolText(bool value)
{
    return value ? "true" : "false";
}

std::string ipv4Element(Ipv4 address)
{
    return "<tt:Type>IPv4</tt:Type>" + element("tt:IPv4Address", ipv4Text(address));
}

std::vector<Ipv4> ipv4List(pugi::xml_node parent, std::string_view name)
{
    std::vector<Ipv4> addresses;
    for (const pugi::xml_node node : children(parent, name)) {
        const std::optional<Ipv4> address = parseIpv4(textOf(child(node, "IPv4Address")));
        if (address && *address != 0 && addresses.size() < maxEntries)
            addresses.push_back(*address);
    }
    return addresses;
}

// The addresses from DHCP and "manual" are both listed; the one in use depends on the mode.
pugi::xml_node addressInUse(pugi::xml_node config, bool dhcp)
{
    for (const char *name :
         {dhcp ? "FromDHCP" : "Manual", dhcp ? "Manual" : "FromDHCP", "LinkLocal"}) {
        const pugi::xml_node node = child(config, name);
        if (parseIpv4(textOf(child(node, "Address"))).value_or(0) != 0)
            return node;
    }
    return {};
}

NetworkInterface readInterface(pugi::xml_node node)
{
    NetworkInterface found;
    found.token = attribute(node, "token");
    found.isEnabled = isTrue(child(node, "Enabled"));
    found.mac = parseMac(textOf(child(node, {"Info", "HwAddress"})));
    const pugi::xml_node config = child(node, {"IPv4", "Config"});
    found.dhcp = isTrue(child(config, "DHCP"));
    const pugi::xml_node inUse = addressInUse(config, found.dhcp);
    found.hasIpv4 = !config.empty();
    found.address = parseIpv4(textOf(child(inUse, "Address"))).value_or(0);
    found.prefixLength = std::clamp(numberOf(child(inUse, "PrefixLength"), 0), 0, 32);
    return found;
}

std::string cleanInformation(pugi::xml_node response, std::string_view name)
{
    return base::cleanText(textOf(child(response, name)), maxInformationText);
}

} // namespace

std::string buildGetDeviceInformation()
{
    return "<tds:GetDeviceInformation/>";
}

std::string buildGetCapabilities()
{
    return "<tds:GetCapabilities><tds:Category>Media</tds:Category></tds:GetCapabilities>";
}

std::string buildGetServices()
{
    return "<tds:GetServices><tds:IncludeCapability>false</tds:IncludeCapability>"
           "</tds:GetServices>";
}

std::string buildGetEndpointReference()
{
    return "<tds:GetEndpointReference/>";
}

std::string buildGetNetworkInterfaces()
{
    return "<tds:GetNetworkInterfaces/>";
}

std::string buildSetNetworkInterfaces(const InterfaceSetup &setup)
{
    std::string ipv4 = element("tt:Enabled", "true");
    if (!setup.dhcp) {
        ipv4 += element("tt:Manual",
                        element("tt:Address", ipv4Text(setup.address)) +
                            element("tt:PrefixLength", std::to_string(setup.prefixLength)));
    }
    ipv4 += element("tt:DHCP", boolText(setup.dhcp));
    return element("tds:SetNetworkInterfaces",
                   element("tds:InterfaceToken", base::xmlEscape(setup.token)) +
                       element("tds:NetworkInterface",
                               element("tt:Enabled", "true") + element("tt:IPv4", ipv4)));
}

std::string buildGetNetworkDefaultGateway()
{
    return "<tds:GetNetworkDefaultGateway/>";
}

std::string buildSetNetworkDefaultGateway(Ipv4 gateway)
{
    return element("tds:SetNetworkDefaultGateway",
                   gateway != 0 ? element("tds:IPv4Address", ipv4Text(gateway)) : std::string());
}

std::string buildGetDns()
{
    return "<tds:GetDNS/>";
}

std::string buildSetDns(const DnsInformation &dns)
{
    std::string content = element("tds:FromDHCP", boolText(dns.dhcp));
    if (!dns.dhcp)
        for (const Ipv4 server : dns.servers)
            content += element("tds:DNSManual", ipv4Element(server));
    return element("tds:SetDNS", content);
}

std::string buildGetNetworkProtocols()
{
    return "<tds:GetNetworkProtocols/>";
}

std::string buildSetNetworkProtocols(const std::vector<NetworkProtocol> &protocols)
{
    std::string content;
    for (const NetworkProtocol &protocol : protocols) {
        std::string one = element("tt:Name", base::xmlEscape(protocol.name)) +
                          element("tt:Enabled", boolText(protocol.isEnabled));
        for (const int port : protocol.ports)
            one += element("tt:Port", std::to_string(port));
        content += element("tds:NetworkProtocols", one);
    }
    return element("tds:SetNetworkProtocols", content);
}

std::string buildGetScopes()
{
    return "<tds:GetScopes/>";
}

std::string buildSetScopes(const std::vector<std::string> &scopes)
{
    std::string content;
    for (const std::string &scope : scopes)
        content += element("tds:Scopes", base::xmlEscape(scope));
    return element("tds:SetScopes", content);
}

std::string buildSystemReboot()
{
    return "<tds:SystemReboot/>";
}

std::optional<DeviceInformation> parseDeviceInformation(const XmlMessage &message)
{
    const pugi::xml_node response = child(message.body(), "GetDeviceInformationResponse");
    if (!response)
        return std::nullopt;
    DeviceInformation information;
    information.manufacturer = cleanInformation(response, "Manufacturer");
    information.model = cleanInformation(response, "Model");
    information.firmwareVersion = cleanInformation(response, "FirmwareVersion");
    information.serialNumber = cleanInformation(response, "SerialNumber");
    information.hardwareId = cleanInformation(response, "HardwareId");
    return information;
}

std::optional<std::string> parseEndpointReference(const XmlMessage &message)
{
    std::string uid = base::uidFromEndpoint(
        textOf(child(message.body(), {"GetEndpointReferenceResponse", "GUID"})));
    return uid.empty() ? std::nullopt : std::optional(std::move(uid));
}

std::optional<MediaServices> parseMediaServices(const XmlMessage &message)
{
    MediaServices found;
    found.media1 = textOf(
        child(message.body(), {"GetCapabilitiesResponse", "Capabilities", "Media", "XAddr"}));
    const pugi::xml_node services = child(message.body(), "GetServicesResponse");
    for (const pugi::xml_node service : children(services, "Service")) {
        const std::string_view space = textOf(child(service, "Namespace"));
        const std::string_view address = textOf(child(service, "XAddr"));
        if (space == mediaNamespace && found.media1.empty())
            found.media1 = address;
        else if (space == media2Namespace && found.media2.empty())
            found.media2 = address;
    }
    return found.isEmpty() ? std::nullopt : std::optional(std::move(found));
}

std::optional<std::vector<NetworkInterface>> parseNetworkInterfaces(const XmlMessage &message)
{
    const pugi::xml_node response = child(message.body(), "GetNetworkInterfacesResponse");
    if (!response)
        return std::nullopt;
    std::vector<NetworkInterface> interfaces;
    for (const pugi::xml_node node : children(response, "NetworkInterfaces"))
        if (attribute(node, "token").size() <= maxTokenLength && interfaces.size() < maxEntries)
            interfaces.push_back(readInterface(node));
    return interfaces;
}

std::optional<bool> parseRebootNeeded(const XmlMessage &message)
{
    const pugi::xml_node response = child(message.body(), "SetNetworkInterfacesResponse");
    if (!response)
        return std::nullopt;
    return isTrue(child(response, "RebootNeeded"));
}

std::optional<Ipv4> parseNetworkDefaultGateway(const XmlMessage &message)
{
    const pugi::xml_node response = child(message.body(), "GetNetworkDefaultGatewayResponse");
    if (!response)
        return std::nullopt;
    return parseIpv4(textOf(child(response, {"NetworkGateway", "IPv4Address"}))).value_or(0);
}

std::optional<DnsInformation> parseDns(const XmlMessage &message)
{
    const pugi::xml_node information = child(message.body(), {"GetDNSResponse", "DNSInformation"});
    if (!information)
        return std::nullopt;
    DnsInformation dns;
    dns.dhcp = isTrue(child(information, "FromDHCP"));
    dns.servers = ipv4List(information, dns.dhcp ? "DNSFromDHCP" : "DNSManual");
    return dns;
}

std::optional<std::vector<NetworkProtocol>> parseNetworkProtocols(const XmlMessage &message)
{
    const pugi::xml_node response = child(message.body(), "GetNetworkProtocolsResponse");
    if (!response)
        return std::nullopt;
    std::vector<NetworkProtocol> protocols;
    for (const pugi::xml_node node : children(response, "NetworkProtocols")) {
        NetworkProtocol protocol;
        protocol.name = base::cleanText(textOf(child(node, "Name")), 16);
        protocol.isEnabled = isTrue(child(node, "Enabled"));
        for (const pugi::xml_node port : children(node, "Port")) {
            const int number = numberOf(port, 0);
            if (number > 0 && number <= 65'535 && protocol.ports.size() < maxEntries)
                protocol.ports.push_back(number);
        }
        if (!protocol.name.empty() && protocols.size() < maxEntries)
            protocols.push_back(std::move(protocol));
    }
    return protocols;
}

std::optional<std::vector<DeviceScope>> parseScopes(const XmlMessage &message)
{
    const pugi::xml_node response = child(message.body(), "GetScopesResponse");
    if (!response)
        return std::nullopt;
    std::vector<DeviceScope> scopes;
    for (const pugi::xml_node node : children(response, "Scopes")) {
        DeviceScope scope;
        scope.uri = textOf(child(node, "ScopeItem"));
        scope.isFixed = textOf(child(node, "ScopeDef")) == "Fixed";
        if (!scope.uri.empty() && scopes.size() < maxScopes)
            scopes.push_back(std::move(scope));
    }
    return scopes;
}

bool isHttp(const NetworkProtocol &protocol)
{
    return protocol.name == "HTTP" && protocol.isEnabled && !protocol.ports.empty();
}

std::optional<WebServer> webServerOf(const std::vector<NetworkProtocol> &protocols, bool prefersTls)
{
    std::optional<WebServer> http;
    std::optional<WebServer> https;
    for (const NetworkProtocol &protocol : protocols) {
        if (!http && isHttp(protocol))
            http = {protocol.ports.front(), false};
        if (!https && protocol.name == "HTTPS" && protocol.isEnabled && !protocol.ports.empty())
            https = {protocol.ports.front(), true};
    }
    return https && (prefersTls || !http) ? https : http;
}

} // namespace onvif
