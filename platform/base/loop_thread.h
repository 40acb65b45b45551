#pragma once

#include "platform/base/glib_ptr.h"

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace base {

/// A thread that runs a main context of its own, which is its default one: sockets, timers, and
/// jobs that other threads post. It must never wait for anything else.
class LoopThread
{
public:
    using Job = std::function<void()>;

    /// name: at most 15 characters. nullptr when no thread can be made.
    static std::unique_ptr<LoopThread> create(const char *name);

    /// Runs the jobs that were posted, and waits for the thread.
    ~LoopThread();
    LoopThread(const LoopThread &) = delete;
    LoopThread &operator=(const LoopThread &) = delete;

    /// Runs a job on the thread, after those posted before. From any thread.
    void post(Job job);

    /// The same, and returns when it has run; at once on the thread itself.
    void postAndWait(const Job &job);

    [[nodiscard]] bool isCurrent() const { return g_main_context_is_owner(m_context.get()); }

    /// The context that the thread runs, for what is started in jobs.
    [[nodiscard]] GMainContext *context() const { return m_context.get(); }

private:
    LoopThread();

    static gpointer threadMain(gpointer self);
    void run();
    [[nodiscard]] std::deque<Job> takeJobs();

    GMainContextPtr m_context;
    GThread *m_thread = nullptr;
    std::mutex m_mutex; ///< protects m_jobs and m_isEnding
    std::deque<Job> m_jobs;
    bool m_isEnding = false;
};

} // namespace base
