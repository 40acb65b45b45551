#include "platform/ndcp/device_record.h"

#include "platform/onvif/net_address.h"
#include "platform/onvif/network_interfaces.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace ndcp {

// The record is copied as bytes across the border of the library.
static_assert(sizeof(ndcp_device) == 408);
static_assert(offsetof(ndcp_device, mac) == 0);
static_assert(offsetof(ndcp_device, reserved) == 6);
static_assert(offsetof(ndcp_device, ip) == 16);
static_assert(offsetof(ndcp_device, http_port) == 20);
static_assert(offsetof(ndcp_device, model) == 22);
static_assert(offsetof(ndcp_device, name) == 54);
static_assert(offsetof(ndcp_device, location) == 86);
static_assert(offsetof(ndcp_device, uid) == 214);
static_assert(offsetof(ndcp_device, manual_ip) == 256);
static_assert(offsetof(ndcp_device, mask) == 260);
static_assert(offsetof(ndcp_device, gateway) == 264);
static_assert(offsetof(ndcp_device, manual_dns) == 268);
static_assert(offsetof(ndcp_device, dns1) == 272);
static_assert(offsetof(ndcp_device, dns2) == 276);
static_assert(offsetof(ndcp_device, username) == 280);
static_assert(offsetof(ndcp_device, password) == 344);
static_assert(base::maxUidLength == sizeof(ndcp_device::uid) - 1);

namespace {

// The bytes of the record that mean nothing to clients.
enum Reserved : std::size_t
{
    Mark,     ///< says that the library has filled the following
    Parts,    ///< ReadPart values
    PortHigh, ///< the port that the library gave the record
    PortLow,
};

constexpr std::uint8_t markOfLibrary = 0xC5;

bool isMarked(const ndcp_device &record)
{
    return record.reserved[Mark] == markOfLibrary;
}

void mark(ndcp_device &record)
{
    if (!isMarked(record))
        std::fill(std::begin(record.reserved), std::end(record.reserved), std::uint8_t(0));
    record.reserved[Mark] = markOfLibrary;
}

} // namespace

namespace {

// A device that answered by IPv6 may say its IPv4 address all the same.
std::uint32_t ipv4Of(const onvif::DiscoveredDevice &device)
{
    const std::optional<onvif::HttpAddress> reached =
        onvif::parseHttpAddress(device.serviceAddress);
    if (!reached)
        return onvif::parseIpv4(device.senderAddress).value_or(0);
    std::vector<std::string> hosts = {reached->host};
    for (const std::string &xaddr : device.xaddrs)
        if (const std::optional<onvif::HttpAddress> told = onvif::parseHttpAddress(xaddr))
            hosts.push_back(told->host);
    for (const std::string &host : hosts)
        if (const std::optional<onvif::Ipv4> ip = onvif::parseIpv4(host))
            return *ip;
    return 0;
}

} // namespace

ndcp_device recordOf(const onvif::DiscoveredDevice &device, int webPort)
{
    ndcp_device record = {};
    record.ip = ipv4Of(device);
    setHttpPort(record, webPort);
    setField(record.model, device.model);
    setField(record.name, device.name);
    setField(record.location, device.location);
    setField(record.uid, device.uid);
    std::optional<onvif::MacAddress> mac = device.mac;
    if (!mac)
        mac = onvif::neighbourMac(record.ip);
    if (mac)
        std::copy(mac->begin(), mac->end(), record.mac);
    return record;
}

int httpPort(const ndcp_device &record)
{
    return static_cast<std::uint16_t>(record.http_port);
}

void setHttpPort(ndcp_device &record, int port)
{
    mark(record);
    record.http_port = static_cast<std::int16_t>(static_cast<std::uint16_t>(port));
    record.reserved[PortHigh] = static_cast<std::uint8_t>(port >> 8);
    record.reserved[PortLow] = static_cast<std::uint8_t>(port);
}

bool isPortChanged(const ndcp_device &record)
{
    const int given =
        isMarked(record) ? record.reserved[PortHigh] << 8 | record.reserved[PortLow] : usualWebPort;
    return httpPort(record) != 0 && httpPort(record) != given;
}

void markRead(ndcp_device &record, unsigned parts)
{
    mark(record);
    record.reserved[Parts] = static_cast<std::uint8_t>(record.reserved[Parts] | parts);
}

bool wasRead(const ndcp_device &record, ReadPart part)
{
    return isMarked(record) && (record.reserved[Parts] & part) != 0;
}

} // namespace ndcp
