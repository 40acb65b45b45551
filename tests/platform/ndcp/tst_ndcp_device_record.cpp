#include "platform/ndcp/device_record.h"

#include <gtest/gtest.h>

#include <cstring>

namespace ndcp {

namespace {

onvif::DiscoveredDevice door()
{
    onvif::DiscoveredDevice device;
    device.uid = "4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101";
    device.name = "Door";
    device.model = "ZC-1";
    device.location = "Hall";
    device.mac = onvif::MacAddress{0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e};
    device.senderAddress = "192.0.2.20";
    device.serviceAddress = "http://192.0.2.20:8080/onvif/device_service";
    return device;
}

} // namespace

TEST(DeviceRecord, IsFilledToTheByte)
{
    const ndcp_device record = recordOf(door());
    std::string expected(408, '\0');
    const auto put = [&expected](std::size_t offset, const std::string &bytes) {
        expected.replace(offset, bytes.size(), bytes);
    };
    const std::uint32_t ip = 0xC0000214;
    const std::int16_t port = 80; // of the web pages, not of the device service
    put(0, std::string("\x00\x1a\x2b\x3c\x4d\x5e", 6));
    put(6, std::string("\xC5\x00\x00\x50", 4));
    put(16, std::string(reinterpret_cast<const char *>(&ip), 4));
    put(20, std::string(reinterpret_cast<const char *>(&port), 2));
    put(22, "ZC-1");
    put(54, "Door");
    put(86, "Hall");
    put(214, "4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101");
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(&record), sizeof record), expected);
}

TEST(DeviceRecord, HasTheIpv4AddressThatADeviceSaysByIpv6)
{
    onvif::DiscoveredDevice device = door();
    device.senderAddress = "fe80::1%eth0";
    device.serviceAddress = "http://[fe80::1%25eth0]:8080/onvif/device_service";
    EXPECT_EQ(recordOf(device).ip, 0u);
    device.xaddrs = {"http://[fe80::1]:8080/d", "http://cam.lan/d", "http://192.0.2.21:8080/d"};
    EXPECT_EQ(recordOf(device).ip, 0xC0000215u);
}

TEST(DeviceRecord, CutsTextsBetweenCharacters)
{
    onvif::DiscoveredDevice device = door();
    device.name = std::string(30, 'n') + "\u00e9";
    device.model = std::string(31, 'm') + "x";
    device.location = std::string(500, 'l');
    const ndcp_device record = recordOf(device);
    EXPECT_STREQ(record.name, std::string(30, 'n').c_str());
    EXPECT_STREQ(record.model, std::string(31, 'm').c_str());
    EXPECT_EQ(std::strlen(record.location), 127u);
}

TEST(DeviceRecord, KeepsHighPortsInItsSignedField)
{
    const ndcp_device record = recordOf(door(), 50000);
    EXPECT_EQ(record.http_port, -15536);
    EXPECT_EQ(httpPort(record), 50000);
    EXPECT_FALSE(isPortChanged(record));
}

TEST(DeviceRecord, KnowsWhichOfItsPartsWereRead)
{
    ndcp_device record = recordOf(door());
    EXPECT_FALSE(wasRead(record, ReadInterface));
    markRead(record, ReadInterface | ReadDns);
    EXPECT_TRUE(wasRead(record, ReadInterface));
    EXPECT_FALSE(wasRead(record, ReadGateway));
    EXPECT_TRUE(wasRead(record, ReadDns));
    record.http_port = 8080;
    EXPECT_TRUE(isPortChanged(record));
}

TEST(DeviceRecord, TakesForeignBytesInItsOwnForNothingRead)
{
    ndcp_device record = {};
    std::memset(record.reserved, 0xFF, sizeof record.reserved);
    EXPECT_FALSE(wasRead(record, ReadInterface));
    markRead(record, ReadGateway);
    EXPECT_FALSE(wasRead(record, ReadInterface));
    EXPECT_TRUE(wasRead(record, ReadGateway));
}

TEST(DeviceRecord, WithoutAnIpv4AddressHasNone)
{
    onvif::DiscoveredDevice device = door();
    device.mac.reset();
    device.serviceAddress = "http://[fe80::1]/onvif/device_service";
    const ndcp_device record = recordOf(device);
    EXPECT_EQ(record.ip, 0u);
    EXPECT_EQ(record.mac[1], 0);
}

TEST(DeviceRecord, ReadsFieldsThatAreNotTerminated)
{
    ndcp_device record = {};
    std::memset(record.username, 'u', sizeof record.username);
    EXPECT_EQ(fieldText(record.username), std::string(64, 'u'));
    EXPECT_EQ(fieldText(record.password), "");
}

} // namespace ndcp
