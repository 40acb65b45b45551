#pragma once

#include "platform/base/credentials.h"
#include "platform/base/login_limit.h"
#include "platform/onvif/camera_location.h"
#include "platform/onvif/device_message.h"
#include "platform/onvif/picture_request.h"
#include "platform/onvif/request.h"
#include "platform/onvif/soap_status.h"

#include <glib.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace onvif {

/// Of one camera; null for none.
using LoginLimitPtr = std::shared_ptr<base::LoginLimit>;

/// One stream of a camera.
struct CameraStream
{
    std::string uri;          ///< rtsp:// or rtsps:// at the camera's own host, without credentials
    std::string profileToken; ///< for requestKeyFrame
    int width = 0;            ///< pixels
    int height = 0;
};

/// The largest stream and the smallest that fills a tile, of one lens; the same one twice
/// when there is only one.
struct CameraStreams
{
    CameraStream main;
    CameraStream sub;
};

/// What the stream engine needs of ONVIF: where a camera is, which streams it has, a key frame now.
///
/// Everything is asynchronous on the main context given, which must be the default context
/// (g_main_context_push_thread_default) of the thread that runs it. The object, its requests and
/// its callbacks belong to that thread. Callbacks never run inside the call that starts them. A
/// request that is destroyed is cancelled; before the context is destroyed, run it until nothing is
/// ready, so that what was cancelled comes back to free its memory. Connections and what was
/// learned of a camera (media service, way of signing, clock) are kept between requests. A camera
/// that resolve() found never gets a password in clear; one whose address the user gave does, as
/// SoapClient says.
class CameraLookup
{
public:
    explicit CameraLookup(GMainContext *context);
    ~CameraLookup();
    CameraLookup(const CameraLookup &) = delete;
    CameraLookup &operator=(const CameraLookup &) = delete;

    /// Finds the camera with this UID (as discovery shows it) on the local network; nullopt when
    /// none answered within 3 s, or who did calls itself otherwise when it is asked (without a
    /// login). One that does not know that question is believed.
    [[nodiscard]] RequestPtr resolve(const std::string &uid,
                                     std::function<void(std::optional<CameraLocation>)> done);

    /// Finds the device service of the camera at a host (address or name without port): for up to
    /// 1.5 s searches by multicast and unicast, and asks for the time at the ports where cameras
    /// have it, all at once; the first answer counts. Without any it guesses ONVIF's usual address
    /// on port 80. Sends no login.
    [[nodiscard]] RequestPtr locate(const std::string &host,
                                    std::function<void(CameraLocation)> done);

    /// The streams of the camera whose device service is at xaddr. The streams are filled when
    /// the status is Ok. A camera without a profile that can be played is a Fault.
    [[nodiscard]] RequestPtr streamUris(const std::string &xaddr,
                                        const base::Credentials &credentials,
                                        std::function<void(SoapStatus, CameraStreams)> done,
                                        const LoginLimitPtr &limit = nullptr);

    /// Where the camera whose device service is at xaddr has its web pages (GetNetworkProtocols):
    /// by HTTPS rather than HTTP where xaddr is an https address. nullopt when it does not tell.
    [[nodiscard]] RequestPtr webServer(const std::string &xaddr,
                                       const base::Credentials &credentials,
                                       std::function<void(std::optional<WebServer>)> done,
                                       const LoginLimitPtr &limit = nullptr);

    /// Gets a still picture of a profile, a JPEG file, from the address that the camera reports for
    /// it (GetSnapshotUri). The login is answered at most once there, see PictureRequest.
    [[nodiscard]] RequestPtr snapshot(const std::string &xaddr, const std::string &profileToken,
                                      const base::Credentials &credentials,
                                      std::function<void(PictureStatus, std::string)> done,
                                      const LoginLimitPtr &limit = nullptr);

    /// Asks for a key frame (SetSynchronizationPoint) on a profile.
    [[nodiscard]] RequestPtr requestKeyFrame(const std::string &xaddr,
                                             const std::string &profileToken,
                                             const base::Credentials &credentials,
                                             std::function<void(SoapStatus)> done,
                                             const LoginLimitPtr &limit = nullptr);

private:
    class Private;
    std::shared_ptr<Private> d;
};

} // namespace onvif
