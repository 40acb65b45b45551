#include "platform/onvif/device_message.h"

#include "platform/onvif/xml_message.h"

#include <gtest/gtest.h>

namespace onvif {

namespace {

XmlMessage parsed(const std::string &body)
{
    auto message = XmlMessage::parse("<Envelope><Body>" + body + "</Body></Envelope>");
    EXPECT_TRUE(message) << body;
    return std::move(*message);
}

std::string interfaces(const std::string &config)
{
    return "<tds:GetNetworkInterfacesResponse><tds:NetworkInterfaces token=\"eth0\">"
           "<tt:Enabled>true</tt:Enabled><tt:Info><tt:Name>eth0</tt:Name>"
           "<tt:HwAddress>00:1a:2b:3c:4d:5e</tt:HwAddress></tt:Info>"
           "<tt:IPv4><tt:Enabled>true</tt:Enabled><tt:Config>" +
           config +
           "</tt:Config></tt:IPv4></tds:NetworkInterfaces></tds:GetNetworkInterfacesResponse>";
}

std::string place(const std::string &name, const std::string &address, int prefix)
{
    return "<tt:" + name + "><tt:Address>" + address + "</tt:Address><tt:PrefixLength>" +
           std::to_string(prefix) + "</tt:PrefixLength></tt:" + name + '>';
}

} // namespace

TEST(DeviceMessage, BuildsTheInterfaceSetup)
{
    EXPECT_EQ(buildSetNetworkInterfaces({"eth0", false, 0xC0A80115, 24}),
              "<tds:SetNetworkInterfaces><tds:InterfaceToken>eth0</tds:InterfaceToken>"
              "<tds:NetworkInterface><tt:Enabled>true</tt:Enabled><tt:IPv4>"
              "<tt:Enabled>true</tt:Enabled><tt:Manual><tt:Address>192.168.1.21</tt:Address>"
              "<tt:PrefixLength>24</tt:PrefixLength></tt:Manual><tt:DHCP>false</tt:DHCP>"
              "</tt:IPv4></tds:NetworkInterface></tds:SetNetworkInterfaces>");
    EXPECT_EQ(buildSetNetworkInterfaces({"<0>", true, 1, 2}),
              "<tds:SetNetworkInterfaces><tds:InterfaceToken>&lt;0&gt;</tds:InterfaceToken>"
              "<tds:NetworkInterface><tt:Enabled>true</tt:Enabled><tt:IPv4>"
              "<tt:Enabled>true</tt:Enabled><tt:DHCP>true</tt:DHCP>"
              "</tt:IPv4></tds:NetworkInterface></tds:SetNetworkInterfaces>");
}

TEST(DeviceMessage, BuildsTheOtherSetups)
{
    EXPECT_EQ(buildSetNetworkDefaultGateway(0xC0A80101),
              "<tds:SetNetworkDefaultGateway><tds:IPv4Address>192.168.1.1</tds:IPv4Address>"
              "</tds:SetNetworkDefaultGateway>");
    EXPECT_EQ(buildSetDns({false, {0x08080808}}),
              "<tds:SetDNS><tds:FromDHCP>false</tds:FromDHCP><tds:DNSManual>"
              "<tt:Type>IPv4</tt:Type><tt:IPv4Address>8.8.8.8</tt:IPv4Address></tds:DNSManual>"
              "</tds:SetDNS>");
    EXPECT_EQ(buildSetDns({true, {0x08080808}}),
              "<tds:SetDNS><tds:FromDHCP>true</tds:FromDHCP></tds:SetDNS>");
    EXPECT_EQ(buildSetNetworkProtocols({{"HTTP", true, {8080}}}),
              "<tds:SetNetworkProtocols><tds:NetworkProtocols><tt:Name>HTTP</tt:Name>"
              "<tt:Enabled>true</tt:Enabled><tt:Port>8080</tt:Port></tds:NetworkProtocols>"
              "</tds:SetNetworkProtocols>");
    EXPECT_EQ(buildSetScopes({"onvif://www.onvif.org/name/a&b"}),
              "<tds:SetScopes><tds:Scopes>onvif://www.onvif.org/name/a&amp;b</tds:Scopes>"
              "</tds:SetScopes>");
}

TEST(DeviceMessage, ReadsInterfacesWithAManualAddress)
{
    const auto found = parseNetworkInterfaces(
        parsed(interfaces(place("Manual", "192.168.1.20", 24) + "<tt:DHCP>false</tt:DHCP>")));
    ASSERT_TRUE(found);
    ASSERT_EQ(found->size(), 1u);
    const NetworkInterface &first = found->front();
    EXPECT_EQ(first.token, "eth0");
    EXPECT_TRUE(first.isEnabled);
    EXPECT_TRUE(first.hasIpv4);
    EXPECT_FALSE(first.dhcp);
    EXPECT_EQ(first.address, 0xC0A80114u);
    EXPECT_EQ(first.prefixLength, 24);
    EXPECT_EQ(first.mac, (MacAddress{0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e}));
}

TEST(DeviceMessage, ReadsTheAddressThatIsInUse)
{
    const std::string both = place("Manual", "192.168.1.20", 24) + place("FromDHCP", "10.0.0.7", 8);
    const auto dhcp = parseNetworkInterfaces(parsed(interfaces(both + "<tt:DHCP>true</tt:DHCP>")));
    EXPECT_EQ(dhcp->front().address, 0x0A000007u);
    EXPECT_EQ(dhcp->front().prefixLength, 8);
    EXPECT_TRUE(dhcp->front().dhcp);
    const auto manual =
        parseNetworkInterfaces(parsed(interfaces(both + "<tt:DHCP>false</tt:DHCP>")));
    EXPECT_EQ(manual->front().address, 0xC0A80114u);
    const auto linkLocal = parseNetworkInterfaces(
        parsed(interfaces(place("LinkLocal", "169.254.3.4", 16) + place("Manual", "0.0.0.0", 0) +
                          "<tt:DHCP>true</tt:DHCP>")));
    EXPECT_EQ(linkLocal->front().address, 0xA9FE0304u);
}

TEST(DeviceMessage, ReadsBrokenInterfacesAsFarAsTheyGo)
{
    const auto broken = parseNetworkInterfaces(
        parsed(interfaces(place("Manual", "999.1.1.1", 24) + "<tt:DHCP>maybe</tt:DHCP>")));
    ASSERT_TRUE(broken);
    EXPECT_EQ(broken->front().address, 0u);
    const auto wide =
        parseNetworkInterfaces(parsed(interfaces(place("Manual", "10.0.0.1", 4'000))));
    EXPECT_EQ(wide->front().prefixLength, 32);
    EXPECT_TRUE(parseNetworkInterfaces(parsed("<GetNetworkInterfacesResponse/>"))->empty());
    EXPECT_FALSE(parseNetworkInterfaces(parsed("<GetScopesResponse/>")));
    std::string many;
    for (int i = 0; i < 1'000; ++i)
        many += "<NetworkInterfaces token=\"a\"/>";
    EXPECT_LE(parseNetworkInterfaces(parsed("<GetNetworkInterfacesResponse>" + many +
                                            "</GetNetworkInterfacesResponse>"))
                  ->size(),
              64u);
}

TEST(DeviceMessage, ReadsGatewayAndDns)
{
    EXPECT_EQ(parseNetworkDefaultGateway(parsed(
                  "<GetNetworkDefaultGatewayResponse><NetworkGateway>"
                  "<IPv4Address>192.168.1.1</IPv4Address><IPv4Address>192.168.1.2</IPv4Address>"
                  "</NetworkGateway></GetNetworkDefaultGatewayResponse>")),
              0xC0A80101u);
    EXPECT_EQ(parseNetworkDefaultGateway(parsed("<GetNetworkDefaultGatewayResponse/>")), 0u);
    const std::string servers =
        "<DNSFromDHCP><Type>IPv4</Type><IPv4Address>10.0.0.1</IPv4Address></DNSFromDHCP>"
        "<DNSManual><Type>IPv4</Type><IPv4Address>8.8.8.8</IPv4Address></DNSManual>"
        "<DNSManual><Type>IPv6</Type><IPv6Address>fe80::1</IPv6Address></DNSManual>"
        "<DNSManual><Type>IPv4</Type><IPv4Address>9.9.9.9</IPv4Address></DNSManual>";
    const auto dns = [&servers](const std::string &fromDhcp) {
        return parseDns(parsed("<GetDNSResponse><DNSInformation><FromDHCP>" + fromDhcp +
                               "</FromDHCP>" + servers + "</DNSInformation></GetDNSResponse>"));
    };
    EXPECT_EQ(dns("false")->servers, (std::vector<Ipv4>{0x08080808, 0x09090909}));
    EXPECT_EQ(dns("true")->servers, (std::vector<Ipv4>{0x0A000001}));
    EXPECT_TRUE(dns("true")->dhcp);
}

TEST(DeviceMessage, FindsTheWebServerAmongTheProtocols)
{
    const NetworkProtocol rtsp = {.name = "RTSP", .isEnabled = true, .ports = {554}};
    const NetworkProtocol http = {.name = "HTTP", .isEnabled = true, .ports = {8088, 80}};
    const NetworkProtocol https = {.name = "HTTPS", .isEnabled = true, .ports = {8443}};
    NetworkProtocol off = http;
    off.isEnabled = false;
    NetworkProtocol nowhere = https;
    nowhere.ports.clear();
    EXPECT_EQ(webServerOf({rtsp, https, http}), (WebServer{.port = 8088, .tls = false}));
    EXPECT_EQ(webServerOf({rtsp, https, http}, true), (WebServer{.port = 8443, .tls = true}));
    EXPECT_EQ(webServerOf({off, https}), (WebServer{.port = 8443, .tls = true}));
    EXPECT_EQ(webServerOf({http, nowhere}, true), (WebServer{.port = 8088, .tls = false}));
    EXPECT_EQ(webServerOf({rtsp, off, nowhere}), std::nullopt);
    EXPECT_EQ(webServerOf({}), std::nullopt);
}

TEST(DeviceMessage, ReadsProtocolsScopesAndInformation)
{
    const auto protocols = parseNetworkProtocols(
        parsed("<GetNetworkProtocolsResponse>"
               "<NetworkProtocols><Name>HTTP</Name><Enabled>true</Enabled><Port>80</Port>"
               "<Port>70000</Port><Port>-1</Port></NetworkProtocols>"
               "<NetworkProtocols><Name>RTSP</Name><Enabled>0</Enabled><Port>554</Port>"
               "</NetworkProtocols><NetworkProtocols/></GetNetworkProtocolsResponse>"));
    ASSERT_TRUE(protocols);
    ASSERT_EQ(protocols->size(), 2u);
    EXPECT_EQ((*protocols)[0].ports, (std::vector<int>{80}));
    EXPECT_FALSE((*protocols)[1].isEnabled);
    const auto scopes = parseScopes(
        parsed("<GetScopesResponse><Scopes><ScopeDef>Fixed</ScopeDef><ScopeItem>a</ScopeItem>"
               "</Scopes><Scopes><ScopeDef>Configurable</ScopeDef><ScopeItem>b</ScopeItem>"
               "</Scopes></GetScopesResponse>"));
    ASSERT_TRUE(scopes);
    ASSERT_EQ(scopes->size(), 2u);
    EXPECT_TRUE((*scopes)[0].isFixed);
    EXPECT_EQ((*scopes)[1].uri, "b");
    const auto information =
        parseDeviceInformation(parsed("<GetDeviceInformationResponse><Manufacturer>Z</Manufacturer>"
                                      "<Model>ZC-1</Model></GetDeviceInformationResponse>"));
    ASSERT_TRUE(information);
    EXPECT_EQ(information->model, "ZC-1");
}

TEST(DeviceMessage, FindsTheMediaServices)
{
    const auto old = parseMediaServices(parsed("<GetCapabilitiesResponse><Capabilities><Media>"
                                               "<XAddr>http://1.2.3.4/media</XAddr></Media>"
                                               "</Capabilities></GetCapabilitiesResponse>"));
    ASSERT_TRUE(old);
    EXPECT_EQ(old->media1, "http://1.2.3.4/media");
    EXPECT_EQ(old->media2, "");
    const auto both = parseMediaServices(
        parsed("<GetServicesResponse><Service>"
               "<Namespace>http://www.onvif.org/ver10/device/wsdl</Namespace>"
               "<XAddr>http://1.2.3.4/device</XAddr></Service><Service>"
               "<Namespace>http://www.onvif.org/ver20/media/wsdl</Namespace>"
               "<XAddr>http://1.2.3.4/media2</XAddr></Service><Service>"
               "<Namespace>http://www.onvif.org/ver10/media/wsdl</Namespace>"
               "<XAddr>http://1.2.3.4/media</XAddr></Service></GetServicesResponse>"));
    ASSERT_TRUE(both);
    EXPECT_EQ(both->media1, "http://1.2.3.4/media");
    EXPECT_EQ(both->media2, "http://1.2.3.4/media2");
    EXPECT_FALSE(parseMediaServices(parsed("<GetServicesResponse/>")));
}

TEST(DeviceMessage, ReadsWhetherARestartIsNeeded)
{
    const auto answer = [](const std::string &text) {
        return parseRebootNeeded(parsed("<SetNetworkInterfacesResponse><RebootNeeded>" + text +
                                        "</RebootNeeded></SetNetworkInterfacesResponse>"));
    };
    EXPECT_EQ(answer("true"), true);
    EXPECT_EQ(answer("1"), true);
    EXPECT_EQ(answer("false"), false);
    EXPECT_FALSE(parseRebootNeeded(parsed("<SetDNSResponse/>")));
}

} // namespace onvif
