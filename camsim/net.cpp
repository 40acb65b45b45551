#include "camsim/net.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace camsim::net {

namespace {

int bindSocket(int type, const std::string &address, int port, bool reuse)
{
    sockaddr_in name{};
    if (!parseAddress(address, port, name))
        return -1;
    const int handle = socket(AF_INET, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (handle < 0)
        return -1;
    const int on = reuse ? 1 : 0;
    setsockopt(handle, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (bind(handle, reinterpret_cast<const sockaddr *>(&name), sizeof name) != 0) {
        close(handle);
        return -1;
    }
    return handle;
}

} // namespace

bool parseAddress(const std::string &address, int port, sockaddr_in &result)
{
    result = {};
    result.sin_family = AF_INET;
    result.sin_port = htons(static_cast<std::uint16_t>(port));
    return inet_pton(AF_INET, address.c_str(), &result.sin_addr) == 1;
}

bool isAddress(const std::string &text)
{
    sockaddr_in ignored{};
    return parseAddress(text, 0, ignored);
}

bool isInSubnet(const std::string &address, const std::string &member, int prefix)
{
    sockaddr_in one{};
    sockaddr_in other{};
    if (!parseAddress(address, 0, one) || !parseAddress(member, 0, other))
        return false;
    const std::uint32_t mask = prefix <= 0 ? 0 : ~std::uint32_t{0} << (32 - prefix);
    return ((ntohl(one.sin_addr.s_addr) ^ ntohl(other.sin_addr.s_addr)) & mask) == 0;
}

int bindTcp(const std::string &address, int port)
{
    return bindSocket(SOCK_STREAM, address, port, true);
}

int bindUdp(const std::string &address, int port, bool shared)
{
    return bindSocket(SOCK_DGRAM, address, port, shared);
}

bool canBind(const std::string &address)
{
    const int handle = bindTcp(address, 0);
    if (handle >= 0)
        close(handle);
    return handle >= 0;
}

int connectTcp(const std::string &address, int port)
{
    sockaddr_in name{};
    if (!parseAddress(address, port, name))
        return -1;
    const int handle = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (handle < 0)
        return -1;
    const int on = 1;
    setsockopt(handle, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    // On success the connection is still being made; failure shows when it is used.
    connect(handle, reinterpret_cast<const sockaddr *>(&name), sizeof name);
    return handle;
}

int portOf(int handle)
{
    sockaddr_in name{};
    socklen_t size = sizeof name;
    if (getsockname(handle, reinterpret_cast<sockaddr *>(&name), &size) != 0)
        return 0;
    return ntohs(name.sin_port);
}

} // namespace camsim::net
