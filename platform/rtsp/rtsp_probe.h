#pragma once

#include "platform/base/camera_address.h"
#include "platform/base/tcp_channel.h"
#include "platform/base/timer.h"
#include "platform/rtsp/open_session.h"
#include "platform/rtsp/reply_reader.h"
#include "platform/rtsp/rtsp_login.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace rtsp {

/// What a probe of a camera found.
enum class ProbeOutcome
{
    Answered,
    LoginRefused, ///< the user name or password is wrong
    KeyChanged,   ///< its TLS key is another one than before (base::KnownKeys)
    NotFound,     ///< the camera does not know the stream's path
    Unusable,     ///< an answer, but none that a stream could come from
    Rejected,     ///< the host answered, the port is closed
    Silent,       ///< no answer in time, or no way to the camera
    NoSuchHost,   ///< the name of the host has no address
    TlsFailed     ///< the host answered, but not over TLS
};

/// Whether no connection to the camera could be made.
[[nodiscard]] inline bool isNobodyThere(ProbeOutcome outcome)
{
    return outcome == ProbeOutcome::Silent || outcome == ProbeOutcome::Rejected ||
           outcome == ProbeOutcome::NoSuchHost;
}

/// The parameters of a probe.
struct ProbeTarget
{
    base::Endpoint endpoint;
    std::string url; ///< of the stream, without credentials
    std::string username;
    std::string password;
    std::shared_ptr<LoginPolicy> policy = std::make_shared<LoginPolicy>();
};

/**
 * Asks a camera whether it is there and accepts the login: one RTSP DESCRIBE (many cameras answer
 * OPTIONS without looking at the login). The connection and the login's challenge are kept for the
 * next probe. Lives on the I/O thread. A probe ends within 9 s, whatever the camera does.
 */
class RtspProbe
{
public:
    using Done = std::function<void(ProbeOutcome)>;

    /// Starts a probe; one that is under way is cancelled. done runs later, once.
    void start(const ProbeTarget &target, Done done);
    /// The probe's done never runs. The connection, whose answer is still out, is closed.
    void cancel();
    /// The RTSP status of the last answer; 0 when the last probe had none that could be read.
    int status() const { return m_status; }
    /// Whether the last request carried a login.
    bool usedLogin() const { return m_login.isInUse(); }
    /// Whether the camera took the connection of the last probe, even if it never said a word.
    bool wasConnected() const { return m_wasConnected; }
    /// Gives up the idle connection, for cameras that allow few.
    void disconnect();
    /// Hands over the idle connection with the description that it has brought, so that a stream
    /// can go on from there; the next probe connects anew. nullopt while there is none, or when it
    /// is of another stream.
    std::optional<OpenSession> takeSession(const std::string &url);

private:
    void connect();
    void describe();
    void received(std::string_view data);
    void answered(const Reply &reply);
    bool answersChallenge(const Reply &reply);
    void ended(base::ChannelEnd reason);
    void finish(ProbeOutcome outcome);

    ProbeTarget m_target;
    RtspLogin m_login;
    base::TcpChannel m_channel;
    ReplyReader m_reader{ReplyReader::Protocol::Rtsp};
    base::Timer m_limit;
    Done m_done;
    Reply m_description; ///< the last answer, of status 200, over the open connection
    unsigned m_sequence = 0;
    int m_status = 0;
    bool m_challenged = false; ///< the first 401 is the challenge, the next one the refusal
    bool m_wasConnected = false;
    bool m_connectionUsed = false; ///< has carried a reply: may have been dropped since
};

} // namespace rtsp
