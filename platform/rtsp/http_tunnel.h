#pragma once

#include "platform/base/tcp_channel.h"
#include "platform/base/timer.h"
#include "platform/rtsp/message_head.h"
#include "platform/rtsp/rtsp_login.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace rtsp {

/// The way through a web server: the camera's words come as the endless answer to a GET, ours go in
/// base64 as the endless body of a POST.
struct TunnelEnds
{
    base::TcpChannel fromCamera;
    base::TcpChannel toCamera;
    std::string firstBytes; ///< that came from the camera already
};

/**
 * Opens RTSP over HTTP, or HTTPS, as cameras know it ("application/x-rtsp-tunnelled"). Answers the
 * web server's challenge once. Lives on the loop thread.
 */
class HttpTunnel : public std::enable_shared_from_this<HttpTunnel>
{
public:
    struct Handlers
    {
        std::function<void(TunnelEnds)> opened;
        std::function<void(base::ChannelEnd)> ended;
        std::function<void(int status)> refused; ///< by the web server
    };

    /// One of the handlers runs later, once; it may give up the tunnel.
    /// path: with its query.
    HttpTunnel(const base::Endpoint &endpoint, std::string path, RtspLogin login,
               std::shared_ptr<LoginPolicy> policy, std::chrono::milliseconds limit,
               Handlers handlers);
    HttpTunnel(const HttpTunnel &) = delete;
    HttpTunnel &operator=(const HttpTunnel &) = delete;

    /// No handler runs any more.
    void cancel();

    /// What goes through a tunnel in that direction.
    static std::string encoded(std::string_view text);

private:
    void get();
    void received(std::string_view data);
    void answered(size_t headSize);
    bool answersChallenge(const Reply &reply);
    void post();
    void ended(base::ChannelEnd reason);
    void finish(const std::function<void()> &report);
    std::string head(const char *method, const char *more);

    const base::Endpoint m_endpoint;
    const std::string m_path;
    RtspLogin m_login;
    const std::shared_ptr<LoginPolicy> m_policy;
    const std::chrono::milliseconds m_limit;
    const Handlers m_handlers;
    const std::string m_cookie;
    TunnelEnds m_ends;
    base::Timer m_timer;
    bool m_isDone = false;
};

} // namespace rtsp
