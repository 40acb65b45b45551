#include "platform/cammgr/player.h"

#include "platform/cammgr/io_thread.h"

#include <utility>

using cammgr::CameraSession;
using cammgr::ioThread;
using cammgr::LiveStream;
using cammgr::StreamFailure;
using cammgr::StreamPhase;
using cammgr::StreamRequest;

namespace {

/// Runs work with the session on the I/O thread, unless the session is closed by then.
void postTo(const std::weak_ptr<CameraSession> &target, std::function<void(CameraSession &)> work)
{
    ioThread().post([target, work = std::move(work)] {
        const std::shared_ptr<CameraSession> session = target.lock();
        if (session && session->isOpen())
            work(*session);
    });
}

LiveStream::Listener listenerFor(const std::weak_ptr<CameraSession> &session)
{
    return {.firstFrame =
                [session] {
                    postTo(
                        session, [](CameraSession &s) { s.pictureShown(); });
                },
            .ended =
                [session](const StreamFailure &failure) {
                    postTo(
                        session, [failure](CameraSession &s) { s.streamEnded(failure); });
                },
            .undecodable =
                [session] {
                    postTo(
                        session, [](CameraSession &s) { s.streamUndecodable(); });
                },
            .wantKeyFrame =
                [session] {
                    postTo(
                        session, [](CameraSession &s) { s.keyFrameWanted(); });
                }};
}

} // namespace

RtspPlayer::RtspPlayer(const cammgr::SessionInfo &info)
    : m_callback(info.callback)
    , m_context(info.context)
    , m_session(std::make_shared<CameraSession>(info, static_cast<StreamControl &>(*this)))
    , m_stream(listenerFor(m_session))
    , m_talkBack([session = std::weak_ptr(m_session)] {
        postTo(session, [](CameraSession &s) { s.talkEnded(); });
    })
{
    ioThread().post([session = m_session] { session->open(); });
}

RtspPlayer::~RtspPlayer()
{
    // Its timers and connections belong to the I/O thread.
    ioThread().post([session = std::move(m_session)]() mutable { session.reset(); });
}

void RtspPlayer::tickAlive()
{
    postTo(
        m_session, [](CameraSession &session) { session.tick(); });
}

void RtspPlayer::stopConnecting()
{
    postTo(
        m_session, [](CameraSession &session) { session.stopConnecting(); });
}

int RtspPlayer::setup(const std::string &path, uintptr_t window)
{
    postTo(m_session, [](CameraSession &session) { session.userAsked(); });
    if (path == m_path && window == m_window)
        return 0;
    // The old window may go as soon as another one is set up.
    voidOrder();
    m_path = path;
    m_window = window;
    return 0;
}

int RtspPlayer::play()
{
    if (m_path.empty())
        return -1;
    if (withStream([](const LiveStream &stream) { return stream.isActive(); }))
        return 0;
    const cammgr::StreamOrder order{.ticket = ++m_playTicket, .path = m_path, .window = m_window};
    postTo(m_session, [order](CameraSession &session) { session.play(order); });
    return 0;
}

void RtspPlayer::stop()
{
    stopTalk();
    voidOrder();
}

/// Ends the stream, and what is under way to start it.
void RtspPlayer::voidOrder()
{
    ++m_playTicket;
    postTo(m_session, [](CameraSession &session) { session.orderVoided(); });
    const std::lock_guard lock(m_mutex);
    m_stream.stop();
}

StreamPhase RtspPlayer::streamPhase()
{
    // A snapshot or a stop under way holds the lock; the other cameras need not wait for it.
    const std::unique_lock lock(m_mutex, std::try_to_lock);
    if (!lock.owns_lock())
        return m_lastPhase;
    if (m_stream.isPlaying())
        m_lastPhase = StreamPhase::Playing;
    else
        m_lastPhase = m_stream.isActive() ? StreamPhase::Starting : StreamPhase::Idle;
    return m_lastPhase;
}

std::vector<media::AccessUnit> RtspPlayer::currentFrames()
{
    const std::unique_lock lock(m_mutex, std::try_to_lock);
    return lock.owns_lock() ? m_stream.currentFrames() : std::vector<media::AccessUnit>();
}

void RtspPlayer::startStream(uint64_t ticket, const StreamRequest &request)
{
    // Looked at first without the lock: stop() holds it while the stream ends.
    if (ticket != m_playTicket)
        return;
    const std::lock_guard lock(m_mutex);
    if (ticket == m_playTicket && !m_stream.isActive())
        m_stream.start(request);
}

void RtspPlayer::close(bool answerProbe)
{
    ioThread().postAndWait([this, answerProbe] { m_session->close(answerProbe); });
}

void RtspPlayer::release(std::shared_ptr<RtspPlayer> player)
{
    const RtspPlayerCallback callback = player->m_callback;
    void *context = player->m_context;
    player->close(true);
    player.reset();
    ioThread().post([callback, context] {
        if (callback)
            callback(CAMMGR_MSG_DELETED, 0, context, nullptr);
    });
}

void RtspPlayer::trustKey()
{
    postTo(
        m_session, [](CameraSession &session) { session.trustKey(); });
}

int RtspPlayer::fetchStill(const std::string &path)
{
    if (!m_session->claimStill())
        return -1;
    postTo(m_session, [path](CameraSession &session) { session.fetchStill(path); });
    return 0;
}

int RtspPlayer::issueCommands(std::vector<std::string> requests)
{
    if (!m_session->claimCommands())
        return -1;
    postTo(m_session, [requests = std::move(requests)](CameraSession &session) {
        session.issueCommands(requests);
    });
    return 0;
}

int RtspPlayer::talk()
{
    if (isTalking())
        return 0;
    {
        const std::lock_guard lock(m_mutex);
        if (const int failure = m_talkBack.failure())
            return failure;
    }
    const uint64_t ticket = ++m_talkTicket;
    m_talkPending = true;
    postTo(m_session, [ticket](CameraSession &session) { session.talk(ticket); });
    return 0;
}

void RtspPlayer::stopTalk()
{
    ++m_talkTicket;
    m_talkPending = false;
    const std::lock_guard lock(m_mutex);
    m_talkBack.stop();
    m_stream.duck(false);
}

void RtspPlayer::startTalk(uint64_t ticket, const rtsp::StreamRequest *request)
{
    if (ticket != m_talkTicket)
        return;
    const std::lock_guard lock(m_mutex);
    if (ticket != m_talkTicket)
        return;
    if (request)
        m_talkBack.start(*request);
    m_stream.duck(m_talkBack.isRunning());
    m_talkPending = false;
}

void RtspPlayer::talkEnded()
{
    const std::lock_guard lock(m_mutex);
    m_stream.duck(m_talkBack.isRunning());
}

bool RtspPlayer::isTalking() const
{
    if (m_talkPending)
        return true;
    const std::lock_guard lock(m_mutex);
    return m_talkBack.isRunning();
}
