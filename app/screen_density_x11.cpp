#include "app/screen_density.h"

#include "app/x11_connection.h"

#include <QByteArray>
#include <QList>

namespace zelvaro {

namespace {

constexpr double usualDensity = 96; // dots per inch
constexpr double minFactor = 1.125;
constexpr double millimetresPerInch = 25.4;
constexpr std::uint32_t maxResourceWords = 16 * 1024; // of four bytes

/// The X resources that desktops keep their settings in: lines of "name:<blanks>value" on the root
/// window of the first screen.
QByteArray resources(const X11Connection &server)
{
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(server.get())).data->root;
    const auto asked = xcb_get_property(server.get(), 0, root, XCB_ATOM_RESOURCE_MANAGER,
                                        XCB_ATOM_STRING, 0, maxResourceWords);
    const XReply<xcb_get_property_reply_t> answer(
        xcb_get_property_reply(server.get(), asked, nullptr));
    if (!answer)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(answer.get())),
            xcb_get_property_value_length(answer.get())};
}

/// What the desktop's settings say; 0 for nothing.
double chosenDensity(const X11Connection &server)
{
    static const QByteArray name = "Xft.dpi:";
    for (const QByteArray &line : resources(server).split('\n'))
        if (line.startsWith(name))
            return line.mid(name.size()).trimmed().toDouble();
    return 0;
}

/// Without settings, the screen's physical size decides.
double dotsPerInch(const X11Connection &server, const xcb_screen_t &screen)
{
    if (const double chosen = chosenDensity(server); chosen > 0)
        return chosen;
    return screen.width_in_millimeters > 0
               ? screen.width_in_pixels * millimetresPerInch / screen.width_in_millimeters
               : usualDensity;
}

} // namespace

// Without an X server the windows belong to another window system, which reports exact factors.
bool isDenseDesktop()
{
    const X11Connection server;
    const xcb_screen_t *screen = server.isOpen() ? server.screen() : nullptr;
    return screen == nullptr || dotsPerInch(server, *screen) >= usualDensity * minFactor;
}

} // namespace zelvaro
