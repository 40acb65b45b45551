#pragma once

#include "tests/platform/onvif/support/test_context.h"

#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// A TCP server on a loopback address that answers each HTTP request with the next of its answers,
/// whatever the request; the last one serves for all that follow.
class RawServer
{
public:
    enum class End
    {
        Close,         ///< the connection, after each answer
        CloseAtSecond, ///< when a second request comes over the same connection, unanswered
        StayOpen
    };

    RawServer(const TestContext &context, std::vector<std::string> answers, End end,
              std::string host = "127.0.0.1");
    RawServer(const TestContext &context, const std::string &answer, End end,
              std::string host = "127.0.0.1")
        : RawServer(context, std::vector<std::string>{answer}, end, std::move(host))
    {
    }
    ~RawServer();
    RawServer(const RawServer &) = delete;
    RawServer &operator=(const RawServer &) = delete;

    [[nodiscard]] std::string service() const;
    [[nodiscard]] int connections() const { return static_cast<int>(m_connections.size()); }
    /// Head and body of each request that was answered.
    [[nodiscard]] const std::vector<std::string> &requests() const { return m_requests; }

private:
    struct Connection
    {
        RawServer *server = nullptr;
        base::GObjectPtr<GSocketConnection> stream;
        std::string received;
        std::array<char, 16 * 1024> buffer = {};
        int answered = 0;
    };

    static gboolean incoming(GSocketService *, GSocketConnection *connection, GObject *,
                             gpointer self);
    static void readSome(GObject *stream, GAsyncResult *result, gpointer connection);
    void read(Connection &connection);
    void answer(Connection &connection);

    base::GObjectPtr<GSocketService> m_service;
    base::GObjectPtr<GCancellable> m_cancellable;
    std::vector<std::string> m_answers;
    End m_end;
    std::string m_host;
    guint16 m_port = 0;
    std::vector<std::unique_ptr<Connection>> m_connections;
    std::vector<std::string> m_requests;
};

/// A UDP socket on 127.0.0.1 that hands each datagram to a function, which answers with any number
/// of datagrams. They leave one by one, as from many devices, because a receiver's buffer holds
/// only about 30 large ones.
class UdpPeer
{
public:
    using Answer = std::function<std::vector<std::string>(const std::string &datagram)>;

    UdpPeer(const TestContext &context, Answer answer);
    UdpPeer(const UdpPeer &) = delete;
    UdpPeer &operator=(const UdpPeer &) = delete;

    /// "127.0.0.1:port"
    [[nodiscard]] std::string target() const;
    [[nodiscard]] const std::vector<std::string> &received() const { return m_received; }

private:
    static gboolean readable(GSocket *, GIOCondition, gpointer self);
    static gboolean sendNext(gpointer self);

    struct Datagram
    {
        base::GObjectPtr<GSocketAddress> to;
        std::string text;
    };

    Answer m_answer;
    std::deque<Datagram> m_pending;
    base::GObjectPtr<GSocket> m_socket;
    base::GSourcePtr m_source;
    base::GSourcePtr m_pace;
    std::vector<std::string> m_received;
};
