#include "tests/camera/x_key.h"

#include <X11/Xlib.h>
#include <X11/keysym.h>

#include <initializer_list>

bool pressSpaceInWindow(unsigned long window)
{
    static Time time = 1000;
    Display *const display = XOpenDisplay(nullptr);
    if (!display)
        return false;
    XKeyEvent event = {};
    event.display = display;
    event.window = window;
    event.root = DefaultRootWindow(display);
    event.same_screen = True;
    event.keycode = XKeysymToKeycode(display, XK_space);
    for (const int type : {KeyPress, KeyRelease}) {
        event.type = type;
        event.time = time += 100; // a release and a press at the same time would be a repeat
        XSendEvent(display, window, True, type == KeyPress ? KeyPressMask : KeyReleaseMask,
                   reinterpret_cast<XEvent *>(&event));
    }
    XSync(display, False);
    XCloseDisplay(display);
    return true;
}
