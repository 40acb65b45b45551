#pragma once

#include "tests/platform/onvif/support/test_context.h"
#include "tests/support/tiny_server.h"

#include <deque>
#include <functional>
#include <mutex>
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

    RawServer(std::vector<std::string> answers, End end, const std::string &host = "127.0.0.1");
    RawServer(const std::string &answer, End end, const std::string &host = "127.0.0.1")
        : RawServer(std::vector<std::string>{answer}, end, host)
    {
    }

    [[nodiscard]] std::string service() const;
    [[nodiscard]] int connections() const { return m_server.connectionCount(); }
    /// Head and body of each request that was answered.
    [[nodiscard]] std::vector<std::string> requests() const;

private:
    void serve(TinyServer::Connection &connection);
    const std::string &nextAnswer(const std::string &request);

    const std::vector<std::string> m_answers;
    const End m_end;
    mutable std::mutex m_mutex; ///< protects m_requests
    std::vector<std::string> m_requests;
    TinyServer m_server; // its threads end before the rest is destroyed
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
