#pragma once

#include "platform/rtsp/session_description.h"
#include "platform/rtsp/stream_request.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace rtsp {

/**
 * Sends sound to one camera's loudspeaker over the ONVIF back channel (ONVIF Streaming 5.3), in a
 * session that carries nothing else. Lives on the loop thread, where all its functions are called
 * and all its callbacks run. Nothing waits for the camera.
 */
class BackChannel
{
public:
    /// Each function may close or destroy the channel.
    class Client
    {
    public:
        virtual ~Client() = default;
        /// The camera waits for sound of this format.
        virtual void opened(const PayloadFormat &format) = 0;
        /// Last, and at most once for each start(). NoVideo: it takes no sound that can be sent.
        virtual void ended(StreamEnd reason, const std::string &text) = 0;
    };

    /// The client must outlive the channel.
    /// @param request its wish for sound from the camera does not count
    BackChannel(Client &client, StreamRequest request);
    ~BackChannel();
    BackChannel(const BackChannel &) = delete;
    BackChannel &operator=(const BackChannel &) = delete;

    /// Connects and plays in the background.
    void start();
    /// One piece of encoded sound as one packet, at once: who calls keeps the time. Dropped while
    /// the channel is not open.
    /// @param ticks of the format's clock, since the beginning of the sound
    void send(std::span<const uint8_t> sound, uint64_t ticks);
    /// No callback runs any more. The camera is told (TEARDOWN) in the background.
    /// @param closed runs when the camera has let go of the session, or after 100 ms; may be null
    void close(std::function<void()> closed = nullptr);

private:
    class Private;
    Client &m_client;
    const StreamRequest m_request;
    std::shared_ptr<Private> d;
};

} // namespace rtsp
