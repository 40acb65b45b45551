#include "platform/onvif/ws_discovery_message.h"

#include "tests/platform/onvif/support/discovery_answers.h"

#include <gtest/gtest.h>

namespace onvif {

namespace {

constexpr const char *id = "11111111-2222-4333-8444-555555555555";
constexpr const char *uuid = "4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101";

std::optional<DiscoveryAnswer> answerOf(const std::vector<AnnouncedDevice> &devices,
                                        const std::string &kind = "ProbeMatches")
{
    return parseDiscoveryAnswer(discoveryAnswer(kind, std::string("urn:uuid:") + id, devices));
}

} // namespace

TEST(Probe, IsThisText)
{
    EXPECT_EQ(
        buildProbe(ProbeType::NetworkVideoTransmitter, id),
        R"(<?xml version="1.0" encoding="UTF-8"?>)"
        R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope")"
        R"( xmlns:a="http://schemas.xmlsoap.org/ws/2004/08/addressing")"
        R"( xmlns:d="http://schemas.xmlsoap.org/ws/2005/04/discovery")"
        R"( xmlns:tds="http://www.onvif.org/ver10/device/wsdl")"
        R"( xmlns:dn="http://www.onvif.org/ver10/network/wsdl">)"
        R"(<s:Header>)"
        R"(<a:Action s:mustUnderstand="1">http://schemas.xmlsoap.org/ws/2005/04/discovery/Probe</a:Action>)"
        R"(<a:MessageID>urn:uuid:11111111-2222-4333-8444-555555555555</a:MessageID>)"
        R"(<a:ReplyTo><a:Address>http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous</a:Address></a:ReplyTo>)"
        R"(<a:To s:mustUnderstand="1">urn:schemas-xmlsoap-org:ws:2005:04:discovery</a:To>)"
        R"(</s:Header><s:Body><d:Probe><d:Types>dn:NetworkVideoTransmitter</d:Types></d:Probe>)"
        R"(</s:Body></s:Envelope>)");
    EXPECT_NE(buildProbe(ProbeType::Device, id).find("<d:Types>tds:Device</d:Types>"),
              std::string::npos);
}

TEST(Resolve, NamesTheEndpoint)
{
    EXPECT_NE(buildResolve(uuid, id).find(std::string("<a:Address>urn:uuid:") + uuid +
                                          "</a:Address></a:EndpointReference></d:Resolve>"),
              std::string::npos);
    EXPECT_NE(buildResolve("ZC:1", id).find("<a:Address>ZC:1</a:Address>"), std::string::npos);
}

TEST(DiscoveryAnswer, TellsTheDevice)
{
    for (const char *kind : {"ProbeMatches", "ResolveMatches"}) {
        const auto answer = answerOf({AnnouncedDevice{}}, kind);
        ASSERT_TRUE(answer) << kind;
        EXPECT_EQ(answer->relatesTo, id);
        ASSERT_EQ(answer->devices.size(), 1u);
        const DiscoveredDevice &device = answer->devices[0];
        EXPECT_EQ(device.uid, uuid);
        EXPECT_EQ(device.name, "Door");
        EXPECT_EQ(device.model, "ZC-1");
        EXPECT_EQ(device.location, "Hall");
        ASSERT_EQ(device.xaddrs.size(), 1u);
        EXPECT_EQ(device.xaddrs[0], "http://127.0.0.1:8080/onvif/device_service");
    }
}

TEST(DiscoveryAnswer, CanBeAHello)
{
    const auto answer = parseDiscoveryAnswer(
        R"(<e:Envelope xmlns:e="http://www.w3.org/2003/05/soap-envelope"><e:Header/><e:Body>)"
        R"(<d:Hello xmlns:d="http://schemas.xmlsoap.org/ws/2005/04/discovery">)"
        R"(<a:EndpointReference xmlns:a="http://schemas.xmlsoap.org/ws/2004/08/addressing">)"
        R"(<a:Address>urn:uuid:4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101</a:Address>)"
        R"(</a:EndpointReference><d:Types>dn:NetworkVideoTransmitter</d:Types>)"
        R"(<d:XAddrs>http://192.168.1.20/a http://10.0.0.1/b</d:XAddrs></d:Hello>)"
        R"(</e:Body></e:Envelope>)");
    ASSERT_TRUE(answer);
    ASSERT_EQ(answer->devices.size(), 1u);
    EXPECT_EQ(answer->devices[0].uid, uuid);
    EXPECT_EQ(answer->devices[0].xaddrs.size(), 2u);
    EXPECT_EQ(answer->relatesTo, "");
}

TEST(DiscoveryAnswer, LeavesOutDevicesThatAreNoCameras)
{
    AnnouncedDevice printer;
    printer.types = "wprt:PrintService wsdp:Device";
    printer.scopes = "ldap:///ou=printers";
    const auto answer = answerOf({printer});
    ASSERT_TRUE(answer);
    EXPECT_TRUE(answer->devices.empty());
}

TEST(DiscoveryAnswer, LeavesOutUidsWithPathCharacters)
{
    AnnouncedDevice evil;
    evil.endpoint = "urn:uuid:../../../home";
    AnnouncedDevice dots;
    dots.endpoint = "..";
    AnnouncedDevice nameless;
    nameless.endpoint = "";
    const auto answer = answerOf({evil, dots, nameless, AnnouncedDevice{}});
    ASSERT_TRUE(answer);
    ASSERT_EQ(answer->devices.size(), 1u);
    EXPECT_EQ(answer->devices[0].uid, uuid);
}

TEST(DiscoveryAnswer, CutsAndCleansTexts)
{
    AnnouncedDevice device;
    device.scopes = "onvif://www.onvif.org/name/" + std::string(5'000, 'n') +
                    " onvif://www.onvif.org/hardware/a%0D%0Ab";
    const auto answer = answerOf({device});
    ASSERT_TRUE(answer);
    ASSERT_EQ(answer->devices.size(), 1u);
    EXPECT_EQ(answer->devices[0].name.size(), maxScopeText);
    EXPECT_EQ(answer->devices[0].model, "a  b");
}

TEST(DiscoveryAnswer, LimitsItsLists)
{
    AnnouncedDevice device;
    device.xaddrs.clear();
    for (int i = 0; i < 500; ++i)
        device.xaddrs += "http://1.2.3.4/" + std::to_string(i) + ' ';
    const auto answer = answerOf(std::vector<AnnouncedDevice>(80, device));
    ASSERT_FALSE(answer) << "larger than a datagram";
    const auto smaller = answerOf({device});
    ASSERT_TRUE(smaller);
    EXPECT_EQ(smaller->devices[0].xaddrs.size(), 16u);
    const auto crowd = answerOf(std::vector<AnnouncedDevice>(100));
    ASSERT_TRUE(crowd);
    EXPECT_EQ(crowd->devices.size(), maxDevicesInAnswer);
}

TEST(DiscoveryAnswer, IsNothingElse)
{
    const std::string whole = discoveryAnswer("ProbeMatches", id, {AnnouncedDevice{}});
    for (std::size_t length = 0; length < whole.size(); length += 7)
        EXPECT_FALSE(parseDiscoveryAnswer(whole.substr(0, length))) << length;
    EXPECT_FALSE(parseDiscoveryAnswer(buildProbe(ProbeType::Device, id)));
    EXPECT_FALSE(parseDiscoveryAnswer(std::string(maxDatagram + 1, ' ')));
    EXPECT_FALSE(parseDiscoveryAnswer(std::string(1'000, '\0')));
}

} // namespace onvif
