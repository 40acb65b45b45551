#include "tests/platform/ndcp/client_harness.h"
#include "tests/platform/onvif/support/discovery_answers.h"
#include "tests/platform/onvif/support/raw_peer.h"
#include "tests/platform/onvif/support/soap_device.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string answerTo(const std::string &question, const std::vector<AnnouncedDevice> &devices)
{
    const bool isResolve = question.find("<d:Resolve>") != std::string::npos;
    return discoveryAnswer(isResolve ? "ResolveMatches" : "ProbeMatches", messageIdOf(question),
                           devices);
}

void setText(char *field, const std::string &text)
{
    std::memcpy(field, text.c_str(), text.size() + 1);
}

// Each test has its own device: the library remembers where it saw one.
std::string newUid()
{
    return base::GTextPtr(g_uuid_string_random()).get();
}

class NdcpClientTest : public testing::Test
{
protected:
    NdcpClientTest()
    {
        m_announced.endpoint = "urn:uuid:" + m_uid;
        m_announced.xaddrs = m_device.service();
        searchOnlyAt(m_peer.target());
        letInterfacesBeRead("00:1a:2b:3c:4d:5e");
        m_device.answer("GetNetworkDefaultGateway",
                        "<tds:GetNetworkDefaultGatewayResponse><tds:NetworkGateway>"
                        "<tt:IPv4Address>192.168.1.1</tt:IPv4Address></tds:NetworkGateway>"
                        "</tds:GetNetworkDefaultGatewayResponse>");
        m_device.answer("GetDNS", "<tds:GetDNSResponse><tds:DNSInformation>"
                                  "<tt:FromDHCP>false</tt:FromDHCP><tt:DNSManual>"
                                  "<tt:Type>IPv4</tt:Type><tt:IPv4Address>8.8.8.8</tt:IPv4Address>"
                                  "</tt:DNSManual></tds:DNSInformation></tds:GetDNSResponse>");
        m_device.answer("GetNetworkProtocols",
                        "<tds:GetNetworkProtocolsResponse><tds:NetworkProtocols>"
                        "<tt:Name>HTTP</tt:Name><tt:Enabled>true</tt:Enabled><tt:Port>" +
                            std::to_string(m_device.port()) +
                            "</tt:Port></tds:NetworkProtocols>"
                            "</tds:GetNetworkProtocolsResponse>");
        m_device.answer("GetScopes",
                        "<tds:GetScopesResponse><tds:Scopes>"
                        "<tt:ScopeDef>Configurable</tt:ScopeDef>"
                        "<tt:ScopeItem>onvif://www.onvif.org/name/Door</tt:ScopeItem></tds:Scopes>"
                        "<tds:Scopes><tt:ScopeDef>Configurable</tt:ScopeDef>"
                        "<tt:ScopeItem>onvif://www.onvif.org/location/Hall</tt:ScopeItem>"
                        "</tds:Scopes></tds:GetScopesResponse>");
        for (const char *request : {"SetScopes", "SetDNS", "SetNetworkDefaultGateway",
                                    "SetNetworkProtocols", "SystemReboot"})
            m_device.answer(request, std::string("<tds:") + request + "Response/>");
        letInterfacesBeSet(false);
    }

    void letInterfacesBeRead(const std::string &mac)
    {
        m_device.answer("GetNetworkInterfaces",
                        "<tds:GetNetworkInterfacesResponse>"
                        "<tds:NetworkInterfaces token=\"eth0\"><tt:Enabled>true</tt:Enabled>"
                        "<tt:Info><tt:HwAddress>" +
                            mac +
                            "</tt:HwAddress></tt:Info>"
                            "<tt:IPv4><tt:Enabled>true</tt:Enabled><tt:Config><tt:Manual>"
                            "<tt:Address>127.0.0.1</tt:Address>"
                            "<tt:PrefixLength>8</tt:PrefixLength>"
                            "</tt:Manual><tt:DHCP>false</tt:DHCP></tt:Config></tt:IPv4>"
                            "</tds:NetworkInterfaces></tds:GetNetworkInterfacesResponse>");
    }

