#include "platform/onvif/camera_lookup.h"
#include "tests/platform/ndcp/client_harness.h"
#include "tests/platform/ndcp/private_networks.h"
#include "tests/platform/onvif/support/soap_device.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>

namespace {

constexpr const char *onlyIpv6 = "11111111-8f6b-4c57-9a55-3f1d50e6a101";
constexpr const char *both = "22222222-8f6b-4c57-9a55-3f1d50e6a101";

std::string xaddrOf(const TestContext &context, onvif::CameraLookup &lookup, const std::string &uid)
{
    std::optional<std::string> xaddr;
    const onvif::RequestPtr request = lookup.resolve(
        uid,
        [&xaddr](const std::optional<onvif::CameraLocation> &location) {
            xaddr = location ? location->xaddr : "not found";
        });
    EXPECT_TRUE(context.runUntil([&xaddr] { return xaddr.has_value(); }));
    return xaddr.value_or("");
}

} // namespace

// Every interface has the same link-local network: only the interface tells the devices apart.
TEST(NdcpNetworksIpv6, AreSearchedOnEveryInterface)
{
    const std::string obstacle = PrivateNetworks::enter();
    if (!obstacle.empty())
        GTEST_SKIP() << obstacle;
    if (const std::string missing = PrivateNetworks::missingIpv6(); !missing.empty())
        GTEST_SKIP() << missing;
    g_unsetenv("ZELVARO_DISCOVERY_TARGETS");
    g_unsetenv("ZELVARO_DISCOVERY_MULTICAST");
    PrivateNetworks networks;
    ASSERT_TRUE(networks.addDevice(1, onlyIpv6, PrivateNetworks::Answers::Ipv6));
    ASSERT_TRUE(networks.addDevice(2, both, PrivateNetworks::Answers::Both));
    const TestContext context;

    ClientHarness client(context);
    std::map<std::string, ndcp_device> devices;
    for (const ndcp_device &device : client.search())
        devices[device.uid] = device;
    ASSERT_EQ(devices.size(), 2u);
    EXPECT_EQ(devices.at(onlyIpv6).ip, 0u) << "it has not said an IPv4 address";
    EXPECT_EQ(devices.at(both).ip, 0x0A4D0202u);

    onvif::CameraLookup lookup(context.get());
    EXPECT_EQ(xaddrOf(context, lookup, onlyIpv6), "http://[fe80::77:2%25" +
                                                      PrivateNetworks::interfaceName(1) +
                                                      "]:8899/onvif/device_service");
    EXPECT_EQ(xaddrOf(context, lookup, both), "http://10.77.2.2:8899/onvif/device_service")
        << "IPv4 goes first";

    // A service at such an address is reached.
    SoapDevice service(context, "fe80::77:1%" + PrivateNetworks::interfaceName(2));
    service.answer("GetNetworkProtocols",
                   "<tds:GetNetworkProtocolsResponse><tds:NetworkProtocols><tt:Name>HTTP</tt:Name>"
                   "<tt:Enabled>true</tt:Enabled><tt:Port>8088</tt:Port></tds:NetworkProtocols>"
                   "</tds:GetNetworkProtocolsResponse>");
    std::optional<int> port;
    const onvif::RequestPtr request = lookup.webServer(
        service.service(), {},
        [&port](const std::optional<onvif::WebServer> &server) {
            port = server ? server->port : 0;
        });
    EXPECT_TRUE(context.runUntil([&port] { return port.has_value(); }));
    EXPECT_EQ(port, 8088);
}
