#include "app/x11_connection.h"

namespace zelvaro {

X11Connection::X11Connection() : m_server(xcb_connect(nullptr, &m_screenNumber)) {}

// XCB returns an object for a display that cannot be reached too.
bool X11Connection::isOpen() const
{
    return xcb_connection_has_error(m_server.get()) == 0;
}

const xcb_screen_t *X11Connection::screen() const
{
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(m_server.get()));
    for (int number = 0; screens.rem > 0; ++number, xcb_screen_next(&screens))
        if (number == m_screenNumber)
            return screens.data;
    return nullptr;
}

xcb_atom_t X11Connection::atom(const QByteArray &name) const
{
    const auto asked = xcb_intern_atom(m_server.get(), 0, static_cast<std::uint16_t>(name.size()),
                                       name.constData());
    const XReply<xcb_intern_atom_reply_t> answer(
        xcb_intern_atom_reply(m_server.get(), asked, nullptr));
    return answer ? answer->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

} // namespace zelvaro
