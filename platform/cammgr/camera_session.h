#pragma once

#include "platform/base/timer.h"
#include "platform/cammgr/cammgr.h"
#include "platform/cammgr/command_batch.h"
#include "platform/cammgr/io_thread.h"
#include "platform/cammgr/live_stream.h"
#include "platform/cammgr/probe_schedule.h"
#include "platform/cammgr/reason.h"
#include "platform/cammgr/resolver.h"
#include "platform/cammgr/still_fetch.h"
#include "platform/cammgr/stream_paths.h"
#include "platform/rtsp/rtsp_probe.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cammgr {

/// A play or talk request. Superseded by any later request or stop, which has a higher ticket.
struct StreamOrder
{
    uint64_t ticket = 0;
    std::string path;
    uintptr_t window = 0;
};

/// What the live stream of a player does.
enum class StreamPhase
{
    Idle,
    Starting,
    Playing
};

/// What a session needs of its player, from the I/O thread.
class StreamControl
{
public:
    /// Never waits.
    virtual StreamPhase streamPhase() = 0;
    /// Starts the stream when ticket is still the last one.
    virtual void startStream(uint64_t ticket, const StreamRequest &request) = 0;
    /// What the live stream has sent since its last key frame; empty when it does not play. Never
    /// waits.
    virtual std::vector<media::AccessUnit> currentFrames() = 0;
    /// Starts talking when ticket is still the last one; gives up without a request.
    virtual void startTalk(uint64_t ticket, const rtsp::StreamRequest *request) = 0;
    /// A talk has ended by itself.
    virtual void talkEnded() = 0;

protected:
    ~StreamControl() = default;
};

/// Identifies a camera for its session.
struct SessionInfo
{
    base::CameraAddress address;
    std::string username; ///< UTF-8
    std::string password;
    RtspPlayerCallback callback = nullptr; ///< called on the I/O thread; may be null
    void *context = nullptr;
};

/**
 * The network side of one player: finds the camera, probes it, chooses the stream's address,
 * carries commands. Everything runs on the I/O thread, from open() to close(); there it must also
 * be destroyed.
 */
class CameraSession
{
public:
    CameraSession(SessionInfo info, StreamControl &control);
    ~CameraSession();
    CameraSession(const CameraSession &) = delete;
    CameraSession &operator=(const CameraSession &) = delete;

    void open();
    bool isOpen() const { return m_resolver != nullptr; }
    /// Drops everything that is under way. reportProbe: an outstanding probe is answered first.
    void close(bool reportProbe);

    void tick();
    void stopConnecting();
    void play(const StreamOrder &order);
    void talk(uint64_t ticket);
    void talkEnded() { m_control.talkEnded(); }
    void streamEnded(const StreamFailure &failure);
    /// No picture could be made of the frames that came for 5 s.
    void streamUndecodable();
    void keyFrameWanted();
    /// The stream shows its first picture.
    void pictureShown();
    /// The user wants to see the camera.
    void userAsked();
    /// The user trusts the TLS key that the camera shows.
    void trustKey();
    /// The last play request is superseded: the stream was stopped, or set up again.
    void orderVoided();
    /// Answers with CAMMGR_MSG_STILL.
    void fetchStill(const std::string &path);
    void issueCommands(std::vector<std::string> requests);

    /// Any thread: 0 for the main stream, 1 for the sub stream.
    int mode() const { return m_mode; }
    /// Any thread.
    Reason reason() const { return m_reason.current(); }
    /// Any thread: claims the one place for a command batch; false while one is out.
    bool claimCommands() { return !m_commandsOut.exchange(true); }
    /// Any thread: the same for a still picture.
    bool claimStill() { return !m_stillOut.exchange(true); }

private:
    using Clock = std::chrono::steady_clock;

    void report(int message, int value, char **strings = nullptr);
    void tellReason(rtsp::ProbeOutcome outcome);
    bool isAnsweredByStream();
    bool awaitPicture();
    bool mayTryProfiles() const;
    void describe();
    void probed(rtsp::ProbeOutcome outcome);
    void finishProbe(rtsp::ProbeOutcome outcome);
    void fallBack(const std::string &path, bool isUnknown, std::function<void(bool)> then);
    void learnProfiles();
    void startStream();
    void retryLater();
    void retryNow();
    void retry();
    bool isRetrying() const { return m_retry.isActive() || m_isFindingForRetry; }
    void askForStill();
    void askForSnapshot(const onvif::CameraStreams &streams);
    void receiveStill(StreamPlace place);
    void moved();
    void reportReplies(const std::vector<std::string> &replies);
    const std::shared_ptr<rtsp::LoginPolicy> &loginPolicy() const;
    rtsp::StreamRequest request(const std::string &path) const;

    const SessionInfo m_info;
    const std::shared_ptr<rtsp::LoginPolicy> m_login = std::make_shared<rtsp::LoginPolicy>();
    StreamControl &m_control;
    ReasonBoard m_reason;
    std::atomic<int> m_mode{1};
    std::atomic<bool> m_commandsOut{false};
    std::atomic<bool> m_stillOut{false};

    enum class Probing
    {
        Idle,
        Finding,
        Asking,
        AwaitingPicture ///< answered when the stream that was ordered shows a picture
    };
    Probing m_probing = Probing::Idle;
    unsigned m_probeNumber = 0; ///< distinguishes a late answer from the expected one
    base::Timer m_probeLimit;
    ProbeSchedule m_schedule;
    StreamPaths m_paths;
    StreamOrder m_order;
    std::optional<Clock::time_point> m_orderedAt; ///< nullopt when the last order is void
    base::Timer m_retry;                          ///< until a lost stream is started again
    int m_retries = 0;                            ///< since it last played
    bool m_isFindingForRetry = false;
    bool m_lostOnTheWay = false;                ///< the last start found nobody there
    std::optional<Clock::time_point> m_shownAt; ///< the stream's first picture
    bool m_hasLearned = false;
    bool m_givesSnapshots = true; ///< as far as is known
    /// When profiles were last asked for after another refusal than 404.
    std::optional<Clock::time_point> m_triedProfiles;
    int m_watch = 0;
    // Last, so that they are destroyed first: their callbacks use the members above.
    std::unique_ptr<Resolver> m_resolver;
    rtsp::RtspProbe m_probe;
    CommandBatch m_commands;
    const std::shared_ptr<StillFetch> m_still = std::make_shared<StillFetch>();
};

} // namespace cammgr
