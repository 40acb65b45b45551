#include "camsim/ticker.h"

#include <pthread.h>

#include <algorithm>

namespace camsim {

Ticker::Ticker() : m_thread([this] { run(); }) {}

Ticker::~Ticker()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

Ticker::Id Ticker::add(Task task)
{
    const std::lock_guard lock(m_mutex);
    m_entries[m_nextId].task = std::move(task);
    return m_nextId++;
}

void Ticker::wake(Id id)
{
    {
        const std::lock_guard lock(m_mutex);
        const auto entry = m_entries.find(id);
        if (entry == m_entries.end())
            return;
        entry->second.woken = entry->second.running;
        entry->second.due = Clock::now();
    }
    m_changed.notify_all();
}

void Ticker::remove(Id id)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] {
        const auto entry = m_entries.find(id);
        return entry == m_entries.end() || !entry->second.running;
    });
    m_entries.erase(id);
}

void Ticker::run()
{
    pthread_setname_np(pthread_self(), "camsim-ticker");
    std::unique_lock lock(m_mutex);
    while (!m_stop) {
        const auto next =
            std::min_element(m_entries.begin(), m_entries.end(), [](const auto &a, const auto &b) {
                return a.second.due < b.second.due;
            });
        if (next == m_entries.end() || next->second.due == never()) {
            m_changed.wait(lock);
            continue;
        }
        const Time now = Clock::now();
        const Time due = next->second.due; // the entry may go while this thread waits
        if (due > now) {
            m_changed.wait_until(lock, due);
            continue;
        }
        Entry &entry = next->second; // stays where it is: remove() waits for running tasks
        entry.running = true;
        entry.woken = false;
        lock.unlock();
        const Time again = entry.task(now);
        lock.lock();
        entry.running = false;
        entry.due = entry.woken ? Clock::now() : again;
        m_changed.notify_all();
    }
}

} // namespace camsim
