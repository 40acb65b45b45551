#include "platform/onvif/camera_lookup.h"
#include "tests/platform/ndcp/client_harness.h"
#include "tests/platform/ndcp/private_networks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace {

constexpr const char *firstUid = "11111111-8f6b-4c57-9a55-3f1d50e6a101";
constexpr const char *secondUid = "22222222-8f6b-4c57-9a55-3f1d50e6a101";

std::map<std::string, ndcp_device> searchByUid(const TestContext &context)
{
    ClientHarness client(context);
    std::map<std::string, ndcp_device> devices;
    for (const ndcp_device &device : client.search())
        devices[device.uid] = device;
    return devices;
}

} // namespace

// Two networks without a default route between them: what leaves on one interface only finds one
// device.
TEST(NdcpNetworks, AreSearchedOnEveryInterfaceThatIsUp)
{
    const std::string obstacle = PrivateNetworks::enter();
    if (!obstacle.empty())
        GTEST_SKIP() << obstacle;
    g_unsetenv("ZELVARO_DISCOVERY_TARGETS");
    g_unsetenv("ZELVARO_DISCOVERY_MULTICAST");
    PrivateNetworks networks;
    ASSERT_TRUE(networks.addDevice(1, firstUid));
    ASSERT_TRUE(networks.addDevice(2, secondUid));
    const TestContext context;

    const auto both = searchByUid(context);
    ASSERT_EQ(both.size(), 2u);
    const ndcp_device &first = both.at(firstUid);
    EXPECT_EQ(first.ip, 0x0A4D0102u) << "of its addresses the one in the sender's subnet";
    EXPECT_EQ(first.http_port, 80);
    EXPECT_EQ(both.at(secondUid).ip, 0x0A4D0202u);
    // Neither device reports its hardware address: it is that of the neighbour.
    EXPECT_THAT(first.mac, testing::ElementsAre(0x02, 0x5a, 0, 0, 0, 1));
    EXPECT_THAT(both.at(secondUid).mac, testing::ElementsAre(0x02, 0x5a, 0, 0, 0, 2));

    onvif::CameraLookup lookup(context.get());
    std::string service;
    const onvif::RequestPtr located = lookup.locate(
        "10.77.2.2", [&service](const onvif::CameraLocation &found) { service = found.xaddr; });
    EXPECT_TRUE(context.runUntil([&service] { return !service.empty(); }));
    EXPECT_EQ(service, "http://10.77.2.2:8899/onvif/device_service")
        << "found by multicast, and not the other one";

    ASSERT_TRUE(PrivateNetworks::takeDown(1));
    const auto rest = searchByUid(context);
    EXPECT_EQ(rest.size(), 1u);
    EXPECT_TRUE(rest.contains(secondUid));
}
