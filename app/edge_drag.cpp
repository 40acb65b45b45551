#include "app/edge_drag.h"

#include <algorithm>

namespace zelvaro {

namespace {

constexpr int cornerInside = 40;
constexpr int cornerOutside = 20;
constexpr int topBottom = 6;
constexpr int leftRight = 2;

bool between(int value, int low, int high)
{
    return low <= value && value <= high;
}

int limited(int length, int smallest, int largest)
{
    return std::max(smallest, std::min(length, largest));
}

} // namespace

Edge edgeAt(const QRect &corners, const QPoint &pointer)
{
    const int x = pointer.x();
    const int y = pointer.y();
    if (between(x, corners.right() - cornerInside, corners.right() + cornerOutside) &&
        between(y, corners.bottom() - cornerInside, corners.bottom() + cornerOutside))
        return Edge::Corner;
    if (between(y, corners.top(), corners.top() + topBottom))
        return Edge::Top;
    if (between(y, corners.bottom() - topBottom, corners.bottom()))
        return Edge::Bottom;
    if (between(x, corners.left(), corners.left() + leftRight))
        return Edge::Left;
    if (between(x, corners.right() - leftRight, corners.right()))
        return Edge::Right;
    return Edge::None;
}

Qt::CursorShape cursorOf(Edge edge)
{
    switch (edge) {
    case Edge::Corner:
        return Qt::SizeFDiagCursor;
    case Edge::Top:
    case Edge::Bottom:
        return Qt::SizeVerCursor;
    case Edge::Left:
    case Edge::Right:
        return Qt::SizeHorCursor;
    case Edge::None:
        break;
    }
    return Qt::ArrowCursor;
}

QRect draggedTo(Edge edge, const QRect &corners, const QRect &now, const QPoint &pointer,
                const DragLimits &limits)
{
    const auto width = [&](int distance) {
        return limited(distance + 1, DragLimits::smallest.width(), limits.largest.width());
    };
    const auto height = [&](int distance) {
        return limited(distance + 1, DragLimits::smallest.height(), limits.largest.height());
    };

    QRect result = now;
    switch (edge) {
    case Edge::Corner:
        result.setWidth(width(pointer.x() - corners.left()));
        result.setHeight(height(pointer.y() - corners.top()));
        break;
    case Edge::Right:
        result.setWidth(width(pointer.x() - corners.left()));
        break;
    case Edge::Bottom:
        result.setHeight(height(pointer.y() - corners.top()));
        break;
    case Edge::Left:
        if (const int w = width(corners.right() - pointer.x()); w >= limits.widgetMinimum.width())
            result.setLeft(corners.right() - w + 1);
        break;
    case Edge::Top:
        if (const int h = height(corners.bottom() - pointer.y());
            h >= limits.widgetMinimum.height())
            result.setTop(corners.bottom() - h + 1);
        break;
    case Edge::None:
        break;
    }
    return result;
}

} // namespace zelvaro
