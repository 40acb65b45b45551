#include "app/child_margins.h"

#include "app/x11_connection.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QTimer>
#include <QVector>
#include <QWindow>

#include <array>
#include <cstdint>

namespace zelvaro {

namespace {

/// Sets _NET_FRAME_EXTENTS (EWMH 1.5) on child windows, as a window manager does on the others.
class ChildMargins : public QObject
{
public:
    explicit ChildMargins(QObject *owner) : QObject(owner)
    {
        if (!m_server.isOpen())
            return;
        m_property = m_server.atom("_NET_FRAME_EXTENTS");
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() != QEvent::PlatformSurface ||
            static_cast<QPlatformSurfaceEvent *>(event)->surfaceEventType() !=
                QPlatformSurfaceEvent::SurfaceCreated)
            return false;
        const auto *window = qobject_cast<QWindow *>(object);
        if (!window || !window->parent())
            return false;
        // Later: the server may not know the window yet.
        if (m_fresh.isEmpty())
            QTimer::singleShot(0, this, [this] { declare(); });
        m_fresh.append(static_cast<xcb_window_t>(window->winId()));
        return false;
    }

private:
    void declare()
    {
        static const std::array<std::uint32_t, 4> none{};
        for (const xcb_window_t window : qAsConst(m_fresh)) {
            xcb_change_property(m_server.get(), XCB_PROP_MODE_REPLACE, window, m_property,
                                XCB_ATOM_CARDINAL, 32, none.size(), none.data());
        }
        m_fresh.clear();
        xcb_flush(m_server.get());
        // A window that no longer exists is reported as an error, which can be ignored.
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(m_server.get())}) {
        }
    }

    const X11Connection m_server;
    xcb_atom_t m_property = XCB_ATOM_NONE;
    QVector<xcb_window_t> m_fresh;
};

} // namespace

void declareChildMargins(QObject *owner)
{
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        new ChildMargins(owner);
}

} // namespace zelvaro
