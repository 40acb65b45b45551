#pragma once

#include "platform/base/access_unit.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace rtsp {

struct MediaDescription;
class StreamTimeline;

/// Gets what a stream's receivers made of its packets. A call must not destroy the receiver that it
/// came from, nor call its functions.
class MediaSink
{
public:
    virtual ~MediaSink() = default;
    virtual void onVideo(const base::AccessUnit &unit) = 0;
    virtual void onAudio(const base::AudioUnit &unit) = 0;
    /// Video is missing, to which frames that follow may refer until the next key frame. Frames
    /// with a hole in them are not delivered. Each gap is told once, before the next frame.
    virtual void onPacketsLost() = 0;
};

struct MediaStatistics
{
    uint64_t packets = 0;   ///< RTP packets that were taken
    uint64_t bytes = 0;     ///< of them, with headers
    uint64_t lost = 0;      ///< numbers that never came
    uint64_t reordered = 0; ///< came too late to be in order, but in time
    uint64_t dropped = 0;   ///< duplicates, and what came after its place was given up
    uint64_t units = 0;     ///< handed to the sink
    uint64_t damaged = 0;   ///< frames and pieces of sound left out because packets were missing
    base::SteadyClock::duration jitter{}; ///< of the arrival (RFC 3550 6.4.1)
};

/**
 * Makes frames or pieces of sound out of the RTP and RTCP packets of one medium. Not thread-safe:
 * each call on one thread, on which the sink is called too. Hostile packets are skipped.
 *
 * Another SSRC (RFC 3550 8) starts anew, where the time line goes on. Packets of a payload type
 * that was not described are ignored, unless for a second nothing else has come.
 */
class MediaReceiver
{
public:
    using TimePoint = base::SteadyClock::time_point;

    /// The time line and the sink must outlive the receiver.
    /// @param ordered over TCP: packets are passed on as they come
    /// @return null when the medium cannot be played
    [[nodiscard]] static std::unique_ptr<MediaReceiver>
    create(const MediaDescription &media, StreamTimeline &timeline, MediaSink &sink, bool ordered);

    ~MediaReceiver();
    MediaReceiver(const MediaReceiver &) = delete;
    MediaReceiver &operator=(const MediaReceiver &) = delete;

    /// An RTP packet, or an RTCP packet that came beside them (RFC 5761).
    void takeRtp(std::span<const uint8_t> packet, TimePoint arrived);
    void takeRtcp(std::span<const uint8_t> packet, TimePoint arrived);

    /// When tick() has to be called because something is held back; nullopt: not at all. May change
    /// with each call.
    [[nodiscard]] std::optional<TimePoint> deadline() const;
    void tick(TimePoint now);

    /// A compound RTCP packet: receiver report and source description. Without a report block
    /// before the first packet.
    [[nodiscard]] base::Bytes receiverReport(TimePoint now);

    /// The camera has ended the medium (RTCP BYE), and nothing has come since.
    [[nodiscard]] bool saidGoodbye() const;

    [[nodiscard]] MediaStatistics statistics() const;

private:
    class Private;
    explicit MediaReceiver(std::unique_ptr<Private> made);
    std::unique_ptr<Private> d;
};

} // namespace rtsp
