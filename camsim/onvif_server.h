#pragma once

#include "camsim/camera_model.h"
#include "camsim/options.h"
#include "camsim/soap.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace camsim {

/// The ONVIF device and media services of one camera (ONVIF Core, Media and Media 2): SOAP text in,
/// SOAP text out. Main thread.
class OnvifServer
{
public:
    struct Answer
    {
        int status = 200; ///< HTTP
        std::string text;
    };

    OnvifServer(CameraModel &camera, const OnvifOptions &options);

    /// Whether the operation needs no login (ONVIF Core, access class PRE_AUTH).
    bool isPublic(const std::string &operation) const;
    Answer answer(const soap::Request &request);
    int keyFrameRequests() const { return m_keyFrameRequests; }
    /// Of a profile by its token; nullopt when there is none or it gives no still pictures.
    std::optional<StreamKind> snapshotStream(const std::string &token) const;

private:
    using Operation = void (OnvifServer::*)(pugi::xml_node in, pugi::xml_node out);
    struct Entry
    {
        const char *response; ///< qualified name of the answer's element
        Operation run;
    };
    using Table = std::map<std::string, Entry>;
    static const Table &operations();
    static const Table &media2Operations();
    bool hasMedia1() const { return m_options.media != OnvifMedia::Two; }
    bool hasMedia2() const { return m_options.media != OnvifMedia::One; }
    /// Null when the camera does not know the operation.
    const Entry *find(const soap::Request &request) const;

    // Device service
    void getSystemDateAndTime(pugi::xml_node in, pugi::xml_node out);
    void getDeviceInformation(pugi::xml_node in, pugi::xml_node out);
    void getCapabilities(pugi::xml_node in, pugi::xml_node out);
    void getServices(pugi::xml_node in, pugi::xml_node out);
    void getScopes(pugi::xml_node in, pugi::xml_node out);
    void setScopes(pugi::xml_node in, pugi::xml_node out);
    void systemReboot(pugi::xml_node in, pugi::xml_node out);
    // Device service, network
    void getHostname(pugi::xml_node in, pugi::xml_node out);
    void setHostname(pugi::xml_node in, pugi::xml_node out);
    void getNetworkInterfaces(pugi::xml_node in, pugi::xml_node out);
    void setNetworkInterfaces(pugi::xml_node in, pugi::xml_node out);
    void getDefaultGateway(pugi::xml_node in, pugi::xml_node out);
    void setDefaultGateway(pugi::xml_node in, pugi::xml_node out);
    void getDns(pugi::xml_node in, pugi::xml_node out);
    void setDns(pugi::xml_node in, pugi::xml_node out);
    void getNetworkProtocols(pugi::xml_node in, pugi::xml_node out);
    void setNetworkProtocols(pugi::xml_node in, pugi::xml_node out);
    // Media service
    void getProfiles(pugi::xml_node in, pugi::xml_node out);
    void getProfile(pugi::xml_node in, pugi::xml_node out);
    void getStreamUri(pugi::xml_node in, pugi::xml_node out);
    void setSynchronizationPoint(pugi::xml_node in, pugi::xml_node out);
    void getSnapshotUri(pugi::xml_node in, pugi::xml_node out);
    // Media 2 service
    void getProfiles2(pugi::xml_node in, pugi::xml_node out);
    void getStreamUri2(pugi::xml_node in, pugi::xml_node out);
    void getSnapshotUri2(pugi::xml_node in, pugi::xml_node out);
    /// One stream of one lens, as a profile.
    struct Profile
    {
        StreamKind stream = StreamKind::Main;
        int lens = 1;
        std::string token() const;
    };
    std::vector<Profile> profiles() const;
    VideoSettings videoOf(const Profile &profile) const;
    std::string streamUriOf(const Profile &profile) const;
    std::string snapshotUriOf(const Profile &profile) const;
    void fillProfile(pugi::xml_node node, const Profile &profile) const;
    Profile profileOf(pugi::xml_node in) const; ///< throws when there is no such profile

    CameraModel::Change change(const NetworkState &wanted);

    CameraModel &m_camera;
    const OnvifOptions m_options;
    int m_keyFrameRequests = 0;
};

/// The scopes of a camera: what discovery and GetScopes report (ONVIF Core 7.3.2.2).
struct Scope
{
    std::string uri;
    bool isFixed = true; ///< the client cannot change it
};
std::vector<Scope> scopesOf(const Identity &identity);

} // namespace camsim
