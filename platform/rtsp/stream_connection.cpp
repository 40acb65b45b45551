#include "platform/rtsp/stream_connection.h"

#include "platform/base/text.h"
#include "platform/rtsp/log.h"

#include <glib.h>

#include <utility>

namespace rtsp {
namespace {

using namespace std::chrono_literals;
using base::ChannelEnd;

constexpr auto connectLimit = 5s;
constexpr auto setUpLimit = 20s;
constexpr int maxRedirections = 5;
constexpr int maxAttempts = 8;
constexpr uint16_t rtspPort = 554;
constexpr int statusUnauthorized = 401;
constexpr int statusNotFound = 404;

StreamEnd reasonOf(const SessionResult &result)
{
    if (result.status == statusUnauthorized)
        return StreamEnd::Refused;
    if (result.status == statusNotFound)
        return StreamEnd::NotFound;
    return result.step == SessionResult::Step::Options ? StreamEnd::Failed : StreamEnd::PathRefused;
}

const char *nameOf(SessionResult::Step step)
{
    switch (step) {
    case SessionResult::Step::Options:
        return "OPTIONS";
    case SessionResult::Step::Describe:
        return "DESCRIBE";
    case SessionResult::Step::Setup:
        return "SETUP";
    case SessionResult::Step::Play:
        break;
    }
    return "PLAY";
}

/// Of a connection that was not made.
StreamFailure failureOf(ChannelEnd reason)
{
    switch (reason) {
    case ChannelEnd::NoSuchHost:
        return {StreamEnd::NoSuchHost, "the host is not known"};
    case ChannelEnd::Rejected:
        return {StreamEnd::Rejected, "the camera refuses the connection"};
    case ChannelEnd::TlsFailed:
        return {StreamEnd::TlsFailed, "the camera does not speak TLS there"};
    case ChannelEnd::KeyChanged:
        return {StreamEnd::KeyChanged, "the key of the camera has changed"};
    case ChannelEnd::Unreachable:
    case ChannelEnd::Closed:
        break;
    }
    return {StreamEnd::Silent, "the camera cannot be reached"};
}

bool isRtsp(const std::string &url)
{
    const std::string lower = base::lowerAscii(url.substr(0, 8));
    return lower.starts_with("rtsp://") || lower == "rtsps://";
}

std::string textOf(const SessionResult &result)
{
    if (!result.text.empty())
        return result.text;
    if (result.kind == SessionResult::Kind::Silent)
        return std::string("no answer to ") + nameOf(result.step);
    return std::string(nameOf(result.step)) + " was answered with " + std::to_string(result.status);
}

StreamFailure failureOf(const SessionResult &result)
{
    return {reasonOf(result), textOf(result), result.status};
}

} // namespace

StreamConnection::StreamConnection(Client &client, const StreamRequest &request, SessionPlan plan)
    : m_client(client)
    , m_request(request)
    , m_url(request.url)
    , m_plan(std::move(plan))
{
    m_plan.mayUseTcp = request.transport != Transport::Udp;
    m_plan.mayUseUdp = request.transport != Transport::Interleaved;
}

void StreamConnection::start()
{
    if (!takeUrl(m_url)) {
        // Not during start().
        m_limit.start(0ms, [this] { end({StreamEnd::Failed, "not the address of a stream"}); });
        return;
    }
    m_exchange.setLogin(RtspLogin(m_request.username, m_request.password), m_request.login);
    connect();
}

void StreamConnection::start(OpenSession session)
{
    if (!session.channel.isOpen()) {
        start();
        return;
    }
    m_endpoint = session.endpoint;
    m_url = session.url;
    m_exchange.setLogin(std::move(session.login), m_request.login);
    m_exchange.adopt(std::move(session.channel), m_endpoint.tls, session.sequence);
    m_isAdopted = true;
    startLimit();
    m_session = std::make_unique<PlaySession>(*this, m_exchange);
    m_session->start(m_url, m_plan, session.description);
}

const char *StreamConnection::transportName() const
{
    if (m_isUdp)
        return "UDP";
    if (!m_tunnelPath.empty())
        return m_endpoint.tls ? "HTTPS" : "HTTP";
    return m_endpoint.tls ? "TLS" : "TCP";
}

void StreamConnection::startLimit()
{
    m_limit.start(
        setUpLimit,
        [this] {
            end({StreamEnd::Failed, "setting up took too long"});
        });
}

void StreamConnection::connect()
{
    if (++m_attempts > maxAttempts) {
        end({StreamEnd::Failed, "the camera does not keep a connection"});
        return;
    }
    m_isAdopted = false;
    startLimit();
    if (m_tunnelPath.empty())
        m_exchange.open(m_endpoint, connectLimit, [this] { opened(); });
    else
        m_exchange.openTunnel(m_endpoint, m_tunnelPath, connectLimit, [this] { opened(); });
}

void StreamConnection::opened()
{
    if (std::exchange(m_repeats, false)) {
        m_session->repeat();
        return;
    }
    SessionPlan plan = m_plan;
    if (!m_tunnelPath.empty())
        plan.mayUseUdp = false;
    m_session = std::make_unique<PlaySession>(*this, m_exchange);
    m_session->start(m_url, plan);
}

/// Ends the session and the connection, if there are any.
void StreamConnection::leave(std::function<void()> left)
{
    std::optional<Request> last = m_session ? m_session->teardown() : std::nullopt;
    if (last && m_exchange.isOpen()) {
        m_exchange.closeWith(std::move(*last), std::move(left));
        return;
    }
    m_exchange.close();
    if (left)
        left();
}

void StreamConnection::close(std::function<void()> closed)
{
    if (std::exchange(m_isClosed, true))
        return;
    leave(std::move(closed));
    // Not now: this may be a call of the session's.
    m_limit.start(0ms, [this] { m_session.reset(); });
}

void StreamConnection::end(StreamFailure failure)
{
    if (m_isClosed)
        return;
    if (m_firstFailure && !m_isPlaying && failure.end != StreamEnd::Refused)
        failure = *m_firstFailure;
    g_log(logDomain, G_LOG_LEVEL_DEBUG, "%s: %s", m_url.c_str(), failure.text.c_str());
    close();
    m_client.connectionEnded(failure);
}

/// Over UDP, once, where that is allowed.
void StreamConnection::tryAnotherWay(StreamFailure failure)
{
    if (m_session->isUdp() || !m_plan.mayUseUdp || !m_tunnelPath.empty()) {
        end(std::move(failure));
        return;
    }
    g_log(logDomain, G_LOG_LEVEL_DEBUG, "%s: %s, trying UDP", m_url.c_str(), failure.text.c_str());
    m_firstFailure = std::move(failure);
    m_plan.mayUseTcp = false;
    m_plan.asksOptions = false;
    // Only a SETUP that was accepted tells which address of the first medium is right.
    m_plan.join = m_session->step() == Step::Setup ? 0 : m_session->join();
    m_isPlaying = false;
    leave(nullptr);
    connect();
}

void StreamConnection::packet(uint8_t channel, std::span<const uint8_t> data)
{
    if (m_session)
        m_session->takePacket(channel, data);
}

void StreamConnection::disconnected(ChannelEnd reason)
{
    if (m_isClosed)
        return;
    if (reason != ChannelEnd::Closed) {
        end(failureOf(reason));
    } else if (m_exchange.isAnsweringChallenge() || (m_exchange.wasLastAnswer() && !m_isPlaying)) {
        // The request that is not answered goes over a new connection.
        m_repeats = true;
        connect();
    } else if (m_isAdopted && !m_exchange.hasAnswered()) {
        m_plan.asksOptions = false;
        connect();
    } else if (m_isPlaying && m_client.isSettled()) {
        end({StreamEnd::Closed, "the camera closed the connection"});
    } else if (!m_session) {
        end({StreamEnd::PathRefused, "the web server closed the connection"});
    } else {
        closedAt(m_session->step());
    }
}

void StreamConnection::tunnelRefused(int status)
{
    if (m_isClosed)
        return;
    const StreamEnd reason = status == statusUnauthorized ? StreamEnd::Refused
                             : status == statusNotFound   ? StreamEnd::NotFound
                                                          : StreamEnd::PathRefused;
    end({reason,
         status == 0 ? "there is no web server"
                     : "the web server answered with " + std::to_string(status),
         status});
}

/// The camera closed the connection instead of answering.
void StreamConnection::closedAt(Step step)
{
    const std::string text = std::string("the camera closed the connection after ") + nameOf(step);
    if (step == Step::Options) {
        m_plan.asksOptions = false;
        connect();
    } else if (step == Step::Setup && m_session->isSettingUpMore()) {
        m_plan.onlyFirst = true;
        m_plan.asksOptions = false;
        connect();
    } else if (step == Step::Setup && !m_session->isUdp() && m_session->hasOtherJoin()) {
        m_plan.join = m_session->join() + 1;
        m_plan.asksOptions = false;
        connect();
    } else if (step == Step::Describe) {
        end({StreamEnd::PathRefused, text});
    } else {
        tryAnotherWay({m_isPlaying ? StreamEnd::Closed : StreamEnd::PathRefused, text});
    }
}

TrackChoice StreamConnection::chooseTracks(const SessionDescription &description)
{
    if (m_isClosed)
        return {};
    TrackChoice choice = m_client.chooseTracks(description);
    return m_isClosed ? TrackChoice() : std::move(choice);
}

void StreamConnection::sessionDone(const SessionResult &result)
{
    if (m_isClosed)
        return;
    switch (result.kind) {
    case SessionResult::Kind::Plays:
        m_limit.stop();
        m_isPlaying = true;
        m_isUdp = m_session->isUdp();
        m_client.playing();
        break;
    case SessionResult::Kind::Redirected:
        redirect(result.location);
        break;
    case SessionResult::Kind::NothingToPlay:
        end({result.codec.empty() ? StreamEnd::NoVideo : StreamEnd::UnknownCodec, result.text, 0,
             result.codec});
        break;
    case SessionResult::Kind::Silent:
        silentAt(result);
        break;
    case SessionResult::Kind::Refused:
        if (result.step == Step::Play && result.status != statusUnauthorized)
            tryAnotherWay(failureOf(result));
        else
            end(failureOf(result));
        break;
    }
}

/// The camera has not answered in time.
void StreamConnection::silentAt(const SessionResult &result)
{
    if (result.step == Step::Options && !m_exchange.hasBegunAnswer()) {
        // Some cameras do not know it.
        m_plan.asksOptions = false;
        m_neverAnswered = true;
        m_exchange.close();
        connect();
    } else if (result.step == Step::Options || m_neverAnswered) {
        const bool hasSpoken = m_exchange.hasAnswered() || m_exchange.hasBegunAnswer();
        end({hasSpoken ? StreamEnd::Failed : StreamEnd::Silent, textOf(result)});
    } else if (result.step == Step::Describe) {
        end({StreamEnd::PathRefused, textOf(result)});
    } else {
        tryAnotherWay({StreamEnd::PathRefused, textOf(result)});
    }
}

void StreamConnection::redirect(const std::string &location)
{
    const base::Endpoint before = m_endpoint;
    if (++m_redirections > maxRedirections || !takeUrl(location)) {
        end({StreamEnd::PathRefused, "the camera redirects to nowhere"});
        return;
    }
    if (before.tls && !m_endpoint.tls) {
        end({StreamEnd::PathRefused, "the camera redirects to an unencrypted connection"});
        return;
    }
    if (m_endpoint != before) {
        // Somebody else may have the digest of the password, but not the password itself.
        std::shared_ptr<LoginPolicy> policy = m_request.login;
        if (m_endpoint.host != before.host) {
            policy = std::make_shared<LoginPolicy>();
            policy->distrust();
        }
        m_exchange.setLogin(RtspLogin(m_request.username, m_request.password), std::move(policy));
    }
    leave(nullptr);
    connect();
}

/// Takes over where an address leads to; false when that is nowhere.
bool StreamConnection::takeUrl(const std::string &text)
{
    const base::CameraAddress url = base::parseUrl(text);
    if (url.kind != base::CameraAddress::Kind::Host)
        return false;
    m_endpoint = url.endpoint;
    m_tunnelPath.clear();
    const bool hasLogin = !url.username.empty() || !url.password.empty();
    if (isRtsp(text)) {
        m_url = hasLogin ? base::rtspOrigin(url.endpoint) + url.path : text;
        return true;
    }
    // Inside the tunnel it is plain RTSP.
    m_tunnelPath = url.path.empty() ? "/" : url.path;
    m_url = base::rtspOrigin({.host = url.endpoint.host,
                              .port = url.hasPort ? url.endpoint.port : rtspPort,
                              .tls = false}) +
            url.path;
    return true;
}

} // namespace rtsp
