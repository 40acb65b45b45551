#pragma once

#include "tests/platform/onvif/support/test_context.h"

#include <functional>
#include <string>
#include <vector>

/// A TCP server on 127.0.0.1 that answers whatever it is sent with the same bytes.
class RawServer
{
public:
    enum class End
    {
        Close,
        StayOpen
    };

    RawServer(const TestContext &context, std::string answer, End end);
    ~RawServer();
    RawServer(const RawServer &) = delete;
    RawServer &operator=(const RawServer &) = delete;

    [[nodiscard]] std::string service() const;
    [[nodiscard]] int connections() const { return static_cast<int>(m_connections.size()); }

private:
    static gboolean incoming(GSocketService *, GSocketConnection *connection, GObject *,
                             gpointer self);
    static void requestRead(GObject *stream, GAsyncResult *result, gpointer self);

    onvif::GObjectPtr<GSocketService> m_service;
    onvif::GObjectPtr<GCancellable> m_cancellable;
    std::string m_answer;
    End m_end;
    guint16 m_port = 0;
    std::vector<onvif::GObjectPtr<GSocketConnection>> m_connections;
    std::vector<char> m_buffer;
};

/// A UDP socket on 127.0.0.1 that hands each datagram to a function, which answers with any number
/// of datagrams.
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

    Answer m_answer;
    onvif::GObjectPtr<GSocket> m_socket;
    onvif::GSourcePtr m_source;
    std::vector<std::string> m_received;
};
