#include "bench/gui_watch.h"

#include <QMetaObject>

#include <algorithm>
#include <ctime>

namespace bench {

using namespace std::chrono_literals;

namespace {

constexpr auto period = 2ms;

} // namespace

GuiWatch::GuiWatch() : m_guiThread(pthread_self()), m_thread([this] { watch(); }) {}

GuiWatch::~GuiWatch()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

Block GuiWatch::takeLongest()
{
    const std::lock_guard lock(m_mutex);
    if (m_sent)
        remember(*m_sent, now());
    return std::exchange(m_longest, {});
}

GuiWatch::Moment GuiWatch::now() const
{
    clockid_t clock{};
    timespec spent{};
    if (pthread_getcpuclockid(m_guiThread, &clock) == 0)
        clock_gettime(clock, &spent);
    return {Clock::now(),
            static_cast<double>(spent.tv_sec) + static_cast<double>(spent.tv_nsec) / 1e9};
}

/// Called with the lock.
void GuiWatch::remember(const Moment &sent, const Moment &answered)
{
    const std::chrono::duration<double, std::milli> waited = answered.time - sent.time;
    m_longest.waited = std::max(m_longest.waited, waited.count());
    m_longest.computed = std::max(m_longest.computed, (answered.computed - sent.computed) * 1000);
}

void GuiWatch::watch()
{
    std::unique_lock lock(m_mutex);
    while (!m_ending) {
        m_sent = now();
        lock.unlock();
        QMetaObject::invokeMethod(
            this,
            [this] {
                const std::lock_guard answerLock(m_mutex);
                remember(*m_sent, now());
                m_sent.reset();
                m_changed.notify_all();
            },
            Qt::QueuedConnection);
        lock.lock();
        m_changed.wait(
            lock, [this] { return m_ending || !m_sent; });
        m_changed.wait_for(lock, period, [this] { return m_ending; });
    }
}

} // namespace bench
