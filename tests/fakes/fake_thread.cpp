#include "tests/fakes/fake_thread.h"

#include <chrono>

#if defined(__linux__)
#include <pthread.h>
#endif

namespace fake {

DeliveryThread::DeliveryThread(std::string name) : m_name(std::move(name)) {}

DeliveryThread::~DeliveryThread()
{
    stop();
}

void DeliveryThread::post(const void *owner, std::function<void()> job)
{
    const std::lock_guard lock(m_mutex);
    m_jobs.push_back({owner, std::move(job)});
    if (!m_thread.joinable()) {
        m_stop = false;
        m_thread = std::thread([this] { run(); });
    }
    m_changed.notify_all();
}

void DeliveryThread::drop(const void *owner)
{
    std::unique_lock lock(m_mutex);
    std::erase_if(m_jobs, [&](const Job &job) { return job.owner == owner; });
    if (std::this_thread::get_id() != m_thread.get_id())
        m_changed.wait(lock, [&] { return m_running != owner; });
    m_changed.notify_all();
}

bool DeliveryThread::waitIdle(int milliseconds)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                              [this] { return idle(); });
}

void DeliveryThread::stop()
{
    std::thread thread;
    {
        const std::lock_guard lock(m_mutex);
        m_jobs.clear();
        m_stop = true;
        m_changed.notify_all();
        thread = std::move(m_thread);
    }
    if (thread.joinable())
        thread.join();
}

bool DeliveryThread::isCurrent()
{
    const std::lock_guard lock(m_mutex);
    return std::this_thread::get_id() == m_thread.get_id();
}

void DeliveryThread::run()
{
#if defined(__linux__)
    pthread_setname_np(pthread_self(), m_name.c_str());
#endif
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_stop || !m_jobs.empty(); });
        if (m_stop)
            return;
        const Job job = std::move(m_jobs.front());
        m_jobs.pop_front();
        m_running = job.owner;
        lock.unlock();
        job.run();
        lock.lock();
        m_running = nullptr;
        m_changed.notify_all();
    }
}

} // namespace fake
