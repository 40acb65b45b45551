#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

namespace camsim {

/// The clock of all cameras: one thread ("camsim-ticker") that runs every task at its time, so
/// that a hundred streams do not cost a hundred threads.
class Ticker
{
public:
    using Clock = std::chrono::steady_clock;
    using Time = Clock::time_point;
    using Id = int;
    /// Runs on the ticker's thread; returns the time of its next run, or never().
    using Task = std::function<Time(Time now)>;

    Ticker();
    ~Ticker();
    Ticker(const Ticker &) = delete;
    Ticker &operator=(const Ticker &) = delete;

    static constexpr Time never() { return Time::max(); }

    /// Adds a task that sleeps until it is woken.
    Id add(Task task);
    /// Runs the task as soon as possible. Any thread.
    void wake(Id id);
    /// Takes the task out; it does not run any more when this returns. Not from a task.
    void remove(Id id);

private:
    struct Entry
    {
        Task task;
        Time due = never();
        bool running = false;
        bool woken = false; ///< requested again while it was running
    };

    void run();

    std::mutex m_mutex; // protects everything below but the thread
    std::condition_variable m_changed;
    std::map<Id, Entry> m_entries;
    Id m_nextId = 1;
    bool m_stop = false;
    std::thread m_thread;
};

} // namespace camsim