    void letInterfacesBeSet(bool needsReboot)
    {
        m_device.answer("SetNetworkInterfaces",
                        std::string("<tds:SetNetworkInterfacesResponse><tds:RebootNeeded>") +
                            (needsReboot ? "true" : "false") +
                            "</tds:RebootNeeded></tds:SetNetworkInterfacesResponse>");
    }

    // With a UID and credentials only: the first request finds the device, which is faster than a
    // search.
    [[nodiscard]] ndcp_device newRecord() const
    {
        ndcp_device record = {};
        setText(record.uid, m_uid);
        setText(record.username, "admin");
        setText(record.password, "secret");
        return record;
    }

    [[nodiscard]] std::vector<std::string> setRequests() const
    {
        std::vector<std::string> names;
        for (const SoapDevice::Seen &seen : m_device.seen())
            if (seen.request.starts_with("Set") || seen.request == "SystemReboot")
                names.push_back(seen.request);
        return names;
    }

    TestContext m_context;
    SoapDevice m_device{m_context};
    std::string m_uid = newUid();
    AnnouncedDevice m_announced;
    UdpPeer m_peer{m_context, [this](const std::string &question) {
                       return std::vector<std::string>{answerTo(question, {m_announced})};
                   }};
};

} // namespace

TEST_F(NdcpClientTest, FindsADevice)
{
    ClientHarness client(m_context);
    const std::vector<ndcp_device> devices = client.search();
    ASSERT_EQ(devices.size(), 1u);
    const ndcp_device &device = devices.front();
    EXPECT_EQ(device.ip, 0x7F000001u);
    EXPECT_EQ(device.http_port, 80) << "its web pages', not its device service's";
    EXPECT_STREQ(device.model, "ZC-1");
    EXPECT_STREQ(device.name, "Door");
    EXPECT_STREQ(device.location, "Hall");
    EXPECT_STREQ(device.uid, m_uid.c_str());
    EXPECT_STREQ(device.username, "");
}

TEST_F(NdcpClientTest, FindsNothingWhereNothingIs)
{
    searchOnlyAt("");
    ClientHarness client(m_context);
    EXPECT_EQ(ndcpclient_getcnt(client.get()), 0);
    EXPECT_THAT(client.search(), IsEmpty());
    EXPECT_EQ(ndcpclient_getdev(client.get(), 0), nullptr);
}

TEST_F(NdcpClientTest, EndsItsWalkWithNull)
{
    ClientHarness client(m_context);
    EXPECT_EQ(client.search().size(), 1u);
    EXPECT_NE(ndcpclient_getdev(client.get(), 0), nullptr);
    EXPECT_EQ(ndcpclient_getdev(client.get(), 0), ndcpclient_getdev(client.get(), 0));
    EXPECT_EQ(ndcpclient_getdev(client.get(), 1), nullptr);
    EXPECT_EQ(ndcpclient_getdev(client.get(), -1), nullptr);
}

TEST_F(NdcpClientTest, KeepsTheTableWhileItSearchesAgain)
{
    ClientHarness client(m_context);
    EXPECT_EQ(client.search().size(), 1u);
    EXPECT_EQ(ndcpclient_discover(client.get()), 0);
    EXPECT_EQ(ndcpclient_getcnt(client.get()), 1);
    m_announced.endpoint = "../nothing";
    EXPECT_EQ(client.nextEvent().message, NDCP_EVENT_DISCOVERY);
    EXPECT_EQ(ndcpclient_getcnt(client.get()), 0);
}

TEST_F(NdcpClientTest, ListsADeviceThatAnswersTwiceOnce)
{
    UdpPeer twice(m_context, [this](const std::string &question) {
        return std::vector<std::string>{answerTo(question, {m_announced, m_announced}),
                                        answerTo(question, {m_announced})};
    });
    searchOnlyAt(m_peer.target() + ' ' + twice.target());
    ClientHarness client(m_context);
    EXPECT_EQ(client.search().size(), 1u);
}

