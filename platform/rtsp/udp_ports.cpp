#include "platform/rtsp/udp_ports.h"

#include "platform/base/timer.h"

#include <gio/gnetworking.h>

#include <array>
#include <vector>

namespace rtsp {
namespace {

constexpr int maxTries = 64;
// A key frame of a large picture comes in one burst.
constexpr int receiveBuffer = 2 * 1024 * 1024;
constexpr unsigned batch = 32;
constexpr size_t maxDatagram = 65536;
// After so many batches others get their turn.
constexpr int maxBatches = 4;

base::GObjectPtr<GSocket> bindTo(GSocketFamily family, uint16_t port)
{
    base::GObjectPtr<GSocket> socket(
        g_socket_new(family, G_SOCKET_TYPE_DATAGRAM, G_SOCKET_PROTOCOL_UDP, nullptr));
    if (!socket)
        return nullptr;
    const base::GObjectPtr<GInetAddress> any(g_inet_address_new_any(family));
    const base::GObjectPtr<GSocketAddress> address(g_inet_socket_address_new(any.get(), port));
    g_socket_set_blocking(socket.get(), FALSE);
    if (!g_socket_bind(socket.get(), address.get(), FALSE, nullptr))
        return nullptr;
    g_socket_set_option(socket.get(), SOL_SOCKET, SO_RCVBUF, receiveBuffer, nullptr);
    return socket;
}

uint16_t portOf(GSocket *socket)
{
    const base::GObjectPtr<GSocketAddress> address(g_socket_get_local_address(socket, nullptr));
    return address ? g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(address.get())) : 0;
}

/// Memory for one batch, the same for all sockets of a thread: they are read one after the other.
struct Batch
{
    Batch()
    {
        for (unsigned i = 0; i < batch; ++i) {
            vectors[i] = {memory.data() + i * maxDatagram, maxDatagram};
            messages[i] = {};
            messages[i].address = &addresses[i];
            messages[i].vectors = &vectors[i];
            messages[i].num_vectors = 1;
        }
    }

    std::vector<uint8_t> memory = std::vector<uint8_t>(batch * maxDatagram);
    std::array<GInputVector, batch> vectors;
    std::array<GSocketAddress *, batch> addresses{};
    std::array<GInputMessage, batch> messages;
};

Batch &sharedBatch()
{
    thread_local const std::unique_ptr<Batch> shared = std::make_unique<Batch>();
    return *shared;
}

} // namespace

struct UdpPorts::Socket
{
    explicit Socket(base::GObjectPtr<GSocket> made) : socket(std::move(made)) {}
    ~Socket()
    {
        if (source) {
            g_source_destroy(source);
            g_source_unref(source);
        }
        g_socket_close(socket.get(), nullptr);
    }
    Socket(const Socket &) = delete;
    Socket &operator=(const Socket &) = delete;

    void watch(UdpPorts *toCall)
    {
        owner = toCall;
        const auto ready = +[](GSocket *, GIOCondition, gpointer data) -> gboolean {
            auto *self = static_cast<Socket *>(data);
            self->owner->read(*self);
            return G_SOURCE_CONTINUE;
        };
        source = g_socket_create_source(socket.get(), G_IO_IN, nullptr);
        g_source_set_callback(source, G_SOURCE_FUNC(ready), this, nullptr);
        g_source_attach(source, g_main_context_get_thread_default());
    }
    void send(std::span<const uint8_t> data) const
    {
        if (peer)
            g_socket_send_to(socket.get(), peer.get(), reinterpret_cast<const gchar *>(data.data()),
                             data.size(), nullptr, nullptr);
    }

    base::GObjectPtr<GSocket> socket;
    base::GObjectPtr<GSocketAddress> peer;
    GSource *source = nullptr;
    UdpPorts *owner = nullptr;
};

