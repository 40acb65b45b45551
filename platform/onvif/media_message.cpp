#include "platform/onvif/media_message.h"

#include "platform/base/text.h"
#include "platform/onvif/xml_message.h"

#include <algorithm>
#include <iterator>

namespace onvif {

namespace {

constexpr std::size_t maxTokenLength = 256;
constexpr int maxSide = 32'768;
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

} // namespace

std::string buildGetProfiles()
{
    return "<trt:GetProfiles/>";
}

std::string buildGetStreamUri(const std::string &profileToken)
{
    return "<trt:GetStreamUri><trt:StreamSetup><tt:Stream>RTP-Unicast</tt:Stream>"
           "<tt:Transport><tt:Protocol>RTSP</tt:Protocol></tt:Transport></trt:StreamSetup>"
           "<trt:ProfileToken>" +
           base::xmlEscape(profileToken) + "</trt:ProfileToken></trt:GetStreamUri>";
}

std::string buildGetSnapshotUri(const std::string &profileToken)
{
    return "<trt:GetSnapshotUri><trt:ProfileToken>" + base::xmlEscape(profileToken) +
           "</trt:ProfileToken></trt:GetSnapshotUri>";
}

std::string buildSetSynchronizationPoint(const std::string &profileToken)
{
    return "<trt:SetSynchronizationPoint><trt:ProfileToken>" + base::xmlEscape(profileToken) +
           "</trt:ProfileToken></trt:SetSynchronizationPoint>";
}

std::vector<MediaProfile> parseProfiles(const XmlMessage &message)
{
    std::vector<MediaProfile> profiles;
    const pugi::xml_node response = child(message.body(), "GetProfilesResponse");
    for (const pugi::xml_node node : children(response, "Profiles")) {
        const pugi::xml_node encoder = child(node, "VideoEncoderConfiguration");
        const std::string_view token = attribute(node, "token");
        if (textOf(child(encoder, "Encoding")) != "H264" || token.empty() ||
            token.size() > maxTokenLength)
            continue;
        MediaProfile profile;
        profile.token = token;
        profile.name = base::cleanText(textOf(child(node, "Name")), maxTokenLength);
        profile.source = base::cleanText(
            textOf(child(node, {"VideoSourceConfiguration", "SourceToken"})), maxTokenLength);
        profile.width = side(child(encoder, {"Resolution", "Width"}));
        profile.height = side(child(encoder, {"Resolution", "Height"}));
        profiles.push_back(std::move(profile));
        if (profiles.size() == maxProfiles)
            break;
    }
    return profiles;
}

std::string parseStreamUri(const XmlMessage &message)
{
    return std::string(textOf(child(message.body(), {"GetStreamUriResponse", "MediaUri", "Uri"})));
}

std::string parseSnapshotUri(const XmlMessage &message)
{
    return std::string(
        textOf(child(message.body(), {"GetSnapshotUriResponse", "MediaUri", "Uri"})));
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
