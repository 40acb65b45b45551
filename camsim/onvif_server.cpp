#include "camsim/onvif_server.h"

#include "camsim/onvif_fault.h"

#include <glib.h>

#include <ctime>

namespace camsim {

using soap::add;

namespace {

constexpr const char *media1 = "http://www.onvif.org/ver10/media/wsdl";
constexpr const char *media2 = "http://www.onvif.org/ver20/media/wsdl";
constexpr std::string_view scopeRoot = "onvif://www.onvif.org/";

std::string escape(const std::string &text)
{
    gchar *escaped = g_uri_escape_string(text.c_str(), nullptr, FALSE);
    std::string result(escaped);
    g_free(escaped);
    return result;
}

std::string unescape(const std::string &text)
{
    gchar *plain = g_uri_unescape_string(text.c_str(), nullptr);
    std::string result(plain ? plain : "");
    g_free(plain);
    return result;
}

} // namespace

std::vector<Scope> scopesOf(const Identity &identity)
{
    const std::string root(scopeRoot);
    return {{root + "type/video_encoder", true},
            {root + "type/audio_encoder", true},
            {root + "Profile/Streaming", true},
            {root + "hardware/" + escape(identity.hardware), true},
            {root + "MacAddress/" + identity.mac, true},
            {root + "name/" + escape(identity.name), false},
            {root + "location/" + escape(identity.location), false}};
}

OnvifServer::OnvifServer(CameraModel &camera, const OnvifOptions &options)
    : m_camera(camera)
    , m_options(options)
{
}

bool OnvifServer::isPublic(const std::string &operation) const
{
    return (operation == "GetSystemDateAndTime" && m_options.clock != OnvifClock::None) ||
           operation == "GetCapabilities" || operation == "GetServices" ||
           operation == "GetHostname";
}

const std::map<std::string, OnvifServer::Entry> &OnvifServer::operations()
{
    using S = OnvifServer;
    static const std::map<std::string, Entry> table{
        {"GetSystemDateAndTime", {"tds:GetSystemDateAndTimeResponse", &S::getSystemDateAndTime}},
        {"GetDeviceInformation", {"tds:GetDeviceInformationResponse", &S::getDeviceInformation}},
        {"GetCapabilities", {"tds:GetCapabilitiesResponse", &S::getCapabilities}},
        {"GetServices", {"tds:GetServicesResponse", &S::getServices}},
        {"GetScopes", {"tds:GetScopesResponse", &S::getScopes}},
        {"SetScopes", {"tds:SetScopesResponse", &S::setScopes}},
        {"SystemReboot", {"tds:SystemRebootResponse", &S::systemReboot}},
        {"GetHostname", {"tds:GetHostnameResponse", &S::getHostname}},
        {"SetHostname", {"tds:SetHostnameResponse", &S::setHostname}},
        {"GetNetworkInterfaces", {"tds:GetNetworkInterfacesResponse", &S::getNetworkInterfaces}},
        {"SetNetworkInterfaces", {"tds:SetNetworkInterfacesResponse", &S::setNetworkInterfaces}},
        {"GetNetworkDefaultGateway",
         {"tds:GetNetworkDefaultGatewayResponse", &S::getDefaultGateway}},
        {"SetNetworkDefaultGateway",
         {"tds:SetNetworkDefaultGatewayResponse", &S::setDefaultGateway}},
        {"GetDNS", {"tds:GetDNSResponse", &S::getDns}},
        {"SetDNS", {"tds:SetDNSResponse", &S::setDns}},
        {"GetNetworkProtocols", {"tds:GetNetworkProtocolsResponse", &S::getNetworkProtocols}},
        {"SetNetworkProtocols", {"tds:SetNetworkProtocolsResponse", &S::setNetworkProtocols}},
        {"GetProfiles", {"trt:GetProfilesResponse", &S::getProfiles}},
        {"GetProfile", {"trt:GetProfileResponse", &S::getProfile}},
        {"GetStreamUri", {"trt:GetStreamUriResponse", &S::getStreamUri}},
        {"SetSynchronizationPoint",
         {"trt:SetSynchronizationPointResponse", &S::setSynchronizationPoint}},
        {"GetSnapshotUri", {"trt:GetSnapshotUriResponse", &S::getSnapshotUri}},
    };
    return table;
}

const OnvifServer::Entry *OnvifServer::find(const soap::Request &request) const
{
    const std::string service = request.service();
    const std::string name = request.name();
    const bool isUnserved = (service == media1 && !hasMedia1()) ||
                            (service == media2 && !hasMedia2()) ||
                            (name == "GetSnapshotUri" && !m_options.snapshots);
    if (isUnserved)
        return nullptr;
    const Table &table = service == media2 ? media2Operations() : operations();
    const auto found = table.find(name);
    return found == table.end() ? nullptr : &found->second;
}

OnvifServer::Answer OnvifServer::answer(const soap::Request &request)
{
    const Entry *entry = find(request);
    if (!entry) {
        return {500, soap::fault("Receiver", "ter:ActionNotSupported", nullptr,
                                 "Optional action not implemented")};
    }
    soap::Reply reply;
    try {
        (this->*entry->run)(request.operation(), add(reply.body(), entry->response));
    } catch (const OnvifFault &fault) {
        return {400, soap::fault("Sender", "ter:InvalidArgVal", fault.code, fault.reason)};
    }
    return {200, reply.text()};
}

void OnvifServer::getSystemDateAndTime(pugi::xml_node, pugi::xml_node out)
{
    constexpr std::time_t zone = 8 * 3600;
    const bool isLocal = m_options.clock == OnvifClock::Local;
    const std::time_t now = m_camera.clock() + (isLocal ? zone : 0);
    std::tm fields{};
    gmtime_r(&now, &fields);
    const pugi::xml_node info = add(out, "tds:SystemDateAndTime");
    add(info, "tt:DateTimeType", "Manual");
    add(info, "tt:DaylightSavings", "false");
    add(add(info, "tt:TimeZone"), "tt:TZ", isLocal ? "CST-8" : "UTC0");
    const pugi::xml_node moment = add(info, isLocal ? "tt:LocalDateTime" : "tt:UTCDateTime");
    const pugi::xml_node time = add(moment, "tt:Time");
    add(time, "tt:Hour", std::to_string(fields.tm_hour));
    add(time, "tt:Minute", std::to_string(fields.tm_min));
    add(time, "tt:Second", std::to_string(fields.tm_sec));
    const pugi::xml_node date = add(moment, "tt:Date");
    add(date, "tt:Year", std::to_string(fields.tm_year + 1900));
    add(date, "tt:Month", std::to_string(fields.tm_mon + 1));
    add(date, "tt:Day", std::to_string(fields.tm_mday));
}

void OnvifServer::getDeviceInformation(pugi::xml_node, pugi::xml_node out)
{
    const Identity &identity = m_camera.identity();
    add(out, "tds:Manufacturer", "camsim");
    add(out, "tds:Model", identity.hardware);
    add(out, "tds:FirmwareVersion", identity.firmware);
    add(out, "tds:SerialNumber", identity.serial);
    add(out, "tds:HardwareId", identity.hardware);
}

void OnvifServer::getCapabilities(pugi::xml_node, pugi::xml_node out)
{
    const pugi::xml_node all = add(out, "tds:Capabilities");
    const pugi::xml_node device = add(all, "tt:Device");
    add(device, "tt:XAddr", m_camera.serviceUri("device_service"));
    const pugi::xml_node network = add(device, "tt:Network");
    add(network, "tt:IPFilter", "false");
    add(network, "tt:ZeroConfiguration", "false");
    add(network, "tt:IPVersion6", "false");
    add(network, "tt:DynDNS", "false");
    if (!hasMedia1()) // Media 2 is named by GetServices alone
        return;
    const pugi::xml_node media = add(all, "tt:Media");
    add(media, "tt:XAddr", m_camera.serviceUri("media_service"));
    const pugi::xml_node streaming = add(media, "tt:StreamingCapabilities");
    add(streaming, "tt:RTPMulticast", "false");
    add(streaming, "tt:RTP_TCP", "true");
    add(streaming, "tt:RTP_RTSP_TCP", "true");
}

void OnvifServer::getServices(pugi::xml_node, pugi::xml_node out)
{
    std::vector<std::pair<const char *, const char *>> services = {
        {"http://www.onvif.org/ver10/device/wsdl", "device_service"}};
    if (hasMedia1())
        services.emplace_back(media1, "media_service");
    if (hasMedia2())
        services.emplace_back(media2, "media2_service");
    for (const auto &[uri, path] : services) {
        const pugi::xml_node service = add(out, "tds:Service");
        add(service, "tds:Namespace", uri);
        add(service, "tds:XAddr", m_camera.serviceUri(path));
        const pugi::xml_node version = add(service, "tds:Version");
        add(version, "tt:Major", "2");
        add(version, "tt:Minor", "6");
    }
}

void OnvifServer::getScopes(pugi::xml_node, pugi::xml_node out)
{
    for (const Scope &scope : scopesOf(m_camera.identity())) {
        const pugi::xml_node node = add(out, "tds:Scopes");
        add(node, "tt:ScopeDef", scope.isFixed ? "Fixed" : "Configurable");
        add(node, "tt:ScopeItem", scope.uri);
    }
}

void OnvifServer::setScopes(pugi::xml_node in, pugi::xml_node)
{
    const std::string nameRoot = std::string(scopeRoot) + "name/";
    const std::string locationRoot = std::string(scopeRoot) + "location/";
    // All changeable scopes are replaced (ONVIF Core 8.3.6): one that is not sent is removed.
    std::string name;
    std::string location;
    for (const pugi::xml_node &node : in.children()) {
        if (soap::localName(node) != "Scopes")
            continue;
        const std::string scope = node.text().get();
        if (scope.starts_with(nameRoot))
            name = unescape(scope.substr(nameRoot.size()));
        else if (scope.starts_with(locationRoot))
            location = unescape(scope.substr(locationRoot.size()));
    }
    m_camera.setName(name);
    m_camera.setLocation(location);
}

void OnvifServer::systemReboot(pugi::xml_node, pugi::xml_node out)
{
    add(out, "tds:Message", "Rebooting");
    m_camera.reboot();
}

} // namespace camsim
