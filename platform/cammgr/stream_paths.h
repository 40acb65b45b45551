#pragma once

#include "platform/base/camera_address.h"
#include "platform/onvif/camera_lookup.h"

#include <optional>
#include <string>

namespace cammgr {

/// The two streams of a camera.
enum class StreamPlace
{
    Main,
    Sub
};

/**
 * Chooses the address of a stream. The client requests "/live/0/h264.sdp" (main) or
 * "/live/1/h264.sdp" (sub); a full address given by the user names its stream itself; a camera that
 * knows neither path gives its ONVIF profiles, and one that knows only one of the two paths gets it
 * for both.
 */
class StreamPaths
{
public:
    /// @param fixedPath of a full address; empty for none
    explicit StreamPaths(std::string fixedPath) : m_fixedPath(std::move(fixedPath)) {}

    /// The address of the requested stream, without credentials.
    std::string url(const base::Endpoint &endpoint, const std::string &wantedPath) const;
    /// The ONVIF profile of that stream; empty while unknown.
    std::string profileToken(const std::string &wantedPath) const;

    /// What ONVIF says the camera has. Changes no address before useProfiles().
    void setProfiles(const onvif::CameraStreams &streams) { m_profiles = streams; }
    /// The camera answered 404 for its own paths: take the profiles' addresses from now on.
    void useProfiles() { m_usesProfiles = m_profiles.has_value(); }
    bool usesProfiles() const { return m_usesProfiles; }

    /// The camera answered 404 for what the client requests and reports no profiles.
    /// @return whether there is another address to try
    bool markMissing(const std::string &wantedPath);

    bool hasMain() const { return !m_isMissing[0]; }
    /// Back to the paths that the client requests.
    void reset();

    static std::string path(StreamPlace place);

private:
    static std::optional<StreamPlace> placeOf(const std::string &path);
    const onvif::CameraStream *profileOf(StreamPlace place) const;

    std::string m_fixedPath;
    std::optional<onvif::CameraStreams> m_profiles;
    bool m_usesProfiles = false;
    bool m_isMissing[2] = {false, false}; ///< by place
};

} // namespace cammgr
