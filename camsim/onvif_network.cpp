#include "camsim/net.h"
#include "camsim/onvif_fault.h"
#include "camsim/onvif_server.h"

#include <charconv>

namespace camsim {

using soap::add;
using soap::textAt;

namespace {

constexpr const char *interface = "eth0";

int toNumber(const std::string &text, int fallback)
{
    int value = fallback;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && end == text.data() + text.size() ? value : fallback;
}

void addAddress(pugi::xml_node parent, const char *name, const std::string &address)
{
    const pugi::xml_node node = add(parent, name);
    add(node, "tt:Type", "IPv4");
    add(node, "tt:IPv4Address", address);
}

bool isTrue(const std::string &text)
{
    return text == "true" || text == "1";
}

const char *boolText(bool value)
{
    return value ? "true" : "false";
}

} // namespace

CameraModel::Change OnvifServer::change(const NetworkState &wanted)
{
    const CameraModel::Change result = m_camera.setNetwork(wanted);
    if (result == CameraModel::Change::Refused)
        throw OnvifFault{"ter:ConfigurationConflict", "This configuration cannot be used"};
    return result;
}

void OnvifServer::getHostname(pugi::xml_node, pugi::xml_node out)
{
    const pugi::xml_node info = add(out, "tds:HostnameInformation");
    add(info, "tt:FromDHCP", "false");
    add(info, "tt:Name", m_camera.network().hostname);
}

void OnvifServer::setHostname(pugi::xml_node in, pugi::xml_node)
{
    NetworkState wanted = m_camera.network();
    wanted.hostname = textAt(in, "Name");
    if (wanted.hostname.empty() || wanted.hostname.size() > 63)
        throw OnvifFault{"ter:InvalidHostname", "The host name cannot be used"};
    change(wanted);
}

void OnvifServer::getNetworkInterfaces(pugi::xml_node, pugi::xml_node out)
{
    const NetworkState &network = m_camera.network();
    pugi::xml_node node = add(out, "tds:NetworkInterfaces");
    node.append_attribute("token") = interface;
    add(node, "tt:Enabled", "true");
    const pugi::xml_node info = add(node, "tt:Info");
    add(info, "tt:Name", interface);
    add(info, "tt:HwAddress", m_camera.identity().mac);
    add(info, "tt:MTU", "1500");
    const pugi::xml_node ipv4 = add(node, "tt:IPv4");
    add(ipv4, "tt:Enabled", "true");
    const pugi::xml_node config = add(ipv4, "tt:Config");
    const pugi::xml_node address = add(config, network.dhcp ? "tt:FromDHCP" : "tt:Manual");
    add(address, "tt:Address", network.address);
    add(address, "tt:PrefixLength", std::to_string(network.prefix));
    add(config, "tt:DHCP", boolText(network.dhcp));
}

void OnvifServer::setNetworkInterfaces(pugi::xml_node in, pugi::xml_node out)
{
    if (textAt(in, "InterfaceToken") != interface)
        throw OnvifFault{"ter:InvalidNetworkInterface", "There is no such interface"};
    const pugi::xml_node ipv4 = soap::child(soap::child(in, "NetworkInterface"), "IPv4");
    NetworkState wanted = m_camera.network();
    const std::string dhcp = textAt(ipv4, "DHCP");
    if (!dhcp.empty())
        wanted.dhcp = isTrue(dhcp);
    if (wanted.dhcp) {
        wanted.address = m_camera.dhcpAddress();
        wanted.prefix = 8;
    } else if (const std::string address = textAt(ipv4, "Manual/Address"); !address.empty()) {
        wanted.address = address;
        wanted.prefix = toNumber(textAt(ipv4, "Manual/PrefixLength"), -1);
    }
    if (!net::isAddress(wanted.address) || wanted.prefix < 1 || wanted.prefix > 32)
        throw OnvifFault{"ter:InvalidIPv4Address", "The address cannot be used"};
    const bool later = change(wanted) == CameraModel::Change::AfterReboot;
    add(out, "tds:RebootNeeded", boolText(later));
}

void OnvifServer::getDefaultGateway(pugi::xml_node, pugi::xml_node out)
{
    const pugi::xml_node node = add(out, "tds:NetworkGateway");
    if (!m_camera.network().gateway.empty())
        add(node, "tt:IPv4Address", m_camera.network().gateway);
}

void OnvifServer::setDefaultGateway(pugi::xml_node in, pugi::xml_node)
{
    NetworkState wanted = m_camera.network();
    wanted.gateway = textAt(in, "IPv4Address");
    if (!wanted.gateway.empty() && !net::isAddress(wanted.gateway))
        throw OnvifFault{"ter:InvalidGatewayAddress", "The gateway address cannot be used"};
    const bool isReachable =
        !wanted.dhcp && net::isInSubnet(wanted.gateway, wanted.address, wanted.prefix);
    if (m_options.strictGateway && !wanted.gateway.empty() && !isReachable)
        throw OnvifFault{"ter:InvalidGatewayAddress", "The gateway is not in the subnet"};
    change(wanted);
}

void OnvifServer::getDns(pugi::xml_node, pugi::xml_node out)
{
    const NetworkState &network = m_camera.network();
    const pugi::xml_node node = add(out, "tds:DNSInformation");
    add(node, "tt:FromDHCP", boolText(network.dnsFromDhcp));
    for (const std::string &address : network.dns)
        addAddress(node, network.dnsFromDhcp ? "tt:DNSFromDHCP" : "tt:DNSManual", address);
}

void OnvifServer::setDns(pugi::xml_node in, pugi::xml_node)
{
    NetworkState wanted = m_camera.network();
    wanted.dnsFromDhcp = isTrue(textAt(in, "FromDHCP"));
    if (!wanted.dnsFromDhcp) {
        wanted.dns.clear();
        for (const pugi::xml_node &node : in.children()) {
            if (soap::localName(node) != "DNSManual")
                continue;
            wanted.dns.push_back(textAt(node, "IPv4Address"));
            if (!net::isAddress(wanted.dns.back()))
                throw OnvifFault{"ter:InvalidIPv4Address", "A DNS address cannot be used"};
        }
    }
    change(wanted);
}

void OnvifServer::getNetworkProtocols(pugi::xml_node, pugi::xml_node out)
{
    const NetworkState &network = m_camera.network();
    const std::pair<const char *, int> protocols[] = {
        {"HTTP", network.httpPort}, {"HTTPS", 443}, {"RTSP", network.rtspPort}};
    for (const auto &[name, port] : protocols) {
        const pugi::xml_node node = add(out, "tds:NetworkProtocols");
        add(node, "tt:Name", name);
        add(node, "tt:Enabled", boolText(std::string(name) != "HTTPS"));
        add(node, "tt:Port", std::to_string(port));
    }
}

void OnvifServer::setNetworkProtocols(pugi::xml_node in, pugi::xml_node)
{
    NetworkState wanted = m_camera.network();
    for (const pugi::xml_node &node : in.children()) {
        if (soap::localName(node) != "NetworkProtocols")
            continue;
        const std::string name = textAt(node, "Name");
        const int port = toNumber(textAt(node, "Port"), 0);
        if (port < 1 || port > 65535)
            throw OnvifFault{"ter:ServiceNotSupported", "The port cannot be used"};
        if (name == "HTTP")
            wanted.httpPort = port;
        else if (name == "RTSP")
            wanted.rtspPort = port;
        else if (name != "HTTPS" || isTrue(textAt(node, "Enabled")))
            throw OnvifFault{"ter:ServiceNotSupported", "There is no such service"};
    }
    change(wanted);
}

} // namespace camsim
