#pragma once

#include "platform/base/access_unit.h"
#include "platform/rtsp/media_receiver.h"
#include "platform/rtsp/stream_request.h"

#include <memory>
#include <string>

namespace rtsp {

struct OpenSession;

/**
 * Receives one camera's stream: RTSP session (RFC 2326), RTP and RTCP, frames. Lives on the loop
 * thread, where all its functions are called and all its callbacks run. Nothing waits for the
 * camera: each step has its time limit, and close() returns at once in every state.
 */
class Receiver
{
public:
    /// Each function may close or destroy the receiver.
    class Client
    {
    public:
        virtual ~Client() = default;
        /// The camera's description, before anything is set up. hasAudio: sound that can be played,
        /// whether it was wanted or not. sound: its format; null where only its packets tell.
        virtual void described(bool hasVideo, bool hasAudio,
                               const std::shared_ptr<const base::AudioFormat> &sound) = 0;
        /// The camera answered PLAY, or sent its first picture before that answer. Once.
        virtual void plays() = 0;
        virtual void video(const base::AccessUnit &unit) = 0;
        virtual void audio(const base::AudioUnit &unit) = 0;
        /// A packet of the video was lost on the way.
        virtual void lostPackets() = 0;
        /// Last, and at most once for each start(). The receiver is closed.
        virtual void ended(const StreamFailure &failure) = 0;
    };

    /// The client must outlive the receiver.
    Receiver(Client &client, StreamRequest request);
    ~Receiver();
    Receiver(const Receiver &) = delete;
    Receiver &operator=(const Receiver &) = delete;

    /// Connects and plays in the background; a stream that runs is closed before.
    void start();
    /// The same over a connection that has already brought the description: what is left are SETUP
    /// and PLAY. A connection that the camera has dropped meanwhile is made again.
    void start(OpenSession session);
    /// No callback runs any more. The camera is told (TEARDOWN) in the background, for 100 ms at
    /// most, then the connection closes.
    void close();

    /// Whether the media come over UDP; false while that is open.
    bool isUdp() const;
    /// How the media come: "TCP", "UDP", "TLS", "HTTP" or "HTTPS"; lives for ever.
    const char *transportName() const;
    /// What was counted of the picture; zeros before the first packet.
    MediaStatistics videoStatistics() const;

private:
    class Private;
    Client &m_client;
    const StreamRequest m_request;
    std::shared_ptr<Private> d;
};

} // namespace rtsp
