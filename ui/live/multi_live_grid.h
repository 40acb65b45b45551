#pragma once

#include <QSize>

namespace zelvaro {

/// How many tiles are side by side and how large a cell of 4:3 each gets, in pixels.
struct GridShape
{
    int rows = 1;
    int columns = 1;
    int width = 0;
    int height = 0;
};

/// The shape that gives the widest cells; of shapes with the same width the one with more rows.
/// Without tiles: one cell, the whole area.
GridShape gridShape(QSize area, int tiles);

} // namespace zelvaro
