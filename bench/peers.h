#pragma once

#include "bench/tile_grid.h"
#include "camsim/camsim_process.h"

#include <string>
#include <vector>

namespace bench {

/// Command lines of the players under measurement, each for the cheapest and quickest that the
/// player can do. They show the pictures at these places of the screen, without a border.
using Command = std::vector<std::string>;

/// The stream engine: one process for all cameras, their sub streams. Prints "play MICROSECONDS"
/// (steady clock) when it requests the streams.
Command enginePlayer(const std::vector<zelvaro::test::SimulatedCamera> &cameras,
                     const std::vector<Rectangle> &places);
Command mpv(const std::string &url, const Rectangle &place);
Command ffplay(const std::string &url, const Rectangle &place);
/// Decodes and shows nothing; prints its progress, "frame=N" among it, twice a second.
Command ffmpegDecoder(const std::string &url);
/// The same, and makes each picture ready for a window of this size.
Command ffmpegScaler(const std::string &url, const Rectangle &place);

} // namespace bench
