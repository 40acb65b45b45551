#pragma once

#include <cairo.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace camsim {

/// Where the planes of a picture with 4:2:0 sampling lie in memory. Does not own them.
struct PictureView
{
    int width = 0;  ///< even
    int height = 0; ///< even
    std::uint8_t *luma = nullptr;
    std::uint8_t *cb = nullptr;
    std::uint8_t *cr = nullptr;
    int lumaStride = 0;
    int chromaStride = 0;
};

/// A painted picture with transparency, kept in the colour space of the encoder, so that putting
/// it onto a frame costs a few microseconds and no conversion.
class Sprite
{
public:
    Sprite() = default;
    /// Paints once with cairo. Sizes are rounded up to even numbers.
    Sprite(int width, int height, const std::function<void(cairo_t *)> &paint);

    /// Blends the sprite over the picture with its top left corner at (x, y), cut at the edges.
    /// Both are rounded to even numbers.
    void putOn(const PictureView &picture, int x, int y) const;

    int width() const { return m_width; }
    int height() const { return m_height; }

private:
    void convert(const std::uint8_t *pixels, int stride);

    int m_width = 0;
    int m_height = 0;
    bool m_opaque = false;
    std::vector<std::uint8_t> m_luma; // colours are already multiplied by their alpha
    std::vector<std::uint8_t> m_alpha;
    std::vector<std::uint8_t> m_cb;
    std::vector<std::uint8_t> m_cr;
    std::vector<std::uint8_t> m_chromaAlpha;
};

} // namespace camsim
