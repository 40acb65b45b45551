#pragma once

#include "platform/base/access_unit.h"

#include <gst/gst.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>

namespace media {

enum class VoiceCodec
{
    MuLaw,
    ALaw,
    G726,     ///< the first code in the lowest bits (RFC 3551 4.5.4)
    G726Aal2, ///< in the highest (ITU-T I.366.2 annex E)
    AacLc     ///< frames without any header
};

struct VoiceFormat
{
    VoiceCodec codec = VoiceCodec::MuLaw;
    int rate = 8000; ///< samples a second; of G.726 always 8000
    int channels = 1;
    int bitRate = 0; ///< of G.726: 16000 to 40000
};

/**
 * The microphone, encoded and in pieces of 20 ms (AAC: of a frame), each handed out when its time
 * has come, whatever the source does. At most 0.2 s are kept for a caller that does not come. Used
 * by one thread, which may wait; the constructor too.
 *
 * The environment variable ZELVARO_TALKBACK_SOURCE names another source than the microphone, as a
 * GStreamer launch line ("audiotestsrc is-live=true").
 */
class Microphone
{
public:
    struct Piece
    {
        base::Bytes sound;
        uint64_t time = 0; ///< samples since the first piece
    };

    explicit Microphone(const VoiceFormat &format);
    ~Microphone();
    Microphone(const Microphone &) = delete;
    Microphone &operator=(const Microphone &) = delete;

    /// Waits up to that time for the next piece.
    std::optional<Piece> take(std::chrono::milliseconds limit);
    /// There is none, it cannot be opened, or it went away.
    bool hasFailed() const;

private:
    class Pipeline;
    void takeSample(GstSample *sample);
    void noteTime(GstBuffer *buffer);

    const VoiceFormat m_format;
    std::unique_ptr<Pipeline> m_pipeline;
    base::Bytes m_rest;                  ///< encoded sound that does not fill a piece yet
    std::deque<Piece> m_waiting;         ///< of a buffer that was longer than a piece
    base::SteadyClock::time_point m_due; ///< of the first one that waits
    std::optional<uint64_t> m_firstTime; ///< ns
    uint64_t m_time = 0;                 ///< of the next piece, samples
};

} // namespace media
