#pragma once

#include "platform/onvif/glib_ptr.h"

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace ndcp {

/// The thread of the library, named "ndcp". It starts with the first client of the process and
/// ends with the last one; all network traffic and all callbacks happen on it.
class Worker
{
public:
    using Job = std::function<void()>;

    /// The running worker, or a new one; nullptr when no thread can be made.
    static std::shared_ptr<Worker> acquire();

    ~Worker();
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    /// Runs a job on the thread, after those posted before. From any thread.
    void post(Job job);

    /// The same, and returns when it has run. Not from the worker's own thread.
    void postAndWait(const Job &job);

    /// The context that the thread runs, for what is started in jobs.
    [[nodiscard]] GMainContext *context() const { return m_context.get(); }

private:
    Worker();

    static gpointer threadMain(gpointer self);
    void run();
    [[nodiscard]] std::deque<Job> takeJobs();

    onvif::GMainContextPtr m_context;
    GThread *m_thread = nullptr;
    std::mutex m_mutex; ///< protects m_jobs and m_isEnding
    std::deque<Job> m_jobs;
    bool m_isEnding = false;
};

} // namespace ndcp
