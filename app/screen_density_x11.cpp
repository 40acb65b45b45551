#include "app/screen_density.h"

#include <X11/Xlib.h>

#include <cstdlib>

namespace zelvaro {

namespace {

constexpr double usualDensity = 96; // dots per inch
constexpr double leastFactor = 1.125;
constexpr double millimetresPerInch = 25.4;

/// What the desktop's settings say (the resource Xft.dpi); without them, the screen's own size.
double dotsPerInch(Display *display)
{
    if (const char *chosen = XGetDefault(display, "Xft", "dpi")) {
        if (const double value = std::atof(chosen); value > 0)
            return value;
    }
    const int screen = DefaultScreen(display);
    const int millimetres = DisplayWidthMM(display, screen);
    return millimetres > 0 ? DisplayWidth(display, screen) * millimetresPerInch / millimetres
                           : usualDensity;
}

} // namespace

// The connection is our own: the application's is not made yet. Without an X server the windows
// belong to another window system, which reports exact factors.
bool isDenseDesktop()
{
    XInitThreads(); // before every other call, and the stream library draws from its own threads
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr)
        return true;
    const bool dense = dotsPerInch(display) >= usualDensity * leastFactor;
    XCloseDisplay(display);
    return dense;
}

} // namespace zelvaro
