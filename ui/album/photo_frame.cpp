#include "ui/album/photo_frame.h"

#include "ui/common/sheet_picture.h"
#include "ui/common/style_url.h"

#include <QFrame>
#include <QGuiApplication>
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

CPhotoFrame::CPhotoFrame(QWidget *parent) : FittedFrame(parent), m_picture(new QFrame)
{
    m_picture->setObjectName(QStringLiteral("framePicture"));
    setContent(m_picture);
    connect(this, &FittedFrame::escaped, this, &CPhotoFrame::doubleClicked);
}

void CPhotoFrame::setPhoto(const QString &file, QSize size)
{
    setContentSize(size);
    zelvaro::setPictureSheet(
        m_picture,
        QStringLiteral("QFrame#framePicture{border-image:url(%1);}").arg(zelvaro::styleUrl(file)),
        file, size.scaled(largestScreen(), Qt::KeepAspectRatio).expandedTo({1, 1}));
}

void CPhotoFrame::clear()
{
    m_picture->setStyleSheet({});
}

// Hidden meanwhile: a picture that is stretched before it has moved flickers.
void CPhotoFrame::moveContent(QWidget *picture, const QRect &place)
{
    picture->hide();
    picture->setGeometry(place);
    picture->show();
}

void CPhotoFrame::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
    else
        QWidget::mouseDoubleClickEvent(event);
}
