#include "platform/rtsp/play_session.h"

#include <algorithm>
#include <array>

namespace rtsp {
namespace {

using namespace std::chrono_literals;

constexpr auto optionsLimit = 3s;
constexpr auto answerLimit = 8s;

constexpr int firstRedirection = 300;
constexpr int firstRefusal = 400;
constexpr int statusUnauthorized = 401;
constexpr int statusInvalidRange = 457;
constexpr int statusUnsupportedTransport = 461;

/// What servers answer to an address of a medium that they do not know.
bool isUnknownAddress(int status)
{
    constexpr std::array<int, 7> known = {400, 404, 451, 454, 455, 459, 500};
    return std::find(known.begin(), known.end(), status) != known.end() || status == 460;
}

std::string contentBaseOf(const Reply &reply)
{
    const std::string base = reply.first("Content-Base");
    return base.empty() ? reply.first("Content-Location") : base;
}

} // namespace

void PlaySession::start(const std::string &url, const SessionPlan &plan)
{
    m_url = url;
    m_plan = plan;
    m_udp = !plan.mayUseTcp;
    if (plan.asksOptions)
        options();
    else
        describe();
}

void PlaySession::start(const std::string &url, const SessionPlan &plan, const Reply &description)
{
    m_url = url;
    m_plan = plan;
    m_udp = !plan.mayUseTcp;
    takeDescription(description);
}

void PlaySession::repeat()
{
    switch (m_step) {
    case Step::Options:
        options();
        break;
    case Step::Describe:
        describe();
        break;
    case Step::Setup:
        setUp();
        break;
    case Step::Play:
        play();
        break;
    }
}

void PlaySession::ask(Step step, Request request, std::chrono::milliseconds limit,
                      void (PlaySession::*answered)(const Reply *))
{
    m_step = step;
    if (!m_session.id.empty())
        request.headers.emplace_back("Session", m_session.id);
    if (!m_plan.require.empty() && step != Step::Options)
        request.headers.emplace_back("Require", m_plan.require);
    m_exchange.send(std::move(request), limit,
                    [this, answered](const Reply *reply) { (this->*answered)(reply); });
}

/// Deals with the answers that mean the same at each step.
bool PlaySession::isFinal(const Reply *reply)
{
    if (!reply) {
        finish(Kind::Silent, 0);
        return true;
    }
    const std::string location = reply->first("Location");
    if (reply->status >= firstRedirection && reply->status < firstRefusal) {
        SessionResult result{.kind = location.empty() ? Kind::Refused : Kind::Redirected,
                             .step = m_step,
                             .status = reply->status,
                             .text = {},
                             .location = resolveUrl(m_url, location)};
        m_client.sessionDone(result);
        return true;
    }
    if (reply->status == statusUnauthorized) {
        finish(Kind::Refused, reply->status);
        return true;
    }
    return false;
}

void PlaySession::finish(Kind kind, int status, const std::string &text)
{
    m_client.sessionDone(
        {.kind = kind, .step = m_step, .status = status, .text = text, .location = {}});
}

void PlaySession::options()
{
    ask(Step::Options, {.method = "OPTIONS", .url = m_url, .headers = {}}, optionsLimit,
        &PlaySession::optionsAnswered);
}

void PlaySession::optionsAnswered(const Reply *reply)
{
    if (isFinal(reply))
        return;
    m_keepAlive.setMethods(reply->first("Public"));
    describe();
}

void PlaySession::describe()
{
    ask(Step::Describe,
        {.method = "DESCRIBE", .url = m_url, .headers = {{"Accept", "application/sdp"}}},
        answerLimit, &PlaySession::describeAnswered);
}

void PlaySession::describeAnswered(const Reply *reply)
{
    if (isFinal(reply))
        return;
    if (reply->status >= firstRefusal)
        finish(Kind::Refused, reply->status);
    else
        takeDescription(*reply);
}

void PlaySession::takeDescription(const Reply &reply)
{
    m_step = Step::Describe;
    const std::optional<SessionDescription> description = parseSessionDescription(reply.body);
    if (!description) {
        finish(Kind::Refused, 0, "the camera's description cannot be read");
        return;
    }
    TrackChoice choice = m_client.chooseTracks(*description);
    m_tracks = std::move(choice.tracks);
    if (m_tracks.empty()) {
        m_client.sessionDone({.kind = Kind::NothingToPlay,
                              .step = m_step,
                              .status = reply.status,
                              .text = choice.missing,
                              .location = {},
                              .codec = choice.codec});
        return;
    }
    if (m_plan.onlyFirst)
        m_tracks.resize(1);
    m_base = {m_url, contentBaseOf(reply), description->control};
    m_controls = controlUrls(m_base, m_tracks.front()->description().control);
    m_playUrls = aggregateUrls(m_base);
    if (std::find(m_playUrls.begin(), m_playUrls.end(), m_controls.front()) == m_playUrls.end())
        m_playUrls.push_back(m_controls.front());
    m_plan.join = std::min(m_plan.join, m_controls.size() - 1);
    setUp();
}

void PlaySession::setUp()
{
    MediaTrack &track = *m_tracks[m_track];
    const auto channel = static_cast<uint16_t>(2 * m_track);
    std::string transport = interleavedTransport({channel, channel + 1});
    if (m_udp) {
        const base::GObjectPtr<GInetSocketAddress> camera = m_exchange.remoteAddress();
        const auto ports =
            track.openPorts(camera ? g_socket_address_get_family(G_SOCKET_ADDRESS(camera.get()))
                                   : G_SOCKET_FAMILY_IPV4);
        if (!ports) {
            finish(Kind::Refused, 0, "no free ports for UDP");
            return;
        }
        transport = udpTransport(*ports);
    }
    const std::vector<std::string> urls = controlUrls(m_base, track.description().control);
    ask(Step::Setup,
        {.method = "SETUP",
         .url = urls[std::min(m_plan.join, urls.size() - 1)],
         .headers = {{"Transport", transport}}},
        answerLimit, &PlaySession::setUpAnswered);
}

void PlaySession::setUpAnswered(const Reply *reply)
{
    MediaTrack &track = *m_tracks[m_track];
    if (m_track == 0 && isFinal(reply))
        return;
    if (!reply || reply->status >= firstRedirection) {
        setUpRefused(reply ? reply->status : 0);
        return;
    }
    if (const std::string session = reply->first("Session"); !session.empty())
        m_session = parseSession(session);
    if (!takeTransport(track, parseTransport(reply->first("Transport")))) {
        setUpRefused(statusUnsupportedTransport);
        return;
    }
    ++m_track;
    setUpNext();
}

/// Whether the medium will come as it was asked for.
bool PlaySession::takeTransport(MediaTrack &track, const TransportAnswer &answer)
{
    if (m_udp) {
        const base::GObjectPtr<GInetSocketAddress> camera = m_exchange.remoteAddress();
        return !answer.isTcp && !answer.isMulticast && track.usePorts(camera.get(), answer);
    }
    if (answer.isUdp)
        return false;
    const auto asked = static_cast<uint16_t>(2 * m_track);
    return track.useChannels(answer.interleaved.value_or(NumberPair(asked, asked + 1)));
}

void PlaySession::setUpRefused(int status)
{
    if (m_track > 0) {
        // A picture is worth having without its sound.
        m_tracks.erase(m_tracks.begin() + static_cast<ptrdiff_t>(m_track));
        setUpNext();
        return;
    }
    if (status != statusUnsupportedTransport && isUnknownAddress(status) && hasOtherJoin()) {
        ++m_plan.join;
        setUp();
    } else if (!m_udp && m_plan.mayUseUdp) {
        m_firstRefusal = status;
        m_udp = true;
        m_plan.join = 0;
        setUp();
    } else {
        finish(Kind::Refused, m_firstRefusal != 0 ? m_firstRefusal : status);
    }
}

void PlaySession::setUpNext()
{
    if (m_track < m_tracks.size())
        setUp();
    else
        play();
}

void PlaySession::play()
{
    for (const std::unique_ptr<MediaTrack> &track : m_tracks)
        track->start([this](uint8_t channel, std::span<const uint8_t> data) {
            m_exchange.sendPacket(channel, data);
        });
    Request request{.method = "PLAY", .url = m_playUrls[m_playUrl], .headers = {}};
    if (m_sendsRange)
        request.headers.emplace_back("Range", "npt=0.000-");
    ask(Step::Play, std::move(request), answerLimit, &PlaySession::playAnswered);
}

void PlaySession::playAnswered(const Reply *reply)
{
    if (!reply && hasReceived()) {
        // Some cameras never answer, or with a text that cannot be read between the packets.
    } else if (isFinal(reply)) {
        return;
    } else if (reply->status == statusInvalidRange && m_sendsRange) {
        m_sendsRange = false;
        play();
        return;
    } else if (isUnknownAddress(reply->status) && m_playUrl + 1 < m_playUrls.size()) {
        ++m_playUrl;
        play();
        return;
    } else if (reply->status >= firstRefusal) {
        finish(Kind::Refused, reply->status);
        return;
    }
    m_keepAlive.start(m_exchange, m_playUrls[m_playUrl], m_session);
    finish(Kind::Plays, 200);
}

void PlaySession::takePacket(uint8_t channel, std::span<const uint8_t> data)
{
    if (MediaTrack *track = trackOf(channel, data))
        track->takePacket(channel, data);
}

/// The medium that a packet belongs to; null when there is none.
MediaTrack *PlaySession::trackOf(uint8_t channel, std::span<const uint8_t> data)
{
    MediaTrack *found = nullptr;
    MediaTrack *stranger = nullptr;
    for (const std::unique_ptr<MediaTrack> &track : m_tracks)
        if (track->usesChannel(channel) && (!found || track->describes(data)))
            // Some cameras answer with the same channels for both media.
            found = track.get();
        else if (track->isInterleaved() && !track->hasReceived() && track->describes(data))
            stranger = track.get();
    if (!found && stranger)
        // Others send on other channels than those of their answer.
        stranger->moveTo(channel);
    return found ? found : stranger;
}

std::optional<Request> PlaySession::teardown()
{
    m_keepAlive.stop();
    if (m_session.id.empty())
        return std::nullopt;
    return Request{
        .method = "TEARDOWN", .url = m_playUrls[m_playUrl], .headers = {{"Session", m_session.id}}};
}

} // namespace rtsp