TEST_F(NdcpClientTest, ListsAtMostAThousandDevices)
{
    int next = 0;
    UdpPeer flood(m_context, [&next](const std::string &question) {
        std::vector<std::string> answers;
        for (int i = 0; i < 30; ++i) {
            std::vector<AnnouncedDevice> devices(30);
            for (AnnouncedDevice &device : devices)
                device.endpoint = "flood-" + std::to_string(next++);
            answers.push_back(answerTo(question, devices));
        }
        return answers;
    });
    searchOnlyAt(flood.target());
    ClientHarness client(m_context);
    EXPECT_EQ(client.search().size(), 1000u);
}

TEST_F(NdcpClientTest, TakesNothingWithoutAClient)
{
    ndcp_device record = {};
    EXPECT_EQ(ndcpclient_create(nullptr, nullptr), nullptr);
    EXPECT_LT(ndcpclient_discover(nullptr), 0);
    EXPECT_EQ(ndcpclient_getcnt(nullptr), 0);
    EXPECT_EQ(ndcpclient_getdev(nullptr, 0), nullptr);
    EXPECT_LT(ndcpclient_get_conf(nullptr, &record), 0);
    EXPECT_LT(ndcpclient_set_conf(nullptr, &record), 0);
    ndcpclient_delete(nullptr);
    ClientHarness client(m_context);
    EXPECT_LT(ndcpclient_get_conf(client.get(), nullptr), 0);
    EXPECT_LT(ndcpclient_set_conf(client.get(), nullptr), 0);
}

TEST_F(NdcpClientTest, ReadsTheConfiguration)
{
    m_device.guard(SoapDevice::Guard::Digest, "admin", "secret");
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    ASSERT_EQ(client.read(record), 0);
    EXPECT_EQ(record.mac[0], 0x00);
    EXPECT_EQ(record.mac[5], 0x5e);
    EXPECT_EQ(record.manual_ip, 1u);
    EXPECT_EQ(record.mask, 0xFF000000u);
    EXPECT_EQ(record.gateway, 0xC0A80101u);
    EXPECT_EQ(record.manual_dns, 1u);
    EXPECT_EQ(record.dns1, 0x08080808u);
    EXPECT_EQ(record.dns2, 0u);
    EXPECT_STREQ(record.username, "admin");
    EXPECT_STREQ(record.password, "secret");
}

TEST_F(NdcpClientTest, ReadsForAClientThatHasNotSearched)
{
    ndcp_device record = {};
    {
        ClientHarness client(m_context);
        const std::vector<ndcp_device> devices = client.search();
        ASSERT_EQ(devices.size(), 1u);
        record = devices.front();
    }
    ClientHarness dialog(m_context);
    EXPECT_EQ(dialog.read(record), 0);
    EXPECT_EQ(record.dns1, 0x08080808u);
}

TEST_F(NdcpClientTest, ReadsADeviceThatNoSearchHasSeenAtItsAddress)
{
    ndcp_device record = {};
    record.ip = 0x7F000001;
    record.http_port = static_cast<std::int16_t>(m_device.port());
    ClientHarness client(m_context);
    EXPECT_EQ(client.read(record), 0);
    EXPECT_EQ(record.dns1, 0x08080808u);
}

TEST_F(NdcpClientTest, WithAWrongPasswordIsRefusedAndLeavesTheRecord)
{
    m_device.guard(SoapDevice::Guard::Digest, "admin", "secret");
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    setText(record.password, "wrong");
    const ndcp_device before = record;
    EXPECT_EQ(client.read(record), NDCP_ERROR_AUTHORIZATION);
    EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0);
    EXPECT_EQ(client.write(record), NDCP_ERROR_AUTHORIZATION);
    EXPECT_THAT(setRequests(), IsEmpty());
}

TEST_F(NdcpClientTest, SignsWithATokenWhereTheDeviceWantsOne)
{
    m_device.guard(SoapDevice::Guard::Token, "admin", "secret");
    m_device.setClockOffset(-365 * 24 * 3600L);
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    EXPECT_EQ(client.read(record), 0);
    setText(record.password, "wrong");
    EXPECT_EQ(client.read(record), NDCP_ERROR_AUTHORIZATION);
}

