#include "tests/platform/ndcp/camsim_test.h"

TEST_F(NdcpCamsimTest, FindsEveryCamera)
{
    start({"--count", "3"});
    const std::vector<ndcp_device> devices = m_client->search();
    ASSERT_EQ(devices.size(), 3u);
    for (const SimulatedCamera &camera : m_cameras->cameras()) {
        const auto device =
            std::find_if(devices.begin(), devices.end(), [&camera](const ndcp_device &candidate) {
                return candidate.uid == camera.uid;
            });
        ASSERT_NE(device, devices.end());
        EXPECT_EQ(device->name, camera.name);
        EXPECT_EQ(device->ip, 0x7F000001u);
        EXPECT_EQ(device->http_port, 80) << "until it is read";
        EXPECT_STRNE(device->model, "");
    }
}

TEST_F(NdcpCamsimTest, ReadsAndWrites)
{
    startAndRead();
    EXPECT_EQ(macText(m_record), m_cameras->camera().mac);
    EXPECT_EQ(m_record.ip, 0x7F000001u);
    EXPECT_EQ(static_cast<std::uint16_t>(m_record.http_port), m_cameras->camera().httpPort);

    setText(m_record.name, "Front door");
    setText(m_record.location, "Hall");
    m_record.manual_ip = 1;
    m_record.gateway = 0x7F0000FE;
    m_record.manual_dns = 1;
    m_record.dns1 = 0x08080808;
    m_record.dns2 = 0x09090909;
    ASSERT_EQ(m_client->write(m_record), 0);

    ndcp_device again = found();
    EXPECT_STREQ(again.name, "Front door");
    ASSERT_EQ(m_client->read(again), 0);
    EXPECT_EQ(again.manual_ip, 1u);
    EXPECT_EQ(again.gateway, 0x7F0000FEu);
    EXPECT_EQ(again.manual_dns, 1u);
    EXPECT_EQ(again.dns1, 0x08080808u);
    EXPECT_EQ(again.dns2, 0x09090909u);
    EXPECT_STREQ(again.location, "Hall");

    again.manual_ip = 0;
    again.manual_dns = 0;
    ASSERT_EQ(m_client->write(again), 0);
    ASSERT_EQ(readWhenBack(*m_client, again), 0);
    EXPECT_EQ(again.manual_ip, 0u);
    EXPECT_EQ(again.manual_dns, 0u);
}

TEST_F(NdcpCamsimTest, MovesACameraToAnotherAddressAndPort)
{
    startAndRead();
    int freePort = 0;
    {
        const CamsimProcess other(withOptions({}));
        freePort = other.camera().httpPort;
    }
    m_record.manual_ip = 1;
    m_record.ip = 0x7F000003;
    m_record.mask = 0xFFFFFF00;
    m_record.http_port = static_cast<std::int16_t>(freePort);
    ASSERT_EQ(m_client->write(m_record), 0);
    EXPECT_TRUE(
        m_context.runUntil([this] { return m_cameras->status()["address"] == "127.0.0.3"; }));
    ndcp_device moved = m_record;
    moved.ip = 0;
    moved.http_port = 0;
    ASSERT_EQ(readWhenBack(*m_client, moved), 0);
    EXPECT_EQ(moved.ip, 0x7F000003u);
    EXPECT_EQ(moved.mask, 0xFFFFFF00u);
    EXPECT_EQ(static_cast<std::uint16_t>(moved.http_port), freePort);
}

TEST_F(NdcpCamsimTest, RestartsACameraThatNeedsItToMove)
{
    startAndRead({"--reboot-needed", "--reboot-time", "0.2"});
    m_record.manual_ip = 1;
    m_record.ip = 0x7F000004;
    m_record.mask = 0xFF000000;
    ASSERT_EQ(m_client->write(m_record), 0);
    ASSERT_EQ(readWhenBack(*m_client, m_record), 0);
    EXPECT_EQ(m_record.ip, 0x7F000004u);
}

TEST_F(NdcpCamsimTest, FindsACameraThatMovedByItself)
{
    start();
    ASSERT_TRUE(m_cameras->tell(0, "address 127.0.0.5"));
    ASSERT_EQ(m_client->read(m_record), 0);
    EXPECT_EQ(m_record.ip, 0x7F000005u);
}

TEST_F(NdcpCamsimTest, IsRefusedWithAWrongPassword)
{
    start();
    setText(m_record.password, "wrong");
    EXPECT_EQ(m_client->read(m_record), NDCP_ERROR_AUTHORIZATION);
    EXPECT_EQ(m_client->write(m_record), NDCP_ERROR_AUTHORIZATION);
    setText(m_record.username, "");
    EXPECT_EQ(m_client->read(m_record), NDCP_ERROR_AUTHORIZATION);
    setText(m_record.username, "admin");
    setText(m_record.password, "secret");
    EXPECT_EQ(m_client->read(m_record), 0);
    ASSERT_TRUE(m_cameras->tell(0, "password other"));
    EXPECT_EQ(m_client->read(m_record), NDCP_ERROR_AUTHORIZATION);
}

TEST_F(NdcpCamsimTest, ReadsACameraWithAWrongClockThatWantsTokens)
{
    start({"--onvif-login", "token"});
    ASSERT_TRUE(m_cameras->tell(0, "clock-skew -86400"));
    EXPECT_EQ(m_client->read(m_record), 0);
    setText(m_record.password, "wrong");
    EXPECT_EQ(m_client->read(m_record), NDCP_ERROR_AUTHORIZATION);
}

TEST_F(NdcpCamsimTest, HasNoAnswerFromACameraThatIsOff)
{
    start();
    ASSERT_TRUE(m_cameras->tell(0, "power off"));
    EXPECT_EQ(m_client->read(m_record), NDCP_ERROR_NETWORK);
    EXPECT_EQ(m_client->write(m_record), NDCP_ERROR_NETWORK);
    ASSERT_TRUE(m_cameras->tell(0, "power on"));
    EXPECT_EQ(readWhenBack(*m_client, m_record), 0);
}

TEST_F(NdcpCamsimTest, TellsThatACameraDoesNotTakeAnAddress)
{
    startAndRead();
    m_record.manual_ip = 1;
    m_record.ip = 0xC0000207; // no address of this computer
    m_record.mask = 0xFFFFFF00;
    EXPECT_EQ(m_client->write(m_record), NDCP_ERROR_SET_CONF);
    ASSERT_EQ(m_client->read(m_record), 0);
    EXPECT_EQ(m_record.ip, 0x7F000001u);
}
