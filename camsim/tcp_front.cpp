#include "camsim/tcp_front.h"

#include "camsim/net.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace camsim {

TcpFront::TcpFront(Reactor &reactor, int serverPort, MakePolicy makePolicy, Segments segments)
    : m_reactor(reactor)
    , m_serverPort(serverPort)
    , m_makePolicy(std::move(makePolicy))
    , m_segments(segments)
{
}

TcpFront::~TcpFront()
{
    m_reactor.call([this] {
        stopListening();
        closeLinks();
    });
}

bool TcpFront::open(const std::string &address, int port)
{
    if (address == m_address && port == m_port)
        return listen();
    const int handle = net::bindTcp(address, port);
    if (handle < 0)
        return false;
    bool open = false;
    m_reactor.call([&] {
        stopListening();
        closeLinks();
        open = startListening(handle);
    });
    m_address = address;
    m_port = net::portOf(handle);
    return open;
}

void TcpFront::refuse()
{
    m_reactor.call([this] {
        stopListening();
        // Bound and not listening: clients are refused, and nobody else gets the port.
        m_listener = net::bindTcp(m_address, m_port);
    });
}

bool TcpFront::listen()
{
    bool open = false;
    m_reactor.call([&] {
        if (m_listening) {
            open = true;
            return;
        }
        const int handle = m_listener >= 0 ? m_listener : net::bindTcp(m_address, m_port);
        m_listener = -1;
        open = handle >= 0 && startListening(handle);
    });
    return open;
}

void TcpFront::drop()
{
    m_reactor.call([this] { closeLinks(); });
}

void TcpFront::stopListening()
{
    if (m_listening)
        m_reactor.forget(m_listener);
    if (m_listener >= 0)
        close(m_listener);
    m_listener = -1;
    m_listening = false;
}

bool TcpFront::startListening(int handle)
{
    m_listener = handle;
    if (m_segments == Segments::Nagle) {
        const int size = 1448; // an Ethernet's, with time stamps
        setsockopt(handle, IPPROTO_TCP, TCP_MAXSEG, &size, sizeof size);
    }
    m_listening = ::listen(handle, 64) == 0;
    if (m_listening)
        m_reactor.watch(handle, EPOLLIN, [this](std::uint32_t) { accept(); });
    return m_listening;
}

void TcpFront::closeLinks()
{
    // Closing takes a link out of the set.
    const auto links = m_links;
    for (const auto &link : links)
        link->close();
}

void TcpFront::accept()
{
    const int client = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (client < 0)
        return;
    const int atOnce = m_segments == Segments::AtOnce ? 1 : 0;
    setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &atOnce, sizeof atOnce);
    const int server = net::connectTcp("127.0.0.1", m_serverPort);
    if (server < 0) {
        close(client);
        return;
    }
    auto self = std::make_shared<std::weak_ptr<Link>>();
    const auto link =
        std::make_shared<Link>(m_reactor, client, server, m_makePolicy(), [this, self] {
            if (const auto gone = self->lock()) {
                m_links.erase(gone);
                --m_connections;
            }
        });
    *self = link;
    m_links.insert(link);
    ++m_connections;
    link->start();
}

} // namespace camsim