TEST_F(NdcpClientTest, TellsThatTheDeviceCannotBeRead)
{
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    m_device.answerFault("GetNetworkInterfaces", "ter:ActionNotSupported");
    EXPECT_EQ(client.read(record), NDCP_ERROR_GET_CONF);
    m_device.answer("GetNetworkInterfaces", "<tds:GetNetworkInterfacesResponse/>");
    EXPECT_EQ(client.read(record), NDCP_ERROR_GET_CONF);
    m_device.answerRaw("GetNetworkInterfaces", 200, "garbage");
    EXPECT_EQ(client.read(record), NDCP_ERROR_GET_CONF);
}

TEST_F(NdcpClientTest, ReadsADeviceThatDoesNotKnowEveryQuestion)
{
    for (const char *request :
         {"GetNetworkDefaultGateway", "GetDNS", "GetNetworkProtocols", "GetScopes"})
        m_device.answerFault(request, "ter:ActionNotSupported");
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    setText(record.name, "Door");
    EXPECT_EQ(client.read(record), 0);
    EXPECT_EQ(record.mask, 0xFF000000u);
    EXPECT_STREQ(record.name, "Door");
}

TEST_F(NdcpClientTest, HasNoAnswerFromADeviceThatIsGone)
{
    std::string gone;
    {
        const SoapDevice closed(m_context);
        gone = closed.service();
    }
    m_announced.xaddrs = gone;
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    EXPECT_EQ(client.read(record), NDCP_ERROR_NETWORK);
    EXPECT_EQ(client.write(record), NDCP_ERROR_NETWORK);
    ndcp_device nowhere = {};
    EXPECT_EQ(client.read(nowhere), NDCP_ERROR_NETWORK);
}

TEST_F(NdcpClientTest, FollowsADeviceToItsNewAddress)
{
    const std::string service = m_device.service();
    {
        const SoapDevice old(m_context);
        m_announced.xaddrs = old.service();
        ClientHarness client(m_context);
        EXPECT_EQ(client.search().size(), 1u);
    }
    m_announced.xaddrs = service;
    ndcp_device record = {};
    setText(record.uid, m_uid);
    ClientHarness client(m_context);
    EXPECT_EQ(client.read(record), 0);
    EXPECT_EQ(record.dns1, 0x08080808u);
}

TEST_F(NdcpClientTest, WritesOnlyWhatDiffers)
{
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    ASSERT_EQ(client.read(record), 0);
    EXPECT_EQ(client.write(record), 0);
    EXPECT_THAT(setRequests(), IsEmpty());
    record.dns2 = 0x09090909;
    EXPECT_EQ(client.write(record), 0);
    EXPECT_THAT(setRequests(), ElementsAre("SetDNS"));
    EXPECT_THAT(m_device.seen("SetDNS").front(), HasSubstr("9.9.9.9"));
}

TEST_F(NdcpClientTest, WritesTheAddressLast)
{
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    ASSERT_EQ(client.read(record), 0);
    setText(record.name, "Back door");
    record.ip = 0x7F000002;
    record.mask = 0xFFFFFF00;
    record.gateway = 0x7F0000FE;
    record.manual_dns = 0;
    record.http_port = 8080;
    EXPECT_EQ(client.write(record), 0);
    EXPECT_THAT(setRequests(), ElementsAre("SetScopes", "SetDNS", "SetNetworkDefaultGateway",
                                           "SetNetworkProtocols", "SetNetworkInterfaces"));
    EXPECT_THAT(m_device.seen("SetScopes").front(),
                HasSubstr("onvif://www.onvif.org/name/Back%20door"));
    EXPECT_THAT(m_device.seen("SetDNS").front(), HasSubstr("<tds:FromDHCP>true<"));
    EXPECT_THAT(m_device.seen("SetNetworkProtocols").front(), HasSubstr("<tt:Port>8080<"));
    EXPECT_THAT(m_device.seen("SetNetworkInterfaces").front(),
                HasSubstr("<tt:Address>127.0.0.2</tt:Address>"
                          "<tt:PrefixLength>24</tt:PrefixLength>"));
}

