#include "app/main_form.h"
#include "resources/resources.h"
#include "tests/support/registry.h"

#include <QApplication>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace {

constexpr int deadline = 60'000; // milliseconds

struct Free
{
    void operator()(void *memory) const { std::free(memory); }
};

/// Asks the window manager to close a window, as task bars do (EWMH, _NET_CLOSE_WINDOW). It passes
/// the wish on to the program. False without an X display.
bool closeByWindowManager(xcb_window_t window)
{
    xcb_connection_t *display = xcb_connect(nullptr, nullptr);
    const auto disconnect = qScopeGuard([display] { xcb_disconnect(display); });
    if (xcb_connection_has_error(display) != 0)
        return false;
    const QByteArray name("_NET_CLOSE_WINDOW");
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(xcb_intern_atom_reply(
        display, xcb_intern_atom(display, 0, uint16_t(name.size()), name.constData()), nullptr));
    if (!atom)
        return false;
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom->atom;
    constexpr uint32_t fromTaskBar = 2;
    message.data.data32[1] = fromTaskBar;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
    xcb_send_event(display, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&message));
    // The server drops what it has not read of a client that is gone: an answer shows that it has.
    const std::unique_ptr<xcb_get_input_focus_reply_t, Free> taken(
        xcb_get_input_focus_reply(display, xcb_get_input_focus(display), nullptr));
    return taken != nullptr;
}

} // namespace

/// With a window manager on a real display.
class TestWindowClose : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void theWindowManagerEndsTheProgram();
};

void TestWindowClose::theWindowManagerEndsTheProgram()
{
    Registry registry;
    registry.start();
    CMainForm form;
    setPageHost(&form);
    form.show();
    QVERIFY(QTest::qWaitForWindowActive(&form, deadline));
    QSignalSpy quitting(qApp, &QCoreApplication::aboutToQuit);
    const WId window = form.winId();
    QTimer::singleShot(
        0, &form, [window] { QVERIFY(closeByWindowManager(xcb_window_t(window))); });
    QTimer::singleShot(deadline, &form, [] { QCoreApplication::exit(1); });
    QCOMPARE(QApplication::exec(), 0);
    QCOMPARE(quitting.count(), 1);
}

QTEST_MAIN(TestWindowClose)
#include "tst_window_close.moc"
