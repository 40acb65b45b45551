#pragma once

#include <cstdint>
#include <vector>

namespace camsim {

/// G.711 mu-law (ITU-T G.711) of one 16-bit sample, and back.
std::uint8_t encodeMuLaw(int sample);
int decodeMuLaw(std::uint8_t code);

/// One second of a soft tone at 8 kHz, mu-law, that can be repeated without a click. Each index
/// has its own pitch.
std::vector<std::uint8_t> makeTone(int index);

} // namespace camsim
