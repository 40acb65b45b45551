#include "platform/ndcp/worker.h"

#include <mutex>

namespace ndcp {

std::shared_ptr<base::LoopThread> acquireWorker()
{
    static std::mutex mutex; // protects running
    static std::weak_ptr<base::LoopThread> running;
    const std::lock_guard lock(mutex);
    std::shared_ptr<base::LoopThread> worker = running.lock();
    if (!worker) {
        worker = base::LoopThread::create("ndcp");
        running = worker;
    }
    return worker;
}

} // namespace ndcp
