#pragma once

#include <cstdint>
#include <string>

struct sockaddr_in;

namespace camsim {

/// Small helpers around IPv4 sockets. Handles are -1 on failure.
namespace net {

/// A non-blocking TCP socket bound to the address; not listening yet. port 0: any free one.
int bindTcp(const std::string &address, int port);
int bindUdp(const std::string &address, int port, bool shared);
/// A non-blocking socket on its way to the address.
int connectTcp(const std::string &address, int port);
/// The port that a socket is bound to.
int portOf(int handle);
bool parseAddress(const std::string &address, int port, sockaddr_in &result);
/// Whether text is an IPv4 address in dotted form.
bool isAddress(const std::string &text);
/// Whether two IPv4 addresses share a subnet with a mask of this length.
bool isInSubnet(const std::string &address, const std::string &member, int prefix);
/// Whether this machine can be reached at the address.
bool canBind(const std::string &address);

} // namespace net
} // namespace camsim
