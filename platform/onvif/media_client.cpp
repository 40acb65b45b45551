#include "platform/onvif/media_client.h"

#include "platform/onvif/net_address.h"
#include "platform/onvif/soap_ask.h"

namespace onvif {

MediaClient::MediaClient(SoapClient &soap, std::string mediaService, MediaVersion version)
    : m_soap(soap)
    , m_service(std::move(mediaService))
    , m_version(version)
{
}

std::string MediaClient::action(const char *name) const
{
    const char *space = m_version == MediaVersion::Media1
                            ? "http://www.onvif.org/ver10/media/wsdl/"
                            : "http://www.onvif.org/ver20/media/wsdl/";
    return space + std::string(name);
}

RequestPtr MediaClient::profiles(std::function<void(SoapStatus, std::vector<MediaProfile>)> done)
{
    const auto parse = [](const XmlMessage &message) {
        return std::optional(parseProfiles(message));
    };
    return ask<std::vector<MediaProfile>>(m_soap, m_service, action("GetProfiles"),
                                          buildGetProfiles(m_version), parse, std::move(done));
}

RequestPtr MediaClient::streamUri(const std::string &profileToken,
                                  std::function<void(SoapStatus, std::string)> done)
{
    const std::optional<HttpAddress> device = parseHttpAddress(m_soap.deviceService());
    const std::string host = device ? device->host : std::string();
    const auto parse = [host](const XmlMessage &message) -> std::optional<std::string> {
        const std::string address = streamAtHost(parseStreamUri(message), host);
        return address.empty() ? std::nullopt : std::optional(address);
    };
    return ask<std::string>(m_soap, m_service, action("GetStreamUri"),
                            buildGetStreamUri(profileToken, m_version), parse, std::move(done));
}

RequestPtr MediaClient::snapshotUri(const std::string &profileToken,
                                    std::function<void(SoapStatus, std::string)> done)
{
    const auto parse =
        [device = m_soap.deviceService()](const XmlMessage &message) -> std::optional<std::string> {
        const std::string address = serviceAtDevice(parseSnapshotUri(message), device);
        return address.empty() ? std::nullopt : std::optional(address);
    };
    return ask<std::string>(m_soap, m_service, action("GetSnapshotUri"),
                            buildGetSnapshotUri(profileToken, m_version), parse, std::move(done));
}

RequestPtr MediaClient::setSynchronizationPoint(const std::string &profileToken,
                                                std::function<void(SoapStatus)> done)
{
    return tell(m_soap, m_service, action("SetSynchronizationPoint"),
                buildSetSynchronizationPoint(profileToken, m_version), SoapKind::Question,
                std::move(done));
}

} // namespace onvif
