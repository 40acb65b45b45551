#include "app/compositing.h"

#include <QByteArray>
#include <QGuiApplication>

#include <X11/Xlib.h>

namespace zelvaro {

// A compositing manager owns the selection _NET_WM_CM_Sn of its screen (EWMH 1.5). The connection
// is our own: Qt's is reached through private interfaces only.
bool desktopComposes()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return true;
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr)
        return true;
    const QByteArray name = "_NET_WM_CM_S" + QByteArray::number(DefaultScreen(display));
    const Atom selection = XInternAtom(display, name.constData(), False);
    const bool owned = XGetSelectionOwner(display, selection) != None;
    XCloseDisplay(display);
    return owned;
}

} // namespace zelvaro
