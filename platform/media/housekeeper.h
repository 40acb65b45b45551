#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace media {

/// One thread that looks after all streams twice a second.
class Housekeeper
{
public:
    class Charge
    {
    public:
        virtual ~Charge() = default;
        /// On the housekeeper's thread; must not wait.
        virtual void tick() = 0;
    };

    /// Never destroyed.
    static Housekeeper &instance();
    /// From now on until it is destroyed. Any thread.
    void add(std::weak_ptr<Charge> charge);

private:
    Housekeeper() = default;
    static void *threadMain(void *self);
    void work();

    std::mutex m_mutex; ///< protects everything below
    std::condition_variable m_wake;
    std::vector<std::weak_ptr<Charge>> m_charges;
    bool m_running = false;
};

} // namespace media
