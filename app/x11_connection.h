#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace zelvaro {

struct FreeXReply
{
    void operator()(void *reply) const { std::free(reply); }
};
/// The caller frees the replies of the X server.
template <typename Reply>
using XReply = std::unique_ptr<Reply, FreeXReply>;

/// A separate connection to the display that DISPLAY names: the toolkit's is reached through
/// private interfaces only, and is not there before the application object. One thread at a time.
class X11Connection
{
public:
    /// About a millisecond on a local display.
    X11Connection();

    /// False when no display is named or none answers. Every other function needs an open one.
    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] xcb_connection_t *get() const { return m_server.get(); }
    [[nodiscard]] int screenNumber() const { return m_screenNumber; }
    /// The screen that new windows come up on; null when the display has none.
    [[nodiscard]] const xcb_screen_t *screen() const;
    /// XCB_ATOM_NONE when the connection broke.
    [[nodiscard]] xcb_atom_t atom(const QByteArray &name) const;

private:
    struct Disconnect
    {
        void operator()(xcb_connection_t *server) const { xcb_disconnect(server); }
    };

    int m_screenNumber = 0;
    std::unique_ptr<xcb_connection_t, Disconnect> m_server;
};

} // namespace zelvaro
