#include "camsim/picture.h"

#include <algorithm>

namespace camsim {

namespace {

int even(int value)
{
    return (value + 1) / 2 * 2;
}

struct Colour
{
    int y, cb, cr;
};

/// ITU-R BT.601, limited range. The inputs are already multiplied by alpha, and so the offsets are.
Colour toYuv(int r, int g, int b, int alpha)
{
    const int centre = 128 * alpha / 255;
    return {(66 * r + 129 * g + 25 * b) / 256 + 16 * alpha / 255,
            (-38 * r - 74 * g + 112 * b) / 256 + centre,
            (112 * r - 94 * g - 18 * b) / 256 + centre};
}

void blendRow(std::uint8_t *target, const std::uint8_t *source, const std::uint8_t *alpha,
              int count, bool opaque)
{
    if (opaque) {
        std::copy_n(source, count, target);
        return;
    }
    for (int i = 0; i < count; ++i)
        target[i] = static_cast<std::uint8_t>(source[i] + target[i] * (255 - alpha[i]) / 255);
}

} // namespace

Sprite::Sprite(int width, int height, const std::function<void(cairo_t *)> &paint)
    : m_width(even(width))
    , m_height(even(height))
{
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, m_width, m_height);
    cairo_t *cr = cairo_create(surface);
    paint(cr);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    convert(cairo_image_surface_get_data(surface), cairo_image_surface_get_stride(surface));
    cairo_surface_destroy(surface);
}

void Sprite::convert(const std::uint8_t *pixels, int stride)
{
    const auto size = static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height);
    m_luma.resize(size);
    m_alpha.resize(size);
    m_cb.resize(size / 4);
    m_cr.resize(size / 4);
    m_chromaAlpha.resize(size / 4);
    for (int y = 0; y < m_height; y += 2) {
        for (int x = 0; x < m_width; x += 2) {
            int r = 0, g = 0, b = 0, a = 0;
            for (int part = 0; part < 4; ++part) {
                const int px = x + part % 2;
                const int py = y + part / 2;
                const std::uint8_t *p = pixels + py * stride + px * 4;
                const int at = py * m_width + px;
                m_luma[at] = static_cast<std::uint8_t>(toYuv(p[2], p[1], p[0], p[3]).y);
                m_alpha[at] = p[3];
                b += p[0];
                g += p[1];
                r += p[2];
                a += p[3];
            }
            const Colour colour = toYuv(r / 4, g / 4, b / 4, a / 4);
            const int at = y / 2 * (m_width / 2) + x / 2;
            m_cb[at] = static_cast<std::uint8_t>(std::clamp(colour.cb, 0, 255));
            m_cr[at] = static_cast<std::uint8_t>(std::clamp(colour.cr, 0, 255));
            m_chromaAlpha[at] = static_cast<std::uint8_t>(a / 4);
        }
    }
    m_opaque = std::all_of(m_alpha.begin(), m_alpha.end(), [](int alpha) { return alpha == 255; });
}

void Sprite::putOn(const PictureView &picture, int x, int y) const
{
    x -= x & 1;
    y -= y & 1;
    const int left = std::max(0, -x);
    const int right = std::min(m_width, picture.width - x);
    const int top = std::max(0, -y);
    const int bottom = std::min(m_height, picture.height - y);
    if (left >= right)
        return;
    for (int row = top; row < bottom; ++row) {
        const int from = row * m_width + left;
        blendRow(picture.luma + (y + row) * picture.lumaStride + x + left, &m_luma[from],
                 &m_alpha[from], right - left, m_opaque);
        if (row % 2)
            continue;
        const int chroma = row / 2 * (m_width / 2) + left / 2;
        const int to = (y + row) / 2 * picture.chromaStride + (x + left) / 2;
        const int count = (right - left) / 2;
        blendRow(picture.cb + to, &m_cb[chroma], &m_chromaAlpha[chroma], count, m_opaque);
        blendRow(picture.cr + to, &m_cr[chroma], &m_chromaAlpha[chroma], count, m_opaque);
    }
}

} // namespace camsim
