#include "tests/platform/rtsp/scripted_camera.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <sstream>
#include <stdexcept>

namespace {

using namespace std::chrono_literals;

constexpr auto deadline = 30s;
constexpr auto framePeriod = 20ms;
constexpr uint32_t frameTicks = 1800; // of 90 kHz

// 320x240, Baseline.
const std::string parameterSet("\x67\x42\xc0\x1e\xd9\x01\x41\xfb\x01\x10\x00\x00\x03\x00\x10\x00"
                               "\x00\x03\x03\x20\xf1\x62\xe4\x80",
                               24);
const std::string pictureSet("\x68\xcb\x83\xcb\x20", 5);
const std::string keySlice = std::string("\x65\x88\x84\x00", 4) + std::string(60, '\x5a');

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

int bound(int family, int type, int &port)
{
    const int handle = ::socket(family, type | SOCK_CLOEXEC, 0);
    sockaddr_storage address{};
    socklen_t size = 0;
    if (family == AF_INET6) {
        auto *v6 = reinterpret_cast<sockaddr_in6 *>(&address);
        v6->sin6_family = AF_INET6;
        v6->sin6_addr = in6addr_loopback;
        size = sizeof *v6;
    } else {
        auto *v4 = reinterpret_cast<sockaddr_in *>(&address);
        v4->sin_family = AF_INET;
        v4->sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        size = sizeof *v4;
    }
    if (::bind(handle, reinterpret_cast<sockaddr *>(&address), size) != 0 ||
        ::getsockname(handle, reinterpret_cast<sockaddr *>(&address), &size) != 0)
        throw std::runtime_error("no port on the loopback interface");
    // At the same place in both.
    port = ntohs(reinterpret_cast<sockaddr_in *>(&address)->sin_port);
    return handle;
}

} // namespace

std::string ScriptedCamera::Request::header(const std::string &name) const
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const size_t colon = line.find(": ");
        if (colon != std::string::npos && lower(line.substr(0, colon)) == name)
            return line.substr(colon + 2, line.find('\r') - colon - 2);
    }
    return {};
}

std::string ScriptedCamera::goodDescription(const std::string &videoControl,
                                            const std::string &audioControl,
                                            const std::string &sessionControl)
{
    return "v=0\r\no=- 1 1 IN IP4 127.0.0.1\r\ns=camera\r\nt=0 0\r\na=control:" + sessionControl +
           "\r\nm=video 0 RTP/AVP 96\r\na=rtpmap:96 H264/90000\r\na=fmtp:96 packetization-mode=1"
           "\r\na=control:" +
           videoControl + "\r\nm=audio 0 RTP/AVP 0\r\na=control:" + audioControl + "\r\n";
}

ScriptedCamera::ScriptedCamera(Behaviour behaviour) : m_behaviour(std::move(behaviour))
{
    m_listener = bound(m_behaviour.ipv6 ? AF_INET6 : AF_INET, SOCK_STREAM, m_port);
    if (::listen(m_listener, 64) != 0)
        throw std::runtime_error("cannot listen");
    m_acceptor = std::thread([this] { accept(); });
}

ScriptedCamera::~ScriptedCamera()
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

void ScriptedCamera::accept()
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
            Connection(*this, handle, number).run();
            const std::lock_guard guard(m_mutex);
            m_open.remove(handle);
            ::close(handle);
            changed();
        });
        changed();
    }
}

std::string ScriptedCamera::url(const std::string &path) const
{
    return (m_behaviour.ipv6 ? "rtsp://[::1]:" : "rtsp://127.0.0.1:") + std::to_string(m_port) +
           path;
}

std::vector<ScriptedCamera::Request> ScriptedCamera::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

std::vector<std::string> ScriptedCamera::methods() const
{
    std::vector<std::string> names;
    for (const Request &request : requests())
        names.push_back(request.method);
    return names;
}

std::vector<ScriptedCamera::Request> ScriptedCamera::requests(const std::string &method) const
{
    std::vector<Request> found = requests();
    std::erase_if(found, [&](const Request &request) { return request.method != method; });
    return found;
}

int ScriptedCamera::connectionCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_count;
}

int ScriptedCamera::openConnections() const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(m_open.size());
}

std::vector<std::pair<int, std::string>> ScriptedCamera::reports() const
{
    const std::lock_guard lock(m_mutex);
    return m_reports;
}

bool ScriptedCamera::waitFor(const std::function<bool()> &condition) const
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, deadline, condition);
}

