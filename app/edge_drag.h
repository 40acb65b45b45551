#pragma once

#include <QRect>
#include <Qt>

namespace zelvaro {

/// Where the pointer is on the border of a frameless window, and so what a drag resizes.
enum class Edge
{
    None,
    Corner,
    Top,
    Bottom,
    Left,
    Right
};

/// The zone of pointer, tried in the order of the enumeration: the bottom right corner reaches 40
/// pixels into the window and 20 beyond it, top and bottom 6 pixels, left and right 2. All bounds
/// are inclusive.
/// @param corners the window's global rectangle
Edge edgeAt(const QRect &corners, const QPoint &pointer);

/// The resize cursor of an edge; the arrow for none.
Qt::CursorShape cursorOf(Edge edge);

/// How small and large a window can be dragged.
struct DragLimits
{
    static constexpr QSize smallest{400, 300};
    QSize largest;
    QSize widgetMinimum; ///< left and top edges stay where they are below it
};

/// The window's rectangle with one edge dragged to pointer. The opposite edge stays.
/// @param corners the window's global rectangle when the drag began
/// @param now its rectangle now; the edges that are not dragged are taken from it
QRect draggedTo(Edge edge, const QRect &corners, const QRect &now, const QPoint &pointer,
                const DragLimits &limits);

} // namespace zelvaro
