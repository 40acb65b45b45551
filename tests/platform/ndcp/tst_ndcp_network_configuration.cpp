#include "platform/ndcp/network_configuration.h"

#include "platform/ndcp/device_record.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ndcp {

namespace {

NetworkConfiguration configuration()
{
    NetworkConfiguration current;
    current.interface.token = "eth0";
    current.interface.hasIpv4 = true;
    current.interface.mac = onvif::MacAddress{0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e};
    current.interface.address = 0xC0A80114;
    current.interface.prefixLength = 24;
    current.gateway = 0xC0A80101;
    current.dns = onvif::DnsInformation{false, {0x08080808, 0x09090909, 0x01010101}};
    current.protocols = {
        {"HTTPS", true, {443}}, {"HTTP", true, {80, 8080}}, {"RTSP", false, {554}}};
    current.scopes = {{"onvif://www.onvif.org/type/video", true},
                      {"onvif://www.onvif.org/name/Door", false},
                      {"onvif://www.onvif.org/location/Hall", false},
                      {"onvif://www.onvif.org/extra/1", false}};
    return current;
}

ndcp_device filled()
{
    ndcp_device record = {};
    fillRecord(record, configuration());
    return record;
}

ConfigurationChange changeOf(const ndcp_device &record, const NetworkConfiguration &current)
{
    const std::optional<ConfigurationChange> change = changeTo(record, current);
    EXPECT_TRUE(change);
    return change.value_or(ConfigurationChange());
}

// A port as the user types it.
void typePort(ndcp_device &record, int port)
{
    record.http_port = static_cast<std::int16_t>(port);
}

bool isNothing(const ConfigurationChange &change)
{
    return !change.scopes && !change.dns && !change.gateway && !change.protocols &&
           !change.interface;
}

} // namespace

TEST(NetworkConfiguration, FillsTheRecord)
{
    const ndcp_device record = filled();
    EXPECT_EQ(record.mac[5], 0x5e);
    EXPECT_EQ(record.ip, 0xC0A80114u);
    EXPECT_EQ(record.mask, 0xFFFFFF00u);
    EXPECT_EQ(record.gateway, 0xC0A80101u);
    EXPECT_EQ(record.manual_ip, 1u);
    EXPECT_EQ(record.manual_dns, 1u);
    EXPECT_EQ(record.dns1, 0x08080808u);
    EXPECT_EQ(record.dns2, 0x09090909u);
    EXPECT_EQ(record.http_port, 80);
    EXPECT_STREQ(record.name, "Door");
    EXPECT_STREQ(record.location, "Hall");
}

TEST(NetworkConfiguration, FillsAutomaticAssignments)
{
    NetworkConfiguration current = configuration();
    current.interface.dhcp = true;
    current.dns = onvif::DnsInformation{true, {}};
    ndcp_device record = filled();
    fillRecord(record, current);
    EXPECT_EQ(record.manual_ip, 0u);
    EXPECT_EQ(record.manual_dns, 0u);
    EXPECT_EQ(record.dns1, 0u);
    EXPECT_EQ(record.dns2, 0u);
}

TEST(NetworkConfiguration, LeavesWhatTheDeviceDoesNotTell)
{
    ndcp_device record = filled();
    setField(record.model, "ZC-1");
    NetworkConfiguration silent;
    silent.interface.hasIpv4 = true;
    const ndcp_device before = record;
    fillRecord(record, silent);
    EXPECT_EQ(record.ip, before.ip);
    EXPECT_EQ(record.gateway, before.gateway);
    EXPECT_EQ(record.dns2, before.dns2);
    EXPECT_EQ(record.http_port, before.http_port);
    EXPECT_STREQ(record.name, "Door");
    EXPECT_STREQ(record.model, "ZC-1");
}

TEST(NetworkConfiguration, ChangesNothingThatIsRight)
{
    EXPECT_TRUE(isNothing(changeOf(filled(), configuration())));
}

TEST(NetworkConfiguration, DoesNotTakeCutTextsForChanges)
{
    NetworkConfiguration current = configuration();
    (*current.scopes)[1].uri = "onvif://www.onvif.org/name/" + std::string(60, 'n');
    ndcp_device record = filled();
    fillRecord(record, current);
    EXPECT_TRUE(isNothing(changeOf(record, current)));
}

TEST(NetworkConfiguration, ChangesTheAddress)
{
    ndcp_device record = filled();
    record.ip = 0xC0A80115;
    record.mask = 0xFFFF0000;
    const ConfigurationChange change = changeOf(record, configuration());
    ASSERT_TRUE(change.interface);
    EXPECT_EQ(change.interface->token, "eth0");
    EXPECT_FALSE(change.interface->dhcp);
    EXPECT_EQ(change.interface->address, 0xC0A80115u);
    EXPECT_EQ(change.interface->prefixLength, 16);
    EXPECT_FALSE(change.gateway || change.dns || change.protocols || change.scopes);
}

