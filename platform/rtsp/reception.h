#pragma once

#include "platform/base/timer.h"
#include "platform/rtsp/incoming_track.h"
#include "platform/rtsp/open_session.h"
#include "platform/rtsp/receiver.h"
#include "platform/rtsp/stream_connection.h"
#include "platform/rtsp/stream_timeline.h"

#include <memory>
#include <string>

namespace rtsp {

/**
 * One start of a receiver: chooses picture and sound, and watches over what comes. It must be
 * destroyed in a later turn of the loop than the one in which it calls its client.
 */
class Receiver::Private : private StreamConnection::Client, private MediaSink
{
public:
    Private(Receiver::Client &client, const StreamRequest &request);

    void start() { m_connection.start(); }
    void start(OpenSession session) { m_connection.start(std::move(session)); }
    /// The client is not called any more.
    void close();
    bool isUdp() const { return m_connection.isUdp(); }
    const char *transportName() const { return m_connection.transportName(); }
    MediaStatistics videoStatistics() const;

private:
    TrackChoice chooseTracks(const SessionDescription &description) override;
    void playing() override;
    bool isSettled() const override { return video() && video()->hasReceived(); }
    void connectionEnded(const StreamFailure &failure) override;
    void onVideo(const base::AccessUnit &unit) override;
    void onAudio(const base::AudioUnit &unit) override;
    void onPacketsLost() override;

    IncomingTrack *video() const;
    void tellPlays();
    void watch();
    bool isClosed() const { return m_connection.isClosed(); }

    Receiver::Client &m_client;
    const bool m_wantsAudio;
    StreamConnection m_connection;
    base::Timer m_watch;
    bool m_isDescribed = false; ///< and the client knows
    bool m_toldPlays = false;
    base::SteadyClock::time_point m_playAnswered;
    base::SteadyClock::time_point m_lastSign; ///< a frame, or a packet before the first frame
    uint64_t m_frames = 0;
};

} // namespace rtsp
