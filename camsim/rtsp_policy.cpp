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

/// Whether the packet is the last of a NAL unit of H.264, and the unit's type (RFC 6184, 5.2):
/// single units and fragments (FU-A).
std::pair<bool, int> nalOf(const std::string &packet)
{
    constexpr int fragment = 28;
    const int type = packet[packetHead + rtpHead] & 0x1F;
    if (type != fragment || packet.size() < packetHead + rtpHead + 2)
        return {true, type};
    const int head = packet[packetHead + rtpHead + 1];
    return {(head & 0x40) != 0, head & 0x1F};
}

void moveMarker(std::string &packet, Markers markers)
{
    constexpr int sequenceSet = 7;
    constexpr int pictureSet = 8;
    const auto [isLast, type] = nalOf(packet);
    const bool isSet = type == sequenceSet || type == pictureSet;
    const bool had = (packet[packetHead + 1] & 0x80) != 0;
    bool has = false;
    if (markers == Markers::EachSlice)
        has = isLast;
    else if (markers == Markers::Sets)
        has = had || isSet;
    packet[packetHead + 1] = static_cast<char>((packet[packetHead + 1] & 0x7F) | (has ? 0x80 : 0));
}

/// Takes a method out of the list of those that the camera knows.
void dropFromPublic(std::string &message, const std::string &method)
{
    const std::size_t header = message.find("\r\nPublic:");
    if (header == std::string::npos)
        return;
    const std::size_t at = message.find(method, header);
    if (at >= message.find("\r\n", header + 2))
        return;
    const bool isFollowed = message.compare(at + method.size(), 2, ", ") == 0;
    message.erase(at, method.size() + (isFollowed ? 2 : 0));
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

RtspPolicy::RtspPolicy(Reactor &reactor, std::shared_ptr<RtspFaults> faults, Account &account,
                       const RtspOptions &options)
    : m_reactor(reactor)
    , m_faults(std::move(faults))
    , m_options(options)
    , m_fromClient([this](Kind kind, std::string unit) {
        if (kind == Kind::Message)
            onRequest(std::move(unit), *m_link);
        else
            m_link->toServer(unit);
    })
    , m_fromServer([this](Kind kind, std::string unit) {
        if (kind == Kind::Message)
            onAnswer(std::move(unit), *m_link);
        else
            onPacket(std::move(unit), *m_link);
    })
{
    if (options.login != RtspLogin::Any || account.canBeLocked())
        m_gate.emplace(account, options.login);
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

void RtspPolicy::answer(const std::string &request, const std::string &status,
                        const std::string &headers, Link &link)
{
    onAnswer("RTSP/1.0 " + status + "\r\nCSeq: " + std::string(headerValue(request, "CSeq")) +
                 "\r\n" + headers + "\r\n",
             link);
}

void RtspPolicy::onRequest(std::string message, Link &link)
{
    const std::string method = message.substr(0, message.find(' '));
    ++m_faults->requests;
    ++m_requests;
    if (m_options.sessionTimeout > 0)
        guardSession(link);
    if (m_gate) {
        const std::string challenges = m_gate->challenges(message);
        if (!challenges.empty()) {
            answer(message, "401 Unauthorized", challenges, link);
            return;
        }
        message = m_gate->withServersLogin(message);
    }
    if (method == "GET_PARAMETER" && !m_options.getParameter) {
        answer(message, "501 Not Implemented", {}, link);
        return;
    }
    if (method == "PLAY") {
        const std::chrono::duration<double> wait(m_options.firstPacketAfter);
        m_firstPacket = Clock::now() + std::chrono::duration_cast<Clock::duration>(wait);
        setWatching(true);
    } else if (method == "TEARDOWN") {
        setWatching(false);
    }
    link.toServer(message);
}

void RtspPolicy::guardSession(Link &link)
{
    m_reactor.after(
        std::chrono::seconds(m_options.sessionTimeout),
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
    if (!m_options.getParameter)
        dropFromPublic(message, "GET_PARAMETER");
    const std::chrono::milliseconds delay{m_faults->slowMs};
    const auto half = m_faults->halfAnswer.exchange(RtspFaults::Half::No);
    if (half != RtspFaults::Half::No) {
        m_silent = true;
        link.toClient(std::string_view(message).substr(0, middleOfWord(message)), delay);
        if (half == RtspFaults::Half::ThenClose)
            link.closeWhenSent();
        return;
    }
    link.toClient(message, delay);
}

void RtspPolicy::onPacket(std::string packet, Link &link)
{
    if (m_faults->frozen || m_silent || Clock::now() < m_firstPacket)
        return;
    const auto half = m_faults->halfPacket.exchange(RtspFaults::Half::No);
    if (half != RtspFaults::Half::No) {
        m_silent = true;
        link.toClient(std::string_view(packet).substr(0, packet.size() / 2));
        if (half == RtspFaults::Half::ThenClose)
            link.closeWhenSent();
        return;
    }
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
    if (packet[1] == 0 && m_options.markers != Markers::Right &&
        packet.size() > packetHead + rtpHead)
        moveMarker(packet, m_options.markers);
    link.toClient(packet, std::chrono::milliseconds(m_faults->slowMs));
}

} // namespace camsim
