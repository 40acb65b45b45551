#include "camsim/onvif_fault.h"
#include "camsim/onvif_server.h"

namespace camsim {

using soap::add;
using soap::addNamed;

namespace {

/// Which configurations the client wants; none when it names none (Media 2, 5.2.2).
bool wants(pugi::xml_node in, std::string_view type)
{
    for (const pugi::xml_node &node : in.children()) {
        const std::string_view wanted = node.text().get();
        if (soap::localName(node) == "Type" && (wanted == "All" || wanted == type))
            return true;
    }
    return false;
}

const char *encodingName(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::H265:
        return "H265";
    case VideoCodec::Mjpeg:
        return "JPEG";
    case VideoCodec::H264:
        break;
    }
    return "H264";
}

void addEncoder(pugi::xml_node configurations, const std::string &token, const VideoSettings &video)
{
    pugi::xml_node encoder = addNamed(configurations, "tr2:VideoEncoder", token + "_encoder");
    if (video.codec != VideoCodec::Mjpeg) {
        encoder.append_attribute("GovLength") = video.keyDistance();
        encoder.append_attribute("Profile") = "Main";
    }
    add(encoder, "tt:Encoding", encodingName(video.codec));
    const pugi::xml_node size = add(encoder, "tt:Resolution");
    add(size, "tt:Width", std::to_string(video.width));
    add(size, "tt:Height", std::to_string(video.height));
    pugi::xml_node rate = add(encoder, "tt:RateControl");
    rate.append_attribute("ConstantBitRate") = "false";
    add(rate, "tt:FrameRateLimit", std::to_string(video.fps));
    add(rate, "tt:BitrateLimit", std::to_string(video.bitrate / 1000));
    add(encoder, "tt:Quality", "5");
}

} // namespace

const OnvifServer::Table &OnvifServer::media2Operations()
{
    using S = OnvifServer;
    static const Table table{
        {"GetProfiles", {"tr2:GetProfilesResponse", &S::getProfiles2}},
        {"GetStreamUri", {"tr2:GetStreamUriResponse", &S::getStreamUri2}},
        {"GetSnapshotUri", {"tr2:GetSnapshotUriResponse", &S::getSnapshotUri2}},
        {"SetSynchronizationPoint",
         {"tr2:SetSynchronizationPointResponse", &S::setSynchronizationPoint}},
    };
    return table;
}

void OnvifServer::getProfiles2(pugi::xml_node in, pugi::xml_node out)
{
    const std::string token = soap::textAt(in, "Token");
    for (const Profile &profile : profiles()) {
        if (!token.empty() && token != profile.token())
            continue;
        pugi::xml_node node = add(out, "tr2:Profiles");
        node.append_attribute("token") = profile.token().c_str();
        node.append_attribute("fixed") = "true";
        add(node, "tr2:Name", profile.stream == StreamKind::Main ? "Main stream" : "Sub stream");
        const bool wantsSource = wants(in, "VideoSource");
        const bool wantsEncoder = wants(in, "VideoEncoder");
        if (!wantsSource && !wantsEncoder)
            continue;
        const pugi::xml_node configurations = add(node, "tr2:Configurations");
        const std::string lens = profile.lens == 1 ? "" : '_' + std::to_string(profile.lens);
        if (wantsSource) {
            const pugi::xml_node source =
                addNamed(configurations, "tr2:VideoSource", "video_source_config" + lens);
            add(source, "tt:SourceToken", "video_source" + lens);
            pugi::xml_node bounds = add(source, "tt:Bounds");
            const VideoSettings full = m_camera.video(StreamKind::Main);
            bounds.append_attribute("x") = 0;
            bounds.append_attribute("y") = 0;
            bounds.append_attribute("width") = full.width;
            bounds.append_attribute("height") = full.height;
        }
        if (wantsEncoder)
            addEncoder(configurations, profile.token(), videoOf(profile));
    }
}

void OnvifServer::getStreamUri2(pugi::xml_node in, pugi::xml_node out)
{
    // The names of the transports differ from those of Media 1.
    const std::string protocol = soap::textAt(in, "Protocol");
    if (protocol != "RtspUnicast" && protocol != "RTSP" && protocol != "RtspOverHttp")
        throw OnvifFault{"ter:InvalidStreamSetup", "There is no such transport"};
    add(out, "tr2:Uri", streamUriOf(profileOf(in)));
}

void OnvifServer::getSnapshotUri2(pugi::xml_node in, pugi::xml_node out)
{
    add(out, "tr2:Uri", snapshotUriOf(profileOf(in)));
}

} // namespace camsim
