#include "platform/media/housekeeper.h"

#include <glib.h>

#include <chrono>

namespace media {

namespace {

constexpr auto period = std::chrono::milliseconds(500);

} // namespace

Housekeeper &Housekeeper::instance()
{
    static auto *keeper = new Housekeeper;
    return *keeper;
}

void Housekeeper::add(std::weak_ptr<Charge> charge)
{
    std::lock_guard lock(m_mutex);
    m_charges.push_back(std::move(charge));
    if (!m_running) {
        GThread *thread = g_thread_try_new("cammgr-timer", &Housekeeper::threadMain, this, nullptr);
        m_running = thread != nullptr;
        if (thread)
            g_thread_unref(thread);
    }
    m_wake.notify_one();
}

void *Housekeeper::threadMain(void *self)
{
    static_cast<Housekeeper *>(self)->work();
    return nullptr;
}

void Housekeeper::work()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(
            lock, [this] { return !m_charges.empty(); });
        m_wake.wait_for(lock, period, [] { return false; });
        std::vector<std::shared_ptr<Charge>> present;
        std::vector<std::weak_ptr<Charge>> still;
        for (const auto &charge : m_charges) {
            if (auto alive = charge.lock()) {
                present.push_back(std::move(alive));
                still.push_back(charge);
            }
        }
        m_charges = std::move(still);
        lock.unlock();
        for (const auto &charge : present)
            charge->tick();
        present.clear(); // may be the last owner
        lock.lock();
    }
}

} // namespace media
