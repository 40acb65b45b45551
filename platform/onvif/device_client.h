#pragma once

#include "platform/onvif/device_message.h"
#include "platform/onvif/request.h"
#include "platform/onvif/soap_client.h"

#include <functional>
#include <string>
#include <vector>

namespace onvif {

/// The device service of one device (ONVIF Core 8). Thread and cancelling as for SoapClient, which
/// must outlive it. The values of an answer are filled with SoapStatus::Ok only.
class DeviceClient
{
public:
    template <class T>
    using Answer = std::function<void(SoapStatus, T)>;
    using Done = std::function<void(SoapStatus)>;

    explicit DeviceClient(SoapClient &soap);

    /// Addresses of the media services, held to the device itself (see serviceAtDevice); one at
    /// least with SoapStatus::Ok.
    [[nodiscard]] RequestPtr mediaServices(Answer<MediaServices> done);
    /// The device's UID.
    [[nodiscard]] RequestPtr endpointReference(Answer<std::string> done);
    [[nodiscard]] RequestPtr deviceInformation(Answer<DeviceInformation> done);
    [[nodiscard]] RequestPtr networkInterfaces(Answer<std::vector<NetworkInterface>> done);
    /// The answer says whether the setup takes effect only after reboot().
    [[nodiscard]] RequestPtr setNetworkInterface(const InterfaceSetup &setup, Answer<bool> done);
    [[nodiscard]] RequestPtr defaultGateway(Answer<Ipv4> done);
    [[nodiscard]] RequestPtr setDefaultGateway(Ipv4 gateway, Done done);
    [[nodiscard]] RequestPtr dns(Answer<DnsInformation> done);
    [[nodiscard]] RequestPtr setDns(const DnsInformation &dns, Done done);
    [[nodiscard]] RequestPtr networkProtocols(Answer<std::vector<NetworkProtocol>> done);
    [[nodiscard]] RequestPtr setNetworkProtocols(const std::vector<NetworkProtocol> &protocols,
                                                 Done done);
    [[nodiscard]] RequestPtr scopes(Answer<std::vector<DeviceScope>> done);
    /// Replaces all scopes that are not fixed.
    [[nodiscard]] RequestPtr setScopes(const std::vector<std::string> &scopes, Done done);
    [[nodiscard]] RequestPtr reboot(Done done);

private:
    SoapClient &m_soap;
};

} // namespace onvif
