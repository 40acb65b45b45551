#pragma once

#include <vector>

namespace bench {

/// A place on the screen, in pixels.
struct Rectangle
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// Places of that many pictures of shape 16:9, row by row from the top left corner of the screen:
/// as large as fit, and not larger than the stream.
std::vector<Rectangle> tileGrid(int tiles, int screenWidth, int largestWidth);

} // namespace bench
