#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/// A TCP server on a loopback address whose answers a test writes as plain code: the handler runs
/// once for each connection, on its own thread, and the connection closes when it returns.
class TinyServer
{
public:
    class Connection
    {
    public:
        Connection(TinyServer &server, int handle, int number)
            : m_server(server)
            , m_handle(handle)
            , m_number(number)
        {
        }
        /// The next request, head and body; empty when the client has disconnected.
        std::string readRequest();
        void write(std::string_view data) const;
        /// Tells the client that no more comes.
        void endSending() const;
        /// Returns when the client closed the connection, or the server ends.
        void waitForEnd();
        /// 1 for the server's first connection.
        int number() const { return m_number; }

    private:
        TinyServer &m_server;
        int m_handle;
        int m_number;
        std::string m_buffer;
    };
    using Handler = std::function<void(Connection &)>;

    /// port: 0 for a free one.
    explicit TinyServer(Handler handler, std::string host = "127.0.0.1", uint16_t port = 0);
    ~TinyServer();
    TinyServer(const TinyServer &) = delete;
    TinyServer &operator=(const TinyServer &) = delete;

    uint16_t port() const { return m_port; }
    /// "host:port"
    std::string address() const;
    int connectionCount() const;
    /// Every request read so far, in order.
    std::vector<std::string> requests() const;

private:
    void accept();

    const Handler m_handler;
    const std::string m_host;
    int m_listener = -1;
    uint16_t m_port = 0;
    mutable std::mutex m_mutex; ///< for what follows
    bool m_ending = false;
    std::list<int> m_open;
    std::list<std::thread> m_threads;
    std::vector<std::string> m_requests;
    int m_count = 0;
    std::thread m_acceptor;
};

/// A port of 127.0.0.1 on which nobody listens.
uint16_t closedPort();
