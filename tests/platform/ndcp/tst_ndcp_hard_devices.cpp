#include "platform/ndcp/configuration_task.h"
#include "tests/platform/ndcp/camsim_test.h"
#include "tests/platform/onvif/support/discovery_answers.h"
#include "tests/platform/onvif/support/raw_peer.h"
#include "tests/platform/onvif/support/soap_device.h"

// Devices that move slowly, lose answers, refuse what is in the wrong order, or are not alone.

namespace {

using NdcpHardDeviceTest = NdcpCamsimTest;

constexpr std::uint32_t loopback(std::uint32_t third, std::uint32_t fourth)
{
    return 0x7F000000 | third << 8 | fourth;
}

void typePort(ndcp_device &record, int port)
{
    record.http_port = static_cast<std::int16_t>(static_cast<std::uint16_t>(port));
}

int portOf(const ndcp_device &record)
{
    return static_cast<std::uint16_t>(record.http_port);
}

// A port that was free a moment ago.
int freePort()
{
    const CamsimProcess other(withOptions({}));
    return other.camera().httpPort;
}

} // namespace

TEST_F(NdcpHardDeviceTest, TellsWebAndOnvifPortApart)
{
    start({"--onvif-port", "0"});
    EXPECT_EQ(m_record.http_port, 80);
    ASSERT_EQ(m_client->read(m_record), 0);
    const int webPort = m_cameras->camera().httpPort;
    EXPECT_EQ(portOf(m_record), webPort);
    setText(m_record.name, "Porch");
    EXPECT_EQ(m_client->write(m_record), 0);
    EXPECT_EQ(m_cameras->status()["http_port"], std::to_string(webPort)) << "nobody changed it";

    const int wanted = freePort();
    typePort(m_record, wanted);
    EXPECT_EQ(m_client->write(m_record), 0);
    EXPECT_TRUE(m_context.runUntil(
        [&] { return m_cameras->status()["http_port"] == std::to_string(wanted); }));
    ASSERT_EQ(readWhenBack(*m_client, m_record), 0) << "ONVIF is where it was";
    EXPECT_EQ(portOf(m_record), wanted);
}

TEST_F(NdcpHardDeviceTest, WritesGatewayAndDnsAfterTheAddressWhenItLeavesDhcp)
{
    startAndRead({"--strict-gateway"});
    ASSERT_EQ(m_record.manual_ip, 0u);
    m_record.manual_ip = 1;
    m_record.manual_dns = 1;
    m_record.dns1 = 0x08080808;
    ASSERT_EQ(m_client->write(m_record), 0);
    ndcp_device again = found();
    ASSERT_EQ(m_client->read(again), 0);
    EXPECT_EQ(again.manual_ip, 1u);
    EXPECT_EQ(again.gateway, loopback(0, 254)) << "the lease's, now its own";
    EXPECT_EQ(again.dns1, 0x08080808u);
}

TEST_F(NdcpHardDeviceTest, WritesTheGatewayOfAnotherSubnetAtTheNewAddress)
{
    startAndRead({"--strict-gateway", "--move-time", "0.5"});
    m_record.manual_ip = 1;
    m_record.ip = loopback(1, 5);
    m_record.mask = 0xFFFFFF00;
    m_record.gateway = loopback(1, 1);
    ASSERT_EQ(m_client->write(m_record), 0);
    m_record.ip = loopback(2, 5);
    m_record.gateway = loopback(2, 1);
    ASSERT_EQ(m_client->write(m_record), 0);
    ASSERT_EQ(m_client->read(m_record), 0);
    EXPECT_EQ(m_record.ip, loopback(2, 5));
    EXPECT_EQ(m_record.gateway, loopback(2, 1));
}

