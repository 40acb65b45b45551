#include "camsim/camera.h"

#include "camsim/json.h"
#include "camsim/net.h"
#include "camsim/scene.h"
#include "camsim/timecode.h"

#include <glib.h>

#include <algorithm>
#include <array>

namespace camsim {

namespace {

// Long enough for the answer to the request that caused a move or a reboot.
constexpr std::chrono::milliseconds answerTime{200};

constexpr std::chrono::milliseconds shortSound{40};
constexpr std::chrono::milliseconds longSound{125};

/// Derives a stable UUID (version 5 layout) and a locally administered hardware address.
void deriveIdentity(const std::string &seed, int index, Identity &identity)
{
    const std::string text = seed + "/" + std::to_string(index);
    gchar *digest = g_compute_checksum_for_string(G_CHECKSUM_SHA1, text.c_str(), -1);
    std::string hex(digest);
    g_free(digest);
    hex[12] = '5';
    hex[16] = "89ab"[static_cast<std::size_t>(g_ascii_xdigit_value(hex[16]) & 3)];
    identity.uid = hex.substr(0, 8) + "-" + hex.substr(8, 4) + "-" + hex.substr(12, 4) + "-" +
                   hex.substr(16, 4) + "-" + hex.substr(20, 12);
    identity.serial = hex.substr(32, 8);
    identity.mac = "02";
    for (std::size_t i = 0; i < 5; ++i)
        identity.mac += ":" + hex.substr(i * 2, 2);
}

int portInRow(int base, int index)
{
    return base == 0 ? 0 : base + index;
}

} // namespace

Camera::Camera(const Shared &shared, const Options &options, int index)
    : m_options(options)
    , m_index(index)
    , m_account(options.user, options.password, options.lockAfter)
    , m_faults(std::make_shared<RtspFaults>())
    , m_discovery(*this, options.neighbour)
{
    const auto position = static_cast<std::size_t>(index);
    deriveIdentity(options.seed, index, m_identity);
    if (position < options.uids.size())
        m_identity.uid = options.uids[position];
    m_identity.name = position < options.names.size() ? options.names[position]
                                                      : "Camera " + std::to_string(index + 1);
    m_identity.location = "Room " + std::to_string(index + 1);

    m_mainVideo = makeVideo(shared, options.main);
    m_subVideo = makeVideo(shared, options.sub);
    if (options.audio) {
        // Packets cost more than bytes where there are many cameras.
        m_audio = std::make_unique<AudioSource>(shared.ticker, index,
                                                options.canned ? longSound : shortSound);
    }
    if (options.backChannel)
        m_backChannel = std::make_shared<BackChannel>();
    m_rtsp = std::make_unique<RtspServer>(RtspServer::Login{options.user, options.password},
                                          options.transport, options.rtsp.sessionTimeout,
                                          StreamSet{m_mainVideo.get(), m_subVideo.get(),
                                                    m_audio.get(), m_backChannel.get(),
                                                    options.codec, options.audioCodec},
                                          options.altPaths ? "/cam/main" : "/live/0/h264.sdp",
                                          options.altPaths ? "/cam/sub" : "/live/1/h264.sdp");
    m_rtsp->setUnknownPathStatus(options.unknownPathStatus);
    m_http = std::make_unique<HttpServer>(*this, m_account, options.onvif);

    m_rtspFront = std::make_unique<TcpFront>(
        shared.reactor, m_rtsp->port(),
        [this, &reactor = shared.reactor] {
            return std::make_unique<RtspPolicy>(reactor, m_faults, m_account, m_options.rtsp);
        },
        options.rtsp.nagle ? TcpFront::Segments::Nagle : TcpFront::Segments::AtOnce);
    const auto httpFront = [&](HttpPolicy::Front front) {
        return std::make_unique<TcpFront>(shared.reactor, m_http->port(),
                                          [front, closes = options.onvif.closesAfter401] {
                                              return std::make_unique<HttpPolicy>(front, closes);
                                          });
    };
    const bool hasOnvifPort = options.onvif.port >= 0;
    m_httpFront = httpFront(hasOnvifPort ? HttpPolicy::Front::Web : HttpPolicy::Front::All);
    if (hasOnvifPort)
        m_onvifFront = httpFront(HttpPolicy::Front::Onvif);
}

Camera::~Camera() = default;

std::unique_ptr<VideoSource> Camera::makeVideo(const Shared &shared, const StreamOptions &stream)
{
    const VideoSettings settings{stream.width,      stream.height,         stream.fps,
                                 stream.bitrate,    m_options.keyInterval, m_options.codec,
                                 m_options.profile, m_options.bFrames};
    if (m_options.canned)
        return std::make_unique<CannedVideo>(shared.ticker, settings, m_index);
    return std::make_unique<LiveVideo>(
        shared.ticker, settings,
        PictureSettings{m_index, m_identity.name, m_options.timeCode, m_options.warm});
}

std::string Camera::start()
{
    if (!m_rtspFront->open(m_options.bind, portInRow(m_options.rtspPort, m_index)))
        return "cannot open the RTSP port on " + m_options.bind;
    if (!m_httpFront->open(m_options.bind, portInRow(m_options.httpPort, m_index)))
        return "cannot open the HTTP port on " + m_options.bind;
    if (m_onvifFront &&
        !m_onvifFront->open(m_options.bind, portInRow(m_options.onvif.port, m_index)))
        return "cannot open the ONVIF port on " + m_options.bind;
    if (!m_discovery.open(m_options.bind, portInRow(m_options.discoveryPort, m_index)))
        return "cannot open the discovery port on " + m_options.bind;
    if (m_options.multicast && !m_discovery.joinGroup(m_options.interface))
        return "cannot join the discovery group";
    m_network.address = m_options.bind;
    m_network.gateway = "127.0.0.254";
    m_network.dns = {"127.0.0.53", "127.0.0.54"};
    m_network.httpPort = m_httpFront->port();
    m_network.rtspPort = m_rtspFront->port();
    m_network.hostname = "camera-" + m_identity.serial;
    m_active = m_network;
    m_discovery.sayHello();
    return {};
}

std::string Camera::describe(int controlPort) const
{
    return JsonLine()
        .add("index", m_index)
        .add("name", m_identity.name)
        .add("uid", m_identity.uid)
        .add("address", m_active.address)
        .add("rtsp_port", m_active.rtspPort)
        .add("http_port", m_active.httpPort)
        .add("onvif_port", m_onvifFront ? m_onvifFront->port() : m_active.httpPort)
        .add("discovery", m_options.bind + ":" + std::to_string(m_discovery.port()))
        .add("main", streamUri(StreamKind::Main))
        .add("sub", streamUri(StreamKind::Sub))
        .add("user", m_options.user)
        .add("password", m_account.password())
        .add("mac", m_identity.mac)
        .add("control_port", controlPort)
        .text();
}

std::string Camera::status() const
{
    const BackChannel::Report heard =
        m_backChannel ? m_backChannel->report() : BackChannel::Report{};
    std::string log;
    for (const std::string &command : m_http->forms().log())
        log += (log.empty() ? "" : "\n") + command;
    return JsonLine()
        .add("name", m_identity.name)
        .add("address", m_active.address)
        .add("rtsp_port", m_active.rtspPort)
        .add("http_port", m_active.httpPort)
        .add("rebooting", int{m_isRebooting})
        .add("connections", m_rtspFront->connections())
        .add("watching", m_faults->watching.load())
        .add("encoding", int{m_mainVideo->isFeeding()} + int{m_subVideo->isFeeding()})
        .add("rtsp_requests", m_faults->requests.load())
        .add("video_frames", m_faults->videoFrames.load())
        .add("key_frame_requests", m_http->onvif().keyFrameRequests())
        .add("wrong_logins", m_account.wrongLogins())
        .add("locked", int{m_account.isLocked()})
        .add("snapshots", m_http->snapshots())
        .add("longest_frame_gap_ms",
             std::max(m_mainVideo->takeLongestGap(), m_subVideo->takeLongestGap()).count())
        .add("back_channel_packets", heard.packets)
        .add("back_channel_bytes", heard.bytes)
        .add("back_channel_level", heard.level)
        .add("commands", m_http->forms().log().size())
        .add("command_log", log)
        .text();
}

VideoSource &Camera::source(StreamKind stream) const
{
    return stream == StreamKind::Main ? *m_mainVideo : *m_subVideo;
}

VideoSettings Camera::video(StreamKind stream) const
{
    return source(stream).settings();
}

void Camera::requestKeyFrame(StreamKind stream)
{
    source(stream).forceKeyFrame();
}

std::string Camera::snapshot(StreamKind stream) const
{
    VideoSettings settings = video(stream);
    settings.codec = VideoCodec::Mjpeg;
    std::string picture;
    Encoder encoder(settings, [&picture](GstBuffer *unit, bool) {
        picture.resize(gst_buffer_get_size(unit));
        gst_buffer_extract(unit, 0, picture.data(), picture.size());
    });
    Scene scene(m_index, m_identity.name, settings.width, settings.height, m_options.timeCode);
    encoder.encode([&](const PictureView &view) {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        scene.draw(view, std::chrono::duration<double>(now).count(), std::time(nullptr),
                   timecode::now());
    });
    encoder.finish();
    return picture;
}

std::string Camera::streamUri(StreamKind stream) const
{
    const bool isMain = stream == StreamKind::Main;
    const char *path = m_options.altPaths ? (isMain ? "/cam/main" : "/cam/sub")
                                          : (isMain ? "/live/0/h264.sdp" : "/live/1/h264.sdp");
    return "rtsp://" + m_active.address + ":" + std::to_string(m_active.rtspPort) + path;
}

std::string Camera::serviceUri(const std::string &service) const
{
    const int port = m_onvifFront ? m_onvifFront->port() : m_active.httpPort;
    return "http://" + m_active.address + ":" + std::to_string(port) + "/onvif/" + service;
}

bool Camera::canTake(const NetworkState &wanted) const
{
    const auto isFree = [&wanted](int port) {
        const int handle = net::bindTcp(wanted.address, port);
        if (handle >= 0)
            close(handle);
        return handle >= 0;
    };
    const bool moves = wanted.address != m_active.address;
    return (!moves && wanted.httpPort == m_active.httpPort ? true : isFree(wanted.httpPort)) &&
           (!moves && wanted.rtspPort == m_active.rtspPort ? true : isFree(wanted.rtspPort)) &&
           (!moves || !m_onvifFront || isFree(m_onvifFront->port())) &&
           wanted.httpPort != wanted.rtspPort;
}

CameraModel::Change Camera::setNetwork(const NetworkState &wanted)
{
    if (!canTake(wanted))
        return Change::Refused;
    const bool moves = wanted.address != m_active.address || wanted.httpPort != m_active.httpPort ||
                       wanted.rtspPort != m_active.rtspPort;
    m_network = wanted;
    if (!moves) {
        m_active = wanted;
        return Change::Applied;
    }
    if (m_options.rebootNeeded)
        return Change::AfterReboot;
    if (m_options.moveSeconds > 0)
        goDownFor(m_options.moveSeconds);
    else
        m_timers.after(answerTime, [this] { applyNetwork(); });
    return Change::Applied;
}

std::vector<TcpFront *> Camera::fronts() const
{
    std::vector<TcpFront *> all = {m_rtspFront.get(), m_httpFront.get()};
    if (m_onvifFront)
        all.push_back(m_onvifFront.get());
    return all;
}

bool Camera::openPorts(const NetworkState &network)
{
    return m_rtspFront->open(network.address, network.rtspPort) &&
           m_httpFront->open(network.address, network.httpPort) &&
           (!m_onvifFront || m_onvifFront->open(network.address, m_onvifFront->port()));
}

bool Camera::applyNetwork()
{
    const bool opened = openPorts(m_network);
    if (!opened) {
        // Back to where it was, as a camera does that cannot bring its interface up.
        m_network = m_active;
        openPorts(m_active);
    }
    const bool moved = m_active.address != m_network.address ||
                       m_active.httpPort != m_network.httpPort ||
                       m_active.rtspPort != m_network.rtspPort;
    m_active = m_network;
    if (moved)
        m_discovery.sayHello();
    return opened;
}

bool Camera::moveTo(const std::string &address)
{
    NetworkState wanted = m_network;
    wanted.address = address;
    wanted.dhcp = false;
    if (!canTake(wanted))
        return false;
    m_network = wanted;
    return applyNetwork();
}

void Camera::reboot()
{
    goDownFor(m_options.rebootSeconds);
}

void Camera::goDownFor(double seconds)
{
    if (m_isRebooting)
        return;
    m_isRebooting = true;
    m_timers.after(answerTime, [this] { setPower(false); });
    const auto down = std::chrono::milliseconds(static_cast<int>(seconds * 1000));
    m_timers.after(answerTime + down, [this] {
        m_isRebooting = false;
        applyNetwork();
        setPower(true);
    });
}

void Camera::setPassword(const std::string &password)
{
    m_account.setPassword(password);
    m_rtsp->setPassword(password);
}

void Camera::setVideo(bool enabled)
{
    m_rtsp->setVideo(enabled);
    drop();
}

void Camera::setListening(bool listening)
{
    for (TcpFront *front : fronts())
        if (listening)
            front->listen();
        else
            front->refuse();
}

void Camera::setPower(bool on)
{
    if (!on)
        m_discovery.sayBye();
    m_discovery.setEnabled(on);
    setListening(on);
    if (on)
        m_discovery.sayHello();
    else
        for (TcpFront *front : fronts())
            front->drop();
}

void Camera::setKeyInterval(double seconds)
{
    for (const StreamKind stream : {StreamKind::Main, StreamKind::Sub}) {
        VideoSettings settings = video(stream);
        settings.keyInterval = seconds;
        source(stream).configure(settings);
    }
}

void Camera::resize(StreamKind stream, int width, int height)
{
    VideoSettings settings = video(stream);
    settings.width = width;
    settings.height = height;
    source(stream).configure(settings);
}

} // namespace camsim
