#include "tests/platform/onvif/support/raw_peer.h"

#include <gtest/gtest.h>

#include <array>

RawServer::RawServer(const TestContext &context, std::string answer, End end)
    : m_service(g_socket_service_new())
    , m_cancellable(g_cancellable_new())
    , m_answer(std::move(answer))
    , m_end(end)
    , m_buffer(64 * 1024)
{
    EXPECT_TRUE(onvif::isThreadDefault(context.get()));
    const onvif::GObjectPtr<GSocketAddress> any(
        g_inet_socket_address_new_from_string("127.0.0.1", 0));
    GSocketAddress *effective = nullptr;
    EXPECT_TRUE(g_socket_listener_add_address(G_SOCKET_LISTENER(m_service.get()), any.get(),
                                              G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_TCP, nullptr,
                                              &effective, nullptr));
    const onvif::GObjectPtr<GSocketAddress> bound(effective);
    m_port = g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(bound.get()));
    g_signal_connect(m_service.get(), "incoming", G_CALLBACK(incoming), this);
    g_socket_service_start(m_service.get());
}

RawServer::~RawServer()
{
    g_cancellable_cancel(m_cancellable.get());
    g_socket_service_stop(m_service.get());
    g_socket_listener_close(G_SOCKET_LISTENER(m_service.get()));
    g_signal_handlers_disconnect_by_data(m_service.get(), this);
}

std::string RawServer::service() const
{
    return "http://127.0.0.1:" + std::to_string(m_port) + "/onvif/device_service";
}

gboolean RawServer::incoming(GSocketService *, GSocketConnection *connection, GObject *,
                             gpointer data)
{
    auto *self = static_cast<RawServer *>(data);
    self->m_connections.push_back(onvif::shareObject(connection));
    GInputStream *input = g_io_stream_get_input_stream(G_IO_STREAM(connection));
    g_object_set_data(G_OBJECT(input), "connection", connection);
    g_input_stream_read_async(input, self->m_buffer.data(), self->m_buffer.size(),
                              G_PRIORITY_DEFAULT, self->m_cancellable.get(), requestRead, self);
    return TRUE;
}

void RawServer::requestRead(GObject *stream, GAsyncResult *result, gpointer data)
{
    GError *error = nullptr;
    const gssize length = g_input_stream_read_finish(G_INPUT_STREAM(stream), result, &error);
    const onvif::GErrorPtr failure(error);
    if (length <= 0)
        return;
    auto *self = static_cast<RawServer *>(data);
    auto *connection = G_IO_STREAM(g_object_get_data(stream, "connection"));
    // The other end may close before it has all of it.
    GSocket *socket = g_socket_connection_get_socket(G_SOCKET_CONNECTION(connection));
    g_socket_set_blocking(socket, FALSE);
    g_socket_send(socket, self->m_answer.data(), self->m_answer.size(), nullptr, nullptr);
    if (self->m_end == End::Close)
        g_socket_shutdown(socket, FALSE, TRUE, nullptr);
}

UdpPeer::UdpPeer(const TestContext &context, Answer answer)
    : m_answer(std::move(answer))
    , m_socket(g_socket_new(G_SOCKET_FAMILY_IPV4, G_SOCKET_TYPE_DATAGRAM, G_SOCKET_PROTOCOL_UDP,
                            nullptr))
{
    const onvif::GObjectPtr<GSocketAddress> any(
        g_inet_socket_address_new_from_string("127.0.0.1", 0));
    EXPECT_TRUE(g_socket_bind(m_socket.get(), any.get(), FALSE, nullptr));
    g_socket_set_blocking(m_socket.get(), FALSE);
    m_source.reset(g_socket_create_source(m_socket.get(), G_IO_IN, nullptr));
    g_source_set_callback(m_source.get(), G_SOURCE_FUNC(readable), this, nullptr);
    g_source_attach(m_source.get(), context.get());
}

std::string UdpPeer::target() const
{
    const onvif::GObjectPtr<GSocketAddress> address(
        g_socket_get_local_address(m_socket.get(), nullptr));
    return "127.0.0.1:" +
           std::to_string(g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(address.get())));
}

gboolean UdpPeer::readable(GSocket *, GIOCondition, gpointer data)
{
    auto *self = static_cast<UdpPeer *>(data);
    std::array<char, 65'536> buffer = {};
    GSocketAddress *from = nullptr;
    const gssize length = g_socket_receive_from(self->m_socket.get(), &from, buffer.data(),
                                                buffer.size(), nullptr, nullptr);
    const onvif::GObjectPtr<GSocketAddress> sender(from);
    if (length < 0 || !sender)
        return G_SOURCE_CONTINUE;
    self->m_received.emplace_back(buffer.data(), static_cast<std::size_t>(length));
    for (const std::string &answer : self->m_answer(self->m_received.back()))
        g_socket_send_to(self->m_socket.get(), sender.get(), answer.data(), answer.size(), nullptr,
                         nullptr);
    return G_SOURCE_CONTINUE;
}
