#include "platform/cammgr/reason.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace cammgr {
namespace {

constexpr int firstRefusal = 400;
constexpr int statusNotFound = 404;

std::string hostAndPort(const base::Endpoint &endpoint)
{
    const bool isIpv6 = endpoint.host.find(':') != std::string::npos;
    return (isIpv6 ? '[' + endpoint.host + ']' : endpoint.host) + ':' +
           std::to_string(endpoint.port);
}

std::string pathAndStatus(const base::CameraAddress &stream, int status)
{
    return stream.path + (status > 0 ? ' ' + std::to_string(status) : std::string());
}

} // namespace

Reason reasonOf(rtsp::ProbeOutcome outcome, const base::CameraAddress &stream, int status)
{
    using rtsp::ProbeOutcome;
    switch (outcome) {
    case ProbeOutcome::Answered:
        return {};
    case ProbeOutcome::LoginRefused:
        return {CAMMGR_REASON_LOGIN_REFUSED, hostAndPort(stream.endpoint)};
    case ProbeOutcome::NotFound:
        return {CAMMGR_REASON_NO_SUCH_PATH, pathAndStatus(stream, statusNotFound)};
    case ProbeOutcome::Unusable:
        if (status >= firstRefusal)
            return {CAMMGR_REASON_NO_SUCH_PATH, pathAndStatus(stream, status)};
        return {CAMMGR_REASON_BROKEN_ANSWER, hostAndPort(stream.endpoint)};
    case ProbeOutcome::Rejected:
        return {CAMMGR_REASON_CONNECTION_REFUSED, hostAndPort(stream.endpoint)};
    case ProbeOutcome::NoSuchHost:
        return {CAMMGR_REASON_HOST_NOT_FOUND, stream.endpoint.host};
    case ProbeOutcome::TlsFailed:
        return {CAMMGR_REASON_TLS_FAILED, hostAndPort(stream.endpoint)};
    case ProbeOutcome::KeyChanged:
        return {CAMMGR_REASON_KEY_CHANGED, hostAndPort(stream.endpoint)};
    case ProbeOutcome::Silent:
        break;
    }
    return {CAMMGR_REASON_NO_ANSWER, hostAndPort(stream.endpoint)};
}

Reason reasonOf(const rtsp::StreamFailure &failure, const base::CameraAddress &stream)
{
    using rtsp::StreamEnd;
    const std::string service = hostAndPort(stream.endpoint);
    switch (failure.end) {
    case StreamEnd::NoSuchHost:
        return {CAMMGR_REASON_HOST_NOT_FOUND, stream.endpoint.host};
    case StreamEnd::Silent:
        break;
    case StreamEnd::Rejected:
        return {CAMMGR_REASON_CONNECTION_REFUSED, service};
    case StreamEnd::TlsFailed:
        return {CAMMGR_REASON_TLS_FAILED, service};
    case StreamEnd::KeyChanged:
        return {CAMMGR_REASON_KEY_CHANGED, service};
    case StreamEnd::Failed:
        return {CAMMGR_REASON_BROKEN_ANSWER, service};
    case StreamEnd::Refused:
        return {CAMMGR_REASON_LOGIN_REFUSED, service};
    case StreamEnd::NotFound:
        return {CAMMGR_REASON_NO_SUCH_PATH, pathAndStatus(stream, statusNotFound)};
    case StreamEnd::PathRefused:
        return {CAMMGR_REASON_NO_SUCH_PATH, pathAndStatus(stream, failure.status)};
    case StreamEnd::Closed:
        return {CAMMGR_REASON_STREAM_ENDED, service};
    case StreamEnd::Stalled:
        return {CAMMGR_REASON_NO_PICTURES, service};
    case StreamEnd::NoVideo:
        return {CAMMGR_REASON_NO_VIDEO, {}};
    case StreamEnd::UnknownCodec:
        return {CAMMGR_REASON_CODEC_UNKNOWN, failure.codec};
    }
    return {CAMMGR_REASON_NO_ANSWER, service};
}

void ReasonBoard::set(Reason reason, Source source)
{
    const std::lock_guard lock(m_mutex);
    m_reason = std::move(reason);
    m_source = source;
}

void ReasonBoard::clear(Source source)
{
    const std::lock_guard lock(m_mutex);
    if (m_source == source)
        m_reason = {};
}

void ReasonBoard::pictureShown()
{
    const std::lock_guard lock(m_mutex);
    m_reason = {};
}

void ReasonBoard::setLoginPause(std::optional<Time> until)
{
    const std::lock_guard lock(m_mutex);
    m_pausedUntil = until;
}

Reason ReasonBoard::current(Time now) const
{
    const std::lock_guard lock(m_mutex);
    if (m_reason.value != CAMMGR_REASON_LOGIN_REFUSED || !m_pausedUntil || *m_pausedUntil <= now)
        return m_reason;
    const auto left = std::chrono::ceil<std::chrono::seconds>(*m_pausedUntil - now);
    return {CAMMGR_REASON_LOGIN_PAUSED, std::to_string(left.count())};
}

void copyCut(const std::string &text, char *room, int size)
{
    if (!room || size < 1)
        return;
    size_t length = std::min(text.size(), static_cast<size_t>(size) - 1);
    const auto continues = [&](size_t at) {
        return (static_cast<uint8_t>(text[at]) & 0xc0) == 0x80;
    };
    while (length > 0 && length < text.size() && continues(length))
        --length;
    std::memcpy(room, text.data(), length);
    room[length] = '\0';
}

} // namespace cammgr
