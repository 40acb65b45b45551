#include "camsim/tone.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace camsim {

namespace {

constexpr int rate = 8000;
constexpr int bias = 0x84;
constexpr int clip = 32635;

} // namespace

std::uint8_t encodeMuLaw(int sample)
{
    const int sign = sample < 0 ? 0x80 : 0;
    const int magnitude = std::min(std::abs(sample), clip) + bias;
    int exponent = 7;
    while (exponent > 0 && !(magnitude & (0x80 << exponent)))
        --exponent;
    const int mantissa = magnitude >> (exponent + 3) & 0x0F;
    return static_cast<std::uint8_t>(~(sign | exponent << 4 | mantissa));
}

int decodeMuLaw(std::uint8_t code)
{
    const int bits = ~code & 0xFF;
    const int magnitude = (((bits & 0x0F) << 3) + bias) << (bits >> 4 & 7);
    return bits & 0x80 ? bias - magnitude : magnitude - bias;
}

std::vector<std::uint8_t> makeTone(int index)
{
    // Whole numbers of periods in the second, so that the end meets the start.
    const int pitch = 220 + 55 * (index % 8);
    std::vector<std::uint8_t> tone(rate);
    for (int i = 0; i < rate; ++i) {
        const double t = static_cast<double>(i) / rate;
        const double swell = 0.6 + 0.4 * std::cos(2 * M_PI * t);
        const double wave =
            std::sin(2 * M_PI * pitch * t) + 0.3 * std::sin(2 * M_PI * pitch * 2 * t);
        tone[static_cast<std::size_t>(i)] = encodeMuLaw(static_cast<int>(2500 * swell * wave));
    }
    return tone;
}

} // namespace camsim
