#include "bench/tile_grid.h"

#include <algorithm>

namespace bench {

std::vector<Rectangle> tileGrid(int tiles, int screenWidth, int largestWidth)
{
    int columns = 1;
    while (columns * columns < tiles)
        ++columns;
    const int width = std::min(largestWidth, screenWidth / columns);
    const int height = width * 9 / 16;
    std::vector<Rectangle> places;
    for (int i = 0; i < tiles; ++i)
        places.push_back({i % columns * width, i / columns * height, width, height});
    return places;
}

} // namespace bench
