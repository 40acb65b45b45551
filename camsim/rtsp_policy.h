#pragma once

#include "camsim/link.h"
#include "camsim/message_splitter.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <string>

namespace camsim {

/// How the RTSP side of one camera misbehaves. Every field may be set from any thread.
struct RtspFaults
{
    enum class HalfAnswer
    {
        No,
        ThenSilent,
        ThenClose
    };

    std::atomic<bool> frozen{false};  ///< nothing is answered or sent
    std::atomic<bool> garbage{false}; ///< random bytes in place of picture and sound
    std::atomic<bool> hugeDescription{false};
    std::atomic<HalfAnswer> halfAnswer{HalfAnswer::No}; ///< the next answer only
    std::atomic<int> lossPercent{0};
    std::atomic<int> slowMs{0};

    std::atomic<int> watching{0}; ///< connections on which a stream was started
    std::atomic<int> requests{0};
    std::atomic<long> videoFrames{0}; ///< passed on to clients that requested video first
};

/// Relays RTSP and lets the faults of its camera happen.
class RtspPolicy : public LinkPolicy
{
public:
    /// sessionTimeout: a connection without a request for so long is closed; 0: never.
    RtspPolicy(Reactor &reactor, std::shared_ptr<RtspFaults> faults,
               std::chrono::seconds sessionTimeout);
    ~RtspPolicy() override;

    void fromClient(std::string_view bytes, Link &link) override;
    void fromServer(std::string_view bytes, Link &link) override;

private:
    void onRequest(const std::string &message, Link &link);
    void onAnswer(std::string message, Link &link);
    void onPacket(std::string packet, Link &link);
    void setWatching(bool watching);
    void guardSession(Link &link);

    Reactor &m_reactor;
    const std::shared_ptr<RtspFaults> m_faults;
    const std::chrono::seconds m_sessionTimeout;
    Link *m_link = nullptr; ///< whose bytes are being looked at
    MessageSplitter m_fromClient;
    MessageSplitter m_fromServer;
    std::minstd_rand m_random;
    int m_requests = 0;
    bool m_watching = false;
    bool m_silent = false;
};

} // namespace camsim
