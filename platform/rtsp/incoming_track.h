#pragma once

#include "platform/rtsp/media_receiver.h"
#include "platform/rtsp/media_track.h"

#include <utility>

namespace rtsp {

/// A medium that the camera sends, and what is made of its packets.
class IncomingTrack : public MediaTrack
{
public:
    /// The sink must outlive the track.
    IncomingTrack(MediaDescription description, std::shared_ptr<StreamTimeline> timeline,
                  MediaSink &sink);

    /// A packet of this medium has come since the last call.
    bool takeSign() { return std::exchange(m_sign, false); }
    MediaStatistics statistics() const
    {
        return m_receiver ? m_receiver->statistics() : MediaStatistics();
    }
    bool saidGoodbye() const { return m_receiver && m_receiver->saidGoodbye(); }

private:
    bool prepare(bool ordered, const TransportAnswer *answer) override;
    void started() override;
    void take(bool isRtcp, std::span<const uint8_t> data) override;
    base::Bytes report() override;
    void armDeadline();

    const std::shared_ptr<StreamTimeline> m_timeline;
    MediaSink &m_sink;
    std::unique_ptr<MediaReceiver> m_receiver;
    base::Timer m_deadlineTimer;
    std::optional<base::SteadyClock::time_point> m_deadline; ///< of the timer that runs
    bool m_sign = false;
};

} // namespace rtsp
