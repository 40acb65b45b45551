#include "tests/platform/onvif/support/raw_peer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

constexpr guint millisecondsBetweenDatagrams = 10;

} // namespace

RawServer::RawServer(std::vector<std::string> answers, End end, const std::string &host)
    : m_answers(std::move(answers))
    , m_end(end)
    , m_server([this](TinyServer::Connection &connection) { serve(connection); }, host)
{
}

std::string RawServer::service() const
{
    return "http://" + m_server.address() + "/onvif/device_service";
}

std::vector<std::string> RawServer::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

const std::string &RawServer::nextAnswer(const std::string &request)
{
    const std::lock_guard lock(m_mutex);
    const std::string &answer = m_answers[std::min(m_requests.size(), m_answers.size() - 1)];
    m_requests.push_back(request);
    return answer;
}

/// On the thread of the connection.
void RawServer::serve(TinyServer::Connection &connection)
{
    for (int answered = 0;; ++answered) {
        const std::string request = connection.readRequest();
        if (request.empty() || (m_end == End::CloseAtSecond && answered == 1))
            return;
        connection.write(nextAnswer(request));
        if (m_end == End::Close) {
            connection.endSending();
            connection.waitForEnd();
            return;
        }
    }
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
