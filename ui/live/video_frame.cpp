#include "ui/live/video_frame.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace {

const QString blackBackground = QStringLiteral("background-color:rgb(0,0,0);");

void dismiss(QWidget *surface)
{
    if (!surface)
        return;
    surface->hide();
    surface->deleteLater();
}

} // namespace

CVideoFrame::CVideoFrame(QWidget *parent) : QWidget(parent)
{
    setStyleSheet(blackBackground);
    setAttribute(Qt::WA_StyledBackground);
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);
}

QWidget *CVideoFrame::CreateRenderSurface()
{
    dismiss(m_overlaySurface);
    dismiss(m_renderSurface);

    m_renderSurface = new QWidget(this);
    m_renderSurface->setStyleSheet(blackBackground);
    m_renderSurface->ensurePolished();
    m_renderSurface->setAutoFillBackground(true);

    m_overlaySurface = new zelvaro::PictureOverlay(m_renderSurface);
    m_overlaySurface->setContent(m_overlay);
    // The pointer shows the texts of the full screen, also without a button held.
    for (QWidget *widget :
         {static_cast<QWidget *>(this), m_renderSurface, static_cast<QWidget *>(m_overlaySurface)})
        widget->setMouseTracking(true);

    m_videoWidth = -1;
    m_videoHeight = -1;
    layoutSurfaces();
    m_renderSurface->show();
    return m_renderSurface;
}

void CVideoFrame::setOverlay(const zelvaro::OverlayContent &content)
{
    m_overlay = content;
    if (m_overlaySurface)
        m_overlaySurface->setContent(content);
}

void CVideoFrame::SetVideoSize(int width, int height)
{
    m_videoWidth = width;
    m_videoHeight = height;
    layoutSurfaces();
}

void CVideoFrame::layoutSurfaces()
{
    if (!m_renderSurface)
        return;
    const QRect whole = rect();
    if (m_videoWidth < 0 || m_videoHeight < 0) {
        m_renderSurface->setGeometry(whole);
        m_overlaySurface->setGeometry(whole);
        return;
    }
    if (m_lastGeometry == whole)
        return;
    m_lastGeometry = whole;
    for (QWidget *surface : {m_renderSurface, static_cast<QWidget *>(m_overlaySurface)}) {
        surface->hide();
        surface->setGeometry(whole);
        surface->show();
    }
}

bool CVideoFrame::event(QEvent *event)
{
    const bool handled = QWidget::event(event);
    // A style sheet with a background switches it off.
    if (event->type() == QEvent::Polish)
        setAutoFillBackground(true);
    return handled;
}

void CVideoFrame::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutSurfaces();
}

void CVideoFrame::mousePressEvent(QMouseEvent *event)
{
    QWidget::mousePressEvent(event);
    emit clicked();
}

void CVideoFrame::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
    else
        QWidget::mouseDoubleClickEvent(event);
}

void CVideoFrame::keyPressEvent(QKeyEvent *event)
{
    if (!m_escape.press(*event))
        QWidget::keyPressEvent(event);
}

void CVideoFrame::keyReleaseEvent(QKeyEvent *event)
{
    if (m_escape.release(*event))
        emit doubleClicked();
    else
        QWidget::keyReleaseEvent(event);
}

void CVideoFrame::focusOutEvent(QFocusEvent *event)
{
    m_escape.focusLost();
    QWidget::focusOutEvent(event);
}
