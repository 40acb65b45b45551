#pragma once

#include "platform/rtsp/media_track.h"
#include "platform/rtsp/rtp_sender.h"

namespace rtsp {

/// A medium that the client sends.
class OutgoingTrack : public MediaTrack
{
public:
    /// @param format one of the description's
    OutgoingTrack(MediaDescription description, const PayloadFormat &format);

    /// One packet. ticks: of the format's clock, since the beginning of what is sent.
    void send(std::span<const uint8_t> payload, uint64_t ticks);

private:
    bool prepare(bool ordered, const TransportAnswer *answer) override;
    void take(bool, std::span<const uint8_t>) override {}
    base::Bytes report() override;

    RtpSender m_sender;
};

} // namespace rtsp
