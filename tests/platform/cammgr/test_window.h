#pragma once

// Before Xlib, whose macros take names that others use.
#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdint>

/// A window of the test on the X display, with its own parent.
class TestWindow
{
public:
    TestWindow(int width, int height, int x = 0, int y = 0) : m_display(XOpenDisplay(nullptr))
    {
        if (!m_display)
            return;
        const Window root = DefaultRootWindow(m_display);
        XSetWindowAttributes attributes = {};
        attributes.override_redirect = True;
        m_parent = XCreateWindow(m_display, root, x, y, width, height, 0, CopyFromParent,
                                 InputOutput, nullptr, CWOverrideRedirect, &attributes);
        m_window = XCreateSimpleWindow(m_display, m_parent, 0, 0, width, height, 0, 0,
                                       WhitePixel(m_display, DefaultScreen(m_display)));
        XMapWindow(m_display, m_window);
        XMapWindow(m_display, m_parent);
        XSync(m_display, False);
    }
    ~TestWindow()
    {
        if (m_display)
            XCloseDisplay(m_display);
    }
    TestWindow(const TestWindow &) = delete;
    TestWindow &operator=(const TestWindow &) = delete;

    bool exists() const { return m_display != nullptr; }
    uintptr_t id() const { return m_window; }
    Window parent() const { return m_parent; }
    Display *display() const { return m_display; }

    void hide() { XUnmapWindow(m_display, m_window), XSync(m_display, False); }
    void show() { XMapWindow(m_display, m_window), XSync(m_display, False); }
    void hideParent() { XUnmapWindow(m_display, m_parent), XSync(m_display, False); }
    void showParent() { XMapWindow(m_display, m_parent), XSync(m_display, False); }
    void raise() { XRaiseWindow(m_display, m_parent), XSync(m_display, False); }
    void destroy() { XDestroyWindow(m_display, m_window), XSync(m_display, False); }
    void resize(int width, int height)
    {
        XResizeWindow(m_display, m_parent, width, height);
        XResizeWindow(m_display, m_window, width, height);
        XSync(m_display, False);
    }

    struct Picture
    {
        int width = 0;
        int height = 0;
        unsigned long sum = 0;   ///< of all pixels, distinguishes frames
        unsigned long white = 0; ///< pixels that nobody painted
        unsigned long black = 0;
    };

    /// What the window shows now.
    Picture grab() const
    {
        XWindowAttributes attributes;
        Picture picture;
        if (!XGetWindowAttributes(m_display, m_window, &attributes) ||
            attributes.map_state != IsViewable)
            return picture;
        XImage *image = XGetImage(m_display, m_window, 0, 0, attributes.width, attributes.height,
                                  AllPlanes, ZPixmap);
        if (!image)
            return picture;
        picture.width = attributes.width;
        picture.height = attributes.height;
        for (int y = 0; y < attributes.height; ++y) {
            for (int x = 0; x < attributes.width; ++x) {
                const unsigned long pixel = XGetPixel(image, x, y) & 0xffffff;
                picture.sum = picture.sum * 31 + pixel;
                picture.white += pixel == 0xffffff;
                picture.black += pixel == 0;
            }
        }
        XDestroyImage(image);
        return picture;
    }

private:
    Display *m_display;
    Window m_parent = 0;
    Window m_window = 0;
};
