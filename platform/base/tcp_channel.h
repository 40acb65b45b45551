#pragma once

#include "platform/base/camera_address.h"

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
    Unreachable, ///< no answer in time, no route, no name, TLS failed
    Closed       ///< it was open and is not any more
};

/**
 * One TCP (or TLS) connection to a camera, used and answered on the I/O thread only. Reads all the
 * time while it is open, so that a connection which the camera drops is noticed at once.
 */
class TcpChannel
{
public:
    /// A handler may close or reopen the channel, or destroy it.
    struct Handlers
    {
        std::function<void()> opened;
        std::function<void(std::string_view)> received;
        std::function<void(ChannelEnd)> ended; ///< last, and at most once for each open()
    };

    TcpChannel() = default;
    ~TcpChannel() { close(); }
    TcpChannel(const TcpChannel &) = delete;
    TcpChannel &operator=(const TcpChannel &) = delete;

    /// Closes what was open and connects. Certificates are not checked: cameras sign their own.
    void open(const Endpoint &endpoint, std::chrono::milliseconds timeLimit, Handlers handlers);
    void send(std::string data);
    /// No handler runs any more. Does nothing when closed.
    void close();
    bool isOpen() const;

private:
    struct Link;
    std::shared_ptr<Link> m_link;
};

} // namespace base
