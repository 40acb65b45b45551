#include "platform/rtsp/rtsp_probe.h"

#include <utility>

namespace rtsp {
namespace {

using namespace std::chrono_literals;

constexpr auto connectLimit = 5s;
constexpr auto probeLimit = 9s;
constexpr const char *probeRequest = "DESCRIBE";

} // namespace

void RtspProbe::start(const ProbeTarget &target, Done done)
{
    cancel();
    if (target.endpoint != m_target.endpoint)
        m_channel.close();
    if (RtspLogin login(target.username, target.password); !(login == m_login))
        m_login = std::move(login);
    m_target = target;
    m_done = std::move(done);
    m_challenged = false;
    m_wasConnected = m_channel.isOpen();
    m_status = 0;
    m_limit.start(probeLimit, [this] {
        m_channel.close();
        finish(ProbeOutcome::Silent);
    });
    if (m_channel.isOpen())
        describe();
    else
        connect();
}

void RtspProbe::cancel()
{
    if (!m_done)
        return;
    m_done = nullptr;
    m_limit.stop();
    m_channel.close();
}

void RtspProbe::disconnect()
{
    if (!m_done)
        m_channel.close();
}

std::optional<OpenSession> RtspProbe::takeSession(const std::string &url)
{
    if (m_done || !m_channel.isOpen() || m_description.body.empty() || m_target.url != url)
        return std::nullopt;
    return OpenSession{.channel = std::exchange(m_channel, base::TcpChannel()),
                       .endpoint = m_target.endpoint,
                       .url = m_target.url,
                       .sequence = m_sequence,
                       .login = m_login,
                       .description = std::exchange(m_description, Reply())};
}

void RtspProbe::connect()
{
    m_connectionUsed = false;
    m_channel.open(m_target.endpoint, connectLimit,
                   {.opened =
                        [this] {
                            m_wasConnected = true;
                            describe();
                        },
                    .received = [this](std::string_view data) { received(data); },
                    .ended = [this](base::ChannelEnd reason) { ended(reason); }});
}

void RtspProbe::describe()
{
    m_reader = ReplyReader(ReplyReader::Protocol::Rtsp);
    m_description = {};
    std::string request = "DESCRIBE " + m_target.url +
                          " RTSP/1.0\r\nCSeq: " + std::to_string(++m_sequence) +
                          "\r\nUser-Agent: Zelvaro\r\nAccept: application/sdp\r\n";
    const std::string authorization = m_login.authorization("DESCRIBE", m_target.url);
    if (!authorization.empty())
        request += "Authorization: " + authorization + "\r\n";
    m_channel.send(request + "\r\n");
}

void RtspProbe::received(std::string_view data)
{
    if (!m_done)
        return; // unrequested; read so that the connection does not fill up
    switch (m_reader.feed(data)) {
    case ReplyReader::State::Incomplete:
        return;
    case ReplyReader::State::Complete:
        m_connectionUsed = true;
        answered(m_reader.take());
        return;
    case ReplyReader::State::Broken:
        m_channel.close();
        finish(ProbeOutcome::Unusable);
        return;
    }
}

void RtspProbe::answered(const Reply &reply)
{
    m_status = reply.status;
    if (!reply.keepsConnection)
        m_channel.close();
    if (reply.status == 401) {
        if (!answersChallenge(reply)) {
            // The next probe starts without a login again: one wrong answer each, not two.
            m_login = RtspLogin(m_target.username, m_target.password);
            finish(ProbeOutcome::LoginRefused);
            return;
        }
        if (m_channel.isOpen())
            describe();
        else
            connect();
        return;
    }
    if (m_login.isInUse()) {
        m_target.policy->accepted(probeRequest);
        if (m_login.isLatin1())
            m_target.policy->noteLatin1();
    }
    // A redirection (RFC 2326 11.3) is followed by the stream itself.
    if (reply.status == 200)
        m_description = reply;
    if (reply.status >= 200 && reply.status < 400)
        finish(ProbeOutcome::Answered);
    else
        finish(reply.status == 404 ? ProbeOutcome::NotFound : ProbeOutcome::Unusable);
}

/// Whether the request is to be sent again, with a login that the camera has not refused.
bool RtspProbe::answersChallenge(const Reply &reply)
{
    const bool carriedLogin = m_login.isInUse();
    const bool isUnderstood = m_login.takeChallenge(reply.all("WWW-Authenticate"), *m_target.policy,
                                                    m_target.endpoint.tls);
    if (carriedLogin && !m_login.isStale())
        m_target.policy->refused(probeRequest);
    // What an earlier probe has learned may be out of date.
    const bool isFirst = !std::exchange(m_challenged, true);
    return isUnderstood && m_target.policy->mayTry() && (isFirst || m_login.tryLatin1());
}

void RtspProbe::ended(base::ChannelEnd reason)
{
    if (!m_done)
        return;
    // A connection that was kept may have been dropped in between, just before the request.
    if (reason == base::ChannelEnd::Closed && m_connectionUsed && !m_reader.hasBegun()) {
        connect();
        return;
    }
    switch (reason) {
    case base::ChannelEnd::Rejected:
        finish(ProbeOutcome::Rejected);
        return;
    case base::ChannelEnd::KeyChanged:
        finish(ProbeOutcome::KeyChanged);
        return;
    case base::ChannelEnd::NoSuchHost:
        finish(ProbeOutcome::NoSuchHost);
        return;
    case base::ChannelEnd::TlsFailed:
        finish(ProbeOutcome::TlsFailed);
        return;
    case base::ChannelEnd::Unreachable:
        finish(ProbeOutcome::Silent);
        return;
    case base::ChannelEnd::Closed:
        finish(ProbeOutcome::Unusable);
        return;
    }
}

void RtspProbe::finish(ProbeOutcome outcome)
{
    m_limit.stop();
    const Done done = std::exchange(m_done, nullptr);
    done(outcome);
}

} // namespace rtsp
