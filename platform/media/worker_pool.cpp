#include "platform/media/worker_pool.h"

#include "platform/media/process_limits.h"

#include <gst/gst.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace media {

namespace {

// A worker waits for a camera at most as long as an unanswered TEARDOWN; eight of them stop a
// hundred streams of dead cameras within two seconds.
constexpr int mediaWorkerLimit = 8;
constexpr unsigned fewestDecoders = 2;
constexpr unsigned mostDecoders = 16;
constexpr auto idleTime = std::chrono::seconds(5);

} // namespace

void WorkerPool::run(std::function<void()> job)
{
    std::lock_guard lock(m_mutex);
    m_jobs.push_back(std::move(job));
    if (m_idle < static_cast<int>(m_jobs.size()) && m_threads < m_limit) {
        GThread *thread = g_thread_try_new(m_name, &WorkerPool::threadMain, this, nullptr);
        if (thread) {
            g_thread_unref(thread);
            ++m_threads;
        }
    }
    m_wake.notify_one();
}

void *WorkerPool::threadMain(void *self)
{
    loadMediaFramework();
    static_cast<WorkerPool *>(self)->work();
    return nullptr;
}

void WorkerPool::work()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        ++m_idle;
        const bool found = m_wake.wait_for(lock, idleTime, [this] { return !m_jobs.empty(); });
        --m_idle;
        if (!found) {
            const bool last = --m_threads == 0;
            lock.unlock();
            if (last && m_rested)
                m_rested();
            return;
        }
        auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        lock.unlock();
        job();
        job = nullptr; // what it owns is destroyed outside the lock
        lock.lock();
    }
}

WorkerPool &mediaWorkers()
{
    static auto *pool = new WorkerPool("cammgr-media", mediaWorkerLimit);
    return *pool;
}

WorkerPool &decodeWorkers()
{
    // A grid that was left held most of the memory of the process.
    static auto *pool =
        new WorkerPool("cammgr-decode",
                       static_cast<int>(std::clamp(std::thread::hardware_concurrency(),
                                                   fewestDecoders, mostDecoders)),
                       &releaseFreeMemory);
    return *pool;
}

void loadMediaFramework()
{
    static std::once_flag once;
    std::call_once(once, [] {
        raiseHandleLimit();
        gst_init(nullptr, nullptr);
    });
}

} // namespace media
