#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

/// The machine-readable time code in the corner of a simulated camera's picture.
///
/// Two rows of sixteen square cells, black (0) or white (1), most significant bit first, left to
/// right and top to bottom. The upper 24 bits are milliseconds of CLOCK_MONOTONIC modulo 2^24
/// (4.6 hours), the lower 8 bits a CRC-8 (polynomial 0x07) of the three bytes before it. A cell is
/// 1/30 of the picture's height wide and high; the block starts one cell from the top left corner.
/// All places scale with the picture, so that a reader only has to know the rectangle that the
/// picture fills on its screen. Readable down to cells of about five pixels.
namespace camsim::timecode {

inline constexpr int columns = 16;
inline constexpr int rows = 2;
inline constexpr int cellsPerHeight = 30;
inline constexpr std::uint32_t modulus = 1U << 24;

/// Milliseconds of CLOCK_MONOTONIC modulo modulus.
inline std::uint32_t now()
{
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(since).count();
    return static_cast<std::uint32_t>(ms) % modulus;
}

/// Milliseconds from the time in the picture to the later time, right across the wrap-around.
inline std::uint32_t elapsed(std::uint32_t from, std::uint32_t to)
{
    return (to - from) % modulus;
}

inline std::uint8_t checksum(std::uint32_t ms)
{
    std::uint8_t crc = 0;
    for (int shift = 16; shift >= 0; shift -= 8) {
        crc = static_cast<std::uint8_t>(crc ^ (ms >> shift));
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<std::uint8_t>(crc & 0x80 ? (crc << 1) ^ 0x07 : crc << 1);
    }
    return crc;
}

inline std::uint32_t encode(std::uint32_t ms)
{
    ms %= modulus;
    return ms << 8 | checksum(ms);
}

/// The time in a code word; nullopt when the check bits do not match.
inline std::optional<std::uint32_t> decode(std::uint32_t word)
{
    const std::uint32_t ms = word >> 8;
    if (checksum(ms) != (word & 0xFF))
        return std::nullopt;
    return ms;
}

/// Draws the code into the planes of a picture with 4:2:0 sampling, limited range.
inline void draw(std::uint8_t *luma, int lumaStride, std::uint8_t *cb, std::uint8_t *cr,
                 int chromaStride, int width, int height, std::uint32_t ms)
{
    const std::uint32_t word = encode(ms);
    const int cell = height / cellsPerHeight;
    const int right = (1 + columns) * cell;
    for (int y = cell; y < (1 + rows) * cell; ++y) {
        const int row = y / cell - 1;
        for (int x = cell; x < right && x < width; ++x) {
            const int bit = 31 - (row * columns + x / cell - 1);
            luma[y * lumaStride + x] = word >> bit & 1 ? 235 : 16;
            cb[y / 2 * chromaStride + x / 2] = 128;
            cr[y / 2 * chromaStride + x / 2] = 128;
        }
    }
}

/// Reads the code from a picture that is shown width by height pixels large. brightness(x, y)
/// gives 0 (black) to 255 (white) of a pixel. The middle of each cell is averaged.
template <typename Brightness>
std::optional<std::uint32_t> read(int width, int height, Brightness brightness)
{
    const double cell = static_cast<double>(height) / cellsPerHeight;
    if (cell < 2 || (1 + columns) * cell > width)
        return std::nullopt;
    std::uint32_t word = 0;
    for (int index = 0; index < columns * rows; ++index) {
        const int row = index / columns;
        const double left = (1 + index % columns) * cell;
        const double top = (1 + row) * cell;
        int sum = 0;
        int count = 0;
        for (int y = static_cast<int>(top + cell * 0.3); y < top + cell * 0.7; ++y) {
            for (int x = static_cast<int>(left + cell * 0.3); x < left + cell * 0.7; ++x) {
                sum += brightness(x, y);
                ++count;
            }
        }
        word = word << 1 | (sum > 127 * count ? 1U : 0U);
    }
    return decode(word);
}

inline std::optional<std::uint32_t> readLuma(const std::uint8_t *luma, int stride, int width,
                                             int height)
{
    return read(
        width, height, [=](int x, int y) { return int(luma[y * stride + x]); });
}

/// Pixels of bytesPerPixel bytes, the first three of them the colours in any order.
inline std::optional<std::uint32_t> readRgb(const std::uint8_t *pixels, int stride,
                                            int bytesPerPixel, int width, int height)
{
    return read(
        width, height,
        [=](int x, int y) {
            const std::uint8_t *p = pixels + y * stride + x * bytesPerPixel;
            return (p[0] + p[1] + p[2]) / 3;
        });
}

} // namespace camsim::timecode
