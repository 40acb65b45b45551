#include "platform/media/x_errors.h"

#include <X11/Xlib.h>
#include <glib.h>

#include <atomic>
#include <mutex>

namespace media {

namespace {

// A destroyed window can raise an error for each frame.
constexpr int mostLines = 50;

int logXError(Display *display, XErrorEvent *error)
{
    static std::atomic<int> lines = 0;
    if (lines++ >= mostLines)
        return 0;
    char text[128] = "";
    XGetErrorText(display, error->error_code, text, sizeof text);
    g_log("cammgr", G_LOG_LEVEL_INFO, "X error: %s (request %d.%d, resource 0x%lx)", text,
          error->request_code, error->minor_code, error->resourceid);
    return 0;
}

} // namespace

void surviveXErrors()
{
    static std::once_flag once;
    std::call_once(once, [] {
        XInitThreads();
        XSetErrorHandler(&logXError);
    });
}

} // namespace media
