#pragma once

#include "camsim/back_channel.h"
#include "camsim/camera_model.h"
#include "camsim/discovery_responder.h"
#include "camsim/http_server.h"
#include "camsim/main_timers.h"
#include "camsim/options.h"
#include "camsim/rtsp_policy.h"
#include "camsim/rtsp_server.h"
#include "camsim/tcp_front.h"
#include "camsim/video_source.h"

#include <memory>
#include <string>
#include <vector>

namespace camsim {

/// What all cameras of the process share. Outlives them.
struct Shared
{
    Ticker &ticker;
    Reactor &reactor;
};

/// One simulated camera. Main thread.
class Camera : public CameraModel
{
public:
    Camera(const Shared &shared, const Options &options, int index);
    ~Camera() override;

    /// Opens its ports. Empty on success, else what is wrong.
    std::string start();
    /// One line of JSON about a started camera.
    std::string describe(int controlPort) const;
    std::string status() const;

    // CameraModel
    const Identity &identity() const override { return m_identity; }
    void setName(const std::string &name) override { m_identity.name = name; }
    void setLocation(const std::string &location) override { m_identity.location = location; }
    const NetworkState &network() const override { return m_network; }
    Change setNetwork(const NetworkState &wanted) override;
    std::string dhcpAddress() const override { return m_options.bind; }
    std::string user() const override { return m_options.user; }
    std::string password() const override { return m_account.password(); }
    std::time_t clock() const override { return std::time(nullptr) + m_clockSkew; }
    void reboot() override;
    VideoSettings video(StreamKind stream) const override;
    bool hasAudio() const override { return m_audio != nullptr; }
    std::string streamUri(StreamKind stream) const override;
    void requestKeyFrame(StreamKind stream) override;
    std::string snapshot(StreamKind stream) const override;
    std::string serviceUri(const std::string &service) const override;

    // What the control connection does to it
    RtspFaults &faults() { return *m_faults; }
    Account &account() { return m_account; }
    CommandForms &forms() { return m_http->forms(); }
    void setPassword(const std::string &password);
    void setClockSkew(int seconds) { m_clockSkew = seconds; }
    void setVideo(bool enabled);
    /// Closes all RTSP connections.
    void drop() { m_rtspFront->drop(); }
    /// Closes both ports for new connections, or opens them again.
    void setListening(bool listening);
    /// Off: no port, no connection, no discovery.
    void setPower(bool on);
    /// Moves at once; false when this machine does not have the address.
    bool moveTo(const std::string &address);
    void setKeyInterval(double seconds);
    void resize(StreamKind stream, int width, int height);

private:
    VideoSource &source(StreamKind stream) const;
    std::unique_ptr<VideoSource> makeVideo(const Shared &shared, const StreamOptions &stream);
    std::vector<TcpFront *> fronts() const;
    bool canTake(const NetworkState &wanted) const;
    bool openPorts(const NetworkState &network);
    bool applyNetwork();
    void goDownFor(double seconds);

    const Options m_options;
    const int m_index;
    Identity m_identity;
    Account m_account;
    NetworkState m_network; ///< as written last
    NetworkState m_active;  ///< where the camera answers
    int m_clockSkew = 0;
    bool m_isRebooting = false;

    std::unique_ptr<VideoSource> m_mainVideo;
    std::unique_ptr<VideoSource> m_subVideo;
    std::unique_ptr<AudioSource> m_audio;
    std::shared_ptr<BackChannel> m_backChannel;
    std::shared_ptr<RtspFaults> m_faults;
    std::unique_ptr<RtspServer> m_rtsp;
    std::unique_ptr<HttpServer> m_http;
    std::unique_ptr<TcpFront> m_rtspFront;
    std::unique_ptr<TcpFront> m_httpFront;
    std::unique_ptr<TcpFront> m_onvifFront; ///< null when ONVIF shares the HTTP port
    DiscoveryResponder m_discovery;
    MainTimers m_timers;
};

} // namespace camsim