TEST(NetworkConfiguration, ChangesToAutomaticAssignment)
{
    ndcp_device record = filled();
    record.manual_ip = 0;
    record.manual_dns = 0;
    record.gateway = 0;
    const ConfigurationChange change = changeOf(record, configuration());
    ASSERT_TRUE(change.interface);
    EXPECT_TRUE(change.interface->dhcp);
    ASSERT_TRUE(change.dns);
    EXPECT_TRUE(change.dns->dhcp);
    EXPECT_FALSE(change.gateway) << "comes with the address";
}

TEST(NetworkConfiguration, ChangesDnsGatewayAndPort)
{
    ndcp_device record = filled();
    record.dns1 = 0;
    record.dns2 = 0x0A000001;
    record.gateway = 0xC0A801FE;
    typePort(record, 50000);
    const ConfigurationChange change = changeOf(record, configuration());
    ASSERT_TRUE(change.dns);
    EXPECT_EQ(change.dns->servers, (std::vector<onvif::Ipv4>{0x0A000001}));
    EXPECT_EQ(change.gateway, 0xC0A801FEu);
    ASSERT_TRUE(change.protocols);
    ASSERT_EQ(change.protocols->size(), 3u) << "what is not changed goes back as it was";
    EXPECT_EQ(change.protocols->at(0).name, "HTTPS");
    EXPECT_EQ(change.protocols->at(1).name, "HTTP");
    EXPECT_EQ(change.protocols->at(1).ports, (std::vector<int>{50000, 8080}));
    EXPECT_EQ(change.protocols->at(2).name, "RTSP");
    EXPECT_FALSE(change.protocols->at(2).isEnabled);
    EXPECT_FALSE(change.interface);
}

TEST(NetworkConfiguration, KeepsTheOtherScopesWhenTextsChange)
{
    ndcp_device record = filled();
    setField(record.name, "Back door");
    const ConfigurationChange change = changeOf(record, configuration());
    ASSERT_TRUE(change.scopes);
    EXPECT_EQ(*change.scopes, (std::vector<std::string>{"onvif://www.onvif.org/location/Hall",
                                                        "onvif://www.onvif.org/extra/1",
                                                        "onvif://www.onvif.org/name/Back%20door"}));
}

TEST(NetworkConfiguration, WritesWhatTheDeviceCouldNotTellOnlyWhenThereIsSomething)
{
    NetworkConfiguration silent;
    silent.interface = configuration().interface;
    ndcp_device record = filled();
    EXPECT_EQ(changeOf(record, silent).dns->servers.size(), 2u);
    EXPECT_EQ(changeOf(record, silent).gateway, 0xC0A80101u);
    record.dns1 = record.dns2 = record.gateway = 0;
    EXPECT_TRUE(isNothing(changeOf(record, silent)));
}

TEST(NetworkConfiguration, LeavingDhcpWritesTheGatewayOfTheLease)
{
    NetworkConfiguration current = configuration();
    current.interface.dhcp = true;
    ndcp_device record = {};
    fillRecord(record, current);
    EXPECT_TRUE(isNothing(changeOf(record, current)));
    record.manual_ip = 1;
    const ConfigurationChange change = changeOf(record, current);
    ASSERT_TRUE(change.interface);
    EXPECT_FALSE(change.interface->dhcp);
    EXPECT_EQ(change.gateway, 0xC0A80101u);
    record.gateway = 0;
    EXPECT_EQ(changeOf(record, current).gateway, 0u) << "taken away by the user";
}

TEST(NetworkConfiguration, WritesNothingOfANetworkThatWasNeverRead)
{
    ndcp_device record = recordOf({});
    setField(record.name, "Door");
    setField(record.location, "Attic");
    const ConfigurationChange change = changeOf(record, configuration());
    EXPECT_TRUE(change.scopes);
    EXPECT_FALSE(change.dns || change.gateway || change.protocols || change.interface);
}

TEST(NetworkConfiguration, RefusesValuesAboveANetworkThatWasNeverRead)
{
    const auto isRefused = [](void (*touch)(ndcp_device &)) {
        ndcp_device record = recordOf({});
        touch(record);
        return !changeTo(record, configuration());
    };
    EXPECT_TRUE(isRefused([](ndcp_device &record) { record.manual_ip = 1; }));
    EXPECT_TRUE(isRefused([](ndcp_device &record) { record.mask = 0xFFFFFF00; }));
    EXPECT_TRUE(isRefused([](ndcp_device &record) { record.gateway = 1; }));
    EXPECT_TRUE(isRefused([](ndcp_device &record) { record.manual_dns = 1; }));
    EXPECT_TRUE(isRefused([](ndcp_device &record) { record.dns1 = 1; }));
    EXPECT_TRUE(isRefused([](ndcp_device &record) { record.dns2 = 1; }));
    EXPECT_TRUE(isRefused([](ndcp_device &record) { record.http_port = 8080; }));
    EXPECT_FALSE(isRefused([](ndcp_device &) {}));
}

