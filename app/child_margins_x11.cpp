#include "app/child_margins.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QTimer>
#include <QVector>
#include <QWindow>

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace zelvaro {

namespace {

struct FreeReply
{
    void operator()(void *reply) const { std::free(reply); }
};

/// Sets _NET_FRAME_EXTENTS (EWMH 1.5) on child windows, as a window manager does on the others.
/// The connection is its own: the toolkit's is reached through private interfaces only.
class ChildMargins : public QObject
{
public:
    explicit ChildMargins(QObject *owner) : QObject(owner), m_server(xcb_connect(nullptr, nullptr))
    {
        static const char name[] = "_NET_FRAME_EXTENTS";
        const auto asked = xcb_intern_atom(m_server, 0, sizeof name - 1, name);
        const std::unique_ptr<xcb_intern_atom_reply_t, FreeReply> answer(
            xcb_intern_atom_reply(m_server, asked, nullptr));
        if (!answer)
            return;
        m_property = answer->atom;
        QCoreApplication::instance()->installEventFilter(this);
    }
    ~ChildMargins() override { xcb_disconnect(m_server); }

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
            xcb_change_property(m_server, XCB_PROP_MODE_REPLACE, window, m_property,
                                XCB_ATOM_CARDINAL, 32, none.size(), none.data());
        }
        m_fresh.clear();
        xcb_flush(m_server);
        // A window that no longer exists is reported as an error, which can be ignored.
        while (const std::unique_ptr<xcb_generic_event_t, FreeReply> event{
            xcb_poll_for_event(m_server)}) {
        }
    }

    xcb_connection_t *const m_server;
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
