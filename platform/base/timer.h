#pragma once

#include "platform/base/glib_ptr.h"

#include <chrono>
#include <functional>
#include <utility>

namespace base {

/// Calls a function once, some time later, on the thread that runs a main context, where the timer
/// also has to be used and destroyed. Destroying, stopping or restarting it cancels what was
/// started before; all three are allowed inside that function.
class Timer
{
public:
    Timer() = default;
    Timer(GMainContext *context, std::chrono::milliseconds delay, std::function<void()> work)
    {
        start(delay, std::move(work), context);
    }
    ~Timer() = default;
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;

    /// context: the thread's default one when null.
    void start(std::chrono::milliseconds delay, std::function<void()> work,
               GMainContext *context = nullptr);
    void stop() { m_source.reset(); }
    [[nodiscard]] bool isActive() const { return m_source != nullptr; }

private:
    static gboolean fire(gpointer self);

    GSourcePtr m_source;
    std::function<void()> m_work;
};

} // namespace base
