#pragma once

#include "platform/cammgr/cammgr.h"

#include <atomic>
#include <memory>
#include <string>

namespace bench {

/// One session of the stream engine, used through the C interface as the client uses it.
class EngineSession
{
public:
    EngineSession(const std::string &host, const std::string &user, const std::string &password);

    /// Asks for a probe; the answer comes later.
    void probe();
    bool isProbing() const { return m_probe == Probe::Waiting; }
    bool isConnected() const { return m_probe == Probe::Answered; }

    void setUp(const std::string &path, unsigned long window);
    /// Does nothing while the stream plays or is being started.
    void play();
    /// When it returns, nothing is drawn any more.
    void stop();

private:
    enum class Probe
    {
        None,
        Waiting,
        Answered,
        Failed
    };
    static void onMessage(int message, int, void *self, char **);

    struct Deleter
    {
        void operator()(RtspPlayer *player) const { RtspPlayer_DeleteSync(player); }
    };

    std::atomic<Probe> m_probe = Probe::None;
    std::unique_ptr<RtspPlayer, Deleter> m_player; ///< destroyed first: no message comes after it
};

} // namespace bench
