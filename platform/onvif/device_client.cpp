#include "platform/onvif/device_client.h"

#include "platform/onvif/soap_ask.h"

#include <memory>

namespace onvif {

namespace {

std::string action(const char *name)
{
    return std::string("http://www.onvif.org/ver10/device/wsdl/") + name;
}

// GetCapabilities is what every device knows but for the newest, which only know GetServices. Media
// 2 is named there alone; a device that refuses that question has none.
class MediaServicesRequest : public Request
{
public:
    MediaServicesRequest(SoapClient &soap, DeviceClient::Answer<MediaServices> done)
        : m_soap(soap)
        , m_done(std::move(done))
    {
        m_step = askFor(
            "GetCapabilities", buildGetCapabilities(),
            [this](SoapStatus status, const MediaServices &found) {
                m_found = found;
                if (status == SoapStatus::Ok || status == SoapStatus::Fault)
                    askForServices();
                else
                    finish(status);
            });
    }

private:
    RequestPtr askFor(const char *name, const std::string &body,
                      DeviceClient::Answer<MediaServices> answered)
    {
        return ask<MediaServices>(m_soap, m_soap.deviceService(), action(name), body,
                                  parseMediaServices, std::move(answered));
    }

    void askForServices()
    {
        m_step = askFor(
            "GetServices", buildGetServices(),
            [this](SoapStatus status, const MediaServices &found) {
                m_found.media2 = found.media2;
                if (m_found.media1.empty())
                    m_found.media1 = found.media1;
                finish(status);
            });
    }

    void finish(SoapStatus status)
    {
        const DeviceClient::Answer<MediaServices> done = std::move(m_done);
        const std::string &device = m_soap.deviceService();
        const MediaServices held = {serviceAtDevice(m_found.media1, device),
                                    serviceAtDevice(m_found.media2, device)};
        if (!held.isEmpty())
            status = SoapStatus::Ok;
        else if (status == SoapStatus::Ok)
            status = SoapStatus::Fault;
        done(status, held);
    }

    SoapClient &m_soap;
    DeviceClient::Answer<MediaServices> m_done;
    MediaServices m_found; ///< as the device reports them
    RequestPtr m_step;
};

} // namespace

DeviceClient::DeviceClient(SoapClient &soap) : m_soap(soap) {}

RequestPtr DeviceClient::mediaServices(Answer<MediaServices> done)
{
    return std::make_unique<MediaServicesRequest>(m_soap, std::move(done));
}

RequestPtr DeviceClient::endpointReference(Answer<std::string> done)
{
    return ask<std::string>(m_soap, m_soap.deviceService(), action("GetEndpointReference"),
                            buildGetEndpointReference(), parseEndpointReference, std::move(done));
}

RequestPtr DeviceClient::deviceInformation(Answer<DeviceInformation> done)
{
    return ask<DeviceInformation>(m_soap, m_soap.deviceService(), action("GetDeviceInformation"),
                                  buildGetDeviceInformation(), parseDeviceInformation,
                                  std::move(done));
}

RequestPtr DeviceClient::networkInterfaces(Answer<std::vector<NetworkInterface>> done)
{
    return ask<std::vector<NetworkInterface>>(
        m_soap, m_soap.deviceService(), action("GetNetworkInterfaces"), buildGetNetworkInterfaces(),
        parseNetworkInterfaces, std::move(done));
}

RequestPtr DeviceClient::setNetworkInterface(const InterfaceSetup &setup, Answer<bool> done)
{
    return ask<bool>(m_soap, m_soap.deviceService(), action("SetNetworkInterfaces"),
                     buildSetNetworkInterfaces(setup), parseRebootNeeded, std::move(done),
                     SoapKind::Change);
}

RequestPtr DeviceClient::defaultGateway(Answer<Ipv4> done)
{
    return ask<Ipv4>(m_soap, m_soap.deviceService(), action("GetNetworkDefaultGateway"),
                     buildGetNetworkDefaultGateway(), parseNetworkDefaultGateway, std::move(done));
}

RequestPtr DeviceClient::setDefaultGateway(Ipv4 gateway, Done done)
{
    return tell(m_soap, m_soap.deviceService(), action("SetNetworkDefaultGateway"),
                buildSetNetworkDefaultGateway(gateway), SoapKind::Change, std::move(done));
}

RequestPtr DeviceClient::dns(Answer<DnsInformation> done)
{
    return ask<DnsInformation>(m_soap, m_soap.deviceService(), action("GetDNS"), buildGetDns(),
                               parseDns, std::move(done));
}

RequestPtr DeviceClient::setDns(const DnsInformation &dns, Done done)
{
    return tell(m_soap, m_soap.deviceService(), action("SetDNS"), buildSetDns(dns),
                SoapKind::Change, std::move(done));
}

RequestPtr DeviceClient::networkProtocols(Answer<std::vector<NetworkProtocol>> done)
{
    return ask<std::vector<NetworkProtocol>>(
        m_soap, m_soap.deviceService(), action("GetNetworkProtocols"), buildGetNetworkProtocols(),
        parseNetworkProtocols, std::move(done));
}

RequestPtr DeviceClient::setNetworkProtocols(const std::vector<NetworkProtocol> &protocols,
                                             Done done)
{
    return tell(m_soap, m_soap.deviceService(), action("SetNetworkProtocols"),
                buildSetNetworkProtocols(protocols), SoapKind::Change, std::move(done));
}

RequestPtr DeviceClient::scopes(Answer<std::vector<DeviceScope>> done)
{
    return ask<std::vector<DeviceScope>>(m_soap, m_soap.deviceService(), action("GetScopes"),
                                         buildGetScopes(), parseScopes, std::move(done));
}

RequestPtr DeviceClient::setScopes(const std::vector<std::string> &scopes, Done done)
{
    return tell(m_soap, m_soap.deviceService(), action("SetScopes"), buildSetScopes(scopes),
                SoapKind::Change, std::move(done));
}

RequestPtr DeviceClient::reboot(Done done)
{
    return tell(m_soap, m_soap.deviceService(), action("SystemReboot"), buildSystemReboot(),
                SoapKind::Change, std::move(done));
}

} // namespace onvif
