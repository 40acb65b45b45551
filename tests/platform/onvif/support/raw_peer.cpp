#include "tests/platform/onvif/support/raw_peer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

constexpr guint millisecondsBetweenDatagrams = 10;

// Whether head and body of an HTTP request are there.
bool isWhole(const std::string &request)
{
    const std::size_t head = request.find("\r\n\r\n");
    if (head == std::string::npos)
        return false;
    const std::size_t length = request.find("Content-Length: ");
    const std::size_t body =
        length < head ? std::strtoul(request.c_str() + length + 16, nullptr, 10) : 0;
    return request.size() >= head + 4 + body;
}

} // namespace

RawServer::RawServer(const TestContext &context, std::vector<std::string> answers, End end,
                     std::string host)
    : m_service(g_socket_service_new())
    , m_cancellable(g_cancellable_new())
    , m_answers(std::move(answers))
    , m_end(end)
    , m_host(std::move(host))
{
    EXPECT_TRUE(base::isThreadDefault(context.get()));
    const base::GObjectPtr<GSocketAddress> any(
        g_inet_socket_address_new_from_string(m_host.c_str(), 0));
    GSocketAddress *effective = nullptr;
    EXPECT_TRUE(g_socket_listener_add_address(G_SOCKET_LISTENER(m_service.get()), any.get(),
                                              G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_TCP, nullptr,
                                              &effective, nullptr));
    const base::GObjectPtr<GSocketAddress> bound(effective);
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
    return "http://" + m_host + ':' + std::to_string(m_port) + "/onvif/device_service";
}

gboolean RawServer::incoming(GSocketService *, GSocketConnection *connection, GObject *,
                             gpointer data)
{
    auto *self = static_cast<RawServer *>(data);
    auto &made = *self->m_connections.emplace_back(std::make_unique<Connection>());
    made.server = self;
    made.stream = base::shareObject(connection);
    self->read(made);
    return TRUE;
}

void RawServer::read(Connection &connection)
{
    g_input_stream_read_async(g_io_stream_get_input_stream(G_IO_STREAM(connection.stream.get())),
                              connection.buffer.data(), connection.buffer.size(),
                              G_PRIORITY_DEFAULT, m_cancellable.get(), readSome, &connection);
}

void RawServer::readSome(GObject *stream, GAsyncResult *result, gpointer data)
{
    GError *error = nullptr;
    const gssize length = g_input_stream_read_finish(G_INPUT_STREAM(stream), result, &error);
    const base::GErrorPtr failure(error);
    if (length <= 0)
        return;
    auto &connection = *static_cast<Connection *>(data);
    connection.received.append(connection.buffer.data(), static_cast<std::size_t>(length));
    // What is no HTTP request is answered as well.
    const bool isHttp = connection.received.starts_with("POST ");
    if (!isHttp || isWhole(connection.received))
        connection.server->answer(connection);
    else
        connection.server->read(connection);
}

void RawServer::answer(Connection &connection)
{
    // The other end may close before it has all of it.
    GSocket *socket = g_socket_connection_get_socket(connection.stream.get());
    g_socket_set_blocking(socket, FALSE);
    if (m_end == End::CloseAtSecond && connection.answered == 1) {
        g_socket_close(socket, nullptr);
        return;
    }
    const std::string &answer = m_answers[std::min(m_requests.size(), m_answers.size() - 1)];
    m_requests.push_back(std::move(connection.received));
    connection.received.clear();
    ++connection.answered;
    g_socket_send(socket, answer.data(), answer.size(), nullptr, nullptr);
    if (m_end == End::Close)
        g_socket_shutdown(socket, FALSE, TRUE, nullptr);
    else
        read(connection);
}

UdpPeer::UdpPeer(const TestContext &context, Answer answer)
    : m_answer(std::move(answer))
    , m_socket(g_socket_new(G_SOCKET_FAMILY_IPV4, G_SOCKET_TYPE_DATAGRAM, G_SOCKET_PROTOCOL_UDP,
                            nullptr))
{
    const base::GObjectPtr<GSocketAddress> any(
        g_inet_socket_address_new_from_string("127.0.0.1", 0));
    EXPECT_TRUE(g_socket_bind(m_socket.get(), any.get(), FALSE, nullptr));
    g_socket_set_blocking(m_socket.get(), FALSE);
    m_source.reset(g_socket_create_source(m_socket.get(), G_IO_IN, nullptr));
    g_source_set_callback(m_source.get(), G_SOURCE_FUNC(readable), this, nullptr);
    g_source_attach(m_source.get(), context.get());
    m_pace.reset(g_timeout_source_new(millisecondsBetweenDatagrams));
    g_source_set_callback(m_pace.get(), sendNext, this, nullptr);
    g_source_attach(m_pace.get(), context.get());
}

gboolean UdpPeer::sendNext(gpointer data)
{
    auto *self = static_cast<UdpPeer *>(data);
    if (!self->m_pending.empty()) {
        const Datagram &next = self->m_pending.front();
        g_socket_send_to(self->m_socket.get(), next.to.get(), next.text.data(), next.text.size(),
                         nullptr, nullptr);
        self->m_pending.pop_front();
    }
    return G_SOURCE_CONTINUE;
}

std::string UdpPeer::target() const
{
    const base::GObjectPtr<GSocketAddress> address(
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
    const base::GObjectPtr<GSocketAddress> sender(from);
    if (length < 0 || !sender)
        return G_SOURCE_CONTINUE;
    self->m_received.emplace_back(buffer.data(), static_cast<std::size_t>(length));
    for (std::string &answer : self->m_answer(self->m_received.back()))
        self->m_pending.push_back(
            {base::GObjectPtr<GSocketAddress>(G_SOCKET_ADDRESS(g_object_ref(sender.get()))),
             std::move(answer)});
    return G_SOURCE_CONTINUE;
}