std::unique_ptr<UdpPorts> UdpPorts::open(GSocketFamily family, Received received)
{
    for (int i = 0; i < maxTries; ++i) {
        base::GObjectPtr<GSocket> first = bindTo(family, 0);
        const uint16_t port = first ? portOf(first.get()) : 0;
        if (port == 0)
            return nullptr;
        base::GObjectPtr<GSocket> second = bindTo(family, port ^ 1);
        if (!second)
            continue;
        if (port % 2 == 1)
            std::swap(first, second);
        return std::unique_ptr<UdpPorts>(new UdpPorts(std::make_unique<Socket>(std::move(first)),
                                                      std::make_unique<Socket>(std::move(second)),
                                                      std::move(received)));
    }
    return nullptr;
}

UdpPorts::UdpPorts(std::unique_ptr<Socket> rtp, std::unique_ptr<Socket> rtcp, Received received)
    : m_rtp(std::move(rtp))
    , m_rtcp(std::move(rtcp))
    , m_numbers(portOf(m_rtp->socket.get()), portOf(m_rtcp->socket.get()))
    , m_received(std::move(received))
{
    m_rtp->watch(this);
    m_rtcp->watch(this);
}

UdpPorts::~UdpPorts() = default;

void UdpPorts::setPeer(GInetSocketAddress *camera, const std::string &source,
                       std::optional<NumberPair> serverPorts)
{
    GInetAddress *address = g_inet_socket_address_get_address(camera);
    m_camera.reset(G_INET_ADDRESS(g_object_ref(address)));
    m_source.reset(source.empty() ? nullptr : g_inet_address_new_from_string(source.c_str()));
    if (!serverPorts)
        return;
    const bool isIpv6 = g_inet_address_get_family(address) == G_SOCKET_FAMILY_IPV6;
    const guint32 scope = isIpv6 ? g_inet_socket_address_get_scope_id(camera) : 0;
    const auto peer = [&](uint16_t port) {
        return base::GObjectPtr<GSocketAddress>(
            G_SOCKET_ADDRESS(g_object_new(G_TYPE_INET_SOCKET_ADDRESS, "address", address, "port",
                                          guint{port}, "scope-id", scope, nullptr)));
    };
    m_rtp->peer = peer(serverPorts->first);
    m_rtcp->peer = peer(serverPorts->second);
}

void UdpPorts::punchHoles()
{
    // The smallest RTP packet (RFC 3550 5.1) and an empty receiver report (6.4.2).
    constexpr std::array<uint8_t, 12> rtp = {0x80};
    constexpr std::array<uint8_t, 8> rtcp = {0x80, 201, 0, 1};
    m_rtp->send(rtp);
    m_rtcp->send(rtcp);
}

void UdpPorts::sendRtp(std::span<const uint8_t> data)
{
    m_rtp->send(data);
}

void UdpPorts::sendRtcp(std::span<const uint8_t> data)
{
    m_rtcp->send(data);
}

bool UdpPorts::isFromCamera(GSocketAddress *sender) const
{
    if (!sender || !G_IS_INET_SOCKET_ADDRESS(sender) || !m_camera)
        return false;
    GInetAddress *address = g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(sender));
    return g_inet_address_equal(address, m_camera.get()) ||
           (m_source && g_inet_address_equal(address, m_source.get()));
}

void UdpPorts::read(Socket &socket)
{
    Batch &shared = sharedBatch();
    const bool isRtcp = &socket == m_rtcp.get();
    for (int i = 0; i < maxBatches; ++i) {
        const gint count = g_socket_receive_messages(socket.socket.get(), shared.messages.data(),
                                                     batch, 0, nullptr, nullptr);
        for (gint each = 0; each < count; ++each) {
            const auto index = static_cast<size_t>(each);
            const base::GObjectPtr<GSocketAddress> sender(
                std::exchange(shared.addresses[index], nullptr));
            if (isFromCamera(sender.get()))
                m_received(isRtcp, {shared.memory.data() + index * maxDatagram,
                                    shared.messages[index].bytes_received});
        }
        if (count < static_cast<gint>(batch))
            return;
    }
}

} // namespace rtsp
