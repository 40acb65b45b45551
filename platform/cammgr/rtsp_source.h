#pragma once

#include "platform/cammgr/live_stream.h"
#include "platform/cammgr/login_guard.h"
#include "platform/media/frame_taker.h"

#include <gst/sdp/gstsdpmessage.h>

#include <atomic>

namespace cammgr {

/// How the media travel from the camera.
enum class Transport
{
    Interleaved, ///< inside the RTSP connection (RFC 2326 10.12)
    Udp
};

/**
 * Receives one camera's stream: RTSP session, RTP, and the H.264 parser that gives whole access
 * units. open(), close() and keepAlive() belong to the media workers, one at a time.
 */
class RtspSource
{
public:
    /// Called on streaming threads; must not wait and must not call the source.
    class Client
    {
    public:
        virtual ~Client() = default;
        virtual void sourceDescribed(bool hasVideo, bool hasAudio) = 0;
        virtual void sourcePlays() = 0; ///< the camera answered PLAY
        virtual void sourceVideo(const media::AccessUnit &unit) = 0;
        virtual void sourceAudio(const media::AudioUnit &unit) = 0;
        /// A packet of the video was lost on the way.
        virtual void sourceLostPackets() = 0;
        /// May come more than once; the first counts.
        virtual void sourceEnded(StreamEnd reason) = 0;
        /// The camera requires another transport than the requested one.
        virtual void sourceTransportRefused() = 0;
    };

    RtspSource(Client &client, const StreamRequest &request, Transport transport);
    ~RtspSource();
    RtspSource(const RtspSource &) = delete;
    RtspSource &operator=(const RtspSource &) = delete;

    /// Makes the pipeline and connects in the background; false when it cannot even be made.
    bool open();
    /// No call of the client runs any more when it returns.
    void close();
    /// Sends one RTSP keep-alive while playing.
    void keepAlive();

private:
    struct Callbacks;

    bool build();
    void addBranch(GstPad *pad);
    bool addVideoBranch(GstPad *pad);
    bool addAudioBranch(GstPad *pad, const char *encoding);
    bool selectStream(GstCaps *caps);
    void readDescription(const GstSDPMessage *description);
    void readMessage(GstMessage *message);
    void readError(GstMessage *message);
    void takeSample(GstSample *sample, bool video);
    GstClockTime timeOfNextFrame(GstClockTime told);

    Client &m_client;
    const StreamRequest m_request;
    const Transport m_transport;
    LoginGuard m_guard;
    base::GObjectPtr<GstElement> m_pipeline;
    GstElement *m_rtspsrc = nullptr; ///< owned by the pipeline
    // The thread that delivers video.
    uint64_t m_frames = 0;
    GstClockTime m_lastTime = 0; ///< of the last frame
    media::SteadyClock::time_point m_lastArrival;
    // Threads of the pipeline.
    std::atomic<bool> m_videoSelected = false;
    std::atomic<bool> m_audioSelected = false;
    std::atomic<bool> m_playing = false;
};

} // namespace cammgr
