#include "platform/ndcp/configuration_reader.h"

#include <utility>

namespace ndcp {

using onvif::SoapStatus;

ConfigurationReader::ConfigurationReader(onvif::SoapClient &soap, bool wantsModel, Done done)
    : m_soap(soap)
    , m_device(soap)
    , m_wantsModel(wantsModel)
    , m_done(std::move(done))
{
    askForInterfaces();
}

template <class T>
auto ConfigurationReader::keepIn(std::optional<T> &place, void (ConfigurationReader::*next)())
{
    return [this, &place, next](SoapStatus status, const T &answer) {
        if (status == SoapStatus::Ok)
            place = answer;
        if (status == SoapStatus::Ok || status == SoapStatus::Fault)
            (this->*next)();
        else
            finish(status);
    };
}

void ConfigurationReader::askForInterfaces()
{
    m_step = m_device.networkInterfaces(
        [this](SoapStatus status, const std::vector<onvif::NetworkInterface> &interfaces) {
            const std::optional<onvif::HttpAddress> service =
                onvif::parseHttpAddress(m_soap.deviceService());
            const onvif::Ipv4 address =
                onvif::parseIpv4(service ? service->host : std::string()).value_or(0);
            const std::optional<onvif::NetworkInterface> interface =
                chooseInterface(interfaces, address);
            for (const onvif::NetworkInterface &each : interfaces)
                if (each.mac)
                    m_configuration.macs.push_back(*each.mac);
            if (status == SoapStatus::Ok && interface) {
                m_configuration.interface = *interface;
                askForGateway();
            } else {
                finish(status == SoapStatus::Ok ? SoapStatus::Fault : status);
            }
        });
}

void ConfigurationReader::askForGateway()
{
    m_step =
        m_device.defaultGateway(keepIn(m_configuration.gateway, &ConfigurationReader::askForDns));
}

void ConfigurationReader::askForDns()
{
    m_step = m_device.dns(keepIn(m_configuration.dns, &ConfigurationReader::askForProtocols));
}

void ConfigurationReader::askForProtocols()
{
    m_step = m_device.networkProtocols(
        keepIn(m_configuration.protocols, &ConfigurationReader::askForScopes));
}

void ConfigurationReader::askForScopes()
{
    m_step = m_device.scopes(keepIn(m_configuration.scopes, &ConfigurationReader::askForModel));
}

void ConfigurationReader::askForModel()
{
    if (!m_wantsModel) {
        finish(SoapStatus::Ok);
        return;
    }
    m_step =
        m_device.deviceInformation([this](SoapStatus, const onvif::DeviceInformation &information) {
            m_configuration.model = information.model;
            finish(SoapStatus::Ok);
        });
}

void ConfigurationReader::finish(SoapStatus status)
{
    // The receiver may destroy this object.
    const Done done = std::move(m_done);
    done(status, std::move(m_configuration));
}

} // namespace ndcp
