#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace onvif {

class XmlMessage;

/// Maximum of profiles of a device that are read.
inline constexpr std::size_t maxProfiles = 64;

/// The two services of ONVIF that know of media profiles.
enum class MediaVersion
{
    Media1,
    Media2
};

/// A media profile that carries H.264, H.265 or JPEG video.
struct MediaProfile
{
    std::string token;
    std::string name;
    std::string source; ///< the lens or channel; empty when the device does not report it
    int width = 0;      ///< pixels; 0 when the device does not report it
    int height = 0;
    std::string encoding = {}; ///< "H264", "H265" or "JPEG"
};

/// Which two profiles serve as main and sub stream.
struct ProfileChoice
{
    MediaProfile main; ///< the largest picture
    MediaProfile sub;  ///< the smallest that fills a tile; the same when there is only one
};

std::string buildGetProfiles(MediaVersion version = MediaVersion::Media1);
std::string buildGetStreamUri(const std::string &profileToken,
                              MediaVersion version = MediaVersion::Media1);
std::string buildGetSnapshotUri(const std::string &profileToken,
                                MediaVersion version = MediaVersion::Media1);
std::string buildSetSynchronizationPoint(const std::string &profileToken,
                                         MediaVersion version = MediaVersion::Media1);

/// The profiles of a GetProfilesResponse (ONVIF Media 1 or 2), in the device's order; those with
/// JPEG only where there are no others.
std::vector<MediaProfile> parseProfiles(const XmlMessage &message);

/// The address in a GetStreamUriResponse, as the device reports it; empty when there is none.
std::string parseStreamUri(const XmlMessage &message);

/// The address in a GetSnapshotUriResponse, in the same way.
std::string parseSnapshotUri(const XmlMessage &message);

/// Both from the video source of the first profile: other lenses and channels are other pictures.
/// nullopt without profiles. Of equal sizes the first one is taken.
std::optional<ProfileChoice> chooseProfiles(const std::vector<MediaProfile> &profiles);

} // namespace onvif
