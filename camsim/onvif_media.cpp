#include "camsim/onvif_fault.h"
#include "camsim/onvif_server.h"

namespace camsim {

using soap::add;

namespace {

constexpr const char *mainToken = "profile_main";
constexpr const char *subToken = "profile_sub";

const char *tokenOf(StreamKind stream)
{
    return stream == StreamKind::Main ? mainToken : subToken;
}

pugi::xml_node addNamed(pugi::xml_node parent, const char *element, const std::string &token)
{
    pugi::xml_node node = add(parent, element);
    node.append_attribute("token") = token.c_str();
    add(node, "tt:Name", token);
    add(node, "tt:UseCount", "2");
    return node;
}

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

} // namespace

StreamKind OnvifServer::streamOf(pugi::xml_node in) const
{
    const std::string token = soap::textAt(in, "ProfileToken");
    if (token == mainToken)
        return StreamKind::Main;
    if (token == subToken)
        return StreamKind::Sub;
    throw OnvifFault{"ter:NoProfile", "There is no such profile"};
}

void OnvifServer::fillProfile(pugi::xml_node profile, StreamKind stream) const
{
    const VideoSettings video = m_camera.video(stream);
    const std::string token = tokenOf(stream);
    profile.append_attribute("token") = token.c_str();
    profile.append_attribute("fixed") = "true";
    add(profile, "tt:Name", stream == StreamKind::Main ? "Main stream" : "Sub stream");

    pugi::xml_node source = addNamed(profile, "tt:VideoSourceConfiguration", "video_source_config");
    add(source, "tt:SourceToken", "video_source");
    pugi::xml_node bounds = add(source, "tt:Bounds");
    const VideoSettings full = m_camera.video(StreamKind::Main);
    bounds.append_attribute("x") = 0;
    bounds.append_attribute("y") = 0;
    bounds.append_attribute("width") = full.width;
    bounds.append_attribute("height") = full.height;

    if (m_camera.hasAudio()) {
        const pugi::xml_node sound =
            addNamed(profile, "tt:AudioSourceConfiguration", "audio_source_config");
        add(sound, "tt:SourceToken", "audio_source");
    }

    const pugi::xml_node encoder =
        addNamed(profile, "tt:VideoEncoderConfiguration", token + "_encoder");
    add(encoder, "tt:Encoding", "H264");
    const pugi::xml_node size = add(encoder, "tt:Resolution");
    add(size, "tt:Width", std::to_string(video.width));
    add(size, "tt:Height", std::to_string(video.height));
    add(encoder, "tt:Quality", "5");
    const pugi::xml_node rate = add(encoder, "tt:RateControl");
    add(rate, "tt:FrameRateLimit", std::to_string(video.fps));
    add(rate, "tt:EncodingInterval", "1");
    add(rate, "tt:BitrateLimit", std::to_string(video.bitrate / 1000));
    const pugi::xml_node h264 = add(encoder, "tt:H264");
    add(h264, "tt:GovLength", std::to_string(video.keyDistance()));
    add(h264, "tt:H264Profile", "Baseline");
    addMulticast(encoder);
    add(encoder, "tt:SessionTimeout", "PT60S");

    if (m_camera.hasAudio()) {
        const pugi::xml_node sound =
            addNamed(profile, "tt:AudioEncoderConfiguration", "audio_encoder");
        add(sound, "tt:Encoding", "G711");
        add(sound, "tt:Bitrate", "64");
        add(sound, "tt:SampleRate", "8");
        addMulticast(sound);
        add(sound, "tt:SessionTimeout", "PT60S");
    }
}

void OnvifServer::getProfiles(pugi::xml_node, pugi::xml_node out)
{
    for (const StreamKind stream : {StreamKind::Main, StreamKind::Sub})
        fillProfile(add(out, "trt:Profiles"), stream);
}

void OnvifServer::getProfile(pugi::xml_node in, pugi::xml_node out)
{
    fillProfile(add(out, "trt:Profile"), streamOf(in));
}

void OnvifServer::getStreamUri(pugi::xml_node in, pugi::xml_node out)
{
    const pugi::xml_node media = add(out, "trt:MediaUri");
    add(media, "tt:Uri", m_camera.streamUri(streamOf(in)));
    add(media, "tt:InvalidAfterConnect", "false");
    add(media, "tt:InvalidAfterReboot", "false");
    add(media, "tt:Timeout", "PT0S");
}

void OnvifServer::setSynchronizationPoint(pugi::xml_node in, pugi::xml_node)
{
    m_camera.requestKeyFrame(streamOf(in));
    ++m_keyFrameRequests;
}

} // namespace camsim