TEST_F(NdcpHardDeviceTest, WaitsForADeviceThatMovesSlowlyWithoutAnAnswer)
{
    startAndRead({"--lost-answers", "--move-time", "2"});
    m_record.manual_ip = 1;
    m_record.ip = loopback(0, 61);
    m_record.mask = 0xFF000000;
    EXPECT_EQ(m_client->write(m_record), 0);
    EXPECT_EQ(m_cameras->status()["address"], "127.0.0.61");
    ASSERT_EQ(m_client->read(m_record), 0);
    EXPECT_EQ(m_record.ip, loopback(0, 61));

    m_record.manual_ip = 0;
    EXPECT_EQ(m_client->write(m_record), 0);
    EXPECT_TRUE(
        m_context.runUntil([this] { return m_cameras->status()["address"] == "127.0.0.1"; }));
    ASSERT_EQ(m_client->read(m_record), 0) << "found by its UID";
    EXPECT_EQ(m_record.manual_ip, 0u);
}

TEST_F(NdcpHardDeviceTest, SetsPortAndAddressOfADeviceThatLosesBothAnswers)
{
    startAndRead({"--lost-answers", "--move-time", "0.5"});
    const int wanted = freePort();
    typePort(m_record, wanted);
    m_record.manual_ip = 1;
    m_record.ip = loopback(0, 62);
    m_record.mask = 0xFF000000;
    EXPECT_EQ(m_client->write(m_record), 0);
    EXPECT_EQ(m_cameras->status()["address"], "127.0.0.62");
    EXPECT_EQ(m_cameras->status()["http_port"], std::to_string(wanted));
    EXPECT_EQ(m_client->read(m_record), 0);
}

TEST_F(NdcpHardDeviceTest, ReadsADeviceThatIsNotAloneInItsAnswer)
{
    for (const char *place : {"before", "after"}) {
        m_client.reset();
        start({"--neighbour", place});
        EXPECT_EQ(m_client->search().size(), 2u);
        // The first request of a client that has not searched looks for the UID.
        ndcp_device record = m_record;
        EXPECT_EQ(m_client->read(record), 0) << place;
        ASSERT_TRUE(m_cameras->tell(0, "address 127.0.0.63"));
        EXPECT_EQ(m_client->read(record), 0) << place;
        EXPECT_EQ(record.ip, loopback(0, 63)) << place;
    }
}

TEST_F(NdcpHardDeviceTest, LogsInToDevicesOfEveryKind)
{
    const std::vector<std::vector<std::string>> kinds = {
        {"--onvif-login", "digest-token"},
        {"--onvif-login", "bare-token"},
        {"--onvif-login", "http", "--close-after-401"},
        {"--onvif-login", "token", "--onvif-clock", "local"},
        {"--onvif-login", "token", "--onvif-clock", "none"}};
    for (const std::vector<std::string> &kind : kinds) {
        m_client.reset();
        start(kind);
        ASSERT_TRUE(m_cameras->tell(0, "clock-skew -3600"));
        const bool tellsNoClock = kind.back() == "none";
        // Its HTTP date is this computer's: such a device is only reached with a right clock.
        if (tellsNoClock)
            ASSERT_TRUE(m_cameras->tell(0, "clock-skew 0"));
        EXPECT_EQ(m_client->read(m_record), 0) << kind[1] << ' ' << kind.back();
        setText(m_record.password, "wrong");
        EXPECT_EQ(m_client->read(m_record), NDCP_ERROR_AUTHORIZATION) << kind[1];
    }
}

TEST_F(NdcpHardDeviceTest, TellsNoPasswordInClear)
{
    start({"--onvif-login", "basic"});
    EXPECT_EQ(m_client->read(m_record), NDCP_ERROR_AUTHORIZATION);
}

TEST_F(NdcpHardDeviceTest, KeepsNamesOutsideAscii)
{
    start({"--name", "Tür 門"});
    EXPECT_STREQ(m_record.name, "Tür 門");
    ASSERT_EQ(m_client->read(m_record), 0);
    EXPECT_STREQ(m_record.name, "Tür 門");
    setText(m_record.location, "Küche, 2. Stock");
    EXPECT_EQ(m_client->write(m_record), 0);
    ASSERT_EQ(m_client->read(m_record), 0);
    EXPECT_STREQ(m_record.name, "Tür 門");
    EXPECT_STREQ(m_record.location, "Küche, 2. Stock");
}

