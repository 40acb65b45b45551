#pragma once

#include "camsim/reactor.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace camsim {

class Link;

/// Decides what becomes of the bytes of one connection. Called on the relay's thread.
class LinkPolicy
{
public:
    virtual ~LinkPolicy() = default;
    virtual void fromClient(std::string_view bytes, Link &link) = 0;
    virtual void fromServer(std::string_view bytes, Link &link) = 0;
};

/// One connection of a client, tied to one connection to the server inside this process.
/// Everything happens on the relay's thread.
class Link : public std::enable_shared_from_this<Link>
{
public:
    using Closed = std::function<void()>;

    /// Takes over both handles. onClosed is called once, when either side has closed.
    Link(Reactor &reactor, int client, int server, std::unique_ptr<LinkPolicy> policy,
         Closed onClosed);
    ~Link();
    Link(const Link &) = delete;
    Link &operator=(const Link &) = delete;

    void start();
    // For the policy, while it looks at bytes:
    void toServer(std::string_view bytes);
    /// Bytes given with a delay arrive in order, after it.
    void toClient(std::string_view bytes, std::chrono::milliseconds delay = {});
    /// Closes once everything for the client has been sent.
    void closeWhenSent();
    void close();

private:
    struct Side
    {
        int handle = -1;
        std::string out;
        std::uint32_t events = 0;
    };

    void onEvents(Side &side, std::uint32_t events);
    bool read(Side &side);
    void flush(Side &side);
    void updateEvents();
    void setEvents(Side &side, std::uint32_t events);

    Reactor &m_reactor;
    Side m_client;
    Side m_server;
    std::unique_ptr<LinkPolicy> m_policy;
    Closed m_onClosed;
    int m_delayed = 0; ///< pieces that wait for their time
    bool m_closing = false;
    bool m_closed = false;
};

} // namespace camsim
