#include "ui/live/video_frame.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QRegion>

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

    m_overlaySurface = new QWidget(m_renderSurface);
    m_overlaySurface->setAttribute(Qt::WA_TranslucentBackground);
    // A native child window is opaque whatever its attributes say, and would hide the picture. With
    // nothing to draw it has no shape.
    m_overlaySurface->setMask(QRegion(-1, -1, 1, 1));

    m_videoWidth = -1;
    m_videoHeight = -1;
    layoutSurfaces();
    m_renderSurface->show();
    return m_renderSurface;
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
    for (QWidget *surface : {m_renderSurface, m_overlaySurface}) {
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
