#include "camsim/link.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace camsim {

namespace {

// A side that takes no more than this keeps the other side from being read.
constexpr std::size_t backlog = 1U << 20;

} // namespace

Link::Link(Reactor &reactor, int client, int server, std::unique_ptr<LinkPolicy> policy,
           Closed onClosed)
    : m_reactor(reactor)
    , m_policy(std::move(policy))
    , m_onClosed(std::move(onClosed))
{
    m_client.handle = client;
    m_server.handle = server;
}

Link::~Link()
{
    ::close(m_client.handle);
    ::close(m_server.handle);
}

void Link::start()
{
    for (Side *side : {&m_client, &m_server}) {
        side->events = EPOLLIN;
        m_reactor.watch(side->handle, EPOLLIN,
                        [self = weak_from_this(), side](std::uint32_t events) {
                            if (const auto link = self.lock())
                                link->onEvents(*side, events);
                        });
    }
}

void Link::onEvents(Side &side, std::uint32_t events)
{
    if (events & EPOLLOUT)
        flush(side);
    if (!m_closed && (events & (EPOLLIN | EPOLLHUP | EPOLLERR)) && !read(side)) {
        if (&side == &m_server)
            closeWhenSent();
        else
            close();
    }
    // What the policy passed on is sent in one piece.
    flush(m_client);
    flush(m_server);
    updateEvents();
}

bool Link::read(Side &side)
{
    std::array<char, 65536> buffer;
    const ssize_t count = recv(side.handle, buffer.data(), buffer.size(), 0);
    if (count < 0)
        return errno == EAGAIN || errno == EINTR;
    if (count == 0)
        return false;
    if (&side == &m_server) {
        // The server's socket holds small pieces back until the last one is acknowledged, which
        // would cost up to 40 ms. The option does not last.
        const int on = 1;
        setsockopt(side.handle, IPPROTO_TCP, TCP_QUICKACK, &on, sizeof on);
    }
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(count));
    if (m_closing)
        return true;
    if (&side == &m_client)
        m_policy->fromClient(bytes, *this);
    else
        m_policy->fromServer(bytes, *this);
    return true;
}

void Link::toServer(std::string_view bytes)
{
    m_server.out.append(bytes);
}

void Link::toClient(std::string_view bytes, std::chrono::milliseconds delay)
{
    if (delay.count() == 0 && m_delayed == 0) {
        m_client.out.append(bytes);
        return;
    }
    ++m_delayed;
    m_reactor.after(delay, [self = weak_from_this(), piece = std::string(bytes)] {
        const auto link = self.lock();
        if (!link || link->m_closed)
            return;
        --link->m_delayed;
        link->m_client.out.append(piece);
        link->flush(link->m_client);
        link->updateEvents();
    });
}

void Link::flush(Side &side)
{
    while (!m_closed && !side.out.empty()) {
        const ssize_t count = send(side.handle, side.out.data(), side.out.size(), MSG_NOSIGNAL);
        if (count < 0) {
            if (errno != EAGAIN && errno != EINTR)
                close();
            break;
        }
        side.out.erase(0, static_cast<std::size_t>(count));
    }
    if (m_closing && m_client.out.empty() && m_delayed == 0)
        close();
}

void Link::updateEvents()
{
    if (m_closed)
        return;
    const auto eventsFor = [](const Side &side, const Side &other) {
        std::uint32_t events = 0;
        if (!side.out.empty())
            events |= EPOLLOUT;
        if (other.out.size() < backlog)
            events |= EPOLLIN;
        return events;
    };
    setEvents(m_client, eventsFor(m_client, m_server));
    if (!m_closing) // else the server's side is not watched any more
        setEvents(m_server, eventsFor(m_server, m_client));
}

void Link::setEvents(Side &side, std::uint32_t events)
{
    if (side.events == events)
        return;
    side.events = events;
    m_reactor.change(side.handle, events);
}

void Link::closeWhenSent()
{
    if (m_closing)
        return;
    m_closing = true;
    m_reactor.forget(m_server.handle);
    flush(m_client);
    updateEvents();
}

void Link::close()
{
    if (m_closed)
        return;
    m_closed = true;
    m_reactor.forget(m_client.handle);
    if (!m_closing)
        m_reactor.forget(m_server.handle);
    m_onClosed();
}

} // namespace camsim
