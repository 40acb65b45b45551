#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace media {

/// What can be seen of a native window.
struct WindowState
{
    bool visible = false; ///< a part of it may be on the screen
    int width = 0;        ///< pixels
    int height = 0;

    bool operator==(const WindowState &) const = default;
};

/**
 * Watches the windows of all streams with one thread and one connection to the window system, so
 * that a window that nobody can see costs no decoding. One source per window system.
 */
class WindowWatch
{
public:
    /// Never destroyed.
    static WindowWatch &instance();

    /// damaged: a part has to be painted again. Called on the watching thread, soon after add() for
    /// the first time, then on each change.
    using Handler = std::function<void(const WindowState &state, bool damaged)>;

    /// Any thread; never waits for the window system. Returns a number for remove().
    int add(uintptr_t window, Handler handler);
    /// Any thread but the handler's. The handler does not run any more when it returns.
    void remove(int number);

private:
    WindowWatch();

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace media
