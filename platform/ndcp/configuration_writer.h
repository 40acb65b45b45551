#pragma once

#include "platform/base/credentials.h"
#include "platform/base/timer.h"
#include "platform/ndcp/configuration_times.h"
#include "platform/ndcp/ndcp.h"
#include "platform/ndcp/network_configuration.h"
#include "platform/onvif/device_client.h"

#include <glib.h>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ndcp {

class DeviceFinder;

/// Tells a device the configuration of a record, one part after the other, in an order in which it
/// stays reachable.
///
/// Usually what cannot cut the connection is sent first: names, DNS, gateway, then the HTTP port,
/// and last the address. A device that leaves DHCP, or gets a gateway outside its present subnet,
/// gets its address before gateway and DNS, which it would refuse, where it can be reached at its
/// new address; elsewhere they are tried first, and again after the address when they are refused.
/// After port and address the device is searched before more is sent to it. When an answer is lost,
/// the device is looked for too: port and address count when the device says so itself, the rest is
/// sent once more.
class ConfigurationWriter : public onvif::Request
{
public:
    struct Target
    {
        std::string service;
        std::string uid; ///< may be empty
        base::Credentials credentials;
    };

    /// service: where the device service can be expected from now on; empty when it is not known.
    using Done = std::function<void(onvif::SoapStatus, std::string service)>;

    /// current: what the device has now. record, base: see changeTo, which must give a change.
    ConfigurationWriter(GMainContext *context, Target target, const ndcp_device &record,
                        const std::optional<ndcp_device> &base, const NetworkConfiguration &current,
                        const ConfigurationTimes &times, Done done);
    ~ConfigurationWriter() override;

private:
    enum class Part
    {
        Scopes,
        Dns,
        Gateway,
        Protocols,
        Interface,
        Restart,
    };

    void plan();
    [[nodiscard]] bool goesAddressFirst() const;
    [[nodiscard]] bool mayBeRefusedBeforeTheAddress() const;
    [[nodiscard]] bool isPlanned(Part part) const;
    void connectTo(const std::string &service);
    void runNext();
    onvif::RequestPtr send(Part part);
    void sent(Part part, onvif::SoapStatus status);
    void refusedValue(Part part);
    void partDone(Part part);
    void lookUntilDone(Part part, bool wasAnswered);
    void lookToSendAgain(Part part);
    void look(std::function<bool(const std::string &, const NetworkConfiguration &)> isThere,
              unsigned patience,
              std::function<void(const std::string &service, bool isThere)> done);
    [[nodiscard]] bool isStillToDo(Part part, const NetworkConfiguration &configuration) const;
    [[nodiscard]] bool isDirect() const;
    [[nodiscard]] bool hasArrived(Part part, const std::string &service) const;
    [[nodiscard]] std::vector<std::string> possiblePlaces() const;
    void finish(onvif::SoapStatus status);

    GMainContext *m_context;
    Target m_target;
    ndcp_device m_record;
    std::optional<ndcp_device> m_base;
    NetworkConfiguration m_before;
    ConfigurationChange m_change;
    std::string m_firstService; ///< where it was before
    ConfigurationTimes m_times;
    Done m_done;
    std::deque<Part> m_parts; ///< still to be sent
    std::deque<Part> m_again; ///< refused before the address was set
    bool m_needsRestart = false;
    bool m_wasSentAgain = false;
    std::unique_ptr<onvif::SoapClient> m_soap;
    std::unique_ptr<onvif::DeviceClient> m_device;
    onvif::RequestPtr m_request;
    base::Timer m_start; ///< so that done is never called inside the constructor
};

} // namespace ndcp
