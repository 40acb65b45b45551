#pragma once

#include "platform/cammgr/camera_session.h"
#include "platform/cammgr/live_stream.h"
#include "platform/cammgr/talk_back.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/**
 * One player, as the C interface hands it out: brings together the session with the camera (on the
 * I/O thread), the live stream and the talk-back. The public functions may be called from any one
 * thread at a time and mean what cammgr.h says.
 */
struct RtspPlayer final : private cammgr::StreamControl
{
public:
    explicit RtspPlayer(const cammgr::SessionInfo &info);
    /// After stop() and close().
    ~RtspPlayer();
    RtspPlayer(const RtspPlayer &) = delete;
    RtspPlayer &operator=(const RtspPlayer &) = delete;

    void tickAlive();
    void stopConnecting();
    int mode() const { return m_session->mode(); }
    cammgr::Reason reason() const { return m_session->reason(); }

    int setup(const std::string &path, uintptr_t window);
    int play();
    void stop();
    /// Ends the session with the camera: no message is under way or comes any more when it
    /// returns. answerProbe: an outstanding probe is answered first.
    void close(bool answerProbe);
    /// Closes and destroys a stopped player, which may wait for clips that are being closed, and
    /// then sends CAMMGR_MSG_DELETED, the last message. On a thread that may wait.
    static void release(std::shared_ptr<RtspPlayer> player);

    void trustKey();
    int fetchStill(const std::string &path);
    int issueCommands(std::vector<std::string> requests);

    /// 0, or why the last talk failed when it was not long ago.
    int talk();
    void stopTalk();
    bool isTalking() const;

    /// Runs call with the stream locked against the I/O thread.
    template <class Call>
    auto withStream(Call call)
    {
        const std::lock_guard lock(m_mutex);
        return call(m_stream);
    }

private:
    cammgr::StreamPhase streamPhase() override;
    std::vector<media::AccessUnit> currentFrames() override;
    void startStream(uint64_t ticket, const cammgr::StreamRequest &request) override;
    void startTalk(uint64_t ticket, const rtsp::StreamRequest *request) override;
    void talkEnded() override;
    void voidOrder();

    const RtspPlayerCallback m_callback;
    void *const m_context;
    std::shared_ptr<cammgr::CameraSession> m_session; ///< used on the I/O thread
    std::string m_path;                               ///< caller's thread
    uintptr_t m_window = 0;                           ///< caller's thread

    std::atomic<uint64_t> m_playTicket{0};
    std::atomic<uint64_t> m_talkTicket{0};
    std::atomic<bool> m_talkPending{false}; ///< from talk() to startTalk()

    cammgr::StreamPhase m_lastPhase = cammgr::StreamPhase::Idle; ///< I/O thread

    mutable std::mutex m_mutex;  ///< for the two below
    cammgr::LiveStream m_stream; ///< its listener only posts, so stop() may wait for it
    cammgr::TalkBack m_talkBack;
};
