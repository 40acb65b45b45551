#pragma once

#include "platform/base/access_unit.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace rtsp {

/// A frame of which more came is left out as hostile, bytes.
inline constexpr std::size_t maxFrameSize = 16 * 1024 * 1024;

/// An RTP payload in the order of its number.
struct MediaPacket
{
    std::span<const uint8_t> payload;
    uint32_t time = 0; ///< RTP time
    bool marker = false;
    bool afterGap = false; ///< packets before it were lost
    base::SteadyClock::time_point arrived;
};

/// A frame as it was unpacked, before it has a number and a time.
struct VideoFrame
{
    base::Bytes payload; ///< as in base::AccessUnit
    std::shared_ptr<const base::VideoFormat> format;
    bool key = false;
    bool reference = false;
    bool bipredictive = false;
    uint32_t time = 0;                       ///< RTP time
    base::SteadyClock::time_point began;     ///< arrival of its first packet
    base::SteadyClock::time_point completed; ///< arrival of its last packet
};

/// The sound of one packet, cut into the units of its codec.
struct AudioPiece
{
    base::Bytes payload; ///< as in base::AudioUnit
    std::shared_ptr<const base::AudioFormat> format;
    uint32_t time = 0; ///< RTP time of the packet
    int64_t later = 0; ///< how much later than that it begins, ns
    base::SteadyClock::time_point arrived;
};

/// Unpacks the payloads of one medium. Not thread-safe. Hostile payloads are skipped.
class Depacketizer
{
public:
    using TimePoint = base::SteadyClock::time_point;

    class Client
    {
    public:
        virtual ~Client() = default;
        virtual void onFrame(VideoFrame frame) = 0;
        virtual void onPiece(AudioPiece piece) = 0;
        /// A frame or a piece of sound has a hole and was left out.
        virtual void onDamaged() = 0;
        /// Frames that follow may refer to what was lost.
        virtual void onReferenceLost() = 0;
    };

    virtual ~Depacketizer() = default;
    virtual void take(const MediaPacket &packet) = 0;
    /// Drops what is unfinished: another source begins.
    virtual void restart() = 0;
    /// When tick() has to be called; nullopt: not at all.
    [[nodiscard]] virtual std::optional<TimePoint> deadline() const { return std::nullopt; }
    virtual void tick(TimePoint now) { static_cast<void>(now); }
    /// Of the sound that will be handed on, as far as the description tells; null else.
    [[nodiscard]] virtual std::shared_ptr<const base::AudioFormat> soundFormat() const
    {
        return nullptr;
    }
};

struct MediaDescription;
struct PayloadFormat;

/// Whether a format can be received here.
[[nodiscard]] bool canDepacketize(const MediaDescription &media, const PayloadFormat &format);

/// The format of the sound of a medium, as far as its description tells; null else.
[[nodiscard]] std::shared_ptr<const base::AudioFormat> describedSound(const MediaDescription &media,
                                                                      const PayloadFormat &format);

/// The client must outlive what is made. Null when the format cannot be received here.
[[nodiscard]] std::unique_ptr<Depacketizer> makeDepacketizer(const MediaDescription &media,
                                                             const PayloadFormat &format,
                                                             Depacketizer::Client &client);

} // namespace rtsp
