#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

/// Waits until a condition holds that nobody signals; false when it does not within the deadline.
inline bool waitUntil(const std::function<bool()> &condition,
                      std::chrono::steady_clock::duration deadline = std::chrono::seconds(30))
{
    std::mutex lock;
    std::condition_variable never;
    std::unique_lock held(lock);
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            return condition();
        never.wait_for(held, std::chrono::milliseconds(10), [] { return false; });
    }
    return true;
}
