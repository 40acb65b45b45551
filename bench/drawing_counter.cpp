#include "bench/drawing_counter.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xdamage.h>

#include <algorithm>
#include <poll.h>
#include <stdexcept>

namespace bench {

using Clock = std::chrono::steady_clock;

struct DrawingCounter::Private
{
    Display *display = XOpenDisplay(nullptr);
    Damage damage = 0;
    int firstEvent = 0;

    ~Private()
    {
        if (display != nullptr)
            XCloseDisplay(display);
    }
};

namespace {

/// A picture fills its tile except for the bars next to it; a border or a text does not. One that
/// is sent in slices counts once, by the slice in the middle.
bool isPictureOf(const Rectangle &tile, const XRectangle &drawn)
{
    const int x = tile.x + tile.width / 2;
    const int y = tile.y + tile.height / 2;
    return x >= drawn.x && x < drawn.x + drawn.width && y >= drawn.y &&
           y < drawn.y + drawn.height && drawn.width * 2 > tile.width && drawn.width <= tile.width;
}

} // namespace

DrawingCounter::DrawingCounter() : d(std::make_unique<Private>())
{
    int firstError = 0;
    if (d->display == nullptr || !XDamageQueryExtension(d->display, &d->firstEvent, &firstError))
        throw std::runtime_error("no display that tells what is drawn on it");
    // The root window's reports cover all windows on it.
    d->damage =
        XDamageCreate(d->display, DefaultRootWindow(d->display), XDamageReportRawRectangles);
    XSync(d->display, False);
}

DrawingCounter::~DrawingCounter() = default;

void DrawingCounter::setTiles(std::vector<Rectangle> tiles)
{
    m_tiles = std::move(tiles);
    m_drawings.assign(m_tiles.size(), 0);
}

void DrawingCounter::start()
{
    XSync(d->display, True);
    std::fill(m_drawings.begin(), m_drawings.end(), 0);
}

void DrawingCounter::count(std::chrono::milliseconds duration)
{
    start();
    const auto end = Clock::now() + duration;
    while (readFor(std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()))) {
    }
}

bool DrawingCounter::waitForAll(std::chrono::milliseconds deadline)
{
    start();
    const auto end = Clock::now() + deadline;
    while (std::count(m_drawings.begin(), m_drawings.end(), 0) > 0)
        if (!readFor(std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now())))
            return false;
    return true;
}

/// Waits for something to be drawn and counts it; false when the time is over.
bool DrawingCounter::readFor(std::chrono::milliseconds duration)
{
    pollfd server{ConnectionNumber(d->display), POLLIN, 0};
    if (duration.count() <= 0)
        return false;
    if (XPending(d->display) == 0)
        poll(&server, 1, static_cast<int>(duration.count()));
    while (XPending(d->display) > 0) {
        XEvent event;
        XNextEvent(d->display, &event);
        if (event.type != d->firstEvent + XDamageNotify)
            continue;
        const auto &drawn = reinterpret_cast<const XDamageNotifyEvent &>(event).area;
        const auto tile = std::find_if(m_tiles.begin(), m_tiles.end(), [&](const Rectangle &place) {
            return isPictureOf(place, drawn);
        });
        if (tile != m_tiles.end())
            ++m_drawings[static_cast<std::size_t>(tile - m_tiles.begin())];
    }
    return true;
}

} // namespace bench