void ScriptedCamera::Connection::run()
{
    const int yes = 1;
    ::setsockopt(m_handle, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    for (bool open = true; open;) {
        pollfd readable{.fd = m_handle, .events = POLLIN, .revents = 0};
        if (::poll(&readable, 1, m_isPlaying ? 5 : 200) > 0)
            open = read();
        if (open && m_isPlaying && std::chrono::steady_clock::now() >= m_nextFrame) {
            sendFrame();
            m_nextFrame = std::chrono::steady_clock::now() + framePeriod;
        }
    }
    if (m_udp >= 0)
        ::close(m_udp);
}

bool ScriptedCamera::Connection::read()
{
    char data[4096];
    const ssize_t size = ::recv(m_handle, data, sizeof data, 0);
    if (size <= 0)
        return false;
    m_input.append(data, static_cast<size_t>(size));
    while (takeUnit()) {
    }
    return true;
}

bool ScriptedCamera::Connection::takeUnit()
{
    if (m_input.starts_with('$')) {
        if (m_input.size() < 4)
            return false;
        const size_t size =
            4 + (static_cast<uint8_t>(m_input[2]) << 8U) + static_cast<uint8_t>(m_input[3]);
        if (m_input.size() < size)
            return false;
        {
            const std::lock_guard lock(m_camera.m_mutex);
            m_camera.m_reports.emplace_back(m_input[1], m_input.substr(4, size - 4));
        }
        m_camera.changed();
        m_input.erase(0, size);
        return true;
    }
    const size_t end = m_input.find("\r\n\r\n");
    if (end == std::string::npos)
        return false;
    Request request{.method = {},
                    .url = {},
                    .text = m_input.substr(0, end + 4),
                    .connection = m_number,
                    .time = std::chrono::steady_clock::now()};
    m_input.erase(0, end + 4);
    std::istringstream(request.text) >> request.method >> request.url;
    {
        const std::lock_guard lock(m_camera.m_mutex);
        m_camera.m_requests.push_back(request);
    }
    m_camera.changed();
    const auto &script = m_camera.m_behaviour.script;
    if (!script || !script(request, *this))
        answerWell(request);
    return true;
}

void ScriptedCamera::Connection::write(std::string_view text) const
{
    while (!text.empty()) {
        const ssize_t size = ::send(m_handle, text.data(), text.size(), MSG_NOSIGNAL);
        if (size <= 0)
            return;
        text.remove_prefix(static_cast<size_t>(size));
    }
}

void ScriptedCamera::Connection::answer(const Request &request, const std::string &status,
                                        const std::string &headers, const std::string &body) const
{
    std::string text =
        "RTSP/1.0 " + status + "\r\nCSeq: " + request.header("cseq") + "\r\n" + headers;
    if (!body.empty())
        text += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    write(text + "\r\n" + body);
}

void ScriptedCamera::Connection::answerWell(const Request &request)
{
    const Behaviour &behaviour = m_camera.m_behaviour;
    const std::string session = "Session: " + behaviour.session + "\r\n";
    if (request.method == "OPTIONS") {
        answer(request, "200 OK", "Public: " + behaviour.publicMethods + "\r\n");
    } else if (request.method == "DESCRIBE") {
        answer(request, "200 OK", "Content-Type: application/sdp\r\n" + behaviour.describeHeaders,
               behaviour.description);
    } else if (request.method == "SETUP") {
        answer(request, "200 OK", session + setUp(request));
    } else if (request.method == "PLAY") {
        answer(request, "200 OK", session);
        m_isPlaying = true;
    } else if (request.method == "TEARDOWN") {
        m_isPlaying = false;
        answer(request, "200 OK");
    } else {
        answer(request, "200 OK", session);
    }
}

/// The Transport header of the answer.
std::string ScriptedCamera::Connection::setUp(const Request &request)
{
    const std::string wanted = request.header("transport");
    const size_t ports = wanted.find("client_port=");
    if (ports == std::string::npos)
        return "Transport: " + wanted + "\r\n";
    if (m_udp >= 0)
        return "Transport: " + wanted + ";server_port=7000-7001\r\n";
    int port = 0;
    const int family = m_camera.m_behaviour.ipv6 ? AF_INET6 : AF_INET;
    m_udp = bound(family, SOCK_DGRAM, port);
    const auto client = htons(static_cast<uint16_t>(std::stoi(wanted.substr(ports + 12))));
    if (family == AF_INET6) {
        sockaddr_in6 address{};
        address.sin6_family = AF_INET6;
        address.sin6_addr = in6addr_loopback;
        address.sin6_port = client;
        ::connect(m_udp, reinterpret_cast<sockaddr *>(&address), sizeof address);
    } else {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = client;
        ::connect(m_udp, reinterpret_cast<sockaddr *>(&address), sizeof address);
    }
    return "Transport: " + wanted + ";server_port=" + std::to_string(port) + '-' +
           std::to_string(port + 1) + "\r\n";
}

void ScriptedCamera::Connection::sendPacket(int channel, std::string_view packet) const
{
    std::string text = {'$', static_cast<char>(channel), static_cast<char>(packet.size() >> 8U),
                        static_cast<char>(packet.size() & 0xffU)};
    write(text.append(packet));
}

void ScriptedCamera::Connection::sendRtp(std::string_view payload, bool marker)
{
    std::string packet = {static_cast<char>(0x80), static_cast<char>(marker ? 0xe0 : 0x60)};
    for (const uint32_t value : {uint32_t{m_sequence}})
        for (int shift = 8; shift >= 0; shift -= 8)
            packet += static_cast<char>(value >> shift);
    for (const uint32_t value : {m_time, uint32_t{0x1234}})
        for (int shift = 24; shift >= 0; shift -= 8)
            packet += static_cast<char>(value >> shift);
    ++m_sequence;
    packet += payload;
    sendPicturePacket(packet);
}

void ScriptedCamera::Connection::sendPicturePacket(std::string_view packet) const
{
    if (m_udp >= 0)
        ::send(m_udp, packet.data(), packet.size(), MSG_NOSIGNAL);
    else
        sendPacket(m_channel, packet);
}

void ScriptedCamera::Connection::sendFrame()
{
    if (m_camera.m_behaviour.media) {
        m_camera.m_behaviour.media(*this);
        return;
    }
    sendRtp(parameterSet, false);
    sendRtp(pictureSet, false);
    sendRtp(keySlice, true);
    m_time += frameTicks;
}

void ScriptedCamera::Connection::playLate(std::chrono::milliseconds delay)
{
    m_nextFrame = std::chrono::steady_clock::now() + delay;
    m_isPlaying = true;
}

void ScriptedCamera::Connection::close()
{
    ::shutdown(m_handle, SHUT_RDWR);
}
