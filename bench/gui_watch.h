#pragma once

#include <QObject>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <pthread.h>
#include <thread>

namespace bench {

/// How long the GUI thread let an event wait, and how long it computed meanwhile; in milliseconds.
/// On a machine with other work the first is longer than the program's own doing.
struct Block
{
    double waited = 0;
    double computed = 0;
};

/// Sends the GUI thread an event every few milliseconds, from its own thread, and remembers the
/// longest that one had to wait. Created and queried on the GUI thread.
class GuiWatch : public QObject
{
    Q_OBJECT

public:
    GuiWatch();
    ~GuiWatch() override;

    /// The longest block since the last call, including one that still lasts.
    Block takeLongest();

private:
    using Clock = std::chrono::steady_clock;
    struct Moment
    {
        Clock::time_point time;
        double computed = 0; ///< seconds of the GUI thread
    };

    void watch();
    Moment now() const;
    void remember(const Moment &sent, const Moment &answered);

    pthread_t m_guiThread;
    std::mutex m_mutex; ///< protects the four below
    std::condition_variable m_changed;
    std::optional<Moment> m_sent; ///< an event that waits
    Block m_longest;
    bool m_ending = false;
    std::thread m_thread;
};

} // namespace bench
