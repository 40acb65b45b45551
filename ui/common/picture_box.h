#pragma once

#include "ui/common/picture_layout.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace zelvaro {

/// A picture on a page: keeps its zoom, places the framed box in the area, and takes the surface
/// that shows the picture to the full screen and back. Live views, photo viewer and video player
/// each have one. GUI thread only; the widgets are not owned.
class PictureBox : public QObject
{
    Q_OBJECT

public:
    /// area: what the box is fitted into. box: child of area, placed by hand. surface: child of
    /// box, in its layout; a closing of the full-screen surface by the window system brings it
    /// back to the page.
    PictureBox(QWidget *area, QWidget *box, QWidget *surface, QObject *parent = nullptr);

    int zoom() const { return m_layout.zoom; }
    bool isFullScreen() const { return m_fullScreen; }
    /// As last calculated; empty rectangles before.
    const PictureLayout &layout() const { return m_layout; }

    void resetZoom() { m_layout.zoom = naturalZoom; }
    void zoomIn() { m_layout.zoom = zoomedIn(m_layout.zoom); }
    void zoomOut() { m_layout.zoom = zoomedOut(m_layout.zoom); }

    /// Lays the picture out in the area as it is now. An invalid size: there is no picture.
    void calculate(QSize picture);
    /// In full screen shows the surface on the whole screen; otherwise hides the box, moves it to
    /// the calculated place and shows it again.
    void position();

    /// Does nothing when it is in full screen already.
    void enterFullScreen();
    /// Does nothing when it is on the page already.
    void leaveFullScreen();
    void toggleFullScreen();

    /// From now on the strip below the picture has the property pictureFocused, true while the
    /// picture has the keyboard focus: its style sheet shows it.
    void markFocusOn(QWidget *strip);

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    /// The surface has got or lost the keyboard focus.
    void focusChanged(bool focused);
    void fullScreenChanged(bool fullScreen);

private:
    void showFullScreen();
    void setFullScreen(bool fullScreen);

    QPointer<QWidget> m_area;
    QPointer<QWidget> m_box;
    QPointer<QWidget> m_surface;
    PictureLayout m_layout;
    bool m_fullScreen = false;
};

} // namespace zelvaro
