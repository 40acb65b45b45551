#pragma once

#include <gst/gst.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace camsim {

/// One appsrc of a media that clients watch. The media may come, be suspended and go at any time;
/// a feed only lends the element for the moment of a push. Any thread.
class Feed
{
public:
    enum class State
    {
        Idle,   ///< nobody takes data
        Fresh,  ///< started, has not got anything yet
        Running ///< takes data
    };

    explicit Feed(GstElement *appsrc);
    ~Feed();
    Feed(const Feed &) = delete;
    Feed &operator=(const Feed &) = delete;

    State state() const { return m_phase.load().state; }
    void started();
    /// Pushes a reference to the data, stamped with the time of the push. The feed becomes idle
    /// when its media does not take it.
    void push(GstBuffer *buffer);
    /// The media is destroyed.
    bool isDead() const;
    /// The longest time from one push to the next, without a restart between, since the last call.
    std::chrono::milliseconds takeLongestGap();

    std::size_t position = 0; ///< in a recorded loop; used by the ticker's thread only

private:
    using Clock = std::chrono::steady_clock;
    struct Phase
    {
        State state = State::Idle;
        unsigned starts = 0; ///< so that a restart during a push is told from no restart
    };

    void noteGap(State before);

    mutable GWeakRef m_appsrc;
    std::atomic<Phase> m_phase{Phase{}};
    Clock::time_point m_lastPush; // of the thread that pushes
    std::atomic<Clock::duration> m_longestGap{Clock::duration::zero()};
};

/// All feeds of one stream.
class FeedList
{
public:
    using Feeds = std::vector<std::shared_ptr<Feed>>;
    /// Whether there is a client already; otherwise a new one can be served at once.
    static bool isWatched(const Feeds &feeds);

    /// onStart runs on a streaming thread each time that a media begins to take data; it must stay
    /// callable for as long as the process has media.
    explicit FeedList(std::function<void()> onStart);

    void attach(GstElement *appsrc);
    /// The feeds that take data now.
    Feeds active();
    /// Of all feeds that take data, see Feed::takeLongestGap().
    std::chrono::milliseconds takeLongestGap();

private:
    std::function<void()> m_onStart;
    std::mutex m_mutex; // protects m_feeds
    Feeds m_feeds;
};

} // namespace camsim
