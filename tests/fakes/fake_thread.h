#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace fake {

/// The thread on which a scripted library calls its program back: one job after the other.
/// Starts with the first job. All functions may be called from any thread.
class DeliveryThread
{
public:
    explicit DeliveryThread(std::string name);
    ~DeliveryThread();

    /// Runs job later. owner is only compared.
    void post(const void *owner, std::function<void()> job);
    /// Forgets the owner's jobs that have not begun and waits for the one that runs, unless
    /// called from it.
    void drop(const void *owner);
    /// Waits until all jobs are done. False after the deadline.
    bool waitIdle(int milliseconds);
    /// Drops all jobs and ends the thread; the next job starts a new one.
    void stop();
    bool isCurrent();

private:
    void run();
    bool idle() const { return m_jobs.empty() && !m_running; }

    struct Job
    {
        const void *owner;
        std::function<void()> run;
    };

    const std::string m_name;
    std::mutex m_mutex; ///< protects all below
    std::condition_variable m_changed;
    std::deque<Job> m_jobs;
    const void *m_running = nullptr; ///< owner of the job that runs
    bool m_stop = false;
    std::thread m_thread;
};

} // namespace fake
