#include "platform/base/loop_thread.h"

#include <condition_variable>
#include <utility>

namespace base {

std::unique_ptr<LoopThread> LoopThread::create(const char *name)
{
    std::unique_ptr<LoopThread> thread(new LoopThread);
    thread->m_thread = g_thread_try_new(name, threadMain, thread.get(), nullptr);
    return thread->m_thread ? std::move(thread) : nullptr;
}

LoopThread::LoopThread() : m_context(g_main_context_new()) {}

LoopThread::~LoopThread()
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

void LoopThread::post(Job job)
{
    {
        const std::lock_guard lock(m_mutex);
        m_jobs.push_back(std::move(job));
    }
    g_main_context_wakeup(m_context.get());
}

void LoopThread::postAndWait(const Job &job)
{
    if (isCurrent()) {
        job();
        return;
    }
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

gpointer LoopThread::threadMain(gpointer self)
{
    static_cast<LoopThread *>(self)->run();
    return nullptr;
}

void LoopThread::run()
{
    // The thread owns the context from its first to its last moment, not only within a turn.
    if (!g_main_context_acquire(m_context.get()))
        return;
    const ThreadDefaultContext threadDefault(m_context.get());
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
    g_main_context_release(m_context.get());
}

std::deque<LoopThread::Job> LoopThread::takeJobs()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_jobs, {});
}

} // namespace base
