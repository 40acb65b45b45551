#pragma once

#include "platform/media/frame_taker.h"

#include <chrono>
#include <string>
#include <vector>

namespace media {

/// Decodes access units that begin with a key frame, on the calling thread, for at most the given
/// time, and returns the last frame that came out; empty when none did.
SampleRef decodeLast(const std::vector<AccessUnit> &units, std::chrono::milliseconds budget);

/// Writes a decoded frame as JPEG in its own size, to a temporary file next to path that is then
/// renamed. 0, or negative when it cannot be written; the file at path is then as before.
int writeJpeg(const SampleRef &picture, const std::string &path);

/// Writes a JPEG file as it is, in the same way.
int storeJpeg(const std::string &jpeg, const std::string &path);

} // namespace media
