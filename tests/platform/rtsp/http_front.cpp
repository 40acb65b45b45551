#include "tests/platform/rtsp/http_front.h"

#include <glib.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string_view>

namespace {

void writeAll(int handle, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t size = ::send(handle, text.data(), text.size(), MSG_NOSIGNAL);
        if (size <= 0)
            return;
        text.remove_prefix(static_cast<size_t>(size));
    }
}

/// False at the end of the connection.
bool readMore(int handle, std::string &text)
{
    char data[4096];
    const ssize_t size = ::recv(handle, data, sizeof data, 0);
    if (size > 0)
        text.append(data, static_cast<size_t>(size));
    return size > 0;
}

std::string headerOf(const std::string &head, const std::string &name)
{
    const size_t begin = head.find("\r\n" + name + ": ");
    if (begin == std::string::npos)
        return {};
    const size_t from = begin + name.size() + 4;
    return head.substr(from, head.find("\r\n", from) - from);
}

sockaddr_in loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    return address;
}

} // namespace

HttpFront::HttpFront(int targetPort, std::string authorization)
    : m_target(targetPort)
    , m_authorization(std::move(authorization))
{
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (::bind(m_listener, reinterpret_cast<sockaddr *>(&address), size) != 0 ||
        ::getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &size) != 0 ||
        ::listen(m_listener, 16) != 0)
        throw std::runtime_error("cannot listen");
    m_port = ntohs(address.sin_port);
    m_acceptor = std::thread([this] { accept(); });
}

HttpFront::~HttpFront()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
        for (const int handle : m_open)
            ::shutdown(handle, SHUT_RDWR);
        for (const auto &[cookie, handle] : m_cameras)
            ::shutdown(handle, SHUT_RDWR);
    }
    ::shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    for (std::thread &thread : m_threads)
        thread.join();
    for (const auto &[cookie, handle] : m_cameras)
        ::close(handle);
    ::close(m_listener);
}

std::vector<std::string> HttpFront::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

void HttpFront::accept()
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
        m_threads.emplace_back([this, handle] {
            serve(handle);
            const std::lock_guard guard(m_mutex);
            m_open.remove(handle);
            ::close(handle);
        });
    }
}

void HttpFront::serve(int handle)
{
    std::string text;
    while (text.find("\r\n\r\n") == std::string::npos)
        if (!readMore(handle, text))
            return;
    const size_t end = text.find("\r\n\r\n") + 4;
    const std::string head = text.substr(0, end);
    {
        const std::lock_guard lock(m_mutex);
        m_requests.push_back(head);
    }
    const std::string cookie = headerOf(head, "x-sessioncookie");
    if (headerOf(head, "Authorization") != m_authorization)
        writeAll(handle, "HTTP/1.0 401 Unauthorized\r\n"
                         "WWW-Authenticate: Basic realm=\"camera\"\r\n\r\n");
    else if (head.starts_with("GET "))
        serveGet(handle, cookie);
    else
        servePost(handle, cookie, text.substr(end));
}

void HttpFront::serveGet(int handle, const std::string &cookie)
{
    const int camera = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(m_target);
    ::connect(camera, reinterpret_cast<sockaddr *>(&address), sizeof address);
    {
        const std::lock_guard lock(m_mutex);
        m_cameras[cookie] = camera;
    }
    writeAll(handle, "HTTP/1.0 200 OK\r\nContent-Type: application/x-rtsp-tunnelled\r\n\r\n");
    for (std::string text; readMore(camera, text); text.clear())
        writeAll(handle, text);
}

void HttpFront::servePost(int handle, const std::string &cookie, std::string body)
{
    int camera = -1;
    {
        const std::lock_guard lock(m_mutex);
        camera = m_cameras[cookie];
    }
    gint state = 0;
    guint save = 0;
    do {
        std::string decoded(body.size() + 3, 0);
        const gsize size = g_base64_decode_step(
            body.data(), body.size(), reinterpret_cast<guchar *>(decoded.data()), &state, &save);
        writeAll(camera, std::string_view(decoded).substr(0, size));
        body.clear();
    } while (readMore(handle, body));
    ::shutdown(camera, SHUT_RDWR);
}
