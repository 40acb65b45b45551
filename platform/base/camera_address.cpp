#include "platform/base/camera_address.h"

#include "platform/base/glib_ptr.h"
#include "platform/base/text.h"

#include <gio/gio.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace base {
namespace {

constexpr size_t maxText = 2048;
constexpr size_t maxHost = 253; // RFC 1035 2.3.4, in printed form
constexpr uint16_t rtspPort = 554;
constexpr uint16_t rtspsPort = 322;

struct Scheme
{
    std::string_view prefix;
    bool tls;
    uint16_t port;
};

constexpr std::array<Scheme, 4> schemes{{{"rtsp://", false, rtspPort},
                                         {"rtsps://", true, rtspsPort},
                                         {"http://", false, 80},
                                         {"https://", true, 443}}};

std::optional<uint16_t> parsePort(std::string_view text)
{
    if (text.empty() || text.size() > 5)
        return std::nullopt;
    unsigned value = 0;
    for (const char c : text) {
        if (!g_ascii_isdigit(c))
            return std::nullopt;
        value = value * 10 + static_cast<unsigned>(c - '0');
    }
    if (value == 0 || value > 65535)
        return std::nullopt;
    return static_cast<uint16_t>(value);
}

bool isHostName(std::string_view text)
{
    if (text.empty() || text.size() > maxHost || text.front() == '.' || text.front() == '-')
        return false;
    return std::all_of(text.begin(), text.end(), [](char c) {
        return g_ascii_isalnum(c) || c == '.' || c == '-' || c == '_';
    });
}

bool isIpv6(std::string_view text)
{
    // The zone ("%eth0") is not part of what GLib's parser takes for granted everywhere.
    const size_t percent = text.find('%');
    if (percent != std::string_view::npos && !isHostName(text.substr(percent + 1)))
        return false;
    const std::string address(text.substr(0, percent));
    const GObjectPtr<GInetAddress> parsed(g_inet_address_new_from_string(address.c_str()));
    return parsed && g_inet_address_get_family(parsed.get()) == G_SOCKET_FAMILY_IPV6;
}

/// host, host:port, [v6], [v6]:port or a bare IPv6 address.
bool parseAuthority(std::string_view text, CameraAddress &address)
{
    std::string_view host = text;
    std::string_view port;
    std::string bracketed;
    bool named = false;
    if (!text.empty() && text.front() == '[') {
        const size_t end = text.find(']');
        if (end == std::string_view::npos)
            return false;
        bracketed = text.substr(1, end - 1);
        // In a full address the interface of a link-local address comes after "%25" (RFC 6874 2).
        if (const size_t escaped = bracketed.find("%25");
            escaped != std::string::npos && escaped + 3 < bracketed.size())
            bracketed.erase(escaped + 1, 2);
        host = bracketed;
        const std::string_view rest = text.substr(end + 1);
        if (!isIpv6(host) || (!rest.empty() && rest.front() != ':'))
            return false;
        named = !rest.empty();
        port = named ? rest.substr(1) : rest;
    } else if (!isIpv6(text)) {
        const size_t colon = text.find(':');
        named = colon != std::string_view::npos;
        host = text.substr(0, colon);
        port = named ? text.substr(colon + 1) : std::string_view();
        if (!isHostName(host))
            return false;
    }
    if (named) {
        const std::optional<uint16_t> number = parsePort(port);
        if (!number)
            return false;
        address.endpoint.port = *number;
        address.hasPort = true;
    }
    address.endpoint.host = host;
    return true;
}

std::string percentDecoded(std::string_view text)
{
    const GTextPtr decoded(g_uri_unescape_segment(text.data(), text.data() + text.size(), nullptr));
    return decoded ? decoded.get() : std::string(text);
}

/// The endpoint's UUID as devices print it (ONVIF Core 7.3.1, RFC 4122 3), or any urn.
bool isUid(std::string_view text)
{
    if (startsWithNoCase(text, "urn:") || startsWithNoCase(text, "uuid:"))
        return text.back() != ':';
    return g_uuid_string_is_valid(std::string(text).c_str());
}

/// The characters that discovery lets through in a UID.
bool hasUidCharacters(std::string_view text)
{
    return std::all_of(
        text.begin(), text.end(),
        [](char c) {
            return g_ascii_isalnum(c) || std::string_view("-_.:").find(c) != std::string_view::npos;
        });
}

} // namespace

CameraAddress parseUrl(const std::string &text)
{
    CameraAddress address;
    if (text.size() > maxText || !hasNoWhitespace(text))
        return address;
    const auto scheme = std::find_if(schemes.begin(), schemes.end(), [&](const Scheme &candidate) {
        return startsWithNoCase(text, candidate.prefix);
    });
    if (scheme == schemes.end())
        return address;

    std::string_view rest = std::string_view(text).substr(scheme->prefix.size());
    const size_t pathStart = rest.find_first_of("/?#");
    std::string_view authority = rest.substr(0, pathStart);
    if (pathStart != std::string_view::npos) {
        const std::string_view path = rest.substr(pathStart, rest.find('#') - pathStart);
        if (path != "/")
            address.path = path.starts_with('?') ? "/" + std::string(path) : std::string(path);
    }
    // A password may hold "@": the last one ends it.
    const size_t at = authority.rfind('@');
    if (at != std::string_view::npos) {
        const std::string_view login = authority.substr(0, at);
        authority.remove_prefix(at + 1);
        const size_t colon = login.find(':');
        address.username = percentDecoded(login.substr(0, colon));
        if (colon != std::string_view::npos)
            address.password = percentDecoded(login.substr(colon + 1));
    }
    address.endpoint.port = scheme->port;
    address.endpoint.tls = scheme->tls;
    if (parseAuthority(authority, address))
        address.kind = CameraAddress::Kind::Host;
    return address;
}

CameraAddress parseCameraAddress(const std::string &text)
{
    const std::string word(trimmed(text));
    CameraAddress address;
    if (word.empty() || word.size() > maxText || !hasNoWhitespace(word))
        return address;
    if (startsWithNoCase(word, "rtsp://") || startsWithNoCase(word, "rtsps://"))
        return parseUrl(word);
    address.endpoint.port = rtspPort;
    if (!isUid(word) && parseAuthority(word, address)) {
        address.kind = CameraAddress::Kind::Host;
        // Some makers print short serials where others print UUIDs.
        const bool plain = !address.hasPort && word.find_first_of(".:[") == std::string::npos;
        address.uid = plain ? word : std::string();
    } else if (hasUidCharacters(word)) {
        address = {};
        address.kind = CameraAddress::Kind::Uid;
        address.uid = word;
    }
    return address;
}

std::string rtspOrigin(const Endpoint &endpoint)
{
    std::string origin = endpoint.tls ? "rtsps://" : "rtsp://";
    const bool isIpv6Host = endpoint.host.find(':') != std::string::npos;
    origin += isIpv6Host ? '[' + endpoint.host + ']' : endpoint.host;
    if (endpoint.port != (endpoint.tls ? rtspsPort : rtspPort))
        origin += ':' + std::to_string(endpoint.port);
    return origin;
}

bool hasNoWhitespace(const std::string &text)
{
    return std::none_of(
        text.begin(), text.end(),
        [](char c) {
            const auto byte = static_cast<unsigned char>(c);
            return byte <= 0x20 || byte == 0x7f;
        });
}

} // namespace base
