#include "camsim/rtsp_server.h"

#include "camsim/media_lines.h"
#include "camsim/rtsp_client.h"

#include <gst/rtsp-server/rtsp-onvif-media-factory.h>
#include <gst/rtsp-server/rtsp-onvif-media.h>

#include <chrono>

namespace camsim {

namespace {

constexpr const char *role = "viewer";

GstRTSPLowerTrans lowerTransport(Transport transport)
{
    switch (transport) {
    case Transport::Tcp:
        return GST_RTSP_LOWER_TRANS_TCP;
    case Transport::Udp:
        return GST_RTSP_LOWER_TRANS_UDP;
    case Transport::Both:
        break;
    }
    return static_cast<GstRTSPLowerTrans>(GST_RTSP_LOWER_TRANS_TCP | GST_RTSP_LOWER_TRANS_UDP);
}

/// Gives the element of that name to use, when the media has it.
template <typename Use>
void withElement(GstElement *bin, const char *name, Use use)
{
    GstElement *element = gst_bin_get_by_name_recurse_up(GST_BIN(bin), name);
    if (!element)
        return;
    use(element);
    gst_object_unref(element);
}

} // namespace

RtspServer::RtspServer(const Login &login, Transport transport, int sessionTimeout,
                       const StreamSet &streams, const std::string &mainPath,
                       const std::string &subPath)
    : m_server(newRtspServer())
    , m_auth(gst_rtsp_auth_new())
    , m_login(login)
    , m_streams(streams)
    , m_transport(transport)
    , m_sessionTimeout(sessionTimeout)
    , m_main{mainPath, streams.mainVideo, nullptr, this}
    , m_sub{subPath, streams.subVideo, nullptr, this}
{
    gst_rtsp_server_set_address(m_server, "127.0.0.1");
    gst_rtsp_server_set_service(m_server, "0");
    gst_rtsp_auth_set_supported_methods(
        m_auth, static_cast<GstRTSPAuthMethod>(GST_RTSP_AUTH_BASIC | GST_RTSP_AUTH_DIGEST));
    allow(login.password);
    gst_rtsp_server_set_auth(m_server, m_auth);

    g_signal_connect(m_server, "client-connected", G_CALLBACK(onConnected), this);
    setVideo(true);
    m_source = gst_rtsp_server_attach(m_server, nullptr);
    m_port = gst_rtsp_server_get_bound_port(m_server);
}

RtspServer::~RtspServer()
{
    if (m_source != 0)
        g_source_remove(m_source);
    waitForClients();
    g_signal_handlers_disconnect_by_data(m_server, this);
    for (Stream *stream : {&m_main, &m_sub})
        unmount(*stream);
    g_object_unref(m_auth);
    g_object_unref(m_server);
}

void RtspServer::onSession(GstRTSPClient *, GstRTSPSession *session, gpointer self)
{
    const int seconds = static_cast<RtspServer *>(self)->m_sessionTimeout;
    gst_rtsp_session_set_timeout(session, static_cast<guint>(seconds));
}

void RtspServer::onConnected(GstRTSPServer *, GstRTSPClient *client, gpointer data)
{
    auto *self = static_cast<RtspServer *>(data);
    {
        const std::lock_guard lock(self->m_mutex);
        ++self->m_clients;
    }
    g_signal_connect(client, "closed", G_CALLBACK(onClosed), self);
    if (self->m_unknownPathStatus != GST_RTSP_STS_NOT_FOUND)
        g_signal_connect(client, "pre-describe-request", G_CALLBACK(onDescribe), self);
    if (self->m_sessionTimeout > 0)
        g_signal_connect(client, "new-session", G_CALLBACK(onSession), self);
}

GstRTSPStatusCode RtspServer::onDescribe(GstRTSPClient *, GstRTSPContext *context, gpointer data)
{
    const auto *self = static_cast<RtspServer *>(data);
    const std::string path = context->uri->abspath;
    const bool known = path == self->m_main.path || path == self->m_sub.path;
    return known ? GST_RTSP_STS_OK : static_cast<GstRTSPStatusCode>(self->m_unknownPathStatus);
}

void RtspServer::onClosed(GstRTSPClient *, gpointer data)
{
    auto *self = static_cast<RtspServer *>(data);
    const std::lock_guard lock(self->m_mutex);
    --self->m_clients;
    self->m_clientGone.notify_all();
}

void RtspServer::waitForClients()
{
    // Each client ends on its own thread once its connection is closed; ended from here, the
    // framework would use a connection that it has closed.
    std::unique_lock lock(m_mutex);
    m_clientGone.wait_for(lock, std::chrono::seconds(5), [this] { return m_clients == 0; });
}

void RtspServer::allow(const std::string &password)
{
    GstRTSPToken *token =
        gst_rtsp_token_new(GST_RTSP_TOKEN_MEDIA_FACTORY_ROLE, G_TYPE_STRING, role, nullptr);
    gchar *basic = gst_rtsp_auth_make_basic(m_login.user.c_str(), m_login.password.c_str());
    gst_rtsp_auth_remove_basic(m_auth, basic);
    g_free(basic);
    gst_rtsp_auth_remove_digest(m_auth, m_login.user.c_str());

    m_login.password = password;
    basic = gst_rtsp_auth_make_basic(m_login.user.c_str(), password.c_str());
    gst_rtsp_auth_add_basic(m_auth, basic, token);
    g_free(basic);
    gst_rtsp_auth_add_digest(m_auth, m_login.user.c_str(), password.c_str(), token);
    gst_rtsp_token_unref(token);
}

void RtspServer::setPassword(const std::string &password)
{
    allow(password);
}

std::string RtspServer::launchLine(bool video) const
{
    std::string line = "( ";
    if (video)
        line += videoLine(m_streams.videoCodec);
    if (m_streams.audio)
        line += audioLine(m_streams.audioCodec, video ? 1 : 0);
    return line + ")";
}

void RtspServer::unmount(Stream &stream)
{
    if (!stream.factory)
        return;
    g_signal_handlers_disconnect_by_data(stream.factory, &stream);
    g_object_unref(stream.factory);
    stream.factory = nullptr;
}

void RtspServer::mount(Stream &stream, bool video)
{
    unmount(stream);
    GstRTSPMediaFactory *factory = gst_rtsp_onvif_media_factory_new();
    stream.factory = GST_RTSP_MEDIA_FACTORY(g_object_ref(factory));
    gst_rtsp_media_factory_set_launch(factory, launchLine(video).c_str());
    if (m_streams.backChannel) {
        gst_rtsp_onvif_media_factory_set_backchannel_launch(GST_RTSP_ONVIF_MEDIA_FACTORY(factory),
                                                            backChannelLine().c_str());
    }
    gst_rtsp_media_factory_set_media_gtype(factory, GST_TYPE_RTSP_ONVIF_MEDIA);
    gst_rtsp_media_factory_set_shared(factory, TRUE);
    // A media that was only described is put to sleep, so that it starts with a fresh frame.
    gst_rtsp_media_factory_set_suspend_mode(factory, GST_RTSP_SUSPEND_MODE_RESET);
    gst_rtsp_media_factory_set_protocols(factory, lowerTransport(m_transport));
    gst_rtsp_media_factory_add_role(factory, role, GST_RTSP_PERM_MEDIA_FACTORY_ACCESS,
                                    G_TYPE_BOOLEAN, TRUE, GST_RTSP_PERM_MEDIA_FACTORY_CONSTRUCT,
                                    G_TYPE_BOOLEAN, TRUE, nullptr);
    g_signal_connect(factory, "media-configure", G_CALLBACK(configureMedia), &stream);
    GstRTSPMountPoints *mounts = gst_rtsp_server_get_mount_points(m_server);
    gst_rtsp_mount_points_add_factory(mounts, stream.path.c_str(), factory);
    g_object_unref(mounts);
}

void RtspServer::setVideo(bool enabled)
{
    // A new factory, because the old one hands out a media that it still has.
    mount(m_main, enabled);
    mount(m_sub, enabled);
}

void RtspServer::configureMedia(GstRTSPMediaFactory *, GstRTSPMedia *media, gpointer data)
{
    auto *stream = static_cast<Stream *>(data);
    const StreamSet &streams = stream->server->m_streams;
    GstElement *bin = gst_rtsp_media_get_element(media);
    withElement(
        bin, "video", [&](GstElement *appsrc) { stream->video->attach(appsrc); });
    withElement(
        bin, "audio", [&](GstElement *appsrc) { streams.audio->attach(appsrc); });
    withElement(bin, "heard", [&](GstElement *appsink) { streams.backChannel->attach(appsink); });
    gst_object_unref(bin);
}

} // namespace camsim
