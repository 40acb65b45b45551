#include "tests/camsim/peer.h"

#include "camsim/message_splitter.h"
#include "camsim/net.h"

#include <glib.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <sstream>

namespace camsim::test {

namespace {

using Clock = std::chrono::steady_clock;

int millisecondsUntil(Clock::time_point end)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

std::string base64(const std::string &text)
{
    gchar *encoded = g_base64_encode(reinterpret_cast<const guchar *>(text.data()), text.size());
    std::string result(encoded);
    g_free(encoded);
    return result;
}

} // namespace

long Outcome::linesStartingWith(const std::string &start) const
{
    std::istringstream text(output);
    long count = 0;
    for (std::string line; std::getline(text, line);)
        count += line.starts_with(start) ? 1 : 0;
    return count;
}

Outcome run(const std::string &command)
{
    Outcome outcome;
    FILE *pipe = popen(("timeout 60 " + command + " 2>&1").c_str(), "r");
    if (!pipe)
        return outcome;
    std::array<char, 4096> buffer;
    for (std::size_t count = 1; count > 0;) {
        count = fread(buffer.data(), 1, buffer.size(), pipe);
        outcome.output.append(buffer.data(), count);
    }
    const int status = pclose(pipe);
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

RawConnection::RawConnection(const std::string &address, int port)
    : m_handle(net::connectTcp(address, port))
{
    pollfd wait{m_handle, POLLOUT, 0};
    int error = -1;
    socklen_t size = sizeof error;
    if (poll(&wait, 1, 20'000) == 1)
        getsockopt(m_handle, SOL_SOCKET, SO_ERROR, &error, &size);
    if (error != 0) {
        close(m_handle);
        m_handle = -1;
    }
}

RawConnection::~RawConnection()
{
    if (m_handle >= 0)
        close(m_handle);
}

bool RawConnection::send(const std::string &bytes)
{
    const ssize_t count = ::send(m_handle, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    return count == static_cast<ssize_t>(bytes.size());
}

int RawConnection::maximumSegment() const
{
    int size = 0;
    socklen_t length = sizeof size;
    getsockopt(m_handle, IPPROTO_TCP, TCP_MAXSEG, &size, &length);
    return size;
}

const std::string &RawConnection::readUntil(const std::function<bool(const std::string &)> &enough,
                                            std::chrono::milliseconds deadline)
{
    const Clock::time_point end = Clock::now() + deadline;
    while (!m_closed && !enough(m_received)) {
        pollfd wait{m_handle, POLLIN, 0};
        if (poll(&wait, 1, millisecondsUntil(end)) != 1)
            break;
        std::array<char, 65536> buffer;
        const ssize_t count = recv(m_handle, buffer.data(), buffer.size(), 0);
        if (count <= 0)
            m_closed = true;
        else
            m_received.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return m_received;
}

RawRtsp::RawRtsp(const std::string &address, int port, const std::string &path,
                 const std::string &user, const std::string &password)
    : m_connection(address, port)
    , m_url("rtsp://" + address + ":" + std::to_string(port) + path)
    , m_authorization(
          user.empty() ? "" : "Authorization: Basic " + base64(user + ":" + password) + "\r\n")
{
}

std::string RawRtsp::ask(const std::string &method, const std::string &headers,
                         const std::string &suffix)
{
    const std::string sequence = "CSeq: " + std::to_string(++m_sequence) + "\r\n";
    m_connection.forget();
    if (!m_connection.send(method + " " + m_url + suffix + " RTSP/1.0\r\n" + sequence +
                           m_authorization + headers + "\r\n"))
        return {};
    std::string answer;
    m_connection.readUntil([&](const std::string &received) {
        MessageSplitter splitter([&](MessageSplitter::Kind kind, std::string unit) {
            if (kind == MessageSplitter::Kind::Message && unit.find(sequence) != std::string::npos)
                answer = std::move(unit);
        });
        splitter.feed(received);
        return !answer.empty();
    });
    return answer;
}

bool RawRtsp::play()
{
    const std::string description = ask("DESCRIBE", "Accept: application/sdp\r\n");
    std::istringstream lines(description);
    std::string session;
    int channel = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::string control = "a=control:stream";
        if (!line.starts_with(control))
            continue;
        const std::string stream = line.substr(10, line.find('\r') - 10);
        const std::string channels = std::to_string(channel) + "-" + std::to_string(channel + 1);
        channel += 2;
        const std::string answer = ask(
            "SETUP", "Transport: RTP/AVP/TCP;unicast;interleaved=" + channels + "\r\n" + session,
            "/" + stream);
        const std::string id(headerValue(answer, "Session"));
        if (id.empty())
            return false;
        session = "Session: " + id.substr(0, id.find(';')) + "\r\n";
    }
    return channel > 0 && ask("PLAY", session).starts_with("RTSP/1.0 200");
}

bool RawRtsp::receivesData(std::size_t bytes)
{
    m_connection.forget();
    m_connection.readUntil(
        [bytes](const std::string &received) { return received.size() >= bytes; });
    return m_connection.received().size() >= bytes;
}

bool eventually(const std::function<bool()> &condition, std::chrono::milliseconds deadline)
{
    const Clock::time_point end = Clock::now() + deadline;
    while (!condition()) {
        if (Clock::now() > end)
            return false;
        poll(nullptr, 0, 10);
    }
    return true;
}

} // namespace camsim::test
