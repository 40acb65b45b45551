#pragma once

#include "bench/tile_grid.h"

#include <chrono>
#include <memory>
#include <vector>

namespace bench {

/// Counts how often the picture of each tile is drawn, whichever program draws it: the rate that
/// reaches the screen.
class DrawingCounter
{
public:
    /// Throws std::runtime_error without a display that reports what is drawn on it.
    DrawingCounter();
    ~DrawingCounter();

    void setTiles(std::vector<Rectangle> tiles);

    /// Counts from zero for so long.
    void count(std::chrono::milliseconds duration);
    /// Counts from zero until each tile was drawn; false after the deadline.
    bool waitForAll(std::chrono::milliseconds deadline);
    /// By tile, since counting began.
    const std::vector<int> &drawings() const { return m_drawings; }

private:
    struct Private;
    void start();
    bool readFor(std::chrono::milliseconds duration);

    std::unique_ptr<Private> d;
    std::vector<Rectangle> m_tiles;
    std::vector<int> m_drawings;
};

} // namespace bench
