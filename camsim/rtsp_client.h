#pragma once

#include <gst/rtsp-server/rtsp-server.h>

namespace camsim {

/// An RTSP server with the ONVIF back channel, whose clients may describe a stream any number of
/// times: the server of the framework cannot describe a media again once it was put to sleep after
/// the first time, so the description is kept with the media.
GstRTSPServer *newRtspServer();

} // namespace camsim
