#include "platform/onvif/device_client.h"

#include "platform/onvif/soap_ask.h"

#include <memory>

namespace onvif {

namespace {

std::string action(const char *name)
{
    return std::string("http://www.onvif.org/ver10/device/wsdl/") + name;
}

// GetCapabilities is what every device knows; later ones may only know GetServices.
class MediaServiceRequest : public Request
{
public:
    MediaServiceRequest(SoapClient &soap, DeviceClient::Answer<std::string> done)
        : m_soap(soap)
        , m_done(std::move(done))
    {
        m_step = askFor(
            "GetCapabilities", buildGetCapabilities(),
            [this](SoapStatus status, const std::string &address) {
                if (status == SoapStatus::Fault)
                    askForServices();
                else
                    finish(status, address);
            });
    }

private:
    RequestPtr askFor(const char *name, const std::string &body,
                      DeviceClient::Answer<std::string> answered)
    {
        return ask<std::string>(m_soap, m_soap.deviceService(), action(name), body,
                                parseMediaService, std::move(answered));
    }

    void askForServices()
    {
        m_step = askFor(
            "GetServices", buildGetServices(),
            [this](SoapStatus status, const std::string &address) { finish(status, address); });
    }

    void finish(SoapStatus status, const std::string &address)
    {
        const DeviceClient::Answer<std::string> done = std::move(m_done);
        const std::string held = serviceAtDevice(address, m_soap.deviceService());
        if (status == SoapStatus::Ok && held.empty())
            status = SoapStatus::Fault;
        done(status, held);
    }

    SoapClient &m_soap;
    DeviceClient::Answer<std::string> m_done;
    RequestPtr m_step;
};

} // namespace

DeviceClient::DeviceClient(SoapClient &soap) : m_soap(soap) {}

RequestPtr DeviceClient::mediaService(Answer<std::string> done)
{
    return std::make_unique<MediaServiceRequest>(m_soap, std::move(done));
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
