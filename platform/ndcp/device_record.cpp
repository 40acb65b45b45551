#include "platform/ndcp/device_record.h"

#include "platform/onvif/net_address.h"
#include "platform/onvif/network_interfaces.h"

#include <glib.h>

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
static_assert(onvif::maxUidLength == sizeof(ndcp_device::uid) - 1);

namespace {

constexpr int usualHttpPort = 80;

} // namespace

std::string typedText(std::string_view bytes)
{
    if (g_utf8_validate(bytes.data(), static_cast<gssize>(bytes.size()), nullptr))
        return std::string(bytes);
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0 | byte >> 6);
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

ndcp_device recordOf(const onvif::DiscoveredDevice &device)
{
    ndcp_device record = {};
    const std::optional<onvif::HttpAddress> service =
        onvif::parseHttpAddress(device.serviceAddress);
    record.ip = onvif::parseIpv4(service ? service->host : device.senderAddress).value_or(0);
    setHttpPort(record, service ? service->port : usualHttpPort);
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
    record.http_port = static_cast<std::int16_t>(static_cast<std::uint16_t>(port));
}

} // namespace ndcp
