#include "platform/media/window_watch.h"

#include "platform/media/x_errors.h"

#include <X11/Xlib.h>
#include <glib.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <poll.h>
#include <set>
#include <unistd.h>
#include <utility>
#include <vector>

namespace media {

namespace {

constexpr long ancestorMask = StructureNotifyMask;
constexpr long windowMask = StructureNotifyMask | VisibilityChangeMask | ExposureMask;

/// One watched window. Shared, so that its handler can run without the lock of all.
struct Watched
{
    Window window = 0;
    std::mutex handlerLock; ///< held while the handler runs; protects handler
    WindowWatch::Handler handler;
    // Watching thread only.
    std::vector<Window> ancestors; ///< nearest first
    bool obscured = false;
    bool reported = false;
    WindowState state;
};

} // namespace

class WindowWatch::Private
{
public:
    Private();

    int add(uintptr_t window, Handler handler);
    void remove(int number);

private:
    static void *threadMain(void *self);
    static void endAtExit();
    void start();
    void end();
    void wake();
    void watch();
    bool adopt();
    void readEvents();
    void findAncestors(Watched &watched);
    void select();
    void report(Watched &watched, bool damaged);
    static bool concerns(const Watched &watched, Window window);

    std::mutex m_mutex; ///< protects the five below
    std::map<int, std::shared_ptr<Watched>> m_wanted;
    int m_lastNumber = 0;
    GThread *m_thread = nullptr;
    bool m_changed = false;
    bool m_ending = false;
    int m_wakePipe[2] = {-1, -1};

