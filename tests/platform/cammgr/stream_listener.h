#pragma once

#include "platform/cammgr/live_stream.h"
#include "tests/platform/cammgr/wait_until.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

using namespace std::chrono_literals;

/// Records what a live stream reported, and waits for it with a deadline.
class StreamListener
{
public:
    cammgr::LiveStream::Listener callbacks()
    {
        return {[this] { note([this] { ++m_firstFrames; }); },
                [this](const cammgr::StreamFailure &failure) {
                    note([&] { m_ends.push_back(failure.end); });
                },
                [this] { note([this] { ++m_undecodables; }); },
                [this] { note([this] { ++m_keyFrameWishes; }); }};
    }

    bool waitForFirstFrame(int count = 1)
    {
        return wait([&] { return m_firstFrames >= count; });
    }
    bool waitForEnd(std::chrono::milliseconds deadline = 30s)
    {
        return wait([&] { return !m_ends.empty(); }, deadline);
    }
    bool waitForUndecodable()
    {
        return wait([&] { return m_undecodables > 0; });
    }
    bool waitForKeyFrameWish()
    {
        return wait([&] { return m_keyFrameWishes > 0; });
    }

    int firstFrames() const
    {
        std::lock_guard lock(m_mutex);
        return m_firstFrames;
    }
    int keyFrameWishes() const
    {
        std::lock_guard lock(m_mutex);
        return m_keyFrameWishes;
    }
    std::vector<cammgr::StreamEnd> ends() const
    {
        std::lock_guard lock(m_mutex);
        return m_ends;
    }

private:
    void note(const std::function<void()> &change)
    {
        std::lock_guard lock(m_mutex);
        change();
        m_changed.notify_all();
    }
    bool wait(const std::function<bool()> &condition, std::chrono::milliseconds deadline = 30s)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, deadline, condition);
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_firstFrames = 0;
    int m_keyFrameWishes = 0;
    int m_undecodables = 0;
    std::vector<cammgr::StreamEnd> m_ends;
};
