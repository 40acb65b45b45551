#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace media {

/// A few named threads that take jobs in order. Threads are made when all others are busy, up to a
/// limit, and end when they had nothing to do for some seconds.
class WorkerPool
{
public:
    /// name: of its threads, a literal. rested: called on the last thread when it ends; jobs may be
    /// run meanwhile.
    WorkerPool(const char *name, int limit, void (*rested)() = nullptr)
        : m_name(name)
        , m_limit(limit)
        , m_rested(rested)
    {
    }
    /// Any thread; never waits.
    void run(std::function<void()> job);

private:
    static void *threadMain(void *self);
    void work();

    const char *const m_name;
    const int m_limit;
    void (*const m_rested)();
    std::mutex m_mutex; ///< protects everything below
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_jobs;
    int m_threads = 0;
    int m_idle = 0;
};

/// Where pipelines of all streams are made, started and torn down: streaming threads and callers
/// never change a pipeline's state themselves. Never destroyed: a job may run while the process
/// ends.
WorkerPool &mediaWorkers();

/// The decoding threads of all streams, one for each processor. Decoders take turns frame by frame,
/// so that a large stream cannot starve the small ones. Never destroyed.
WorkerPool &decodeWorkers();

/// Loads the media framework once, on the calling thread, and lets the process have the file
/// handles that a hundred streams need. Every pool thread has done so.
void loadMediaFramework();

} // namespace media
