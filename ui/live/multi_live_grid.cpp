#include "ui/live/multi_live_grid.h"

namespace zelvaro {

namespace {

constexpr int aspectWidth = 400;
constexpr int aspectHeight = 300;

QSize fittedCell(int width, int height)
{
    const double aspect = static_cast<double>(aspectWidth) / aspectHeight;
    if (aspect > static_cast<double>(width) / height)
        return {width, static_cast<int>(qint64(width) * aspectHeight / aspectWidth)};
    return {static_cast<int>(qint64(height) * aspectWidth / aspectHeight), height};
}

} // namespace

GridShape gridShape(QSize area, int tiles)
{
    if (tiles < 1)
        return {1, 1, area.width(), area.height()};
    GridShape best;
    for (int rows = 1; rows <= tiles; ++rows) {
        const int columns = (tiles - 1 + rows) / rows;
        const QSize cell = fittedCell(area.width() / columns, area.height() / rows);
        if (cell.width() < best.width)
            break;
        best = {rows, columns, cell.width(), cell.height()};
    }
    return best;
}

} // namespace zelvaro
