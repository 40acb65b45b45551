#pragma once

#include <gst/rtsp-server/rtsp-server.h>

#include <future>
#include <regex>
#include <string>
#include <thread>

/// A camera's RTSP side inside the test: a synthetic picture on its own port and thread.
class RtspTestServer
{
public:
    struct Options
    {
        std::string pipeline; ///< in the notation of gst_parse_launch, payloaders named pay0, pay1
        GstRTSPLowerTrans transports = GST_RTSP_LOWER_TRANS_TCP;
        std::string username = {}; ///< empty: no login
        std::string password = {};
        std::string path = "/live/0/h264.sdp";
        bool liesInRtpInfo = false; ///< says that the first packet has the number 0
        int stuckFrom = 0;          ///< frames from this one on ...
        int stuckTo = 0;            ///< ... and before this one have the time of the first of them
    };

    /// H.264 of the given size with counted pictures, and G.711 if requested.
    static std::string testPicture(int width = 320, int height = 240, int rate = 25,
                                   int keyDistance = 25, bool audio = false,
                                   const std::string &encoderOptions = {})
    {
        std::string text =
            "( videotestsrc is-live=true pattern=ball ! video/x-raw,format=I420,width=" +
            std::to_string(width) + ",height=" + std::to_string(height) +
            ",framerate=" + std::to_string(rate) +
            "/1 ! x264enc tune=zerolatency speed-preset=ultrafast bitrate=512 key-int-max=" +
            std::to_string(keyDistance) + " " + encoderOptions +
            " ! rtph264pay name=pay0 pt=96 config-interval=-1";
        if (audio)
            text += " audiotestsrc is-live=true samplesperbuffer=160 ! audio/x-raw,rate=8000,"
                    "channels=1 ! mulawenc ! rtppcmupay name=pay1 pt=0";
        return text + " )";
    }

    explicit RtspTestServer(Options options) : m_options(std::move(options))
    {
        gst_init(nullptr, nullptr);
        std::promise<int> port;
        auto ready = port.get_future();
        m_thread = std::thread([this, &port] { serve(port); });
        m_port = ready.get();
    }

    ~RtspTestServer()
    {
        g_main_loop_quit(m_loop);
        m_thread.join();
        g_main_loop_unref(m_loop);
        g_main_context_unref(m_context);
    }

    std::string url() const
    {
        return "rtsp://127.0.0.1:" + std::to_string(m_port) + m_options.path;
    }

private:
    void serve(std::promise<int> &port)
    {
        m_context = g_main_context_new();
        g_main_context_push_thread_default(m_context);
        m_loop = g_main_loop_new(m_context, FALSE);
        GstRTSPServer *server = gst_rtsp_server_new();
        gst_rtsp_server_set_address(server, "127.0.0.1");
        gst_rtsp_server_set_service(server, "0");
        GstRTSPMediaFactory *factory = gst_rtsp_media_factory_new();
        gst_rtsp_media_factory_set_launch(factory, m_options.pipeline.c_str());
        gst_rtsp_media_factory_set_shared(factory, FALSE);
        gst_rtsp_media_factory_set_protocols(factory, m_options.transports);
        if (!m_options.username.empty())
            demandLogin(server, factory);
        GstRTSPMountPoints *mounts = gst_rtsp_server_get_mount_points(server);
        gst_rtsp_mount_points_add_factory(mounts, m_options.path.c_str(), factory);
        g_object_unref(mounts);
        if (m_options.liesInRtpInfo)
            g_signal_connect(server, "client-connected", G_CALLBACK(watchMessages), nullptr);
        if (m_options.stuckTo > 0)
            g_signal_connect(factory, "media-configure", G_CALLBACK(watchFrames), this);
        GSource *source = gst_rtsp_server_create_source(server, nullptr, nullptr);
        g_source_attach(source, m_context);
        port.set_value(gst_rtsp_server_get_bound_port(server));
        g_main_loop_run(m_loop);
        g_source_destroy(source);
        g_source_unref(source);
        gst_rtsp_server_client_filter(
            server,
            [](GstRTSPServer *, GstRTSPClient *, gpointer) { return GST_RTSP_FILTER_REMOVE; },
            nullptr);
        g_object_unref(server);
        while (g_main_context_iteration(m_context, FALSE)) {
        }
        g_main_context_pop_thread_default(m_context);
    }

