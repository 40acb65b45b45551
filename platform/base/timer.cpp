#include "platform/base/timer.h"

namespace base {

void Timer::start(std::chrono::milliseconds delay, std::function<void()> work,
                  GMainContext *context)
{
    m_work = std::move(work);
    m_source.reset(g_timeout_source_new(static_cast<guint>(delay.count())));
    g_source_set_callback(m_source.get(), &Timer::fire, this, nullptr);
    const GMainContextPtr threadDefault(context ? nullptr : g_main_context_ref_thread_default());
    g_source_attach(m_source.get(), context ? context : threadDefault.get());
}

gboolean Timer::fire(gpointer self)
{
    // The work may restart the timer or destroy it.
    auto *timer = static_cast<Timer *>(self);
    const std::function<void()> work = std::move(timer->m_work);
    timer->stop();
    work();
    return G_SOURCE_REMOVE;
}

} // namespace base
