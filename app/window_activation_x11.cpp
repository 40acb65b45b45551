#include "app/window_activation.h"

#include "app/x11_connection.h"

#include <QApplication>
#include <QWidget>

namespace zelvaro {

namespace {

QWidget &foremostOf(QWidget &mainWindow)
{
    if (QWidget *dialog = QApplication::activeModalWidget())
        return *dialog;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->isFullScreen())
            return *window;
    return mainWindow;
}

/// Window managers keep a program that the user does not work with from taking the keyboard. This
/// message is for tools that act for the user (source indication 2 of _NET_ACTIVE_WINDOW, EWMH
/// 1.5): the user has just started the program again.
void activateForUser(WId window)
{
    constexpr std::uint32_t fromPager = 2;
    const X11Connection server;
    const xcb_screen_t *screen = server.isOpen() ? server.screen() : nullptr;
    if (screen == nullptr)
        return;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window);
    message.type = server.atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = fromPager;
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(server.get(), 0, screen->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&message));
    xcb_flush(server.get());
}

} // namespace

void bringToFront(QWidget &mainWindow)
{
    mainWindow.setWindowState(mainWindow.windowState() & ~Qt::WindowMinimized);
    mainWindow.show();
    QWidget &window = foremostOf(mainWindow);
    window.raise();
    window.activateWindow();
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        activateForUser(window.winId());
}

} // namespace zelvaro
