#pragma once

#include <gst/gst.h>

namespace cammgr {

/// The RTSP status (RFC 2326 7.1.1) that made "rtspsrc" post an error; 0 when it was none.
int rtspStatusOf(GstMessage *error);

} // namespace cammgr
