#pragma once

#include "ui/common/escape_key.h"
#include "ui/live/picture_overlay.h"

#include <QRect>
#include <QWidget>

/// The surface of a live picture. The stream library draws, from its own threads and by the native
/// window handle, on a child of this widget that is recreated for each stream. The picture always
/// fills the widget: the parent keeps the aspect ratio. GUI thread only.
class CVideoFrame : public QWidget
{
    Q_OBJECT

public:
    explicit CVideoFrame(QWidget *parent = nullptr);

    /// Makes a fresh widget to draw on, with an overlay above it. The one of before is hidden and
    /// deleted later, because the library may still be drawing on it: hand the new one to the
    /// library, or stop the stream, before control returns to the event loop. The frame keeps it.
    QWidget *CreateRenderSurface();
    /// The widget that is drawn on; null before the first request.
    QWidget *renderSurface() const { return m_renderSurface; }

    /// What lies over the picture, from now on and over the next surfaces.
    void setOverlay(const zelvaro::OverlayContent &content);
    const zelvaro::OverlayContent &overlay() const { return m_overlay; }

    /// Size of the stream in pixels; negative while unknown.
    void SetVideoSize(int width, int height);

signals:
    void clicked();
    /// A double click with the left button, or Escape pressed and released.
    void doubleClicked();

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void layoutSurfaces();

    QWidget *m_renderSurface = nullptr;
    zelvaro::PictureOverlay *m_overlaySurface = nullptr; // child of the render surface
    zelvaro::OverlayContent m_overlay;
    QRect m_lastGeometry;
    qint32 m_videoWidth = -1;
    qint32 m_videoHeight = -1;
    zelvaro::EscapeKey m_escape;
};