TEST_F(NdcpHardDeviceTest, WritesToTheRightOneOfTwoThatSharedAnAddress)
{
    startAndRead();
    const std::string port = std::to_string(m_cameras->camera().httpPort);
    ASSERT_TRUE(m_cameras->tell(0, "address 127.0.0.64"));
    CamsimProcess other(withOptions({"--seed", "other", "--http-port", port, "--name", "Another"}));
    setText(m_record.name, "Porch");
    EXPECT_EQ(m_client->write(m_record), 0);
    EXPECT_EQ(m_cameras->status()["name"], "Porch");
    EXPECT_EQ(other.status()["name"], "Another");
}

namespace {

/// A device that never answers a change of its address and never moves, with scaled times.
class SilentDeviceTest : public testing::Test
{
protected:
    SilentDeviceTest()
    {
        m_announced.xaddrs = m_device.service();
        searchOnlyAt(m_peer.target());
        m_device.answer("GetNetworkInterfaces",
                        "<tds:GetNetworkInterfacesResponse><tds:NetworkInterfaces token=\"eth0\">"
                        "<tt:Enabled>true</tt:Enabled><tt:Info>"
                        "<tt:HwAddress>00:1a:2b:3c:4d:5e</tt:HwAddress></tt:Info><tt:IPv4>"
                        "<tt:Enabled>true</tt:Enabled><tt:Config><tt:Manual><tt:Address>127.0.0.1"
                        "</tt:Address><tt:PrefixLength>8</tt:PrefixLength></tt:Manual>"
                        "<tt:DHCP>false</tt:DHCP></tt:Config></tt:IPv4></tds:NetworkInterfaces>"
                        "</tds:GetNetworkInterfacesResponse>");
        m_device.keepSilent("SetNetworkInterfaces");
        m_times.soap.changeMilliseconds = 100;
        m_times.look = 1000;
        m_times.pause = 100;
        setText(m_record.uid, "4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101");
    }

    int run(ndcp::ConfigurationTask::Kind kind)
    {
        std::optional<int> error;
        const ndcp::ConfigurationTask task(
            m_context.get(), kind, m_record,
            [this, &error](int code, const ndcp_device &record) {
                error = code;
                m_record = record;
            },
            m_times);
        EXPECT_TRUE(m_context.runUntil([&error] { return error.has_value(); }));
        return error.value_or(1);
    }

    TestContext m_context;
    SoapDevice m_device{m_context};
    AnnouncedDevice m_announced;
    UdpPeer m_peer{m_context, [this](const std::string &question) {
                       return std::vector<std::string>{
                           discoveryAnswer("ProbeMatches", messageIdOf(question), {m_announced})};
                   }};
    ndcp::ConfigurationTimes m_times;
    ndcp_device m_record = {};
};

} // namespace

TEST_F(SilentDeviceTest, DoesNotCountAsMovedWhereItWas)
{
    using Kind = ndcp::ConfigurationTask::Kind;
    ASSERT_EQ(run(Kind::Read), 0);
    m_record.manual_ip = 0;
    EXPECT_EQ(run(Kind::Write), NDCP_ERROR_NETWORK) << "to DHCP";
    m_record.manual_ip = 1;
    m_record.ip = loopback(0, 65);
    EXPECT_EQ(run(Kind::Write), NDCP_ERROR_NETWORK) << "to another address";
    EXPECT_EQ(m_device.seen("SetNetworkInterfaces").size(), 2u) << "sent once each";
}

TEST_F(SilentDeviceTest, MayTakeItsTimeForAChange)
{
    EXPECT_GE(ndcp::ConfigurationTimes().soap.changeMilliseconds, 15'000u);
    EXPECT_GE(ndcp::ConfigurationTimes().look, 30'000u);
}
