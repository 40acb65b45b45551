#include "platform/onvif/ws_discovery_message.h"

#include "platform/base/text.h"
#include "platform/onvif/xml_message.h"

#include <glib.h>

#include <algorithm>

namespace onvif {

namespace {

constexpr std::size_t maxXAddrs = 16;
constexpr std::size_t maxScopes = 128;
constexpr std::size_t maxTypes = 16;

std::string envelope(std::string_view action, std::string_view messageId, std::string_view body)
{
    std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>)"
                       R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope")"
                       R"( xmlns:a="http://schemas.xmlsoap.org/ws/2004/08/addressing")"
                       R"( xmlns:d="http://schemas.xmlsoap.org/ws/2005/04/discovery")"
                       R"( xmlns:tds="http://www.onvif.org/ver10/device/wsdl")"
                       R"( xmlns:dn="http://www.onvif.org/ver10/network/wsdl">)"
                       R"(<s:Header><a:Action s:mustUnderstand="1">)"
                       R"(http://schemas.xmlsoap.org/ws/2005/04/discovery/)";
    text += action;
    text += "</a:Action><a:MessageID>urn:uuid:";
    text += messageId;
    text += "</a:MessageID>"
            "<a:ReplyTo><a:Address>"
            "http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous"
            "</a:Address></a:ReplyTo>"
            R"(<a:To s:mustUnderstand="1">urn:schemas-xmlsoap-org:ws:2005:04:discovery</a:To>)"
            "</s:Header><s:Body>";
    text += body;
    text += "</s:Body></s:Envelope>";
    return text;
}

std::vector<std::string> words(std::string_view text, std::size_t maxCount)
{
    constexpr std::string_view blanks = " \t\r\n";
    std::vector<std::string> found;
    std::size_t position = text.find_first_not_of(blanks);
    while (position != std::string_view::npos && found.size() < maxCount) {
        const std::size_t end = text.find_first_of(blanks, position);
        found.emplace_back(text.substr(position, end - position));
        position = text.find_first_not_of(blanks, end);
    }
    return found;
}

// The namespace of a prefix at a node.
std::string_view namespaceOf(pugi::xml_node node, const std::string &prefix)
{
    const std::string name = prefix.empty() ? "xmlns" : "xmlns:" + prefix;
    for (; node; node = node.parent())
        if (const pugi::xml_attribute attribute = node.attribute(name.c_str()))
            return attribute.value();
    return {};
}

// Printers and computers announce a "Device" too, that of another namespace.
bool isOnvifType(pugi::xml_node types, const std::string &type)
{
    const std::size_t colon = type.find(':');
    const std::string prefix = colon == std::string::npos ? std::string() : type.substr(0, colon);
    const std::string local = type.substr(colon == std::string::npos ? 0 : colon + 1);
    return local == "NetworkVideoTransmitter" ||
           (local == "Device" &&
            namespaceOf(types, prefix).find("onvif.org") != std::string_view::npos);
}

bool isOnvifDevice(pugi::xml_node types, const std::vector<std::string> &scopes)
{
    const std::vector<std::string> names = words(textOf(types), maxTypes);
    return std::any_of(scopes.begin(), scopes.end(),
                       [](const std::string &scope) {
                           return base::lowerAscii(scope).starts_with("onvif://");
                       }) ||
           std::any_of(names.begin(), names.end(),
                       [types](const std::string &name) { return isOnvifType(types, name); });
}

std::optional<DiscoveredDevice> parseDevice(pugi::xml_node match)
{
    DiscoveredDevice device;
    device.uid = base::uidFromEndpoint(textOf(child(match, {"EndpointReference", "Address"})));
    const std::vector<std::string> scopes = words(textOf(child(match, "Scopes")), maxScopes);
    if (device.uid.empty() || !isOnvifDevice(child(match, "Types"), scopes))
        return std::nullopt;
    device.xaddrs = words(textOf(child(match, "XAddrs")), maxXAddrs);
    ScopeTexts texts = textsFromScopes(scopes);
    device.name = std::move(texts.name);
    device.model = std::move(texts.model);
    device.location = std::move(texts.location);
    device.mac = texts.mac;
    return device;
}

std::vector<pugi::xml_node> matchesIn(pugi::xml_node body)
{
    if (const pugi::xml_node matches = child(body, "ProbeMatches"))
        return children(matches, "ProbeMatch");
    if (const pugi::xml_node matches = child(body, "ResolveMatches"))
        return children(matches, "ResolveMatch");
    return children(body, "Hello");
}

} // namespace

std::string buildProbe(ProbeType type, std::string_view messageId)
{
    const char *name = type == ProbeType::Device ? "tds:Device" : "dn:NetworkVideoTransmitter";
    return envelope("Probe", messageId,
                    std::string("<d:Probe><d:Types>") + name + "</d:Types></d:Probe>");
}

std::string buildResolve(std::string_view uid, std::string_view messageId)
{
    // Endpoints that are no URN are their own UID, see uidFromEndpoint.
    const std::string text(uid);
    const std::string endpoint = g_uuid_string_is_valid(text.c_str()) ? "urn:uuid:" + text : text;
    return envelope("Resolve", messageId,
                    "<d:Resolve><a:EndpointReference><a:Address>" + base::xmlEscape(endpoint) +
                        "</a:Address></a:EndpointReference></d:Resolve>");
}

std::optional<DiscoveryAnswer> parseDiscoveryAnswer(std::string_view datagram)
{
    if (datagram.size() > maxDatagram)
        return std::nullopt;
    const std::optional<XmlMessage> message = XmlMessage::parse(datagram);
    if (!message)
        return std::nullopt;
    const std::vector<pugi::xml_node> matches = matchesIn(message->body());
    if (matches.empty())
        return std::nullopt;
    DiscoveryAnswer answer;
    answer.relatesTo =
        base::lowerAscii(base::uidFromEndpoint(textOf(child(message->header(), "RelatesTo"))));
    for (const pugi::xml_node match : matches) {
        if (answer.devices.size() == maxDevicesInAnswer)
            break;
        if (std::optional<DiscoveredDevice> device = parseDevice(match))
            answer.devices.push_back(std::move(*device));
    }
    return answer;
}

} // namespace onvif
