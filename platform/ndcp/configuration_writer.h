#pragma once

#include "platform/ndcp/network_configuration.h"
#include "platform/onvif/device_client.h"
#include "platform/onvif/timer.h"

#include <glib.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ndcp {

/// Writes a new configuration to a device. What cannot cut the connection is sent first: names,
/// DNS, gateway; then the HTTP port, after which the device may answer on the new port only; last
/// the address, and a restart where the device wants one.
class ConfigurationWriter : public onvif::Request
{
public:
    /// service: where the device service can be expected from now on.
    using Done = std::function<void(onvif::SoapStatus, std::string service)>;

    ConfigurationWriter(GMainContext *context, const std::string &service,
                        const onvif::Credentials &credentials, std::string uid,
                        const ConfigurationChange &change, Done done);

private:
    using Step = std::function<onvif::RequestPtr(onvif::DeviceClient &,
                                                 std::function<void(onvif::SoapStatus)>)>;

    void planSteps(const ConfigurationChange &change);
    void connectTo(const std::string &service);
    void runNext();
    void stepDone(onvif::SoapStatus status);
    void startInterfaceStep();
    void interfaceDone(onvif::SoapStatus status, bool needsReboot);
    void lookForMovedDevice();
    void rebootDone(onvif::SoapStatus status);
    void finish(onvif::SoapStatus status);

    GMainContext *m_context;
    onvif::Credentials m_credentials;
    std::string m_uid;
    Done m_done;
    std::vector<Step> m_steps;
    std::size_t m_nextStep = 0;
    std::optional<onvif::InterfaceSetup> m_interface;
    std::optional<int> m_newPort; ///< set while the old port may still be the one that answers
    std::unique_ptr<onvif::SoapClient> m_soap;
    std::unique_ptr<onvif::DeviceClient> m_device;
    onvif::RequestPtr m_request;
    onvif::Timer m_start; ///< so that done is never called inside the constructor
};

} // namespace ndcp
