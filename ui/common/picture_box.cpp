#include "ui/common/picture_box.h"

#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QVariant>

namespace zelvaro {

namespace {

/// Keeps the children of a widget elsewhere while its native window is recreated, so that theirs
/// live on: something may be drawing on them.
class ChildrenAside
{
public:
    ChildrenAside(QWidget *parent, QWidget *aside) : m_parent(parent)
    {
        const auto widgets = parent->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
        for (QWidget *child : widgets) {
            if (child->isWindow())
                continue;
            m_children.append({child, child->isHidden()});
            child->setParent(aside);
        }
    }
    ~ChildrenAside()
    {
        for (const Child &child : m_children) {
            const QPoint place = child.widget->pos();
            child.widget->setParent(m_parent);
            child.widget->move(place);
            child.widget->setVisible(!child.hidden);
        }
    }
    ChildrenAside(const ChildrenAside &) = delete;
    ChildrenAside &operator=(const ChildrenAside &) = delete;

private:
    struct Child
    {
        QWidget *widget;
        bool hidden;
    };

    QWidget *m_parent;
    QList<Child> m_children;
};

} // namespace

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
    setFullScreen(true);
    position();
}

void PictureBox::setFullScreen(bool fullScreen)
{
    if (m_fullScreen == fullScreen)
        return;
    m_fullScreen = fullScreen;
    emit fullScreenChanged(fullScreen);
}

void PictureBox::leaveFullScreen()
{
    if (!m_fullScreen)
        return;
    setFullScreen(false);
    const ChildrenAside children(m_surface, m_box);
    // The native window must be recreated: one that becomes a child again is taken back to the
    // screen by a window manager that has not seen it leave yet.
    const bool native = m_surface->testAttribute(Qt::WA_NativeWindow);
    m_surface->setAttribute(Qt::WA_NativeWindow, false);
    m_surface->setWindowFlags(Qt::SubWindow);
    m_surface->setAttribute(Qt::WA_NativeWindow, native);
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
    // Setting the flag recreates the window, which blinks.
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

void PictureBox::markFocusOn(QWidget *strip)
{
    connect(
        this, &PictureBox::focusChanged, strip,
        [strip](bool focused) {
            strip->setProperty("pictureFocused", focused);
            strip->setStyleSheet(strip->styleSheet()); // a property alone does not restyle
        });
}

bool PictureBox::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Close:
        if (!m_fullScreen)
            break;
        event->ignore();
        leaveFullScreen();
        return true;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        emit focusChanged(event->type() == QEvent::FocusIn);
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace zelvaro
