#pragma once

#include "platform/base/glib_ptr.h"
#include "platform/onvif/net_address.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace onvif {

/// A UDP socket on a main context: sends datagrams without waiting, hands over what comes in.
class DiscoverySocket
{
public:
    /// text: one datagram, valid during the call. sender: address without port.
    using Received = std::function<void(std::string_view text, const std::string &sender)>;

    /// Binds to a port that the system chooses, on this local address or (nullopt) on all of the
    /// family. nullptr when the system refuses.
    static std::unique_ptr<DiscoverySocket> open(GMainContext *context, GSocketFamily family,
                                                 std::optional<Ipv4> local, Received received);

    /// Datagrams that cannot be sent are lost, as on the network.
    void send(GSocketAddress *to, const std::string &datagram);

private:
    DiscoverySocket() = default;

    static gboolean readable(GSocket *socket, GIOCondition condition, gpointer self);
    void receiveSome();

    base::GObjectPtr<GSocket> m_socket;
    base::GSourcePtr m_source;
    Received m_received;
};

/// The host of an internet address as text, without port, with the interface where it is a
/// link-local IPv6 address ("fe80::1%eth0"); empty for other addresses.
std::string hostText(GSocketAddress *address);

} // namespace onvif
