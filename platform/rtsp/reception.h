#pragma once

#include "platform/base/camera_address.h"
#include "platform/base/timer.h"
#include "platform/rtsp/exchange.h"
#include "platform/rtsp/open_session.h"
#include "platform/rtsp/play_session.h"
#include "platform/rtsp/receiver.h"

#include <memory>
#include <string>

namespace rtsp {

/**
 * One start of a receiver: connects, follows redirections, makes a session, tries another transport
 * where the camera does not deliver, and watches over what comes. It must be destroyed in a later
 * turn of the loop than the one in which it calls its client.
 */
class Receiver::Private : public Exchange::Client, public PlaySession::Client, public MediaSink
{
public:
    Private(Receiver::Client &client, const StreamRequest &request);

    void start();
    void start(OpenSession session);
    /// The client is not called any more.
    void close();
    bool isUdp() const { return m_isUdp; }
    const char *transportName() const;
    MediaStatistics videoStatistics() const;

private:
    using Step = SessionResult::Step;

    void packet(uint8_t channel, std::span<const uint8_t> data) override;
    void disconnected(base::ChannelEnd reason) override;
    void tunnelRefused(int status) override;
    void sessionDescribed(bool hasVideo, bool hasAudio) override;
    void sessionDone(const SessionResult &result) override;
    void onVideo(const base::AccessUnit &unit) override;
    void onAudio(const base::AudioUnit &unit) override;
    void onPacketsLost() override;

    bool takeUrl(const std::string &text);
    void startLimit();
    void connect();
    void opened();
    void leave();
    void tryAnotherWay(StreamEnd reason, const std::string &text);
    void closedAt(Step step);
    void silentAt(const SessionResult &result);
    void redirect(const std::string &location);
    void playing();
    void tellPlays();
    void watch();
    void end(StreamEnd reason, std::string text);

    Receiver::Client &m_client;
    const StreamRequest m_request;
    std::string m_url; ///< follows redirections
    base::Endpoint m_endpoint;
    std::string m_tunnelPath; ///< empty when there is no tunnel
    SessionPlan m_plan;
    Exchange m_exchange{*this};
    std::unique_ptr<PlaySession> m_session;
    base::Timer m_limit; ///< of connecting and setting up
    base::Timer m_watch;
    int m_redirections = 0;
    int m_attempts = 0;           ///< connections that were made
    bool m_repeats = false;       ///< the connection is made again for the same session
    bool m_isAdopted = false;     ///< the connection was handed over
    bool m_neverAnswered = false; ///< not even OPTIONS
    bool m_isDescribed = false;   ///< and the client knows
    bool m_isPlaying = false;     ///< PLAY was answered
    bool m_toldPlays = false;
    bool m_isUdp = false;
    bool m_isClosed = false;
    /// Why the first transport did not do: that of the second says less.
    std::optional<std::pair<StreamEnd, std::string>> m_firstReason;
    base::SteadyClock::time_point m_playAnswered;
    base::SteadyClock::time_point m_lastSign; ///< a frame, or a packet before the first frame
    uint64_t m_frames = 0;
};

} // namespace rtsp
