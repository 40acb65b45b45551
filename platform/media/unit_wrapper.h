#pragma once

#include "platform/base/access_unit.h"
#include "platform/media/frame_taker.h"

namespace media {

/// The framework's description of a video; a new object with each call.
[[nodiscard]] CapsRef videoCaps(const base::VideoFormat &format);
/// The same of sound.
[[nodiscard]] CapsRef audioCaps(const base::AudioFormat &format);

/// Turns the units of one stream into what the framework's elements take, without copying their
/// bytes where that is possible. One thread at a time.
class UnitWrapper
{
public:
    [[nodiscard]] AccessUnit wrap(const base::AccessUnit &unit);
    [[nodiscard]] AudioUnit wrap(const base::AudioUnit &unit);

private:
    std::shared_ptr<const base::VideoFormat> m_videoFormat;
    std::shared_ptr<const base::AudioFormat> m_audioFormat;
    CapsRef m_videoCaps;
    CapsRef m_audioCaps;
};

} // namespace media
