#include "tests/support/tiny_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace {

int boundSocket(const std::string &host, uint16_t &port)
{
    const int handle = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = inet_addr(host.c_str());
    address.sin_port = htons(port);
    const int on = 1;
    ::setsockopt(handle, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    socklen_t size = sizeof address;
    if (::bind(handle, reinterpret_cast<sockaddr *>(&address), size) != 0 ||
        ::getsockname(handle, reinterpret_cast<sockaddr *>(&address), &size) != 0)
        throw std::runtime_error("no port on " + host);
    port = ntohs(address.sin_port);
    return handle;
}

/// Bytes of the first request in what was received, by its blank line and its Content-Length;
/// 0 while some of it is missing.
size_t wholeRequest(const std::string &received)
{
    const size_t head = received.find("\r\n\r\n");
    if (head == std::string::npos)
        return 0;
    constexpr std::string_view name = "Content-Length: ";
    const size_t length = received.find(name);
    const size_t body =
        length < head ? std::strtoul(received.c_str() + length + name.size(), nullptr, 10) : 0;
    const size_t size = head + 4 + body;
    return received.size() >= size ? size : 0;
}

} // namespace

TinyServer::TinyServer(Handler handler, std::string host, uint16_t port)
    : m_handler(std::move(handler))
    , m_host(std::move(host))
    , m_port(port)
{
    m_listener = boundSocket(m_host, m_port);
    if (::listen(m_listener, 64) != 0)
        throw std::runtime_error("cannot listen");
    m_acceptor = std::thread([this] { accept(); });
}

TinyServer::~TinyServer()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
        for (const int handle : m_open)
            ::shutdown(handle, SHUT_RDWR);
    }
    ::shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    for (std::thread &thread : m_threads)
        thread.join();
    ::close(m_listener);
}

void TinyServer::accept()
{
    for (;;) {
        const int handle = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        const std::lock_guard lock(m_mutex);
        if (handle < 0 || m_ending) {
            if (handle >= 0)
                ::close(handle);
            return;
        }
        m_open.push_back(handle);
        const int number = ++m_count;
        m_threads.emplace_back([this, handle, number] {
            Connection connection(*this, handle, number);
            m_handler(connection);
            const std::lock_guard guard(m_mutex);
            m_open.remove(handle);
            ::close(handle);
        });
    }
}

std::string TinyServer::address() const
{
    return m_host + ":" + std::to_string(m_port);
}

int TinyServer::connectionCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_count;
}

std::vector<std::string> TinyServer::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

std::string TinyServer::Connection::readRequest()
{
    for (;;) {
        if (const size_t size = wholeRequest(m_buffer)) {
            const std::string request = m_buffer.substr(0, size);
            m_buffer.erase(0, size);
            const std::lock_guard lock(m_server.m_mutex);
            m_server.m_requests.push_back(request);
            return request;
        }
        char data[4096];
        const ssize_t size = ::recv(m_handle, data, sizeof data, 0);
        if (size <= 0)
            return {};
        m_buffer.append(data, static_cast<size_t>(size));
    }
}

void TinyServer::Connection::write(std::string_view data) const
{
    while (!data.empty()) {
        const ssize_t size = ::send(m_handle, data.data(), data.size(), MSG_NOSIGNAL);
        if (size <= 0)
            return;
        data.remove_prefix(static_cast<size_t>(size));
    }
}

void TinyServer::Connection::endSending() const
{
    ::shutdown(m_handle, SHUT_WR);
}

void TinyServer::Connection::waitForEnd()
{
    char data[4096];
    while (::recv(m_handle, data, sizeof data, 0) > 0) {
    }
}

uint16_t closedPort()
{
    uint16_t port = 0;
    ::close(boundSocket("127.0.0.1", port));
    return port;
}