TEST_F(NdcpClientTest, RestartsADeviceThatNeedsIt)
{
    letInterfacesBeSet(true);
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    ASSERT_EQ(client.read(record), 0);
    record.manual_ip = 0;
    EXPECT_EQ(client.write(record), 0);
    EXPECT_THAT(setRequests(), ElementsAre("SetNetworkInterfaces", "SystemReboot"));
    EXPECT_THAT(m_device.seen("SetNetworkInterfaces").front(), HasSubstr("<tt:DHCP>true<"));
}

TEST_F(NdcpClientTest, TellsThatTheDeviceDidNotTakeIt)
{
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    ASSERT_EQ(client.read(record), 0);
    m_device.answerFault("SetDNS", "ter:InvalidIPv4Address");
    record.dns1 = 1;
    record.ip = 0x7F000002;
    EXPECT_EQ(client.write(record), NDCP_ERROR_SET_CONF);
    EXPECT_THAT(setRequests(), ElementsAre("SetDNS")) << "the address stays as it is";
    m_device.answerFault("GetNetworkInterfaces", "ter:ActionNotSupported");
    EXPECT_EQ(client.write(record), NDCP_ERROR_GET_CONF) << "nothing can be read";
}

TEST_F(NdcpClientTest, TellsTheWebPortOnceItWasRead)
{
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    ASSERT_EQ(client.read(record), 0);
    EXPECT_EQ(static_cast<std::uint16_t>(record.http_port), m_device.port());
    const std::vector<ndcp_device> devices = client.search();
    ASSERT_EQ(devices.size(), 1u);
    EXPECT_EQ(static_cast<std::uint16_t>(devices.front().http_port), m_device.port());
}

TEST_F(NdcpClientTest, WritesNoNetworkThatNobodyRead)
{
    ClientHarness client(m_context);
    ndcp_device record = client.search().at(0);
    setText(record.name, "Back door");
    EXPECT_EQ(client.write(record), 0);
    EXPECT_THAT(setRequests(), ElementsAre("SetScopes"));
    record.manual_dns = 1;
    record.dns1 = 0x09090909;
    EXPECT_EQ(client.write(record), NDCP_ERROR_GET_CONF);
    EXPECT_THAT(setRequests(), ElementsAre("SetScopes"));
}

TEST_F(NdcpClientTest, ReadsAndWritesOnlyTheDeviceThatTheRecordNames)
{
    ClientHarness client(m_context);
    ndcp_device record = client.search().at(0);
    ASSERT_EQ(client.read(record), 0);
    // Another device has got the address meanwhile, and the same password.
    letInterfacesBeRead("00:1a:2b:3c:4d:99");
    m_announced.endpoint = "urn:uuid:" + newUid();
    setText(record.name, "Back door");
    EXPECT_EQ(client.write(record), NDCP_ERROR_NETWORK);
    EXPECT_EQ(client.read(record), NDCP_ERROR_NETWORK);
    EXPECT_THAT(setRequests(), IsEmpty());
    // A changed network card is still the device, when it says so itself.
    m_announced.endpoint = "urn:uuid:" + m_uid;
    EXPECT_EQ(client.write(record), 0);
    EXPECT_THAT(setRequests(), ElementsAre("SetScopes"));
}

TEST_F(NdcpClientTest, LooksForADeviceWhoseAddressAnswersWithFaults)
{
    SoapDevice web(m_context);
    web.answerRaw("GetNetworkInterfaces", 404, "<html/>");
    m_announced.xaddrs = web.service();
    ClientHarness client(m_context);
    ndcp_device record = client.search().at(0);
    m_announced.xaddrs = m_device.service();
    EXPECT_EQ(client.read(record), 0);
    EXPECT_EQ(record.dns1, 0x08080808u);
}

TEST_F(NdcpClientTest, FindsTheWantedDeviceBesideOthersOfOneAnswer)
{
    AnnouncedDevice other;
    for (const bool comesFirst : {true, false}) {
        UdpPeer proxy(m_context, [this, &other, comesFirst](const std::string &question) {
            std::vector<AnnouncedDevice> devices = {m_announced, other};
            if (!comesFirst)
                std::swap(devices[0], devices[1]);
            return std::vector<std::string>{answerTo(question, devices)};
        });
        searchOnlyAt(proxy.target());
        m_uid = newUid();
        m_announced.endpoint = "urn:uuid:" + m_uid;
        ndcp_device record = newRecord();
        ClientHarness client(m_context);
        EXPECT_EQ(client.read(record), 0);
    }
}

