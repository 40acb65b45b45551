#include "platform/ndcp/worker.h"

#include <condition_variable>
#include <utility>

namespace ndcp {

std::shared_ptr<Worker> Worker::acquire()
{
    static std::mutex mutex;
    static std::weak_ptr<Worker> running;
    const std::lock_guard lock(mutex);
    std::shared_ptr<Worker> worker = running.lock();
    if (!worker) {
        worker.reset(new Worker);
        if (!worker->m_thread)
            return nullptr;
        running = worker;
    }
    return worker;
}

Worker::Worker() : m_context(g_main_context_new())
{
    // Only now: the thread uses all members.
    m_thread = g_thread_try_new("ndcp", threadMain, this, nullptr);
}

Worker::~Worker()
{
    if (!m_thread)
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    g_main_context_wakeup(m_context.get());
    g_thread_join(m_thread);
}

void Worker::post(Job job)
{
    {
        const std::lock_guard lock(m_mutex);
        m_jobs.push_back(std::move(job));
    }
    g_main_context_wakeup(m_context.get());
}

void Worker::postAndWait(const Job &job)
{
    std::mutex mutex;
    std::condition_variable finished;
    bool isDone = false;
    post([&] {
        job();
        // Notified under the lock: the waiting thread destroys both as soon as it sees the flag.
        const std::lock_guard lock(mutex);
        isDone = true;
        finished.notify_one();
    });
    std::unique_lock lock(mutex);
    finished.wait(lock, [&] { return isDone; });
}

gpointer Worker::threadMain(gpointer self)
{
    static_cast<Worker *>(self)->run();
    return nullptr;
}

void Worker::run()
{
    const onvif::ThreadDefaultContext threadDefault(m_context.get());
    bool isEnding = false;
    while (!isEnding) {
        g_main_context_iteration(m_context.get(), TRUE);
        for (const Job &job : takeJobs())
            job();
        const std::lock_guard lock(m_mutex);
        isEnding = m_isEnding && m_jobs.empty();
    }
    // What was cancelled still has to come back to free its memory.
    while (g_main_context_iteration(m_context.get(), FALSE)) {
    }
}

std::deque<Worker::Job> Worker::takeJobs()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_jobs, {});
}

} // namespace ndcp
