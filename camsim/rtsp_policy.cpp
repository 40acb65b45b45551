#include "camsim/rtsp_policy.h"

#include <algorithm>

namespace camsim {

namespace {

using Kind = MessageSplitter::Kind;

constexpr std::size_t packetHead = 4;
constexpr std::size_t rtpHead = 12;

/// The last packet of a picture carries the marker (RFC 6184 5.1). The picture is described first,
/// so that clients give it the first channel.
bool endsPicture(const std::string &packet)
{
    return packet.size() > packetHead + 1 && packet[1] == 0 && (packet[packetHead + 1] & 0x80);
}

/// Cuts after two letters of the first header.
std::size_t middleOfWord(const std::string &message)
{
    return std::min(message.size() / 2, message.find("\r\n") + 4);
}

/// The same answer with a session description of more than a megabyte.
std::string makeHuge(const std::string &message)
{
    constexpr std::string_view lineEnd = "a=x-note:padding padding padding padding padding\r\n";
    const std::size_t headEnd = message.find("\r\n\r\n");
    std::string body = message.substr(headEnd + 4);
    while (body.size() < (1U << 20))
        body += lineEnd;
    std::string head;
    std::string_view rest(message.data(), headEnd);
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find("\r\n"));
        if (line.substr(0, 15) != "Content-Length:")
            head.append(line).append("\r\n");
        rest.remove_prefix(std::min(rest.size(), line.size() + 2));
    }
    return head + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

} // namespace

RtspPolicy::RtspPolicy(Reactor &reactor, std::shared_ptr<RtspFaults> faults,
                       std::chrono::seconds sessionTimeout)
    : m_reactor(reactor)
    , m_faults(std::move(faults))
    , m_sessionTimeout(sessionTimeout)
    , m_fromClient([this](Kind kind, std::string unit) {
        if (kind == Kind::Message)
            onRequest(unit, *m_link);
        m_link->toServer(unit);
    })
    , m_fromServer([this](Kind kind, std::string unit) {
        if (kind == Kind::Message)
            onAnswer(std::move(unit), *m_link);
        else
            onPacket(std::move(unit), *m_link);
    })
{
}

RtspPolicy::~RtspPolicy()
{
    setWatching(false);
}

void RtspPolicy::fromClient(std::string_view bytes, Link &link)
{
    m_link = &link;
    m_fromClient.feed(bytes);
}

void RtspPolicy::fromServer(std::string_view bytes, Link &link)
{
    m_link = &link;
    m_fromServer.feed(bytes);
}

void RtspPolicy::setWatching(bool watching)
{
    if (m_watching != watching)
        m_faults->watching += watching ? 1 : -1;
    m_watching = watching;
}

void RtspPolicy::onRequest(const std::string &message, Link &link)
{
    const std::string_view method = std::string_view(message).substr(0, message.find(' '));
    ++m_faults->requests;
    ++m_requests;
    if (method == "PLAY")
        setWatching(true);
    else if (method == "TEARDOWN")
        setWatching(false);
    if (m_sessionTimeout.count() > 0)
        guardSession(link);
}

void RtspPolicy::guardSession(Link &link)
{
    m_reactor.after(
        m_sessionTimeout,
        [this, seen = m_requests, weak = link.weak_from_this()] {
            const auto alive = weak.lock(); // which owns this policy
            if (alive && m_watching && m_requests == seen)
                alive->close();
        });
}

void RtspPolicy::onAnswer(std::string message, Link &link)
{
    if (m_faults->frozen || m_silent)
        return;
    if (m_faults->hugeDescription && headerValue(message, "Content-Type") == "application/sdp")
        message = makeHuge(message);
    const std::chrono::milliseconds delay{m_faults->slowMs};
    const auto half = m_faults->halfAnswer.exchange(RtspFaults::HalfAnswer::No);
    if (half != RtspFaults::HalfAnswer::No) {
        m_silent = true;
        link.toClient(std::string_view(message).substr(0, middleOfWord(message)), delay);
        if (half == RtspFaults::HalfAnswer::ThenClose)
            link.closeWhenSent();
        return;
    }
    link.toClient(message, delay);
}

void RtspPolicy::onPacket(std::string packet, Link &link)
{
    if (m_faults->frozen || m_silent)
        return;
    const bool isRtp = packet[1] % 2 == 0; // odd channels carry RTCP
    const int loss = m_faults->lossPercent;
    if (isRtp && loss > 0 && static_cast<int>(m_random() % 100) < loss)
        return;
    if (m_faults->garbage && isRtp && packet.size() > packetHead + rtpHead) {
        std::generate(
            packet.begin() + packetHead + rtpHead, packet.end(),
            [this] { return static_cast<char>(m_random() >> 8); });
    }
    m_faults->videoFrames += endsPicture(packet) ? 1 : 0;
    link.toClient(packet, std::chrono::milliseconds(m_faults->slowMs));
}

} // namespace camsim
