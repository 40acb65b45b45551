#include "ui/common/picture_box.h"

#include <QEvent>
#include <QLayout>
#include <QScreen>

namespace zelvaro {

PictureBox::PictureBox(QWidget *area, QWidget *box, QWidget *surface, QObject *parent)
    : QObject(parent)
    , m_area(area)
    , m_box(box)
    , m_surface(surface)
{
    m_surface->installEventFilter(this);
}

void PictureBox::calculate(QSize picture)
{
    m_layout = layoutPicture(m_area->size(), picture, m_layout.zoom);
}

void PictureBox::position()
{
    if (m_fullScreen) {
        showFullScreen();
        return;
    }
    // Hiding a widget takes the keyboard focus from it.
    const bool hadFocus = m_surface->hasFocus();
    m_box->hide();
    m_box->setGeometry(m_layout.frameRect);
    m_box->show();
    if (hadFocus)
        m_surface->setFocus();
}

void PictureBox::enterFullScreen()
{
    m_fullScreen = true;
    position();
}

void PictureBox::leaveFullScreen()
{
    if (!m_fullScreen)
        return;
    m_fullScreen = false;
    m_surface->setWindowFlags(Qt::SubWindow);
    position();
    m_surface->showNormal();
    // The box did not change its size, so its layout would not look at the surface again.
    if (QLayout *layout = m_box->layout()) {
        layout->invalidate();
        layout->activate();
    }
    m_surface->setFocus();
}

void PictureBox::toggleFullScreen()
{
    if (m_fullScreen)
        leaveFullScreen();
    else
        enterFullScreen();
}

void PictureBox::showFullScreen()
{
    // Setting the flag makes the window anew, which blinks.
    if (m_surface->isWindow() && m_surface->isVisible())
        return;
    const QRect screen = m_area->screen()->geometry();
    m_surface->setWindowFlags(Qt::Window);
    m_surface->setGeometry(screen);
    m_surface->showFullScreen();
    // Escape leaves the full screen, so the keys must come here.
    m_surface->raise();
    m_surface->activateWindow();
    m_surface->setFocus();
}

bool PictureBox::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_surface && m_fullScreen && event->type() == QEvent::Close) {
        event->ignore();
        leaveFullScreen();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace zelvaro
