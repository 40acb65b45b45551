#include "platform/cammgr/camera_session.h"

#include "platform/cammgr/io_services.h"

#include <utility>

namespace cammgr {
namespace {

using namespace std::chrono_literals;

/// The caller is promised 15 s for both.
constexpr std::chrono::milliseconds probeLimit = 14s;
constexpr std::chrono::milliseconds commandLimit = 14s;
constexpr std::chrono::milliseconds leastCommandTime = 1s;
/// A probe right after play waits for the first frame, but not much longer than a regular probe.
constexpr std::chrono::milliseconds pictureLimit = 3s;
constexpr std::chrono::milliseconds profilesPause = 60s;

} // namespace

CameraSession::CameraSession(SessionInfo info, StreamControl &control)
    : m_info(std::move(info))
    , m_control(control)
    , m_paths(m_info.address.path)
{
}

CameraSession::~CameraSession() = default;

void CameraSession::open()
{
    IoServices &services = IoServices::instance();
    m_resolver =
        std::make_unique<Resolver>(services.lookup(), m_info.address,
                                   base::Credentials{m_info.username, m_info.password}, m_login);
    m_resolver->onMoved = [this] { moved(); };
    m_watch = services.watchNetwork([this] {
        m_schedule.networkChanged();
        retryNow();
    });
}

void CameraSession::close(bool reportProbe)
{
    IoServices::instance().unwatchNetwork(m_watch);
    if (reportProbe)
        stopConnecting();
    m_probeLimit.stop();
    m_retry.stop();
    m_commands.cancel();
    m_still->cancel();
    m_probe.cancel();
    m_probe.disconnect();
    m_resolver.reset();
}

void CameraSession::report(int message, int value, char **strings)
{
    if (m_info.callback)
        m_info.callback(message, value, m_info.context, strings);
}

void CameraSession::tick()
{
    if (m_probing != Probing::Idle)
        return;
    m_probing = Probing::Finding;
    const unsigned number = ++m_probeNumber;
    if (awaitPicture())
        return;
    if (isAnsweredByStream()) {
        m_probe.disconnect();
        probed(rtsp::ProbeOutcome::Answered);
    } else if (!m_schedule.isDue(Clock::now())) {
        finishProbe(m_schedule.remembered());
    } else {
        m_probeLimit.start(probeLimit, [this] {
            m_probe.cancel();
            probed(rtsp::ProbeOutcome::Silent);
        });
        m_resolver->find([this, number](bool found) {
            if (number != m_probeNumber || m_probing != Probing::Finding)
                return;
            if (found)
                describe();
            else
                probed(rtsp::ProbeOutcome::Silent);
        });
    }
}

bool CameraSession::isAnsweredByStream()
{
    const StreamPhase phase = m_control.streamPhase();
    // A stream that starts is a probe by itself, and will not stay there for longer than its
    // watchdog lets it. A DESCRIBE in parallel delays the stream of some cameras.
    const bool wasThere = m_schedule.remembered() == rtsp::ProbeOutcome::Answered;
    return phase == StreamPhase::Playing || (phase == StreamPhase::Starting && wasThere);
}

/// Whether the stream was ordered just now: its first picture then answers the probe. A stream that
/// fails at once does not answer it sooner, or a client that plays on each answer would hurry.
bool CameraSession::awaitPicture()
{
    if (!m_orderedAt || m_schedule.remembered() != rtsp::ProbeOutcome::Answered ||
        m_control.streamPhase() == StreamPhase::Playing)
        return false;
    const Clock::duration left = *m_orderedAt + pictureLimit - Clock::now();
    if (left <= Clock::duration::zero())
        return false;
    m_probing = Probing::AwaitingPicture;
    m_probeLimit.start(std::chrono::ceil<std::chrono::milliseconds>(left), [this] {
        m_probing = Probing::Idle;
        tick();
    });
    return true;
}

void CameraSession::userAsked()
{
    m_schedule.userAsked();
    m_login->userAsked();
    m_reason.setLoginPause(std::nullopt);
}

void CameraSession::trustKey()
{
    m_resolver->trustKey();
    m_schedule.userAsked();
}

void CameraSession::pictureShown()
{
    m_shownAt = Clock::now();
    m_lostOnTheWay = false;
    m_reason.pictureShown();
    if (m_probing == Probing::AwaitingPicture)
        probed(rtsp::ProbeOutcome::Answered);
}

void CameraSession::stopConnecting()
{
    if (m_probing == Probing::Idle)
        return;
    m_probe.cancel();
    finishProbe(rtsp::ProbeOutcome::Silent);
}

void CameraSession::describe()
{
    m_probing = Probing::Asking;
    const std::string path = StreamPaths::path(StreamPlace::Main);
    const std::string url = m_paths.url(m_resolver->endpoint(), path);
    const base::CameraAddress service = base::parseUrl(url);
    m_probe.start({service.endpoint, url, m_info.username, m_info.password, loginPolicy()},
                  [this](rtsp::ProbeOutcome outcome) { probed(outcome); });
}

void CameraSession::probed(rtsp::ProbeOutcome outcome)
{
    const std::string main = StreamPaths::path(StreamPlace::Main);
    const bool asked = m_probing == Probing::Asking;
    const bool isUnknown = outcome == rtsp::ProbeOutcome::NotFound;
    // Some cameras say nothing at all to a path that they do not know.
    const bool isRefused =
        outcome == rtsp::ProbeOutcome::Unusable ||
        (outcome == rtsp::ProbeOutcome::Silent && asked && m_probe.wasConnected());
    if (isUnknown || (isRefused && mayTryProfiles())) {
        m_triedProfiles = Clock::now();
        const auto otherwise = isUnknown ? rtsp::ProbeOutcome::Unusable : outcome;
        fallBack(main, isUnknown, [this, number = m_probeNumber, otherwise](bool again) {
            if (number != m_probeNumber || m_probing != Probing::Asking)
                return;
            if (again)
                describe();
            else
                probed(otherwise);
        });
        return;
    }
    const bool hasReturned = m_schedule.remembered() != rtsp::ProbeOutcome::Answered;
    m_schedule.record(outcome, Clock::now());
    tellReason(outcome);
    if (rtsp::isNobodyThere(outcome))
        m_resolver->lost();
    if (outcome == rtsp::ProbeOutcome::Answered) {
        m_mode = m_paths.hasMain() ? 0 : 1;
        // A camera that describes its streams to anybody proves nothing.
        if (m_control.streamPhase() == StreamPhase::Playing || (asked && m_probe.usedLogin()))
            m_schedule.loginAccepted();
        if (hasReturned && !m_resolver->knownStreams()) {
            m_resolver->locateAgain();
            m_hasLearned = false;
        }
        learnProfiles();
    }
    finishProbe(outcome);
    if (outcome == rtsp::ProbeOutcome::Answered && asked && m_lostOnTheWay)
        retryNow();
}

void CameraSession::tellReason(rtsp::ProbeOutcome outcome)
{
    const std::string url =
        m_paths.url(m_resolver->endpoint(), StreamPaths::path(StreamPlace::Main));
    m_reason.setLoginPause(m_schedule.loginPause(Clock::now()));
    if (outcome == rtsp::ProbeOutcome::Answered)
        m_reason.probeAnswered();
    else if (m_resolver->hasChangedKey())
        m_reason.probeFailed(reasonOf(rtsp::ProbeOutcome::KeyChanged, base::parseUrl(url)));
    else if (m_resolver->endpoint().port == 0)
        m_reason.probeFailed({CAMMGR_REASON_HOST_NOT_FOUND, m_info.address.uid});
    else
        m_reason.probeFailed(reasonOf(outcome, base::parseUrl(url), m_probe.status()));
}

void CameraSession::finishProbe(rtsp::ProbeOutcome outcome)
{
    m_probing = Probing::Idle;
    m_probeLimit.stop();
    if (outcome == rtsp::ProbeOutcome::Answered)
        report(CAMMGR_MSG_PROBE_OK, 0);
    else if (outcome == rtsp::ProbeOutcome::LoginRefused)
        report(CAMMGR_MSG_PROBE_FAILED, CAMMGR_ERROR_REFUSED);
    else
        report(CAMMGR_MSG_PROBE_FAILED, CAMMGR_ERROR_UNREACHABLE);
}

/// Cameras refuse a path that they do not know in many ways, which say nothing about other paths.
/// What the profiles say holds until the camera moves; a camera that did not tell them is asked
/// again some time later.
bool CameraSession::mayTryProfiles() const
{
    return (!m_triedProfiles || Clock::now() - *m_triedProfiles >= profilesPause) &&
           !m_paths.usesProfiles() && m_info.address.path.empty();
}

/// After a refusal of path (isUnknown: 404): answers whether there is another address to try.
void CameraSession::fallBack(const std::string &path, bool isUnknown,
                             std::function<void(bool)> then)
{
    if (m_paths.usesProfiles()) {
        // The camera was set up again: start over with its own paths and fresh profiles next time.
        m_paths.reset();
        m_resolver->forgetStreams();
        m_triedProfiles.reset();
        then(false);
        return;
    }
    m_resolver->findStreams([this, path, isUnknown, then](const onvif::CameraStreams *streams) {
        if (!streams) {
            then(isUnknown && m_paths.markMissing(path));
            return;
        }
        m_paths.setProfiles(*streams);
        m_paths.useProfiles();
        then(true);
    });
}

/// The profiles are requested once, in advance: a key frame can then be requested at once.
void CameraSession::learnProfiles()
{
    if (std::exchange(m_hasLearned, true))
        return;
    m_resolver->findStreams([this](const onvif::CameraStreams *streams) {
        if (streams)
            m_paths.setProfiles(*streams);
    });
}

void CameraSession::moved()
{
    m_schedule.reset();
    m_paths.reset();
    m_hasLearned = false;
    m_givesSnapshots = true;
    m_triedProfiles.reset();
}

const std::shared_ptr<rtsp::LoginPolicy> &CameraSession::loginPolicy() const
{
    if (m_resolver->isFoundByUid())
        m_login->distrust();
    return m_login;
}

rtsp::StreamRequest CameraSession::request(const std::string &path) const
{
    return {.url = m_paths.url(m_resolver->endpoint(), path),
            .username = m_info.username,
            .password = m_info.password,
            .login = loginPolicy()};
}

void CameraSession::talk(uint64_t ticket)
{
    m_resolver->find([this, ticket](bool found) {
        const rtsp::StreamRequest stream = request(StreamPaths::path(StreamPlace::Main));
        m_control.startTalk(ticket, found ? &stream : nullptr);
    });
}

void CameraSession::issueCommands(std::vector<std::string> requests)
{
    const Clock::time_point begin = Clock::now();
    m_resolver->findWebServer(
        [this, begin, requests = std::move(requests)](const base::Endpoint &server) {
            const auto spent =
                std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
            m_commands.start(server, requests, std::max(commandLimit - spent, leastCommandTime),
                             [this](std::vector<std::string> replies) { reportReplies(replies); });
        });
}

void CameraSession::reportReplies(const std::vector<std::string> &replies)
{
    std::vector<std::string> copies = replies;
    std::vector<char *> texts;
    for (std::string &text : copies)
        texts.push_back(text.data());
    m_commandsOut = false;
    report(CAMMGR_MSG_COMMAND_REPLIES, static_cast<int>(texts.size()), texts.data());
}

} // namespace cammgr