    // Watching thread only.
    Display *m_display = nullptr;
    std::map<int, std::shared_ptr<Watched>> m_watched;
    std::map<Window, long> m_selected;
};

WindowWatch &WindowWatch::instance()
{
    static auto *watch = new WindowWatch;
    return *watch;
}

WindowWatch::WindowWatch() : d(std::make_unique<Private>()) {}

int WindowWatch::add(uintptr_t window, Handler handler)
{
    return d->add(window, std::move(handler));
}

void WindowWatch::remove(int number)
{
    d->remove(number);
}

WindowWatch::Private::Private()
{
    if (pipe2(m_wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        g_log("cammgr", G_LOG_LEVEL_WARNING, "no pipe to wake the window watch");
}

int WindowWatch::Private::add(uintptr_t window, Handler handler)
{
    auto watched = std::make_shared<Watched>();
    watched->window = window;
    watched->handler = std::move(handler);
    std::lock_guard lock(m_mutex);
    m_wanted[++m_lastNumber] = std::move(watched);
    m_changed = true;
    if (!m_thread && !m_ending)
        start();
    wake();
    return m_lastNumber;
}

/// Called with the lock.
void WindowWatch::Private::start()
{
    m_thread = g_thread_try_new("cammgr-windows", &Private::threadMain, this, nullptr);
    static std::once_flag once;
    std::call_once(once, [] { std::atexit(&Private::endAtExit); });
}

/// Xlib frees its locks in an exit handler; the thread must have left Xlib before.
void WindowWatch::Private::endAtExit()
{
    instance().d->end();
}

void WindowWatch::Private::end()
{
    GThread *thread = nullptr;
    {
        std::lock_guard lock(m_mutex);
        m_ending = true;
        thread = std::exchange(m_thread, nullptr);
        wake();
    }
    // Xlib ends the process itself, on this very thread, when the display connection is lost.
    if (thread && thread != g_thread_self())
        g_thread_join(thread);
}

void WindowWatch::Private::remove(int number)
{
    std::shared_ptr<Watched> watched;
    {
        std::lock_guard lock(m_mutex);
        const auto found = m_wanted.find(number);
        if (found == m_wanted.end())
            return;
        watched = std::move(found->second);
        m_wanted.erase(found);
        m_changed = true;
        wake();
    }
    std::lock_guard lock(watched->handlerLock);
    watched->handler = nullptr;
}

void WindowWatch::Private::wake()
{
    const char byte = 0;
    // A full pipe wakes as well.
    [[maybe_unused]] const auto written = write(m_wakePipe[1], &byte, 1);
}

void *WindowWatch::Private::threadMain(void *self)
{
    static_cast<Private *>(self)->watch();
    return nullptr;
}

void WindowWatch::Private::watch()
{
    surviveXErrors();
    m_display = XOpenDisplay(nullptr);
    if (!m_display)
        g_log("cammgr", G_LOG_LEVEL_WARNING, "no display: streams are not drawn");
    while (adopt()) {
        // Asking the server for something can bring events along that poll() does not see.
        while (m_display && XPending(m_display) > 0)
            readEvents();
        pollfd files[] = {{m_wakePipe[0], POLLIN, 0},
                          {m_display ? ConnectionNumber(m_display) : -1, POLLIN, 0}};
        poll(files, 2, -1);
        char bytes[64];
        while (read(m_wakePipe[0], bytes, sizeof bytes) > 0) {
        }
    }
}

/// Brings what is watched in line with what is wanted; false when the watch is over.
bool WindowWatch::Private::adopt()
{
    std::vector<std::shared_ptr<Watched>> fresh;
    {
        std::lock_guard lock(m_mutex);
        if (m_ending)
            return false;
        if (!m_changed)
            return true;
        m_changed = false;
        for (const auto &[number, watched] : m_wanted)
            if (m_watched.count(number) == 0)
                fresh.push_back(watched);
        m_watched = m_wanted;
    }
    if (m_display) {
        for (const auto &watched : fresh) {
            findAncestors(*watched);
            // A number can come back as another window: what was requested of the old one is
            // invalid.
            m_selected.erase(watched->window);
            for (const Window ancestor : watched->ancestors)
                m_selected.erase(ancestor);
        }
        select();
    }
    for (const auto &watched : fresh)
        report(*watched, false);
    return true;
}

void WindowWatch::Private::findAncestors(Watched &watched)
{
    watched.ancestors.clear();
    Window window = watched.window;
    for (;;) {
        Window root = 0;
        Window parent = 0;
        Window *children = nullptr;
        unsigned count = 0;
        if (!XQueryTree(m_display, window, &root, &parent, &children, &count))
            return;
        if (children)
            XFree(children);
        if (parent == 0 || parent == root)
            return;
        watched.ancestors.push_back(parent);
        window = parent;
    }
}

/// Asks for exactly the events that are needed now.
void WindowWatch::Private::select()
{
    std::map<Window, long> wanted;
    for (const auto &[number, watched] : m_watched) {
        wanted[watched->window] |= windowMask;
        for (const Window ancestor : watched->ancestors)
            wanted[ancestor] |= ancestorMask;
    }
    for (const auto &[window, mask] : m_selected)
        if (wanted.count(window) == 0)
            XSelectInput(m_display, window, NoEventMask);
    for (const auto &[window, mask] : wanted) {
        const auto before = m_selected.find(window);
        if (before == m_selected.end() || before->second != mask)
            XSelectInput(m_display, window, mask);
    }
    m_selected = std::move(wanted);
    XFlush(m_display);
}

bool WindowWatch::Private::concerns(const Watched &watched, Window window)
{
    return watched.window == window || std::find(watched.ancestors.begin(), watched.ancestors.end(),
                                                 window) != watched.ancestors.end();
}

void WindowWatch::Private::readEvents()
{
    std::set<std::shared_ptr<Watched>> changed;
    std::set<std::shared_ptr<Watched>> damaged;
    bool moved = false;
    while (XPending(m_display) > 0) {
        XEvent event;
        XNextEvent(m_display, &event);
        for (const auto &[number, watched] : m_watched) {
            if (!concerns(*watched, event.xany.window))
                continue;
            const bool own = watched->window == event.xany.window;
            switch (event.type) {
            case VisibilityNotify:
                if (own)
                    watched->obscured = event.xvisibility.state == VisibilityFullyObscured;
                changed.insert(watched);
                break;
            case Expose:
                if (own)
                    damaged.insert(watched);
                break;
            case ReparentNotify:
                findAncestors(*watched);
                moved = true;
                changed.insert(watched);
                break;
            case ConfigureNotify:
                if (own)
                    changed.insert(watched);
                break;
            case MapNotify:
                // A window that is mapped again reports when it is covered, not when it is free.
                watched->obscured = false;
                changed.insert(watched);
                break;
            default:
                changed.insert(watched);
                break;
            }
        }
    }
    if (moved)
        select();
    for (const auto &watched : damaged)
        report(*watched, true);
    for (const auto &watched : changed)
        if (damaged.count(watched) == 0)
            report(*watched, false);
}

void WindowWatch::Private::report(Watched &watched, bool damaged)
{
    WindowState state;
    XWindowAttributes attributes;
    if (m_display && XGetWindowAttributes(m_display, watched.window, &attributes)) {
        state.visible = attributes.map_state == IsViewable && !watched.obscured;
        state.width = attributes.width;
        state.height = attributes.height;
    }
    if (watched.reported && state == watched.state && !damaged)
        return;
    watched.reported = true;
    watched.state = state;
    std::lock_guard lock(watched.handlerLock);
    if (watched.handler)
        watched.handler(state, damaged && state.visible);
}

} // namespace media
