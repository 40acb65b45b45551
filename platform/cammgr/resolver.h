#pragma once

#include "platform/base/camera_address.h"
#include "platform/base/credentials.h"
#include "platform/onvif/camera_lookup.h"

#include <functional>
#include <string>
#include <vector>

namespace cammgr {

/**
 * Knows where one camera is and what ONVIF says about it. A UID is looked up on the local network,
 * and again after lost(). Answers are kept. Lives on the I/O thread; every answer may come inside
 * the call, or later; destroying the resolver drops what is outstanding.
 */
class Resolver
{
public:
    Resolver(onvif::CameraLookup &lookup, base::CameraAddress address,
             base::Credentials credentials, onvif::LoginLimitPtr limit = nullptr);

    /// Answers whether endpoint() is worth a try.
    void find(std::function<void(bool)> done);
    /// The RTSP service; port 0 before it was found.
    const base::Endpoint &endpoint() const { return m_endpoint; }
    /// Whether the device there only claims the UID, on the local network, where anybody can.
    bool isFoundByUid() const { return m_isFoundByUid; }
    /// The camera does not answer there any more.
    void lost();

    /// Answers the camera's H.264 streams, or null when it does not report them.
    void findStreams(std::function<void(const onvif::CameraStreams *)> done);
    /// Where the ONVIF service was only a guess, the next one who needs it looks for it again.
    void locateAgain();
    /// The next findStreams() queries the camera again.
    void forgetStreams() { m_streams.reset(); }

    /// Answers the server of the camera's web pages, which takes command requests too: where its
    /// network protocols say, else port 80. Port 0 when the camera is not found.
    void findWebServer(std::function<void(const base::Endpoint &)> done);

    /// What findStreams() has found; null before.
    const onvif::CameraStreams *knownStreams() const { return m_streams ? &*m_streams : nullptr; }

    bool isFindingStreams() const { return !m_streamWaiters.empty(); }

    /// Gets a still picture of a profile as a JPEG file; nothing is asked while the camera's ONVIF
    /// address is not known.
    void fetchSnapshot(const std::string &profileToken,
                       std::function<void(onvif::PictureStatus, std::string)> done);
    void cancelSnapshot() { m_snapshotRequest.reset(); }

    /// Asks for a key frame now; does nothing while the camera's ONVIF address is not known.
    void requestKeyFrame(const std::string &profileToken);

    /// Whether a service of the camera has shown another TLS key than before.
    bool hasChangedKey() const;
    /// Trusts the keys of the camera's services that were refused. See base::KnownKeys.
    void trustKey();

    /// Called when a camera was found at another address than before. May be empty.
    std::function<void()> onMoved;

private:
    std::vector<std::string> hosts() const;
    void lookUp();
    void located(const onvif::CameraLocation &location);
    void finishFind(bool found);
    void locate(std::function<void()> then);
    void askStreams();
    void askWebServer();
    bool isThisCamera(const onvif::CameraStreams &streams) const;

    onvif::CameraLookup &m_lookup;
    const base::CameraAddress m_address;
    const base::Credentials m_credentials;
    const onvif::LoginLimitPtr m_limit;

    base::Endpoint m_endpoint;
    bool m_isFoundByUid = false;
    bool m_isFresh = false; ///< endpoint() holds as far as we know
    std::string m_xaddr;    ///< ONVIF device service; empty while unknown
    bool m_isGuess = false; ///< nobody has answered there yet
    std::optional<onvif::CameraStreams> m_streams;

    std::vector<std::function<void(bool)>> m_findWaiters;
    std::vector<std::function<void(const onvif::CameraStreams *)>> m_streamWaiters;
    std::vector<std::function<void()>> m_locateWaiters;
    std::vector<std::function<void(const base::Endpoint &)>> m_webServerWaiters;
    onvif::RequestPtr m_findRequest;
    onvif::RequestPtr m_locateRequest;
    onvif::RequestPtr m_streamRequest;
    onvif::RequestPtr m_webServerRequest;
    onvif::RequestPtr m_keyFrameRequest;
    onvif::RequestPtr m_snapshotRequest;
};

} // namespace cammgr
