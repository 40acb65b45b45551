#include "platform/onvif/net_address.h"

#include "platform/base/glib_ptr.h"
#include "platform/base/text.h"

#include <bit>
#include <charconv>

namespace onvif {

namespace {

constexpr std::size_t maxAddressLength = 1024;
constexpr auto uriFlags = static_cast<GUriFlags>(G_URI_FLAGS_ENCODED | G_URI_FLAGS_PARSE_RELAXED |
                                                 G_URI_FLAGS_HAS_PASSWORD);

bool isLoopback(Ipv4 address)
{
    return (address >> 24) == 127;
}

// Text that may be part of a request line: no blanks, no control characters.
bool isPlainAddress(std::string_view text)
{
    if (text.empty() || text.size() > maxAddressLength)
        return false;
    for (const char c : text)
        if (static_cast<unsigned char>(c) <= 0x20 || c == 0x7F || c == '"' || c == '<' ||
            c == '>' || c == '\\')
            return false;
    return true;
}

std::string text(const char *maybeNull)
{
    return maybeNull ? maybeNull : "";
}

// In an address "%25" comes before the interface of an IPv6 address (RFC 6874 2).
std::string bracketed(const std::string &host)
{
    if (host.find(':') == std::string::npos)
        return host;
    const std::size_t percent = host.find('%');
    if (percent == std::string::npos)
        return '[' + host + ']';
    return '[' + host.substr(0, percent) + "%25" + host.substr(percent + 1) + ']';
}

// The usual form of an IPv6 address, without its interface; any other text as it is.
std::string plainHost(std::string_view host)
{
    if (host.find(':') == std::string_view::npos)
        return std::string(host);
    const std::string address(host.substr(0, host.find('%')));
    const base::GObjectPtr<GInetAddress> parsed(g_inet_address_new_from_string(address.c_str()));
    return parsed ? base::GTextPtr(g_inet_address_to_string(parsed.get())).get()
                  : std::string(host);
}

std::string pathAndQuery(GUri *uri)
{
    std::string path = text(g_uri_get_path(uri));
    if (path.empty() || path.front() != '/')
        path.insert(path.begin(), '/');
    if (const char *query = g_uri_get_query(uri))
        path += '?' + std::string(query);
    return path;
}

base::GUriPtr parseUri(std::string_view address)
{
    address = base::trimmed(address);
    if (!isPlainAddress(address))
        return nullptr;
    return base::GUriPtr(g_uri_parse(std::string(address).c_str(), uriFlags, nullptr));
}

constexpr int sameHost = 2;
constexpr int sameSubnet = 1;

// How well the host of an advertised address suits: 0 not at all.
int suitability(const HttpAddress &address, Ipv4 sender, Ipv4 subnetMask)
{
    const std::optional<Ipv4> host = parseIpv4(address.host);
    if (!host)
        return 0;
    if (*host == sender)
        return sameHost;
    if (isLoopback(*host) || isLoopback(sender))
        return isLoopback(*host) && isLoopback(sender) ? sameSubnet : 0;
    return subnetMask != 0 && (*host & subnetMask) == (sender & subnetMask) ? sameSubnet : 0;
}

} // namespace

std::optional<Ipv4> parseIpv4(std::string_view text)
{
    Ipv4 address = 0;
    const char *position = text.data();
    const char *end = text.data() + text.size();
    for (int octet = 0; octet < 4; ++octet) {
        if (octet > 0 && (position == end || *position++ != '.'))
            return std::nullopt;
        unsigned value = 0;
        const auto [next, error] = std::from_chars(position, end, value);
        // A leading zero would mean an octal number to some readers.
        const bool hasLeadingZero = next - position > 1 && *position == '0';
        if (error != std::errc() || value > 255 || hasLeadingZero)
            return std::nullopt;
        address = address << 8 | value;
        position = next;
    }
    return position == end ? std::optional(address) : std::nullopt;
}

std::string ipv4Text(Ipv4 address)
{
    return std::to_string(address >> 24) + '.' + std::to_string(address >> 16 & 255) + '.' +
           std::to_string(address >> 8 & 255) + '.' + std::to_string(address & 255);
}

Ipv4 maskFromPrefix(int prefixLength)
{
    if (prefixLength <= 0)
        return 0;
    return prefixLength >= 32 ? ~Ipv4(0) : ~Ipv4(0) << (32 - prefixLength);
}

int prefixFromMask(Ipv4 mask)
{
    return std::countl_one(mask);
}

bool isSameHost(std::string_view one, std::string_view other)
{
    return plainHost(one) == plainHost(other);
}

std::string HttpAddress::text() const
{
    std::string address = secure ? "https://" : "http://";
    address += bracketed(host);
    if (port != (secure ? 443 : 80))
        address += ':' + std::to_string(port);
    return address + path;
}

std::optional<HttpAddress> parseHttpAddress(std::string_view addressText)
{
    const base::GUriPtr uri = parseUri(addressText);
    if (!uri || text(g_uri_get_host(uri.get())).empty() || g_uri_get_userinfo(uri.get()))
        return std::nullopt;
    const std::string scheme = base::lowerAscii(text(g_uri_get_scheme(uri.get())));
    if (scheme != "http" && scheme != "https")
        return std::nullopt;
    HttpAddress address;
    address.secure = scheme == "https";
    address.host = g_uri_get_host(uri.get());
    address.port = g_uri_get_port(uri.get());
    if (address.port <= 0)
        address.port = address.secure ? 443 : 80;
    address.path = pathAndQuery(uri.get());
    return address;
}

std::string usualDeviceService(const std::string &host, int port)
{
    HttpAddress address;
    address.host = host;
    address.port = port;
    address.path = "/onvif/device_service";
    return address.text();
}

std::string chooseXAddr(const std::vector<std::string> &xaddrs, std::string_view sender,
                        Ipv4 subnetMask)
{
    const std::optional<Ipv4> senderAddress = parseIpv4(sender);
    std::optional<HttpAddress> chosen;
    int best = 0;
    for (const std::string &candidate : xaddrs) {
        std::optional<HttpAddress> address = parseHttpAddress(candidate);
        if (!address)
            continue;
        int suits = 0;
        if (senderAddress)
            suits = suitability(*address, *senderAddress, subnetMask);
        else if (isSameHost(address->host, sender))
            suits = sameHost;
        // The sender's text also has the interface of a link-local address.
        if (suits == 0 || !senderAddress)
            address->host = sender;
        suits = 2 * suits + (address->secure ? 1 : 2);
        if (suits > best) {
            best = suits;
            chosen = std::move(address);
        }
    }
    return chosen ? chosen->text() : usualDeviceService(std::string(sender));
}

std::string serviceAtDevice(std::string_view serviceAddress, const std::string &deviceAddress)
{
    std::optional<HttpAddress> service = parseHttpAddress(serviceAddress);
    const std::optional<HttpAddress> device = parseHttpAddress(deviceAddress);
    if (!service || !device)
        return {};
    const bool isElsewhere = !isSameHost(service->host, device->host);
    service->host = device->host;
    // Behind address translation the port that works is the one the device was reached by.
    if (isElsewhere || service->secure != device->secure) {
        service->secure = device->secure;
        service->port = device->port;
    }
    return service->text();
}

std::string streamAtHost(std::string_view streamAddress, const std::string &host)
{
    const base::GUriPtr uri = parseUri(streamAddress);
    if (!uri || text(g_uri_get_host(uri.get())).empty())
        return {};
    const std::string scheme = base::lowerAscii(text(g_uri_get_scheme(uri.get())));
    if (scheme != "rtsp" && scheme != "rtsps")
        return {};
    std::string address = scheme + "://" + bracketed(host);
    if (g_uri_get_port(uri.get()) > 0)
        address += ':' + std::to_string(g_uri_get_port(uri.get()));
    return address + pathAndQuery(uri.get());
}

} // namespace onvif
