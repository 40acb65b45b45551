#pragma once

#include "platform/base/camera_address.h"
#include "platform/base/glib_ptr.h"

#include <gio/gio.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace base {

/// Why a channel ended by itself.
enum class ChannelEnd
{
    Rejected,    ///< the host answered, the port is closed
    Unreachable, ///< no answer in time, no route
    NoSuchHost,  ///< its name has no address
    TlsFailed,   ///< it is reached, but not over TLS
    KeyChanged,  ///< its TLS key is another one than the one that is known, see KnownKeys
    Closed       ///< it was open and is not any more
};

/**
 * One TCP (or TLS) connection to a camera, used and answered on the loop thread
 * only. Reads all the time while it is open, so that a connection which the
 * camera drops is noticed at once, and much at once: what has arrived is handed
 * over in pieces of up to 256 KB. What is sent is never delayed to be sent
 * together, and what was read is acknowledged at once, since a camera that
 * collects its segments waits for that.
 */
class TcpChannel
{
public:
    /// A handler may close or reopen the channel, or destroy it.
    struct Handlers
    {
        std::function<void()> opened;
        /// The bytes are valid during the call.
        std::function<void(std::string_view)> received;
        std::function<void(ChannelEnd)> ended; ///< last, and at most once for each open()
    };

    TcpChannel() = default;
    ~TcpChannel() { close(); }
    TcpChannel(const TcpChannel &) = delete;
    TcpChannel &operator=(const TcpChannel &) = delete;
    TcpChannel(TcpChannel &&other) noexcept = default;
    TcpChannel &operator=(TcpChannel &&other) noexcept;

    /// Closes what was open and connects. Cameras sign their own certificates: no
    /// authority is asked about them, but a camera has to keep its key.
    void open(const Endpoint &endpoint, std::chrono::milliseconds timeLimit, Handlers handlers);
    /// Another owner goes on with an open channel.
    void setHandlers(Handlers handlers);
    /// Never waits; what a camera does not take is kept up to 256 KB, then the
    /// channel ends.
    void send(std::string_view data);
    /// No handler runs any more. Never waits, whatever is under way. Does nothing
    /// when closed.
    void close();
    bool isOpen() const;

    /// The camera's side; null when not open.
    GObjectPtr<GInetSocketAddress> remoteAddress() const;

private:
    struct Link;
    std::shared_ptr<Link> m_link;
};

} // namespace base
