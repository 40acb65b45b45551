#include "platform/cammgr/io_thread.h"

#include <pthread.h>

#include <condition_variable>
#include <mutex>

namespace cammgr {
namespace {

GSourceFuncs postedFunctions = {
    .prepare = nullptr,
    .check = nullptr,
    .dispatch = [](GSource *, GSourceFunc callback, gpointer data) { return callback(data); },
    .finalize = nullptr,
    .closure_callback = nullptr,
    .closure_marshal = nullptr};

} // namespace

IoThread &IoThread::instance()
{
    // Never destroyed: a player that is deleted while the process ends still finds its thread.
    static IoThread *const thread = new IoThread;
    return *thread;
}

IoThread::IoThread()
    : m_context(g_main_context_new())
    , m_posted(g_source_new(&postedFunctions, sizeof(GSource)))
{
    g_source_set_callback(
        m_posted,
        [](gpointer self) -> gboolean {
            static_cast<IoThread *>(self)->runPosted();
            return G_SOURCE_CONTINUE;
        },
        this, nullptr);
    g_source_attach(m_posted, m_context);
    m_thread = std::thread([this] { run(); });
}

void IoThread::run()
{
    pthread_setname_np(pthread_self(), "cammgr-io");
    g_main_context_push_thread_default(m_context);
    GMainLoop *loop = g_main_loop_new(m_context, FALSE);
    g_main_loop_run(loop);
}

bool IoThread::isCurrent() const
{
    return g_main_context_is_owner(m_context);
}

void IoThread::post(std::function<void()> work)
{
    const std::lock_guard lock(m_mutex);
    m_work.push_back(std::move(work));
    g_source_set_ready_time(m_posted, 0);
}

void IoThread::runPosted()
{
    std::vector<std::function<void()>> work;
    {
        const std::lock_guard lock(m_mutex);
        g_source_set_ready_time(m_posted, -1);
        work.swap(m_work);
    }
    for (const std::function<void()> &each : work)
        each();
}

void IoThread::postAndWait(const std::function<void()> &work)
{
    if (isCurrent()) {
        work();
        return;
    }
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    post([&] {
        work();
        // Notified under the lock: the waiting stack frame, and the condition with it, is destroyed
        // as soon as the lock is free.
        const std::lock_guard lock(mutex);
        done = true;
        finished.notify_one();
    });
    std::unique_lock lock(mutex);
    finished.wait(lock, [&] { return done; });
}

void Timer::start(std::chrono::milliseconds delay, std::function<void()> work)
{
    stop();
    m_work = std::move(work);
    m_source = g_timeout_source_new(static_cast<guint>(delay.count()));
    g_source_set_callback(m_source, &Timer::fire, this, nullptr);
    g_source_attach(m_source, IoThread::instance().context());
}

void Timer::stop()
{
    if (!m_source)
        return;
    g_source_destroy(m_source);
    g_source_unref(m_source);
    m_source = nullptr;
    m_work = nullptr;
}

gboolean Timer::fire(gpointer self)
{
    // The work may restart the timer or destroy it.
    auto *timer = static_cast<Timer *>(self);
    const std::function<void()> work = std::move(timer->m_work);
    timer->stop();
    work();
    return G_SOURCE_REMOVE;
}

} // namespace cammgr
