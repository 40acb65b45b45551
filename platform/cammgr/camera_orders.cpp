#include "platform/cammgr/camera_session.h"

#include <algorithm>
#include <array>
#include <utility>

// The orders to play of a camera session: a stream is started, and started again when it is lost,
// until the order is void.

namespace cammgr {
namespace {

using namespace std::chrono_literals;

/// Between the end of a stream and its next start; the last one for all that follow.
constexpr std::array<std::chrono::milliseconds, 5> retryPauses = {200ms, 500ms, 1s, 2s, 4s};
/// A host that stays silent is started again when a probe has found it, which costs less, and in
/// any case this often.
constexpr std::chrono::milliseconds silentPause = 15s;
/// A stream that played for so long has not failed.
constexpr std::chrono::milliseconds provingTime = 1s;
/// A probe in parallel delays the stream of some cameras.
constexpr std::chrono::milliseconds probePause = 200ms;

/// What a probe would have found, of a stream to which no connection was made.
std::optional<rtsp::ProbeOutcome> outcomeOf(const StreamFailure &failure)
{
    switch (failure.end) {
    case StreamEnd::Silent:
        return rtsp::ProbeOutcome::Silent;
    case StreamEnd::Rejected:
        return rtsp::ProbeOutcome::Rejected;
    case StreamEnd::NoSuchHost:
        return rtsp::ProbeOutcome::NoSuchHost;
    case StreamEnd::Refused:
        return rtsp::ProbeOutcome::LoginRefused;
    default:
        return std::nullopt;
    }
}

} // namespace

void CameraSession::play(const StreamOrder &order)
{
    const bool comesByItself =
        isRetrying() && order.path == m_order.path && order.window == m_order.window;
    m_order = order;
    // Playing is a login too: the next probe has to find that it is accepted now.
    if (m_schedule.remembered() == rtsp::ProbeOutcome::LoginRefused)
        return;
    m_orderedAt = Clock::now();
    if (comesByItself)
        return;
    m_retries = 0;
    m_resolver->find([this, ticket = order.ticket](bool found) {
        if (ticket != m_order.ticket)
            return;
        if (found)
            startStream();
        else
            m_reason.streamFailed({CAMMGR_REASON_HOST_NOT_FOUND, m_info.address.uid});
    });
}

void CameraSession::orderVoided()
{
    m_orderedAt.reset();
    m_order = {};
    m_retry.stop();
    m_isFindingForRetry = false;
    m_reason.orderVoided();
    if (m_probing == Probing::AwaitingPicture)
        probed(rtsp::ProbeOutcome::Answered);
}

void CameraSession::startStream()
{
    m_retry.stop();
    m_shownAt.reset();
    StreamRequest stream{request(m_order.path), m_order.window};
    if (auto session = m_probe.takeSession(stream.source.url)) {
        // Whoever drops it does not do so on the thread to which its connection belongs.
        const auto closeOnLoop = [](rtsp::OpenSession *open) {
            ioThread().post([held = std::shared_ptr<rtsp::OpenSession>(open)] {});
        };
        stream.session = {new rtsp::OpenSession(std::move(*session)), closeOnLoop};
    }
    m_control.startStream(m_order.ticket, stream);
}

void CameraSession::streamEnded(const StreamFailure &failure)
{
    const std::optional<rtsp::ProbeOutcome> outcome = outcomeOf(failure);
    if (outcome)
        m_schedule.record(*outcome, Clock::now());
    m_lostOnTheWay = outcome && rtsp::isNobodyThere(*outcome);
    if (m_lostOnTheWay)
        m_resolver->lost();
    if (failure.end == StreamEnd::Refused)
        m_reason.setLoginPause(m_schedule.loginPause(Clock::now()));
    if (m_order.path.empty())
        return; // the order is void
    const std::string url = m_paths.url(m_resolver->endpoint(), m_order.path);
    m_reason.streamFailed(reasonOf(failure, base::parseUrl(url)));
    if (failure.end == StreamEnd::Refused)
        return;
    if (m_shownAt && Clock::now() - *m_shownAt >= provingTime)
        m_retries = 0;
    if (failure.end == StreamEnd::NotFound ||
        (failure.end == StreamEnd::PathRefused && mayTryProfiles())) {
        m_triedProfiles = Clock::now();
        fallBack(m_order.path, failure.end == StreamEnd::NotFound,
                 [this, ticket = m_order.ticket](bool again) {
                     if (ticket != m_order.ticket)
                         return;
                     if (again)
                         startStream();
                     else
                         retryLater();
                 });
    } else {
        retryLater();
    }
}

void CameraSession::retryLater()
{
    const size_t last = retryPauses.size() - 1;
    const size_t count = std::min(static_cast<size_t>(m_retries++), last);
    const rtsp::ProbeOutcome known = m_schedule.remembered();
    const bool isSilent =
        known == rtsp::ProbeOutcome::Silent || known == rtsp::ProbeOutcome::NoSuchHost;
    m_retry.start(isSilent && count == last ? silentPause : retryPauses.at(count),
                  [this] { retry(); });
}

/// Does nothing where no lost stream waits.
void CameraSession::retryNow()
{
    if (!m_retry.isActive())
        return;
    m_retry.stop();
    retry();
}

void CameraSession::retry()
{
    // It is tried again when a probe has found that the login is accepted, and the client plays.
    if (m_schedule.remembered() == rtsp::ProbeOutcome::LoginRefused)
        return;
    if (m_probing == Probing::Finding || m_probing == Probing::Asking) {
        m_retry.start(probePause, [this] { retry(); });
        return;
    }
    m_isFindingForRetry = true;
    m_resolver->find([this](bool found) {
        if (!std::exchange(m_isFindingForRetry, false))
            return; // the order is void
        if (found)
            startStream();
        else
            retryLater();
    });
}

void CameraSession::streamUndecodable()
{
    const std::string url = m_paths.url(m_resolver->endpoint(), m_order.path);
    if (!m_order.path.empty())
        m_reason.streamFailed(reasonOf(StreamFailure{StreamEnd::Stalled}, base::parseUrl(url)));
}

void CameraSession::keyFrameWanted()
{
    m_resolver->requestKeyFrame(m_paths.profileToken(m_order.path));
}

} // namespace cammgr
