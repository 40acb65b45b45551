#pragma once

#include "platform/base/glib_ptr.h"
#include "platform/rtsp/transport_header.h"

#include <gio/gio.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace rtsp {

/**
 * The two UDP sockets of one medium: RTP on an even port, RTCP on the next (RFC 3550 11). Packets
 * are read many at a time. Only those of the camera's addresses are taken. Loop thread.
 */
class UdpPorts
{
public:
    /// The bytes are valid during the call, which must not destroy this object.
    using Received = std::function<void(bool isRtcp, std::span<const uint8_t> data)>;

    /// Null when the system has no such pair free.
    static std::unique_ptr<UdpPorts> open(GSocketFamily family, Received received);
    ~UdpPorts();
    UdpPorts(const UdpPorts &) = delete;
    UdpPorts &operator=(const UdpPorts &) = delete;

    NumberPair numbers() const { return m_numbers; }

    /// @param camera the address that the camera is reached at
    /// @param source another one that the camera says it sends from; empty for none
    /// @param serverPorts where the camera receives; nullopt when it does not tell
    void setPeer(GInetSocketAddress *camera, const std::string &source,
                 std::optional<NumberPair> serverPorts);
    /// Sends something from both ports, so that whatever translates or guards the addresses on the
    /// way lets the camera's packets pass.
    void punchHoles();
    void sendRtp(std::span<const uint8_t> data);
    void sendRtcp(std::span<const uint8_t> data);

private:
    struct Socket;
    UdpPorts(std::unique_ptr<Socket> rtp, std::unique_ptr<Socket> rtcp, Received received);
    void read(Socket &socket);
    bool isFromCamera(GSocketAddress *sender) const;

    std::unique_ptr<Socket> m_rtp;
    std::unique_ptr<Socket> m_rtcp;
    NumberPair m_numbers;
    Received m_received;
    base::GObjectPtr<GInetAddress> m_camera;
    base::GObjectPtr<GInetAddress> m_source;
};

} // namespace rtsp
