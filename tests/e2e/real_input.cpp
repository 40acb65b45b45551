#include "tests/e2e/real_input.h"

#include <QTest>
#include <QWidget>

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

constexpr int patience = 20'000; // milliseconds until a widget can be pointed at

const QWidget *nativeAncestor(const QWidget *widget)
{
    return widget->internalWinId() ? widget : widget->nativeParentWidget();
}

} // namespace

/// The events of one gesture are queued and sent at once: the server stamps them with its own
/// time, so a test that is held up in the middle of a double click does not make it two clicks.
struct RealInput::Private
{
    Display *display = nullptr;

    /// Where the server has the point now: the window manager may have moved the window since Qt
    /// last heard of it.
    QPoint globalPoint(const QWidget *widget, QPoint point) const
    {
        if (point.x() < 0)
            point = widget->rect().center();
        const QWidget *native = nativeAncestor(widget);
        if (native != widget)
            point = widget->mapTo(native, point);
        int x = 0, y = 0;
        Window unused = 0;
        XTranslateCoordinates(display, native->internalWinId(), DefaultRootWindow(display),
                              point.x(), point.y(), &x, &y, &unused);
        return {x, y};
    }

    /// Whether an event at the point would go to the widget: its window is mapped, and no other
    /// window, such as a dialog that is just being closed, is above it.
    bool isOnTop(const QWidget *widget, QPoint global) const
    {
        const Window root = DefaultRootWindow(display);
        const Window wanted = nativeAncestor(widget)->internalWinId();
        int x = 0, y = 0;
        for (Window window = root, child = 0; window != wanted; window = child)
            if (!XTranslateCoordinates(display, root, window, global.x(), global.y(), &x, &y,
                                       &child) ||
                child == 0)
                return false;
        return true;
    }

    /// Nobody moves a window from here to send().
    QPoint aim(const QWidget *widget, QPoint point) const
    {
        QPoint global;
        const auto found = [&] {
            XGrabServer(display);
            global = globalPoint(widget, point);
            if (isOnTop(widget, global))
                return true;
            release();
            return false;
        };
        if (!QTest::qWaitFor(found, patience)) {
            QTest::qFail(qPrintable("nobody can point at " + widget->objectName()), __FILE__,
                         __LINE__);
        }
        return global;
    }

    void motion(QPoint global)
    {
        XTestFakeMotionEvent(display, -1, global.x(), global.y(), CurrentTime);
    }

    void button(bool press)
    {
        XTestFakeButtonEvent(display, Button1, press ? True : False, CurrentTime);
    }

    void click()
    {
        button(true);
        button(false);
    }

    void keyCode(KeyCode code, bool press)
    {
        XTestFakeKeyEvent(display, code, press ? True : False, CurrentTime);
    }

    void stroke(KeySym symbol, KeySym modifier = NoSymbol)
    {
        const KeyCode code = XKeysymToKeycode(display, symbol);
        const KeyCode held = modifier == NoSymbol ? 0 : XKeysymToKeycode(display, modifier);
        if (held != 0)
            keyCode(held, true);
        keyCode(code, true);
        keyCode(code, false);
        if (held != 0)
            keyCode(held, false);
    }

    /// Sends what is queued; the server has taken it when this returns.
    void send() const
    {
        XSync(display, False);
        release();
    }

    void release() const
    {
        XUngrabServer(display);
        XSync(display, False);
    }
};

RealInput::RealInput() : d(std::make_unique<Private>())
{
    d->display = XOpenDisplay(nullptr);
    int unused = 0;
    if (d->display != nullptr &&
        !XTestQueryExtension(d->display, &unused, &unused, &unused, &unused)) {
        XCloseDisplay(d->display);
        d->display = nullptr;
    }
}

RealInput::~RealInput()
{
    if (d->display != nullptr)
        XCloseDisplay(d->display);
}

bool RealInput::isValid() const
{
    return d->display != nullptr;
}

bool RealInput::isSettled(const QWidget *window) const
{
    Window root = 0, unused = 0;
    int x = 0, y = 0;
    unsigned width = 0, height = 0, border = 0, depth = 0;
    return XGetGeometry(d->display, window->winId(), &root, &x, &y, &width, &height, &border,
                        &depth) &&
           XTranslateCoordinates(d->display, window->winId(), root, 0, 0, &x, &y, &unused) &&
           QRect(x, y, int(width), int(height)) == window->geometry();
}

void RealInput::moveTo(const QWidget *widget, QPoint point)
{
    d->motion(d->aim(widget, point));
    d->send();
}

void RealInput::click(const QWidget *widget, QPoint point)
{
    d->motion(d->aim(widget, point));
    d->click();
    d->send();
}

void RealInput::doubleClick(const QWidget *widget, QPoint point)
{
    d->motion(d->aim(widget, point));
    d->click();
    d->click();
    d->send();
}

void RealInput::drag(const QWidget *widget, QPoint from, QPoint to)
{
    constexpr int steps = 8;
    // The widget may move with the pointer: the way is fixed before the button is pressed.
    const QPoint start = d->aim(widget, from);
    const QPoint end = d->globalPoint(widget, to);
    d->motion(start);
    d->button(true);
    for (int step = 1; step <= steps; ++step)
        d->motion(start + (end - start) * step / steps);
    d->button(false);
    d->send();
}

void RealInput::type(const QString &text)
{
    for (const QChar character : text) {
        // The Latin-1 part of the key symbols has the values of the characters.
        const KeySym symbol = character.unicode();
        const KeyCode code = XKeysymToKeycode(d->display, symbol);
        const bool shifted = XkbKeycodeToKeysym(d->display, code, 0, 0) != symbol;
        d->stroke(symbol, shifted ? XK_Shift_L : NoSymbol);
    }
    d->send();
}

void RealInput::key(unsigned long keySymbol)
{
    d->stroke(keySymbol);
    d->send();
}

void RealInput::selectAll()
{
    d->stroke(XK_a, XK_Control_L);
    d->send();
}
