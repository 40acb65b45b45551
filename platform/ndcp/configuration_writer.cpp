#include "platform/ndcp/configuration_writer.h"

#include "platform/onvif/discovery_search.h"
#include "platform/onvif/net_address.h"
#include "platform/onvif/text.h"

#include <utility>

namespace ndcp {

using onvif::SoapStatus;

namespace {

std::string withPort(const std::string &service, int port)
{
    std::optional<onvif::HttpAddress> address = onvif::parseHttpAddress(service);
    if (!address || address->secure)
        return service;
    address->port = port;
    return address->text();
}

std::string withHost(const std::string &service, onvif::Ipv4 host)
{
    std::optional<onvif::HttpAddress> address = onvif::parseHttpAddress(service);
    if (!address)
        return service;
    address->host = onvif::ipv4Text(host);
    return address->text();
}

} // namespace

ConfigurationWriter::ConfigurationWriter(GMainContext *context, const std::string &service,
                                         const onvif::Credentials &credentials, std::string uid,
                                         const ConfigurationChange &change, Done done)
    : m_context(context)
    , m_credentials(credentials)
    , m_uid(std::move(uid))
    , m_done(std::move(done))
    , m_interface(change.interface)
    , m_start(context, 0, [this] { runNext(); })
{
    planSteps(change);
    connectTo(service);
}

void ConfigurationWriter::planSteps(const ConfigurationChange &change)
{
    using onvif::DeviceClient;
    using Done = std::function<void(SoapStatus)>;
    if (change.scopes) {
        m_steps.emplace_back([scopes = *change.scopes](DeviceClient &device, Done done) {
            return device.setScopes(scopes, std::move(done));
        });
    }
    if (change.dns) {
        m_steps.emplace_back([dns = *change.dns](DeviceClient &device, Done done) {
            return device.setDns(dns, std::move(done));
        });
    }
    if (change.gateway) {
        m_steps.emplace_back([gateway = *change.gateway](DeviceClient &device, Done done) {
            return device.setDefaultGateway(gateway, std::move(done));
        });
    }
    if (change.protocols) {
        m_steps.emplace_back(
            [this, protocols = *change.protocols](DeviceClient &device, Done done) {
                m_newPort = protocols.front().ports.front();
                return device.setNetworkProtocols(protocols, std::move(done));
            });
    }
}

void ConfigurationWriter::connectTo(const std::string &service)
{
    m_device.reset();
    m_soap = std::make_unique<onvif::SoapClient>(m_context, service, m_credentials);
    m_device = std::make_unique<onvif::DeviceClient>(*m_soap);
}

void ConfigurationWriter::runNext()
{
    if (m_nextStep < m_steps.size())
        m_request = m_steps[m_nextStep](*m_device, [this](SoapStatus status) { stepDone(status); });
    else if (m_interface)
        startInterfaceStep();
    else
        finish(SoapStatus::Ok);
}

void ConfigurationWriter::stepDone(SoapStatus status)
{
    if (status == SoapStatus::Ok) {
        ++m_nextStep;
        runNext();
    } else {
        finish(status);
    }
}

void ConfigurationWriter::startInterfaceStep()
{
    m_request = m_device->setNetworkInterface(
        *m_interface,
        [this](SoapStatus status, bool needsReboot) { interfaceDone(status, needsReboot); });
}

void ConfigurationWriter::interfaceDone(SoapStatus status, bool needsReboot)
{
    if (status == SoapStatus::NoAnswer && m_newPort) {
        // The new port counts already.
        connectTo(withPort(m_soap->deviceService(), *std::exchange(m_newPort, std::nullopt)));
        startInterfaceStep();
    } else if (status == SoapStatus::NoAnswer) {
        lookForMovedDevice();
    } else if (status == SoapStatus::Ok && needsReboot) {
        m_request = m_device->reboot([this](SoapStatus rebooted) { rebootDone(rebooted); });
    } else {
        finish(status);
    }
}

// Some devices change their address so fast that the answer is never sent.
void ConfigurationWriter::lookForMovedDevice()
{
    onvif::SearchScope scope = onvif::SearchScope::fromEnvironment();
    scope.uid = m_uid;
    const std::string wantedHost =
        m_interface->dhcp ? std::string() : onvif::ipv4Text(m_interface->address);
    const auto isMoved = [this, wantedHost](const onvif::DiscoveredDevice &device) {
        const auto service = onvif::parseHttpAddress(device.serviceAddress);
        return onvif::sameUid(device.uid, m_uid) && service &&
               (wantedHost.empty() || service->host == wantedHost);
    };
    scope.isEnough = isMoved;
    m_request = std::make_unique<onvif::DiscoverySearch>(
        m_context, std::move(scope),
        [this, isMoved](const std::vector<onvif::DiscoveredDevice> &devices) {
            const bool isFound = !devices.empty() && isMoved(devices.back());
            finish(isFound ? SoapStatus::Ok : SoapStatus::NoAnswer);
        });
}

void ConfigurationWriter::rebootDone(SoapStatus status)
{
    // A device that is down already has taken the request.
    finish(status == SoapStatus::NoAnswer ? SoapStatus::Ok : status);
}

void ConfigurationWriter::finish(SoapStatus status)
{
    std::string service = m_soap->deviceService();
    if (status == SoapStatus::Ok) {
        if (m_newPort)
            service = withPort(service, *m_newPort);
        if (m_interface && !m_interface->dhcp)
            service = withHost(service, m_interface->address);
    }
    // The receiver may destroy this object.
    const Done done = std::move(m_done);
    done(status, service);
}

} // namespace ndcp
