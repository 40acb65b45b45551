#include "app/compositing.h"

#include "app/x11_connection.h"

#include <QGuiApplication>

namespace zelvaro {

// A compositing manager owns the selection _NET_WM_CM_Sn of its screen (EWMH 1.5).
bool desktopComposes()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return true;
    const X11Connection server;
    if (!server.isOpen())
        return true;
    const xcb_atom_t selection =
        server.atom("_NET_WM_CM_S" + QByteArray::number(server.screenNumber()));
    const XReply<xcb_get_selection_owner_reply_t> answer(xcb_get_selection_owner_reply(
        server.get(), xcb_get_selection_owner(server.get(), selection), nullptr));
    return answer && answer->owner != XCB_WINDOW_NONE;
}

} // namespace zelvaro
