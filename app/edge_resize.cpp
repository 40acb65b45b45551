#include "app/edge_resize.h"

#include <QMouseEvent>
#include <QWidget>

namespace zelvaro {

namespace {

// One pixel more than a zone is wide, because the zones include both of their bounds.
constexpr int edgeThickness = 7;
constexpr int sideThickness = 3;

} // namespace

EdgeResize::EdgeResize(QWidget *window, const Frames &frames, QSize largest)
    : m_window(window)
    , m_frames(frames)
    , m_largest(largest)
{
    for (QWidget *frame : {m_frames.left, m_frames.right, m_frames.top, m_frames.bottom})
        frame->setMouseTracking(true);
    restoreCursors();
    follow();
}

void EdgeResize::setEnabled(bool enabled)
{
    m_enabled = enabled;
    release();
}

void EdgeResize::follow()
{
    placeFrames();
    recordCorners();
}

// The corners stay where they are during a drag, so that the opposite edge does.
void EdgeResize::recordCorners()
{
    if (m_dragged == Edge::None)
        m_corners = QRect(m_window->mapToGlobal(QPoint(0, 0)), m_window->size());
}

void EdgeResize::placeFrames()
{
    const int width = m_window->width();
    const int height = m_window->height();
    m_frames.left->setGeometry(0, 0, sideThickness, height);
    m_frames.right->setGeometry(width - sideThickness, 0, sideThickness, height);
    m_frames.top->setGeometry(0, 0, width, edgeThickness);
    m_frames.bottom->setGeometry(0, height - edgeThickness, width, edgeThickness);
    for (QWidget *frame : {m_frames.left, m_frames.right, m_frames.top, m_frames.bottom})
        frame->raise();
}

void EdgeResize::press(const QMouseEvent &event)
{
    recordCorners();
    m_pressed = edgeAt(m_corners, event.globalPos());
}

void EdgeResize::release()
{
    m_dragged = m_pressed = Edge::None;
    recordCorners();
    m_window->setCursor(Qt::ArrowCursor);
    restoreCursors();
}

void EdgeResize::move(const QMouseEvent &event)
{
    const QPoint pointer = event.globalPos();
    if (!(event.buttons() & Qt::LeftButton)) {
        showCursor(edgeAt(m_corners, pointer));
        return;
    }
    // The zones are thinner than one step of a quick hand: where the button went down counts first.
    if (m_dragged == Edge::None) {
        m_dragged = m_pressed != Edge::None ? m_pressed : edgeAt(m_corners, pointer);
        showCursor(m_dragged);
    }
    if (m_dragged != Edge::None) {
        m_window->setGeometry(draggedTo(m_dragged, m_corners, m_window->geometry(), pointer,
                                        {m_largest, m_window->minimumSize()}));
    }
}

// The edge frames have their own cursors and the corner's zone lies over two of them.
void EdgeResize::showCursor(Edge edge)
{
    m_window->setCursor(cursorOf(edge));
    restoreCursors();
    if (edge == Edge::Corner) {
        m_frames.right->setCursor(Qt::SizeFDiagCursor);
        m_frames.bottom->setCursor(Qt::SizeFDiagCursor);
    }
}

void EdgeResize::restoreCursors()
{
    for (QWidget *side : {m_frames.left, m_frames.right})
        side->setCursor(m_enabled ? Qt::SizeHorCursor : Qt::ArrowCursor);
    for (QWidget *edge : {m_frames.top, m_frames.bottom})
        edge->setCursor(m_enabled ? Qt::SizeVerCursor : Qt::ArrowCursor);
}

} // namespace zelvaro
