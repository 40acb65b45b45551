#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace onvif {

/// IPv4 addresses are numbers in host order: 127.0.0.1 is 0x7F000001.
using Ipv4 = std::uint32_t;

/// Reads "192.168.1.20"; nullopt for everything else.
std::optional<Ipv4> parseIpv4(std::string_view text);
std::string ipv4Text(Ipv4 address);

/// The mask with this number of leading one bits (0 to 32), and the number of leading one bits.
Ipv4 maskFromPrefix(int prefixLength);
int prefixFromMask(Ipv4 mask);

/// An http or https address, taken apart.
struct HttpAddress
{
    bool secure = false;
    std::string host; ///< without brackets; a link-local IPv6 address with its interface
    int port = 80;
    std::string path; ///< with the query, begins with "/"

    [[nodiscard]] std::string text() const;
};

/// Whether two texts are the same host. IPv6 addresses are compared as numbers and without the
/// interface ("%eth0"), which each computer names in its own way.
bool isSameHost(std::string_view one, std::string_view other);

/// nullopt when it is no http or https address, or one that carries a user name.
std::optional<HttpAddress> parseHttpAddress(std::string_view text);

/// ONVIF's usual device service of a host (ONVIF Core 5.1.1), port 80 unless another is given.
std::string usualDeviceService(const std::string &host, int port = 80);

/// The address of a device's service among those that it advertises: http before https, on the
/// sender itself before its subnet. One that points elsewhere (a host name, an address behind
/// translation) is not followed: its port and path are looked for at the sender, as are those of
/// one on the loopback interface unless the sender is there. Without any, the usual address at the
/// sender.
std::string chooseXAddr(const std::vector<std::string> &xaddrs, std::string_view sender,
                        Ipv4 subnetMask);

/// The address of another service of a device (media), as the device reports it, rebased onto the
/// host and scheme that the device itself is reached by: behind address translation devices report
/// an address that is unreachable, and a false one must not get the credentials. Empty when
/// unreadable.
std::string serviceAtDevice(std::string_view serviceAddress, const std::string &deviceAddress);

/// A stream address held to a host in the same way, without user name and password. Empty when it
/// is no rtsp or rtsps address.
std::string streamAtHost(std::string_view streamAddress, const std::string &host);

} // namespace onvif
