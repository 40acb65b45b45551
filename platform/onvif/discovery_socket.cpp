#include "platform/onvif/discovery_socket.h"

#include "platform/onvif/network_interfaces.h"
#include "platform/onvif/ws_discovery_message.h"

#include <gio/gnetworking.h>

#include <vector>

namespace onvif {

namespace {

// Datagrams read in one go before other sources of the context have their turn.
constexpr int datagramsPerTurn = 32;
constexpr int receiveBuffer = 2 * 1024 * 1024;

base::GObjectPtr<GSocketAddress> localAddress(GSocketFamily family, std::optional<Ipv4> local)
{
    base::GObjectPtr<GInetAddress> address(
        local ? g_inet_address_new_from_string(ipv4Text(*local).c_str())
              : g_inet_address_new_any(family));
    return base::GObjectPtr<GSocketAddress>(g_inet_socket_address_new(address.get(), 0));
}

bool setMulticastInterface(GSocket *socket, Ipv4 address)
{
    in_addr interfaceAddress = {};
    interfaceAddress.s_addr = htonl(address);
    return setsockopt(g_socket_get_fd(socket), IPPROTO_IP, IP_MULTICAST_IF,
                      reinterpret_cast<const char *>(&interfaceAddress),
                      sizeof interfaceAddress) == 0;
}

} // namespace

std::string hostText(GSocketAddress *address)
{
    if (!G_IS_INET_SOCKET_ADDRESS(address))
        return {};
    auto *socketAddress = G_INET_SOCKET_ADDRESS(address);
    GInetAddress *host = g_inet_socket_address_get_address(socketAddress);
    const std::string text = base::GTextPtr(g_inet_address_to_string(host)).get();
    // A link-local address says nothing without its interface (RFC 4007 11).
    const bool isScoped = g_inet_address_get_family(host) == G_SOCKET_FAMILY_IPV6 &&
                          g_inet_address_get_is_link_local(host);
    const unsigned scope = isScoped ? g_inet_socket_address_get_scope_id(socketAddress) : 0;
    return scope != 0 ? text + '%' + interfaceName(scope) : text;
}

std::unique_ptr<DiscoverySocket> DiscoverySocket::open(GMainContext *context, GSocketFamily family,
                                                       std::optional<Ipv4> local, Received received)
{
    base::GObjectPtr<GSocket> socket(
        g_socket_new(family, G_SOCKET_TYPE_DATAGRAM, G_SOCKET_PROTOCOL_UDP, nullptr));
    if (!socket)
        return nullptr;
    g_socket_set_blocking(socket.get(), FALSE);
    if (!g_socket_bind(socket.get(), localAddress(family, local).get(), FALSE, nullptr))
        return nullptr;
    if (local && !setMulticastInterface(socket.get(), *local))
        return nullptr;
    // Many devices answer at the same moment; the system may grant less.
    g_socket_set_option(socket.get(), SOL_SOCKET, SO_RCVBUF, receiveBuffer, nullptr);

    std::unique_ptr<DiscoverySocket> self(new DiscoverySocket);
    self->m_received = std::move(received);
    self->m_source.reset(g_socket_create_source(socket.get(), G_IO_IN, nullptr));
    self->m_socket = std::move(socket);
    g_source_set_callback(self->m_source.get(), G_SOURCE_FUNC(readable), self.get(), nullptr);
    g_source_attach(self->m_source.get(), context);
    return self;
}

void DiscoverySocket::send(GSocketAddress *to, const std::string &datagram)
{
    g_socket_send_to(m_socket.get(), to, datagram.data(), datagram.size(), nullptr, nullptr);
}

gboolean DiscoverySocket::readable(GSocket *, GIOCondition, gpointer self)
{
    static_cast<DiscoverySocket *>(self)->receiveSome();
    return G_SOURCE_CONTINUE;
}

void DiscoverySocket::receiveSome()
{
    // The receiver may destroy this object: what the loop needs is kept by value.
    const base::GObjectPtr<GSocket> socket = base::shareObject(m_socket.get());
    GSource *source = g_source_ref(m_source.get());
    const Received received = m_received;
    std::vector<char> buffer(maxDatagram);
    for (int i = 0; i < datagramsPerTurn && !g_source_is_destroyed(source); ++i) {
        GSocketAddress *from = nullptr;
        GError *error = nullptr;
        const gssize length = g_socket_receive_from(socket.get(), &from, buffer.data(),
                                                    buffer.size(), nullptr, &error);
        const base::GObjectPtr<GSocketAddress> sender(from);
        const base::GErrorPtr failure(error);
        if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK))
            break;
        // A target that is not there shows as "connection refused" here; the others go on.
        if (length < 0 || !sender)
            continue;
        received({buffer.data(), static_cast<std::size_t>(length)}, hostText(sender.get()));
    }
    g_source_unref(source);
}

} // namespace onvif
