#pragma once

#include "platform/ndcp/ndcp.h"
#include "platform/onvif/device_message.h"

#include <optional>
#include <string>
#include <vector>

namespace ndcp {

/// The network configuration that a device reported. What it did not report is absent.
struct NetworkConfiguration
{
    onvif::NetworkInterface interface;
    std::vector<onvif::MacAddress> macs; ///< of all its interfaces
    std::optional<onvif::Ipv4> gateway;
    std::optional<onvif::DnsInformation> dns;
    std::optional<std::vector<onvif::NetworkProtocol>> protocols;
    std::optional<std::vector<onvif::DeviceScope>> scopes;
    std::string model; ///< requested only when discovery did not report it
};

/// The interface that carries an address (0: none is known), else the first enabled one with IPv4;
/// nullopt when the device has none.
std::optional<onvif::NetworkInterface>
chooseInterface(const std::vector<onvif::NetworkInterface> &interfaces, onvif::Ipv4 address);

/// Overwrites the fields of the record that the device reported; the others stay.
void fillRecord(ndcp_device &record, const NetworkConfiguration &configuration);

/// What must be sent to a device so that it gets the configuration of a record; absent parts are
/// right already or not to be set.
struct ConfigurationChange
{
    std::optional<std::vector<std::string>> scopes;
    std::optional<onvif::DnsInformation> dns;
    std::optional<onvif::Ipv4> gateway;
    std::optional<std::vector<onvif::NetworkProtocol>> protocols;
    std::optional<onvif::InterfaceSetup> interface;
};

/// nullopt when the record has values for a network configuration that was never read into it: what
/// it says of the rest means nothing then. Name and location count without a reading too.
/// base: the record as it was read, when that is known. What equals it was not touched by the user
/// and is not written, even where the device has another value by now.
std::optional<ConfigurationChange> changeTo(const ndcp_device &record,
                                            const NetworkConfiguration &current,
                                            const std::optional<ndcp_device> &base = {});

/// Port of the device's web pages; 0 when it does not report it.
int webPort(const NetworkConfiguration &configuration);

} // namespace ndcp
