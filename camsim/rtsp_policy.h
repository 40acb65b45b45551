#pragma once

#include "camsim/link.h"
#include "camsim/login_gate.h"
#include "camsim/message_splitter.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <random>
#include <string>

namespace camsim {

/// How the RTSP side of one camera misbehaves. Every field may be set from any thread.
struct RtspFaults
{
    enum class Half
    {
        No,
        ThenSilent,
        ThenClose
    };

    std::atomic<bool> frozen{false};  ///< nothing is answered or sent
    std::atomic<bool> garbage{false}; ///< random bytes in place of picture and sound
    std::atomic<bool> hugeDescription{false};
    std::atomic<Half> halfAnswer{Half::No}; ///< the next answer only
    std::atomic<Half> halfPacket{Half::No}; ///< the next interleaved packet only
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
    /// The account outlives it.
    RtspPolicy(Reactor &reactor, std::shared_ptr<RtspFaults> faults, Account &account,
               const RtspOptions &options);
    ~RtspPolicy() override;

    void fromClient(std::string_view bytes, Link &link) override;
    void fromServer(std::string_view bytes, Link &link) override;

private:
    using Clock = std::chrono::steady_clock;

    void onRequest(std::string message, Link &link);
    /// Not relayed.
    void answer(const std::string &request, const std::string &status, const std::string &headers,
                Link &link);
    void onAnswer(std::string message, Link &link);
    void onPacket(std::string packet, Link &link);
    void setWatching(bool watching);
    void guardSession(Link &link);

    Reactor &m_reactor;
    const std::shared_ptr<RtspFaults> m_faults;
    const RtspOptions m_options;
    std::optional<LoginGate> m_gate; ///< unless the server behind looks at the logins
    Link *m_link = nullptr;          ///< whose bytes are being looked at
    MessageSplitter m_fromClient;
    MessageSplitter m_fromServer;
    std::minstd_rand m_random;
    int m_requests = 0;
    Clock::time_point m_firstPacket; ///< from when on packets are sent
    bool m_watching = false;
    bool m_silent = false;
};

} // namespace camsim
