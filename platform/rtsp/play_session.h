#pragma once

#include "platform/rtsp/control_url.h"
#include "platform/rtsp/exchange.h"
#include "platform/rtsp/keep_alive.h"
#include "platform/rtsp/media_track.h"
#include "platform/rtsp/stream_timeline.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace rtsp {

/// How a session is asked for.
struct SessionPlan
{
    bool asksOptions = true;
    bool wantsAudio = true;
    bool mayUseTcp = true;
    bool mayUseUdp = true;
    size_t join = 0; ///< which of controlUrls()
};

/// What a session came to.
struct SessionResult
{
    enum class Kind
    {
        Plays,
        Refused,    ///< with the status
        Silent,     ///< no answer in time
        Redirected, ///< location is set
        NoVideo     ///< text says what there is instead
    };
    enum class Step
    {
        Options,
        Describe,
        Setup,
        Play
    };

    Kind kind = Kind::Plays;
    Step step = Step::Options;
    int status = 0;
    std::string text;
    std::string location;
};

/**
 * One RTSP session: OPTIONS, DESCRIBE, SETUP of picture and sound, PLAY, keep-alive (RFC 2326 10).
 * Where a camera refuses an address or interleaved packets, what else it may have meant is tried
 * over the same connection. Loop thread.
 */
class PlaySession
{
public:
    class Client
    {
    public:
        virtual ~Client() = default;
        virtual void sessionDescribed(bool hasVideo, bool hasAudio) = 0;
        /// Once for each start(). May destroy the session.
        virtual void sessionDone(const SessionResult &result) = 0;
    };

    PlaySession(Client &client, Exchange &exchange, MediaSink &sink)
        : m_client(client)
        , m_exchange(exchange)
        , m_sink(sink)
    {
    }

    /// The exchange is connected.
    void start(const std::string &url, const SessionPlan &plan);
    /// The same with an answer to DESCRIBE that came before.
    void start(const std::string &url, const SessionPlan &plan, const Reply &description);
    /// Goes on over a new connection with the request that was not answered.
    void repeat();

    void takePacket(uint8_t channel, std::span<const uint8_t> data);
    /// The request that ends the session; nullopt when the camera knows of none.
    std::optional<Request> teardown();

    SessionResult::Step step() const { return m_step; }
    bool isUdp() const { return m_udp; }
    /// Whether there is another way to join the control address of the picture.
    bool hasOtherJoin() const { return m_plan.join + 1 < m_controls.size(); }
    size_t join() const { return m_plan.join; }
    bool isSettingUpAudio() const { return m_track > 0 && m_step == SessionResult::Step::Setup; }
    /// null before a description was read
    MediaTrack *video() const { return m_tracks.empty() ? nullptr : m_tracks.front().get(); }

private:
    using Step = SessionResult::Step;
    using Kind = SessionResult::Kind;

    void options();
    void describe();
    void takeDescription(const Reply &reply);
    void setUp();
    void setUpAnswered(const Reply *reply);
    bool takeTransport(MediaTrack &track, const TransportAnswer &answer);
    void setUpRefused(int status);
    void setUpNext();
    MediaTrack *trackOf(uint8_t channel, std::span<const uint8_t> data);
    void play();
    void playAnswered(const Reply *reply);
    void ask(Step step, Request request, std::chrono::milliseconds limit,
             void (PlaySession::*answered)(const Reply *));
    void optionsAnswered(const Reply *reply);
    void describeAnswered(const Reply *reply);
    bool isFinal(const Reply *reply);
    void finish(Kind kind, int status, const std::string &text = {});

    Client &m_client;
    Exchange &m_exchange;
    MediaSink &m_sink;
    SessionPlan m_plan;
    Step m_step = Step::Options;
    std::string m_url;
    ControlBase m_base;
    StreamTimeline m_timeline;
    std::vector<std::unique_ptr<MediaTrack>> m_tracks; ///< the picture first
    std::vector<std::string> m_controls;               ///< of the picture
    size_t m_track = 0;                                ///< that is being set up
    std::vector<std::string> m_playUrls;
    size_t m_playUrl = 0;
    bool m_sendsRange = true;
    bool m_udp = false;
    int m_firstRefusal = 0; ///< the status that led to another transport
    SessionHeader m_session;
    KeepAlive m_keepAlive;
};

} // namespace rtsp
