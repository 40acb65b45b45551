#include "camsim/rtsp_client.h"

#include <gst/rtsp-server/rtsp-onvif-client.h>
#include <gst/rtsp-server/rtsp-onvif-server.h>

// The names follow the framework's object system.

struct CamsimRtspClient
{
    GstRTSPOnvifClient parent;
};

struct CamsimRtspClientClass
{
    GstRTSPOnvifClientClass parent;
};

struct CamsimRtspServer
{
    GstRTSPOnvifServer parent;
};

struct CamsimRtspServerClass
{
    GstRTSPOnvifServerClass parent;
};

G_DEFINE_TYPE(CamsimRtspClient, camsim_rtsp_client, GST_TYPE_RTSP_ONVIF_CLIENT)
G_DEFINE_TYPE(CamsimRtspServer, camsim_rtsp_server, GST_TYPE_RTSP_ONVIF_SERVER)

namespace {

constexpr const char *keptDescription = "camsim-description";

void freeDescription(gpointer description)
{
    gst_sdp_message_free(static_cast<GstSDPMessage *>(description));
}

GstSDPMessage *copyOf(GstSDPMessage *description)
{
    GstSDPMessage *copy = nullptr;
    gst_sdp_message_copy(description, &copy);
    return copy;
}

GstSDPMessage *createDescription(GstRTSPClient *client, GstRTSPMedia *media)
{
    auto *kept = static_cast<GstSDPMessage *>(g_object_get_data(G_OBJECT(media), keptDescription));
    if (kept)
        return copyOf(kept);
    auto *parent = GST_RTSP_CLIENT_CLASS(camsim_rtsp_client_parent_class);
    GstSDPMessage *description = parent->create_sdp(client, media);
    if (description) {
        g_object_set_data_full(G_OBJECT(media), keptDescription, copyOf(description),
                               freeDescription);
    }
    return description;
}

/// Hands one of the server's parts to a new client.
template <typename Part>
void pass(GstRTSPServer *server, GstRTSPClient *client, Part *(*get)(GstRTSPServer *),
          void (*set)(GstRTSPClient *, Part *))
{
    if (Part *part = get(server)) {
        set(client, part);
        g_object_unref(part);
    }
}

GstRTSPClient *createClient(GstRTSPServer *server)
{
    auto *client = GST_RTSP_CLIENT(g_object_new(camsim_rtsp_client_get_type(), nullptr));
    pass(server, client, gst_rtsp_server_get_session_pool, gst_rtsp_client_set_session_pool);
    pass(server, client, gst_rtsp_server_get_mount_points, gst_rtsp_client_set_mount_points);
    pass(server, client, gst_rtsp_server_get_auth, gst_rtsp_client_set_auth);
    pass(server, client, gst_rtsp_server_get_thread_pool, gst_rtsp_client_set_thread_pool);
    return client;
}

} // namespace

static void camsim_rtsp_client_class_init(CamsimRtspClientClass *type)
{
    GST_RTSP_CLIENT_CLASS(type)->create_sdp = createDescription;
}

static void camsim_rtsp_client_init(CamsimRtspClient *) {}

static void camsim_rtsp_server_class_init(CamsimRtspServerClass *type)
{
    GST_RTSP_SERVER_CLASS(type)->create_client = createClient;
}

static void camsim_rtsp_server_init(CamsimRtspServer *) {}

namespace camsim {

GstRTSPServer *newRtspServer()
{
    return GST_RTSP_SERVER(g_object_new(camsim_rtsp_server_get_type(), nullptr));
}

} // namespace camsim
