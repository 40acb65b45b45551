#pragma once

#include "platform/base/access_unit.h"
#include "platform/cammgr/cammgr.h"
#include "platform/media/live_view.h"
#include "platform/rtsp/media_receiver.h"

#include <memory>
#include <optional>
#include <string>

namespace cammgr {

/// What is known of a live stream at a moment, see RtspPlayerFigures.
struct StreamFigures
{
    rtsp::MediaStatistics video;
    media::ViewFigures view;
    std::shared_ptr<const base::VideoFormat> format; ///< null before the first frame
    std::shared_ptr<const base::AudioFormat> sound;  ///< null while there is none
    const char *transport = "";
    int bitRate = 0;                                     ///< bits of video in the last second
    std::optional<media::SteadyClock::time_point> shown; ///< arrival of the picture on the window

    /// Writes them as far as out.size goes; false when that is less than the structure's first
    /// version.
    bool write(RtspPlayerFigures &out) const;
};

} // namespace cammgr
