#pragma once

#include <cstdint>
#include <memory>
#include <optional>

namespace bench {

/// Reads the time code of a simulated camera from the top left corner of the screen, where every
/// player under measurement shows its picture: what a person would see.
class ScreenReader
{
public:
    /// Size of the shown picture in pixels. Throws std::runtime_error without a display that
    /// shares memory with its programs.
    ScreenReader(int width, int height);
    ~ScreenReader();

    /// Milliseconds as in the picture; nullopt while there is no picture, or half of one.
    std::optional<std::uint32_t> read();
    /// Paints the place black, so that the last player's picture is not taken for the next one's.
    void clear();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace bench
