#pragma once

#include <glib.h>

#include <chrono>
#include <functional>
#include <set>

namespace camsim {

/// Work for later on the default main context; what is left is dropped with the object.
class MainTimers
{
public:
    MainTimers() = default;
    ~MainTimers()
    {
        for (const guint source : m_sources)
            g_source_remove(source);
    }
    MainTimers(const MainTimers &) = delete;
    MainTimers &operator=(const MainTimers &) = delete;

    void after(std::chrono::milliseconds delay, std::function<void()> work)
    {
        auto *timer = new Timer{this, std::move(work), 0};
        timer->source =
            g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(delay.count()), run, timer,
                               [](gpointer data) { delete static_cast<Timer *>(data); });
        m_sources.insert(timer->source);
    }

private:
    struct Timer
    {
        MainTimers *owner;
        std::function<void()> work;
        guint source;
    };

    static gboolean run(gpointer data)
    {
        auto *timer = static_cast<Timer *>(data);
        timer->owner->m_sources.erase(timer->source);
        timer->work();
        return G_SOURCE_REMOVE;
    }

    std::set<guint> m_sources;
};

} // namespace camsim
