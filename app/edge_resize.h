#pragma once

#include "app/edge_drag.h"

#include <QRect>
#include <QSize>

class QMouseEvent;
class QWidget;

namespace zelvaro {

/// Lets a frameless window be resized by its edges: four thin frames lie over them for the cursors,
/// and the window hands its mouse events on. One edge at a time: the left one, dragged over the
/// right one, stops at the smallest width and does not take that one along. GUI thread only; window
/// and frames are not owned.
class EdgeResize
{
public:
    struct Frames
    {
        QWidget *left, *right, *top, *bottom;
    };

    /// largest: how large the window can be dragged.
    EdgeResize(QWidget *window, const Frames &frames, QSize largest);

    /// Off, no edge reacts and every cursor is the arrow. Ends a drag. On at first.
    void setEnabled(bool enabled);

    /// The window has been moved or resized.
    void follow();
    /// The left button went down, was released. Only while enabled; releasing also while not.
    void press(const QMouseEvent &event);
    void release();
    /// Shows the cursor of the edge under the pointer, or drags it. Only while enabled.
    void move(const QMouseEvent &event);

private:
    void recordCorners();
    void placeFrames();
    void showCursor(Edge edge);
    void restoreCursors();

    QWidget *m_window;
    Frames m_frames;
    QSize m_largest;
    bool m_enabled = true;
    QRect m_corners;             // global, as last recorded
    Edge m_pressed = Edge::None; // where the left button went down
    Edge m_dragged = Edge::None; // what the drag resizes
};

} // namespace zelvaro
