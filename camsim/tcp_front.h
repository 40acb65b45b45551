#pragma once

#include "camsim/link.h"
#include "camsim/reactor.h"

#include <atomic>
#include <functional>
#include <memory>
#include <set>
#include <string>

namespace camsim {

/// The port of a camera as clients see it, in front of a server inside this process. It can be
/// closed, moved and made to drop its clients without touching that server. Called from one thread
/// (the main thread); every call is complete when it returns.
class TcpFront
{
public:
    using MakePolicy = std::function<std::unique_ptr<LinkPolicy>()>;

    /// How bytes go to the clients.
    enum class Segments
    {
        AtOnce,
        Nagle ///< 1448 bytes at most; a smaller one waits until all before it are acknowledged
    };

    /// makePolicy runs on the relay's thread, for each connection.
    TcpFront(Reactor &reactor, int serverPort, MakePolicy makePolicy,
             Segments segments = Segments::AtOnce);
    ~TcpFront();
    TcpFront(const TcpFront &) = delete;
    TcpFront &operator=(const TcpFront &) = delete;

    /// Opens the port, or moves to another one and drops all clients. False, with everything as it
    /// was, when the address cannot be used.
    bool open(const std::string &address, int port);
    /// Refuses clients from now on; the connections that exist stay. The port stays reserved.
    void refuse();
    bool listen();
    /// Closes all connections.
    void drop();

    int port() const { return m_port; }
    int connections() const { return m_connections; }

private:
    void accept();
    void stopListening();
    bool startListening(int handle);
    void closeLinks();

    Reactor &m_reactor;
    const int m_serverPort;
    const MakePolicy m_makePolicy;
    const Segments m_segments;
    std::string m_address; // of the calling thread, as m_port
    int m_port = 0;
    std::atomic<int> m_connections{0};
    // Of the relay's thread:
    int m_listener = -1;
    bool m_listening = false;
    std::set<std::shared_ptr<Link>> m_links;
};

} // namespace camsim
