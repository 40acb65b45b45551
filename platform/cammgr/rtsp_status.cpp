#include "platform/cammgr/rtsp_status.h"

namespace cammgr {

int rtspStatusOf(GstMessage *error)
{
    const GstStructure *details = nullptr;
    gst_message_parse_error_details(error, &details);
    int status = 0;
    guint unsignedStatus = 0;
    if (details && !gst_structure_get_int(details, "rtsp-status-code", &status) &&
        gst_structure_get_uint(details, "rtsp-status-code", &unsignedStatus))
        status = static_cast<int>(unsignedStatus);
    return status;
}

} // namespace cammgr