TEST_F(NdcpClientTest, KeepsADeviceReadableUntilTheNextSearchIsStarted)
{
    ClientHarness client(m_context);
    EXPECT_EQ(client.search().size(), 1u);
    EXPECT_EQ(ndcpclient_discover(client.get()), 0);
    const ndcp_device *device = ndcpclient_getdev(client.get(), 0);
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(client.nextEvent().message, NDCP_EVENT_DISCOVERY);
    EXPECT_NE(ndcpclient_getdev(client.get(), 0), device);
    EXPECT_STREQ(device->uid, m_uid.c_str());
}

TEST_F(NdcpClientTest, SaysThatItsTextsAreUtf8)
{
    EXPECT_EQ(ndcp_takes_utf8(), 1);
    m_device.guard(SoapDevice::Guard::Token, "admin", "p\u00e4ss\u65e5");
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    setText(record.password, "p\u00e4ss\u65e5");
    EXPECT_EQ(client.read(record), 0);
    setText(record.name, "T\u00fcr");
    EXPECT_EQ(client.write(record), 0);
    EXPECT_THAT(m_device.seen("SetScopes").at(0), HasSubstr("name/T%C3%BCr"));
}

TEST_F(NdcpClientTest, NeverWritesToTheDeviceThatHasTheNewAddress)
{
    searchOnlyAt("");
    ndcp_device record = {};
    setText(record.uid, m_uid);
    record.ip = 0x7F000001;
    record.http_port = static_cast<std::int16_t>(m_device.port());
    record.manual_ip = 1;
    ClientHarness client(m_context);
    EXPECT_EQ(client.write(record), NDCP_ERROR_NETWORK);
    EXPECT_THAT(m_device.seen(), IsEmpty());
}

TEST_F(NdcpClientTest, RunsSeveralRequestsAtOnce)
{
    ClientHarness client(m_context);
    ndcp_device first = newRecord();
    ndcp_device second = first;
    EXPECT_EQ(ndcpclient_get_conf(client.get(), &first), 0);
    EXPECT_EQ(ndcpclient_get_conf(client.get(), &second), 0);
    EXPECT_EQ(client.nextEvent(), (ClientHarness::Event{NDCP_EVENT_GET_CONF, 0}));
    EXPECT_EQ(client.nextEvent(), (ClientHarness::Event{NDCP_EVENT_GET_CONF, 0}));
    EXPECT_EQ(first.dns1, 0x08080808u);
    EXPECT_EQ(second.dns1, 0x08080808u);
}

TEST_F(NdcpClientTest, CallsNothingBackAfterItsDeletion)
{
    m_device.keepSilent("GetDNS");
    ClientHarness client(m_context);
    ndcp_device record = newRecord();
    EXPECT_EQ(ndcpclient_get_conf(client.get(), &record), 0);
    EXPECT_EQ(ndcpclient_discover(client.get()), 0);
    EXPECT_TRUE(m_context.runUntil([this] { return !m_device.seen("GetDNS").empty(); }));
    const std::size_t before = client.eventCount();
    client.destroy();
    EXPECT_EQ(client.eventCount(), before);
    ClientHarness other(m_context);
    EXPECT_EQ(other.search().size(), 1u);
    EXPECT_EQ(client.eventCount(), before);
}

TEST_F(NdcpClientTest, ComesAndGoesManyTimes)
{
    ndcp_device record = {};
    setText(record.uid, m_uid);
    for (int i = 0; i < 200; ++i) {
        ClientHarness first(m_context);
        ClientHarness second(m_context);
        EXPECT_EQ(ndcpclient_discover(first.get()), 0);
        EXPECT_EQ(ndcpclient_discover(second.get()), 0);
        EXPECT_EQ(ndcpclient_get_conf(second.get(), &record), 0);
        m_context.drain();
        if (i % 2 == 0)
            first.destroy();
    }
}