    struct StuckClock
    {
        const Options &options;
        int frames = 0;
        GstClockTime time = 0;
    };

    static void watchFrames(GstRTSPMediaFactory *, GstRTSPMedia *media, gpointer self)
    {
        GstElement *bin = gst_rtsp_media_get_element(media);
        GstElement *payloader = gst_bin_get_by_name(GST_BIN(bin), "pay0");
        GstPad *pad = gst_element_get_static_pad(payloader, "sink");
        gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, holdTime,
                          new StuckClock{static_cast<RtspTestServer *>(self)->m_options},
                          [](gpointer clock) { delete static_cast<StuckClock *>(clock); });
        gst_object_unref(pad);
        gst_object_unref(payloader);
        gst_object_unref(bin);
    }

    static GstPadProbeReturn holdTime(GstPad *, GstPadProbeInfo *info, gpointer data)
    {
        auto *clock = static_cast<StuckClock *>(data);
        GstBuffer *buffer = gst_buffer_make_writable(GST_PAD_PROBE_INFO_BUFFER(info));
        GST_PAD_PROBE_INFO_DATA(info) = buffer;
        const int frame = clock->frames++;
        if (frame == clock->options.stuckFrom)
            clock->time = GST_BUFFER_PTS(buffer);
        if (frame >= clock->options.stuckFrom && frame < clock->options.stuckTo)
            GST_BUFFER_PTS(buffer) = GST_BUFFER_DTS(buffer) = clock->time;
        return GST_PAD_PROBE_OK;
    }

    static void watchMessages(GstRTSPServer *, GstRTSPClient *client, gpointer)
    {
        g_signal_connect(client, "send-message", G_CALLBACK(lie), nullptr);
    }

    static void lie(GstRTSPClient *, GstRTSPSession *, GstRTSPMessage *message, gpointer)
    {
        gchar *value = nullptr;
        if (gst_rtsp_message_get_header(message, GST_RTSP_HDR_RTP_INFO, &value, 0) != GST_RTSP_OK)
            return;
        const std::string info =
            std::regex_replace(std::string(value), std::regex("seq=[0-9]*"), "seq=0");
        gst_rtsp_message_remove_header(message, GST_RTSP_HDR_RTP_INFO, -1);
        gst_rtsp_message_add_header(message, GST_RTSP_HDR_RTP_INFO, info.c_str());
    }

    void demandLogin(GstRTSPServer *server, GstRTSPMediaFactory *factory)
    {
        GstRTSPAuth *auth = gst_rtsp_auth_new();
        gst_rtsp_auth_set_supported_methods(auth, GST_RTSP_AUTH_DIGEST);
        GstRTSPToken *token =
            gst_rtsp_token_new(GST_RTSP_TOKEN_MEDIA_FACTORY_ROLE, G_TYPE_STRING, "user", nullptr);
        gst_rtsp_auth_add_digest(auth, m_options.username.c_str(), m_options.password.c_str(),
                                 token);
        gst_rtsp_token_unref(token);
        gst_rtsp_media_factory_add_role(factory, "user", GST_RTSP_PERM_MEDIA_FACTORY_ACCESS,
                                        G_TYPE_BOOLEAN, TRUE, GST_RTSP_PERM_MEDIA_FACTORY_CONSTRUCT,
                                        G_TYPE_BOOLEAN, TRUE, nullptr);
        gst_rtsp_server_set_auth(server, auth);
        g_object_unref(auth);
    }

    const Options m_options;
    int m_port = 0;
    GMainContext *m_context = nullptr;
    GMainLoop *m_loop = nullptr;
    std::thread m_thread;
};
