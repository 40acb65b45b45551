#pragma once

#include "camsim/codecs.h"

#include <string>

namespace camsim {

/// The parts of a media, in the framework's pipeline syntax. The appsrc "video" takes access units
/// of the codec; a media that is prepared and not watched lets old data go.
std::string videoLine(VideoCodec codec);
/// The appsrc "audio" takes G.711 mu-law, which is encoded anew for other codecs. payloader is the
/// number of the media's payloader.
std::string audioLine(AudioCodec codec, int payloader);
/// The appsink "heard" gets what a client says.
std::string backChannelLine();

} // namespace camsim
