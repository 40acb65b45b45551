#include "camsim/control_server.h"

#include "camsim/net.h"

#include <glib-unix.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace camsim {

namespace {

/// Sends all of a short answer; a client that does not read for a second is given up.
bool sendAll(int handle, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = send(handle, text.data(), text.size(), MSG_NOSIGNAL);
        if (count > 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
            continue;
        }
        pollfd wait{handle, POLLOUT, 0};
        if (errno != EAGAIN || poll(&wait, 1, 1000) != 1)
            return false;
    }
    return true;
}

} // namespace

ControlServer::~ControlServer()
{
    if (m_source != 0)
        g_source_remove(m_source);
    for (const auto &[handle, client] : m_clients) {
        g_source_remove(client.source);
        close(handle);
    }
    if (m_listener >= 0)
        close(m_listener);
}

bool ControlServer::open(int port)
{
    m_listener = net::bindTcp("127.0.0.1", port);
    if (m_listener < 0 || listen(m_listener, 16) != 0)
        return false;
    m_port = net::portOf(m_listener);
    m_source = g_unix_fd_add(m_listener, G_IO_IN, onConnect, this);
    return true;
}

gboolean ControlServer::onConnect(gint handle, GIOCondition, gpointer data)
{
    auto *self = static_cast<ControlServer *>(data);
    const int client = accept4(handle, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (client >= 0) {
        const auto events = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR);
        self->m_clients[client].source = g_unix_fd_add(client, events, onReadable, self);
    }
    return G_SOURCE_CONTINUE;
}

gboolean ControlServer::onReadable(gint handle, GIOCondition, gpointer data)
{
    auto *self = static_cast<ControlServer *>(data);
    if (self->read(handle))
        return G_SOURCE_CONTINUE;
    self->m_clients.erase(handle);
    close(handle);
    return G_SOURCE_REMOVE;
}

bool ControlServer::read(int handle)
{
    std::array<char, 4096> buffer;
    const ssize_t count = recv(handle, buffer.data(), buffer.size(), 0);
    if (count < 0)
        return errno == EAGAIN || errno == EINTR;
    if (count == 0)
        return false;
    std::string &pending = m_clients[handle].pending;
    pending.append(buffer.data(), static_cast<std::size_t>(count));
    while (true) {
        const std::size_t end = pending.find('\n');
        if (end == std::string::npos)
            return pending.size() < 65536;
        std::string line = pending.substr(0, end);
        pending.erase(0, end + 1);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!sendAll(handle, runControlLine(m_cameras, line) + "\n"))
            return false;
    }
}

} // namespace camsim