TEST(NetworkConfiguration, LeavesWhatTheDeviceCouldNotTellWhenItWasRead)
{
    NetworkConfiguration silent;
    silent.interface = configuration().interface;
    ndcp_device record = recordOf({});
    fillRecord(record, silent);
    // Now it reports them: its gateway and its servers stay.
    EXPECT_TRUE(isNothing(changeOf(record, [] {
        NetworkConfiguration current = configuration();
        current.scopes.reset();
        return current;
    }())));
}

TEST(NetworkConfiguration, KeepsAPortThatTheUserDidNotTouch)
{
    const ndcp_device record = filled();
    NetworkConfiguration current = configuration();
    (*current.protocols)[1].ports.front() = 8000;
    EXPECT_FALSE(changeOf(record, current).protocols);
}

TEST(NetworkConfiguration, WritesOnlyWhatTheUserTouchedOfWhatWasRead)
{
    const ndcp_device base = filled();
    NetworkConfiguration now = configuration();
    now.interface.dhcp = true;
    now.gateway = 0xC0A801FE;
    now.dns = onvif::DnsInformation{true, {}};
    (*now.scopes)[1].uri = "onvif://www.onvif.org/name/Other";
    ndcp_device record = base;
    setField(record.location, "Attic");
    const auto change = changeTo(record, now, base);
    ASSERT_TRUE(change);
    EXPECT_FALSE(change->dns || change->gateway || change->protocols || change->interface);
    ASSERT_TRUE(change->scopes);
    EXPECT_NE(std::find(change->scopes->begin(), change->scopes->end(),
                        "onvif://www.onvif.org/name/Other"),
              change->scopes->end());
    record.ip = 0xC0A80115;
    record.dns1 = 0x01020304;
    record.gateway = 0xC0A80102;
    const auto more = changeTo(record, now, base);
    EXPECT_TRUE(more->interface && more->dns && more->gateway);
}

TEST(NetworkConfiguration, WritesSeveralLocationsAsSeveral)
{
    NetworkConfiguration current = configuration();
    current.scopes->push_back({"onvif://www.onvif.org/location/city/Rome", false});
    ndcp_device record = {};
    fillRecord(record, current);
    ASSERT_STREQ(record.location, "Hall, city/Rome");
    setField(record.location, "Hall 2, city/New York");
    const ConfigurationChange change = changeOf(record, current);
    ASSERT_TRUE(change.scopes);
    EXPECT_EQ(*change.scopes,
              (std::vector<std::string>{"onvif://www.onvif.org/name/Door",
                                        "onvif://www.onvif.org/extra/1",
                                        "onvif://www.onvif.org/location/Hall%202",
                                        "onvif://www.onvif.org/location/city/New%20York"}));
    setField(record.location, "");
    EXPECT_EQ(changeOf(record, current).scopes->size(), 2u);
}

TEST(NetworkConfiguration, KeepsNamesThatAreNotAscii)
{
    NetworkConfiguration current = configuration();
    (*current.scopes)[1].uri = "onvif://www.onvif.org/name/T%C3%BCr";
    ndcp_device record = {};
    fillRecord(record, current);
    EXPECT_STREQ(record.name, "T\u00fcr");
    EXPECT_TRUE(isNothing(changeOf(record, current)));
}

TEST(NetworkConfiguration, ChoosesTheInterfaceThatAnswered)
{
    onvif::NetworkInterface bare;
    onvif::NetworkInterface disabled;
    disabled.token = "wlan0";
    disabled.hasIpv4 = true;
    disabled.isEnabled = false;
    onvif::NetworkInterface first = configuration().interface;
    onvif::NetworkInterface second = first;
    second.token = "eth1";
    second.address = 0x0A000002;
    EXPECT_EQ(chooseInterface({bare, disabled, first, second}, 0x0A000002)->token, "eth1");
    EXPECT_EQ(chooseInterface({bare, disabled, first, second}, 0x7F000001)->token, "eth0");
    EXPECT_EQ(chooseInterface({bare, disabled}, 1)->token, "wlan0");
    EXPECT_FALSE(chooseInterface({bare}, 1));
    onvif::NetworkInterface unconnected = first;
    unconnected.token = "eth2";
    unconnected.address = 0;
    unconnected.isEnabled = false;
    EXPECT_EQ(chooseInterface({unconnected, first}, 0)->token, "eth0") << "reached by a name";
    EXPECT_FALSE(chooseInterface({}, 1));
}

} // namespace ndcp
