#include "camsim/onvif_fault.h"
#include "camsim/onvif_server.h"

namespace camsim {

using soap::add;
using soap::addNamed;

namespace {

void addMulticast(pugi::xml_node parent)
{
    const pugi::xml_node node = add(parent, "tt:Multicast");
    const pugi::xml_node address = add(node, "tt:Address");
    add(address, "tt:Type", "IPv4");
    add(address, "tt:IPv4Address", "0.0.0.0");
    add(node, "tt:Port", "0");
    add(node, "tt:TTL", "1");
    add(node, "tt:AutoStart", "false");
}

void addMediaUri(pugi::xml_node out, const std::string &uri)
{
    const pugi::xml_node media = add(out, "trt:MediaUri");
    add(media, "tt:Uri", uri);
    add(media, "tt:InvalidAfterConnect", "false");
    add(media, "tt:InvalidAfterReboot", "false");
    add(media, "tt:Timeout", "PT0S");
}

const char *profileName(H264Profile profile)
{
    switch (profile) {
    case H264Profile::Main:
        return "Main";
    case H264Profile::High:
        return "High";
    case H264Profile::Baseline:
        break;
    }
    return "Baseline";
}

void addEncoder(pugi::xml_node profile, const std::string &token, const VideoSettings &video)
{
    // Media 1 has no word for H.265: such a profile comes without its encoder.
    if (video.codec == VideoCodec::H265)
        return;
    const pugi::xml_node encoder =
        addNamed(profile, "tt:VideoEncoderConfiguration", token + "_encoder");
    const bool isH264 = video.codec == VideoCodec::H264;
    add(encoder, "tt:Encoding", isH264 ? "H264" : "JPEG");
    const pugi::xml_node size = add(encoder, "tt:Resolution");
    add(size, "tt:Width", std::to_string(video.width));
    add(size, "tt:Height", std::to_string(video.height));
    add(encoder, "tt:Quality", "5");
    const pugi::xml_node rate = add(encoder, "tt:RateControl");
    add(rate, "tt:FrameRateLimit", std::to_string(video.fps));
    add(rate, "tt:EncodingInterval", "1");
    add(rate, "tt:BitrateLimit", std::to_string(video.bitrate / 1000));
    if (isH264) {
        const pugi::xml_node h264 = add(encoder, "tt:H264");
        add(h264, "tt:GovLength", std::to_string(video.keyDistance()));
        add(h264, "tt:H264Profile", profileName(video.profile));
    }
    addMulticast(encoder);
    add(encoder, "tt:SessionTimeout", "PT60S");
}

} // namespace

std::string OnvifServer::Profile::token() const
{
    const std::string name = stream == StreamKind::Main ? "profile_main" : "profile_sub";
    return lens == 1 ? name : name + '_' + std::to_string(lens);
}

std::vector<OnvifServer::Profile> OnvifServer::profiles() const
{
    std::vector<Profile> all;
    for (int lens = 1; lens <= m_options.lenses; ++lens)
        for (const StreamKind stream : {StreamKind::Main, StreamKind::Sub})
            all.push_back({stream, lens});
    return all;
}

OnvifServer::Profile OnvifServer::profileOf(pugi::xml_node in) const
{
    const std::string token = soap::textAt(in, "ProfileToken");
    for (const Profile &profile : profiles())
        if (profile.token() == token)
            return profile;
    throw OnvifFault{"ter:NoProfile", "There is no such profile"};
}

VideoSettings OnvifServer::videoOf(const Profile &profile) const
{
    VideoSettings video = m_camera.video(profile.stream);
    // The picture of the second lens is larger, its sub stream smaller than those of the first.
    if (profile.lens > 1) {
        const bool isMain = profile.stream == StreamKind::Main;
        video.width = isMain ? 2 * video.width : 320;
        video.height = isMain ? 2 * video.height : 180;
    }
    return video;
}

std::string OnvifServer::streamUriOf(const Profile &profile) const
{
    // Only the first lens is served.
    const std::string lens = profile.lens == 1 ? "" : "?lens=" + std::to_string(profile.lens);
    return m_camera.streamUri(profile.stream) + lens;
}

std::string OnvifServer::snapshotUriOf(const Profile &profile) const
{
    return m_camera.serviceUri("snapshot/" + profile.token() + ".jpg");
}

std::optional<StreamKind> OnvifServer::snapshotStream(const std::string &token) const
{
    for (const Profile &profile : profiles())
        if (m_options.snapshots && profile.token() == token)
            return profile.stream;
    return std::nullopt;
}

void OnvifServer::fillProfile(pugi::xml_node node, const Profile &profile) const
{
    const VideoSettings video = videoOf(profile);
    const std::string token = profile.token();
    node.append_attribute("token") = token.c_str();
    node.append_attribute("fixed") = "true";
    add(node, "tt:Name", profile.stream == StreamKind::Main ? "Main stream" : "Sub stream");

    const std::string lens = profile.lens == 1 ? "" : '_' + std::to_string(profile.lens);
    pugi::xml_node source =
        addNamed(node, "tt:VideoSourceConfiguration", "video_source_config" + lens);
    add(source, "tt:SourceToken", "video_source" + lens);
    pugi::xml_node bounds = add(source, "tt:Bounds");
    const VideoSettings full = m_camera.video(StreamKind::Main);
    bounds.append_attribute("x") = 0;
    bounds.append_attribute("y") = 0;
    bounds.append_attribute("width") = full.width;
    bounds.append_attribute("height") = full.height;

    if (m_camera.hasAudio()) {
        const pugi::xml_node sound =
            addNamed(node, "tt:AudioSourceConfiguration", "audio_source_config");
        add(sound, "tt:SourceToken", "audio_source");
    }

    addEncoder(node, token, video);

    if (m_camera.hasAudio()) {
        const pugi::xml_node sound =
            addNamed(node, "tt:AudioEncoderConfiguration", "audio_encoder");
        add(sound, "tt:Encoding", "G711");
        add(sound, "tt:Bitrate", "64");
        add(sound, "tt:SampleRate", "8");
        addMulticast(sound);
        add(sound, "tt:SessionTimeout", "PT60S");
    }
}

void OnvifServer::getProfiles(pugi::xml_node, pugi::xml_node out)
{
    for (const Profile &profile : profiles())
        fillProfile(add(out, "trt:Profiles"), profile);
}

void OnvifServer::getProfile(pugi::xml_node in, pugi::xml_node out)
{
    fillProfile(add(out, "trt:Profile"), profileOf(in));
}

void OnvifServer::getStreamUri(pugi::xml_node in, pugi::xml_node out)
{
    addMediaUri(out, streamUriOf(profileOf(in)));
}

void OnvifServer::getSnapshotUri(pugi::xml_node in, pugi::xml_node out)
{
    addMediaUri(out, snapshotUriOf(profileOf(in)));
}

void OnvifServer::setSynchronizationPoint(pugi::xml_node in, pugi::xml_node)
{
    m_camera.requestKeyFrame(profileOf(in).stream);
    ++m_keyFrameRequests;
}

} // namespace camsim
