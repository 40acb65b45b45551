#include "platform/cammgr/stream_description.h"

#include "platform/cammgr/rtp_audio.h"
#include "platform/media/gst_ref.h"

#include <gst/rtp/gstrtppayloads.h>

#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace cammgr {

namespace {

constexpr int lastStaticPayload = 95;

void addFormat(OfferedMedia &offered, const GstSDPMedia *media, guint index)
{
    const long payload = strtol(gst_sdp_media_get_format(media, index), nullptr, 10);
    const auto caps =
        media::CapsRef::adopt(gst_sdp_media_get_caps_from_media(media, static_cast<gint>(payload)));
    if (!caps || gst_caps_get_size(caps.get()) == 0)
        return;
    const GstStructure *format = gst_caps_get_structure(caps.get(), 0);
    const char *kind = gst_sdp_media_get_media(media);
    const char *encoding = encodingNameOf(format);
    offered.hasVideo |= strcmp(kind, "video") == 0 && isH264(encoding);
    offered.hasAudio |= strcmp(kind, "audio") == 0 && findRtpAudio(encoding) != nullptr;
}

} // namespace

const char *encodingNameOf(const GstStructure *format)
{
    if (const char *mapped = gst_structure_get_string(format, "encoding-name"))
        return mapped;
    int payload = 0;
    if (!gst_structure_get_int(format, "payload", &payload) || payload < 0 ||
        payload > lastStaticPayload)
        return nullptr;
    const GstRTPPayloadInfo *info = gst_rtp_payload_info_for_pt(static_cast<guint8>(payload));
    return info ? info->encoding_name : nullptr;
}

bool isH264(const char *encoding)
{
    return encoding && strcasecmp(encoding, "H264") == 0;
}

OfferedMedia readOfferedMedia(const GstSDPMessage *description)
{
    OfferedMedia offered;
    for (guint i = 0; i < gst_sdp_message_medias_len(description); ++i) {
        const GstSDPMedia *media = gst_sdp_message_get_media(description, i);
        // On a back channel the camera listens (RFC 4566: the direction is the offerer's view).
        if (!gst_sdp_media_get_media(media) || gst_sdp_media_get_attribute_val(media, "sendonly"))
            continue;
        for (guint j = 0; j < gst_sdp_media_formats_len(media); ++j)
            addFormat(offered, media, j);
    }
    return offered;
}

} // namespace cammgr
