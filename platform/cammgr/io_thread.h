#pragma once

#include <glib.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace cammgr {

/**
 * The one thread on which all players wait for the network: probes, look-ups, command requests.
 * It runs its own main context and never blocks; what may wait has its own thread. Started at first
 * use; it lives as long as the process, so that nobody has to stop it.
 */
class IoThread
{
public:
    static IoThread &instance();

    GMainContext *context() const { return m_context; }
    bool isCurrent() const;

    /// Runs work on the thread, in the order of the calls. Any thread.
    void post(std::function<void()> work);

    /// Runs work on the thread and returns when it is done; at once on the thread itself.
    void postAndWait(const std::function<void()> &work);

private:
    IoThread();
    void run();
    void runPosted();

    GMainContext *const m_context;
    GSource *const m_posted; ///< ready while something is posted
    std::mutex m_mutex;
    std::vector<std::function<void()>> m_work; ///< guarded by m_mutex
    std::thread m_thread;
};

/// Calls a function once, some time later, on the I/O thread, where it also must be used and
/// destroyed. Destroying or restarting it cancels what was started before.
class Timer
{
public:
    Timer() = default;
    ~Timer() { stop(); }
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;

    void start(std::chrono::milliseconds delay, std::function<void()> work);
    void stop();
    bool isActive() const { return m_source != nullptr; }

private:
    static gboolean fire(gpointer self);

    GSource *m_source = nullptr;
    std::function<void()> m_work;
};

} // namespace cammgr
