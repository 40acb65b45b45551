#pragma once

#include "platform/ndcp/network_configuration.h"
#include "platform/onvif/device_client.h"

#include <functional>

namespace ndcp {

/// Asks a device for all of its network configuration, one question after the other. A device that
/// does not know one of the questions but has a network interface is still configurable: its
/// answer is then absent.
class ConfigurationReader : public onvif::Request
{
public:
    using Done = std::function<void(onvif::SoapStatus, NetworkConfiguration)>;

    /// wantsModel: whether to request the model too. soap must outlive this object.
    ConfigurationReader(onvif::SoapClient &soap, bool wantsModel, Done done);

private:
    void askForInterfaces();
    void askForGateway();
    void askForDns();
    void askForProtocols();
    void askForScopes();
    void askForModel();

    /// Keeps what was answered and continues, or ends when the device is unreachable or refuses.
    template <class T>
    auto keepIn(std::optional<T> &place, void (ConfigurationReader::*next)());
    void finish(onvif::SoapStatus status);

    onvif::SoapClient &m_soap;
    onvif::DeviceClient m_device;
    bool m_wantsModel;
    Done m_done;
    NetworkConfiguration m_configuration;
    onvif::RequestPtr m_step;
};

} // namespace ndcp
