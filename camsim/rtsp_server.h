#pragma once

#include "camsim/audio_source.h"
#include "camsim/back_channel.h"
#include "camsim/codecs.h"
#include "camsim/options.h"
#include "camsim/video_source.h"

#include <gst/rtsp-server/rtsp-server.h>

#include <condition_variable>
#include <mutex>
#include <string>

namespace camsim {

/// The two streams of a camera, for the server.
struct StreamSet
{
    VideoSource *mainVideo = nullptr;
    VideoSource *subVideo = nullptr;
    AudioSource *audio = nullptr;       ///< null: a camera without a microphone
    BackChannel *backChannel = nullptr; ///< null: a camera without a loudspeaker
    VideoCodec videoCodec = VideoCodec::H264;
    AudioCodec audioCodec = AudioCodec::Pcmu;
};

/// The RTSP server of one camera, on its own port on loopback. Takes connections on the default
/// main context; all requests of the camera run on one thread of the framework, so that they cannot
/// block each other, and each media has its own threads.
class RtspServer
{
public:
    struct Login
    {
        std::string user;
        std::string password;
    };

    /// The streams must outlive the server. Its clients must be disconnected before it is
    /// destroyed. sessionTimeout: seconds, as announced to clients; 0: the usual minute.
    RtspServer(const Login &login, Transport transport, int sessionTimeout,
               const StreamSet &streams, const std::string &mainPath, const std::string &subPath);
    ~RtspServer();
    RtspServer(const RtspServer &) = delete;
    RtspServer &operator=(const RtspServer &) = delete;

    int port() const { return m_port; }
    /// New requests need the new password; streams that play go on.
    void setPassword(const std::string &password);
    /// How a DESCRIBE of a path that is none of the streams is answered, instead of 404. Before the
    /// first client.
    void setUnknownPathStatus(int status) { m_unknownPathStatus = status; }
    /// Streams that start from now on have no video.
    void setVideo(bool enabled);

private:
    struct Stream
    {
        std::string path;
        VideoSource *video = nullptr;
        GstRTSPMediaFactory *factory = nullptr;
        RtspServer *server = nullptr;
    };

    void allow(const std::string &password);
    void mount(Stream &stream, bool video);
    void unmount(Stream &stream);
    std::string launchLine(bool video) const;
    void waitForClients();
    static void onSession(GstRTSPClient *client, GstRTSPSession *session, gpointer self);
    static void onConnected(GstRTSPServer *server, GstRTSPClient *client, gpointer self);
    static GstRTSPStatusCode onDescribe(GstRTSPClient *client, GstRTSPContext *context,
                                        gpointer self);
    static void onClosed(GstRTSPClient *client, gpointer self);
    static void configureMedia(GstRTSPMediaFactory *factory, GstRTSPMedia *media, gpointer stream);

    GstRTSPServer *m_server;
    GstRTSPAuth *m_auth;
    Login m_login;
    const StreamSet m_streams;
    const Transport m_transport;
    const int m_sessionTimeout;
    int m_unknownPathStatus = GST_RTSP_STS_NOT_FOUND;
    Stream m_main;
    Stream m_sub;
    guint m_source = 0;
    int m_port = 0;
    std::mutex m_mutex; // protects m_clients
    std::condition_variable m_clientGone;
    int m_clients = 0;
};

} // namespace camsim
