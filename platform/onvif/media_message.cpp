#include "platform/onvif/media_message.h"

#include "platform/base/text.h"
#include "platform/onvif/xml_message.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace onvif {

namespace {

constexpr std::size_t maxTokenLength = 256;
constexpr int maxSide = 32'768;
constexpr std::string_view jpeg = "JPEG";
// Smaller pictures are made for telephones and are too coarse for a tile.
constexpr int smallestTileWidth = 320;

long long area(const MediaProfile &profile)
{
    return static_cast<long long>(profile.width) * profile.height;
}

bool isSmaller(const MediaProfile &a, const MediaProfile &b)
{
    return area(a) < area(b);
}

int side(pugi::xml_node node)
{
    return std::clamp(numberOf(node, 0), 0, maxSide);
}

std::string tokenElement(const std::string &profileToken, MediaVersion version)
{
    const std::string name =
        version == MediaVersion::Media1 ? "trt:ProfileToken" : "tr2:ProfileToken";
    return '<' + name + '>' + base::xmlEscape(profileToken) + "</" + name + '>';
}

/// A request about one profile, and nothing else.
std::string requestFor(const char *request, const std::string &profileToken, MediaVersion version)
{
    const std::string name =
        (version == MediaVersion::Media1 ? "trt:" : "tr2:") + std::string(request);
    return '<' + name + '>' + tokenElement(profileToken, version) + "</" + name + '>';
}

/// A profile of either version: in Media 2 the configurations have an element of their own. nullopt
/// when its video is of a kind that is not known, or it has none.
std::optional<MediaProfile> readProfile(pugi::xml_node node)
{
    const pugi::xml_node configurations = child(node, "Configurations");
    const pugi::xml_node encoder = configurations ? child(configurations, "VideoEncoder")
                                                  : child(node, "VideoEncoderConfiguration");
    const pugi::xml_node source = configurations ? child(configurations, "VideoSource")
                                                 : child(node, "VideoSourceConfiguration");
    const std::string_view token = attribute(node, "token");
    const std::string_view encoding = textOf(child(encoder, "Encoding"));
    const bool isKnown = encoding == "H264" || encoding == "H265" || encoding == jpeg;
    if (!isKnown || token.empty() || token.size() > maxTokenLength)
        return std::nullopt;
    MediaProfile profile;
    profile.token = token;
    profile.name = base::cleanText(textOf(child(node, "Name")), maxTokenLength);
    profile.source = base::cleanText(textOf(child(source, "SourceToken")), maxTokenLength);
    profile.width = side(child(encoder, {"Resolution", "Width"}));
    profile.height = side(child(encoder, {"Resolution", "Height"}));
    profile.encoding = encoding;
    return profile;
}

/// The address in an answer of either version.
std::string uriIn(const XmlMessage &message, const char *response)
{
    const pugi::xml_node answer = child(message.body(), response);
    const std::string_view uri = textOf(child(answer, {"MediaUri", "Uri"}));
    return std::string(uri.empty() ? textOf(child(answer, "Uri")) : uri);
}

} // namespace

std::string buildGetProfiles(MediaVersion version)
{
    if (version == MediaVersion::Media1)
        return "<trt:GetProfiles/>";
    // Without types only the names come.
    return "<tr2:GetProfiles><tr2:Type>VideoSource</tr2:Type><tr2:Type>VideoEncoder</tr2:Type>"
           "</tr2:GetProfiles>";
}

std::string buildGetStreamUri(const std::string &profileToken, MediaVersion version)
{
    const std::string token = tokenElement(profileToken, version);
    if (version == MediaVersion::Media2)
        return "<tr2:GetStreamUri><tr2:Protocol>RTSP</tr2:Protocol>" + token +
               "</tr2:GetStreamUri>";
    return "<trt:GetStreamUri><trt:StreamSetup><tt:Stream>RTP-Unicast</tt:Stream>"
           "<tt:Transport><tt:Protocol>RTSP</tt:Protocol></tt:Transport></trt:StreamSetup>" +
           token + "</trt:GetStreamUri>";
}

std::string buildGetSnapshotUri(const std::string &profileToken, MediaVersion version)
{
    return requestFor("GetSnapshotUri", profileToken, version);
}

std::string buildSetSynchronizationPoint(const std::string &profileToken, MediaVersion version)
{
    return requestFor("SetSynchronizationPoint", profileToken, version);
}

std::vector<MediaProfile> parseProfiles(const XmlMessage &message)
{
    std::vector<MediaProfile> profiles;
    const pugi::xml_node response = child(message.body(), "GetProfilesResponse");
    for (const pugi::xml_node node : children(response, "Profiles")) {
        if (std::optional<MediaProfile> profile = readProfile(node))
            profiles.push_back(std::move(*profile));
        if (profiles.size() == maxProfiles)
            break;
    }
    // JPEG costs far more of the network for the same picture.
    const bool hasBetter =
        std::any_of(profiles.begin(), profiles.end(),
                    [](const MediaProfile &profile) { return profile.encoding != jpeg; });
    if (hasBetter)
        std::erase_if(profiles,
                      [](const MediaProfile &profile) { return profile.encoding == jpeg; });
    return profiles;
}

std::string parseStreamUri(const XmlMessage &message)
{
    return uriIn(message, "GetStreamUriResponse");
}

std::string parseSnapshotUri(const XmlMessage &message)
{
    return uriIn(message, "GetSnapshotUriResponse");
}

std::optional<ProfileChoice> chooseProfiles(const std::vector<MediaProfile> &profiles)
{
    if (profiles.empty())
        return std::nullopt;
    std::vector<MediaProfile> ofSource;
    std::copy_if(profiles.begin(), profiles.end(), std::back_inserter(ofSource),
                 [&profiles](const MediaProfile &profile) {
                     return profile.source == profiles.front().source;
                 });
    std::stable_sort(ofSource.begin(), ofSource.end(), isSmaller);
    // The first of the largest, as the device's order has it.
    const auto main =
        std::lower_bound(ofSource.begin(), ofSource.end(), ofSource.back(), isSmaller);
    const auto fills = [](const MediaProfile &profile) {
        return profile.width >= smallestTileWidth;
    };
    auto sub = std::find_if(ofSource.begin(), main, fills);
    if (sub == main && sub != ofSource.begin())
        --sub;
    return ProfileChoice{*main, *sub};
}

} // namespace onvif
