#pragma once

#include <QString>

namespace zelvaro {

/// On which window system the program comes up. Live video is drawn on X windows, so a Wayland
/// session is used through its X server.
enum class VideoPlatform
{
    Chosen, ///< the user named one, by QT_QPA_PLATFORM, -platform or -display
    X11,    ///< an X display answers
    None    ///< nobody chose and no X display answers
};

/// Asks the X server once; about a millisecond. Before the application object is made.
VideoPlatform videoPlatform(int argc, const char *const *argv);

/// One sentence or two for the user: why no video can be drawn, and what to do.
QString whyNoVideo();

/// Whether the session has a Wayland compositor and the GUI toolkit could show a message on it.
bool canShowOnWayland();

} // namespace zelvaro
