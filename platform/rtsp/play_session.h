#pragma once

#include "platform/rtsp/control_url.h"
#include "platform/rtsp/exchange.h"
#include "platform/rtsp/keep_alive.h"
#include "platform/rtsp/media_track.h"

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
    bool onlyFirst = false; ///< of the media that were chosen
    bool mayUseTcp = true;
    bool mayUseUdp = true;
    size_t join = 0; ///< which of controlUrls()
    /// The feature that the camera has to know (RFC 2326 12.32); empty for none.
    std::string require = {};
};

/// What of a camera's description is to be set up.
struct TrackChoice
{
    MediaTracks tracks;     ///< the one that the session is for first; none where it is not there
    std::string missing;    ///< what the camera has instead of it
    std::string codec = {}; ///< of the other picture that it has instead, see StreamFailure
};

/// What a session came to.
struct SessionResult
{
    enum class Kind
    {
        Plays,
        Refused,      ///< with the status
        Silent,       ///< no answer in time
        Redirected,   ///< location is set
        NothingToPlay ///< text says what there is instead; codec, when it is another picture
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
    std::string codec = {}; ///< see StreamFailure
};

/**
 * One RTSP session: OPTIONS, DESCRIBE, SETUP of its media, PLAY, keep-alive (RFC 2326 10). Where a
 * camera refuses an address or interleaved packets, what else it may have meant is tried over the
 * same connection. Loop thread.
 */
class PlaySession
{
public:
    class Client
    {
    public:
        virtual ~Client() = default;
        virtual TrackChoice chooseTracks(const SessionDescription &description) = 0;
        /// Once for each start(). May destroy the session.
        virtual void sessionDone(const SessionResult &result) = 0;
    };

    PlaySession(Client &client, Exchange &exchange) : m_client(client), m_exchange(exchange) {}

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
    /// Whether there is another way to join the control address of the first medium.
    bool hasOtherJoin() const { return m_plan.join + 1 < m_controls.size(); }
    size_t join() const { return m_plan.join; }
    bool isSettingUpMore() const { return m_track > 0 && m_step == SessionResult::Step::Setup; }
    /// Null before a description was read.
    MediaTrack *firstTrack() const { return m_tracks.empty() ? nullptr : m_tracks.front().get(); }
    /// Whether a packet of the first medium has come.
    bool hasReceived() const { return !m_tracks.empty() && m_tracks.front()->hasReceived(); }

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
    SessionPlan m_plan;
    Step m_step = Step::Options;
    std::string m_url;
    ControlBase m_base;
    MediaTracks m_tracks;
    std::vector<std::string> m_controls; ///< of the first one
    size_t m_track = 0;                  ///< that is being set up
    std::vector<std::string> m_playUrls;
    size_t m_playUrl = 0;
    bool m_sendsRange = true;
    bool m_udp = false;
    int m_firstRefusal = 0; ///< the status that led to another transport
    SessionHeader m_session;
    KeepAlive m_keepAlive;
};

} // namespace rtsp
