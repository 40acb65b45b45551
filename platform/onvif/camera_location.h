#pragma once

#include "platform/onvif/request.h"

#include <glib.h>

#include <functional>
#include <optional>
#include <string>

namespace onvif {

/// Where a camera is.
struct CameraLocation
{
    std::string address;  ///< host without port: dotted IPv4, or the requested host name
    std::string xaddr;    ///< its ONVIF device service, an http or https address
    bool isGuess = false; ///< nobody has answered: the usual address
};

/// Finds the camera with that UID, see CameraLookup::resolve. The context has to outlive the
/// request.
[[nodiscard]] RequestPtr findByUid(GMainContext *context, const std::string &uid,
                                   std::function<void(std::optional<CameraLocation>)> done);

/// Finds the device service of a host, see CameraLookup::locate.
[[nodiscard]] RequestPtr findAtHost(GMainContext *context, const std::string &host,
                                    std::function<void(CameraLocation)> done);

} // namespace onvif
