#include "fuzz/expect.h"
#include "platform/base/text.h"
#include "platform/ndcp/device_record.h"
#include "platform/onvif/net_address.h"

#include <glib.h>

#include <cstdint>

namespace {

void check(const onvif::DiscoveredDevice &device)
{
    FUZZ_EXPECT(!device.uid.empty() && device.uid.size() <= base::maxUidLength);
    FUZZ_EXPECT(base::uidFromEndpoint(device.uid) == device.uid ||
                device.uid.starts_with("uuid:") || device.uid.starts_with("urn:uuid:"));
    FUZZ_EXPECT(device.uid.find_first_of("/\\") == std::string::npos && device.uid != "..");
    for (const std::string &text : {device.name, device.model, device.location}) {
        FUZZ_EXPECT(text.size() <= onvif::maxScopeText);
        FUZZ_EXPECT(g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr));
    }
}

void checkFollowed(const std::string &service)
{
    const std::optional<onvif::HttpAddress> address = onvif::parseHttpAddress(service);
    FUZZ_EXPECT(address);
    const onvif::Ipv4 host = onvif::parseIpv4(address->host).value_or(0);
    FUZZ_EXPECT((host & 0xFFFFFF00) == 0xC0A80100);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view datagram(reinterpret_cast<const char *>(data), size);
    std::optional<onvif::DiscoveryAnswer> answer = onvif::parseDiscoveryAnswer(datagram);
    if (!answer)
        return 0;
    FUZZ_EXPECT(answer->devices.size() <= onvif::maxDevicesInAnswer);
    for (onvif::DiscoveredDevice &device : answer->devices) {
        check(device);
        device.senderAddress = "192.168.1.20";
        device.serviceAddress = onvif::chooseXAddr(device.xaddrs, device.senderAddress, 0xFFFFFF00);
        checkFollowed(device.serviceAddress);
        const ndcp_device record = ndcp::recordOf(device);
        FUZZ_EXPECT(record.name[sizeof record.name - 1] == '\0');
        FUZZ_EXPECT(ndcp::fieldText(record.uid) == device.uid);
    }
    return 0;
}
