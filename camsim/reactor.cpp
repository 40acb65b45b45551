#include "camsim/reactor.h"

#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <future>

namespace camsim {

Reactor::Reactor()
    : m_epoll(epoll_create1(EPOLL_CLOEXEC))
    , m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = m_event;
    epoll_ctl(m_epoll, EPOLL_CTL_ADD, m_event, &event);
    m_thread = std::thread([this] { run(); });
}

Reactor::~Reactor()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    eventfd_write(m_event, 1);
    m_thread.join();
    close(m_event);
    close(m_epoll);
}

void Reactor::post(Work work)
{
    {
        const std::lock_guard lock(m_mutex);
        m_posted.push_back(std::move(work));
    }
    eventfd_write(m_event, 1);
}

void Reactor::call(const Work &work)
{
    if (isOwnThread()) {
        work();
        return;
    }
    std::promise<void> done;
    post([&] {
        work();
        done.set_value();
    });
    done.get_future().wait();
}

void Reactor::watch(int handle, std::uint32_t events, Handler handler)
{
    m_handlers[handle] = std::move(handler);
    epoll_event event{};
    event.events = events;
    event.data.fd = handle;
    epoll_ctl(m_epoll, EPOLL_CTL_ADD, handle, &event);
}

void Reactor::change(int handle, std::uint32_t events)
{
    epoll_event event{};
    event.events = events;
    event.data.fd = handle;
    epoll_ctl(m_epoll, EPOLL_CTL_MOD, handle, &event);
}

void Reactor::forget(int handle)
{
    epoll_ctl(m_epoll, EPOLL_CTL_DEL, handle, nullptr);
    m_handlers.erase(handle);
}

void Reactor::after(std::chrono::milliseconds delay, Work work)
{
    m_timers.emplace(Clock::now() + delay, std::move(work));
}

void Reactor::runPosted()
{
    std::vector<Work> posted;
    {
        const std::lock_guard lock(m_mutex);
        posted.swap(m_posted);
    }
    for (const Work &work : posted)
        work();
}

int Reactor::runDueTimers()
{
    while (!m_timers.empty()) {
        const auto left = m_timers.begin()->first - Clock::now();
        if (left > Clock::duration::zero()) {
            const auto ms = std::chrono::ceil<std::chrono::milliseconds>(left).count();
            return static_cast<int>(ms);
        }
        const Work work = std::move(m_timers.begin()->second);
        m_timers.erase(m_timers.begin());
        work();
    }
    return -1;
}

void Reactor::run()
{
    pthread_setname_np(pthread_self(), "camsim-relay");
    std::array<epoll_event, 64> events{};
    while (true) {
        const int wait = runDueTimers();
        const int count = epoll_wait(m_epoll, events.data(), static_cast<int>(events.size()), wait);
        for (int i = 0; i < count; ++i) {
            const epoll_event &event = events[static_cast<std::size_t>(i)];
            if (event.data.fd == m_event) {
                eventfd_t value = 0;
                eventfd_read(m_event, &value);
                continue;
            }
            // A handler before this one may have closed the handle.
            const auto found = m_handlers.find(event.data.fd);
            if (found == m_handlers.end())
                continue;
            const Handler handler = found->second;
            handler(event.events);
        }
        runPosted();
        const std::lock_guard lock(m_mutex);
        if (m_stop && m_posted.empty())
            return;
    }
}

} // namespace camsim
