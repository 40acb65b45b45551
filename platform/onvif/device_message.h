#pragma once

#include "platform/onvif/net_address.h"
#include "platform/onvif/scopes.h"

#include <optional>
#include <string>
#include <vector>

// Requests to the device service (ONVIF Core 8) and their answers. Every builder makes the text of
// a SOAP body; every parser gives nullopt when the answer is not the one meant.
namespace onvif {

class XmlMessage;

struct DeviceInformation
{
    std::string manufacturer;
    std::string model;
    std::string firmwareVersion;
    std::string serialNumber;
    std::string hardwareId;
};

struct NetworkInterface
{
    std::string token;
    bool isEnabled = true;
    std::optional<MacAddress> mac;
    bool hasIpv4 = false;
    bool dhcp = false;
    Ipv4 address = 0; ///< the one in use: from DHCP, else the manual, else the link-local one
    int prefixLength = 0;
};

struct DnsInformation
{
    bool dhcp = false;
    std::vector<Ipv4> servers; ///< in use, in order
};

struct NetworkProtocol
{
    std::string name; ///< HTTP, HTTPS or RTSP
    bool isEnabled = false;
    std::vector<int> ports;
};

/// Where a device has its web pages, by the protocols that it reports.
struct WebServer
{
    int port = 0;
    bool tls = false;

    bool operator==(const WebServer &) const = default;
};

/// Addresses of the media services of a device; empty where it does not have one.
struct MediaServices
{
    std::string media1; ///< ONVIF Media, which every device had that is older than the other
    std::string media2; ///< ONVIF Media 2, which alone can name H.265

    [[nodiscard]] bool isEmpty() const { return media1.empty() && media2.empty(); }
};

struct DeviceScope
{
    std::string uri;
    bool isFixed = false; ///< cannot be changed or taken away
};

/// How one interface is to be set up. address and prefixLength count without DHCP only.
struct InterfaceSetup
{
    std::string token;
    bool dhcp = false;
    Ipv4 address = 0;
    int prefixLength = 0;
};

std::string buildGetDeviceInformation();
std::string buildGetCapabilities();
std::string buildGetServices();
std::string buildGetEndpointReference();
std::string buildGetNetworkInterfaces();
std::string buildSetNetworkInterfaces(const InterfaceSetup &setup);
std::string buildGetNetworkDefaultGateway();
std::string buildSetNetworkDefaultGateway(Ipv4 gateway);
std::string buildGetDns();
std::string buildSetDns(const DnsInformation &dns);
std::string buildGetNetworkProtocols();
std::string buildSetNetworkProtocols(const std::vector<NetworkProtocol> &protocols);
std::string buildGetScopes();
std::string buildSetScopes(const std::vector<std::string> &scopes);
std::string buildSystemReboot();

std::optional<DeviceInformation> parseDeviceInformation(const XmlMessage &message);
/// The UID of a GetEndpointReferenceResponse, see uidFromEndpoint; nullopt without a usable one.
std::optional<std::string> parseEndpointReference(const XmlMessage &message);
/// Addresses of the media services, from GetCapabilities or GetServices; nullopt without any.
std::optional<MediaServices> parseMediaServices(const XmlMessage &message);
std::optional<std::vector<NetworkInterface>> parseNetworkInterfaces(const XmlMessage &message);
/// Whether the device must be restarted before the new setup counts.
std::optional<bool> parseRebootNeeded(const XmlMessage &message);
/// The first gateway; 0 when there is none.
std::optional<Ipv4> parseNetworkDefaultGateway(const XmlMessage &message);
std::optional<DnsInformation> parseDns(const XmlMessage &message);
std::optional<std::vector<NetworkProtocol>> parseNetworkProtocols(const XmlMessage &message);
std::optional<std::vector<DeviceScope>> parseScopes(const XmlMessage &message);

/// Whether a device serves its web pages by this protocol, without TLS.
bool isHttp(const NetworkProtocol &protocol);
/// The web server of these protocols: the first port of HTTP, or of HTTPS where TLS is preferred
/// or nothing else is on. nullopt when neither is.
std::optional<WebServer> webServerOf(const std::vector<NetworkProtocol> &protocols,
                                     bool prefersTls = false);

} // namespace onvif
