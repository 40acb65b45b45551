#include "ui/album/photo_frame.h"

#include "ui/album/sheet_picture.h"
#include "ui/common/picture_layout.h"
#include "ui/common/style_url.h"

#include <QFrame>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>

namespace {

/// Device pixels of the largest screen.
QSize largestScreen()
{
    QSize largest;
    const auto screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        largest = largest.expandedTo(screen->size() * screen->devicePixelRatio());
    return largest;
}

} // namespace

CPhotoFrame::CPhotoFrame(QWidget *parent) : QWidget(parent), m_picture(new QFrame(this))
{
    m_picture->setObjectName(QStringLiteral("framePicture"));
    setFocusPolicy(Qt::StrongFocus);
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);
}

void CPhotoFrame::setPhoto(const QString &file, QSize size)
{
    m_size = size;
    placePicture();
    zelvaro::setPictureSheet(
        m_picture,
        QStringLiteral("QFrame#framePicture{border-image:url(%1);}").arg(zelvaro::styleUrl(file)),
        file, size.scaled(largestScreen(), Qt::KeepAspectRatio).expandedTo({1, 1}));
}

void CPhotoFrame::clear()
{
    m_picture->setStyleSheet({});
    m_size = {};
}

void CPhotoFrame::placePicture()
{
    const QRect place = zelvaro::fittedRect(size(), m_size);
    if (m_picture->geometry() == place)
        return;
    m_picture->hide();
    m_picture->setGeometry(place);
    m_picture->show();
}

void CPhotoFrame::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placePicture();
}

void CPhotoFrame::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
    else
        QWidget::mouseDoubleClickEvent(event);
}

void CPhotoFrame::keyPressEvent(QKeyEvent *event)
{
    if (!m_escape.press(*event))
        QWidget::keyPressEvent(event);
}

void CPhotoFrame::keyReleaseEvent(QKeyEvent *event)
{
    if (m_escape.release(*event))
        emit doubleClicked();
    else
        QWidget::keyReleaseEvent(event);
}

void CPhotoFrame::focusOutEvent(QFocusEvent *event)
{
    m_escape.focusLost();
    QWidget::focusOutEvent(event);
}
