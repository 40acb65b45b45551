#include "platform/cammgr/stream_description.h"

#include <gst/rtp/gstrtppayloads.h>

namespace cammgr {

namespace {

constexpr int lastStaticPayload = 95;

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

} // namespace cammgr
