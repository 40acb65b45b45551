#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace camsim {

/// The network thread ("camsim-relay") through which every connection of every camera runs.
class Reactor
{
public:
    using Handler = std::function<void(std::uint32_t events)>; ///< EPOLLIN, EPOLLOUT ...
    using Work = std::function<void()>;

    Reactor();
    ~Reactor();
    Reactor(const Reactor &) = delete;
    Reactor &operator=(const Reactor &) = delete;

    /// Runs the work on the thread, in order. Any thread.
    void post(Work work);
    /// The same, and waits until it is done; at once when called from the thread itself.
    void call(const Work &work);

    // Only on the thread:

    /// Watches a file handle, or changes what it is watched for.
    void watch(int handle, std::uint32_t events, Handler handler);
    void change(int handle, std::uint32_t events);
    void forget(int handle);
    void after(std::chrono::milliseconds delay, Work work);

private:
    using Clock = std::chrono::steady_clock;

    bool isOwnThread() const { return std::this_thread::get_id() == m_thread.get_id(); }
    void run();
    void runPosted();
    int runDueTimers(); ///< milliseconds until the next timer, -1 when there is none

    int m_epoll;
    int m_event;
    std::mutex m_mutex; // protects m_posted and m_stop
    std::vector<Work> m_posted;
    bool m_stop = false;
    std::map<int, Handler> m_handlers; // of the thread, as m_timers
    std::multimap<Clock::time_point, Work> m_timers;
    std::thread m_thread;
};

} // namespace camsim
