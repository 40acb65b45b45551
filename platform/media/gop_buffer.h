#pragma once

#include "platform/media/frame_taker.h"

#include <deque>
#include <mutex>
#include <vector>

namespace media {

/// What came since the last key frame: a frame is shown at once when a window is shown again, and a
/// recording starts before its button was pressed. Callable from any thread.
class GopBuffer : public FrameTaker
{
public:
    explicit GopBuffer(size_t byteLimit = 12 * 1024 * 1024) : m_byteLimit(byteLimit) {}

    void takeFrame(const AccessUnit &unit) override;
    void takeAudio(const AudioUnit &unit) override;

    /// From the last key frame on; empty when none came yet or the limit was passed since.
    std::vector<AccessUnit> frames() const;
    /// The audio that belongs to frames().
    std::vector<AudioUnit> audio() const;
    void clear();

private:
    void startOver();

    const size_t m_byteLimit;
    mutable std::mutex m_mutex; ///< protects everything below
    std::vector<AccessUnit> m_frames;
    std::deque<AudioUnit> m_audio;
    size_t m_bytes = 0;
};

} // namespace media
