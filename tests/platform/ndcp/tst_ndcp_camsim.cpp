#include "tests/platform/ndcp/client_harness.h"
#include "tests/support/camsim_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace {

using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;

void setText(char *field, const std::string &text)
{
    std::memcpy(field, text.c_str(), text.size() + 1);
}

std::string targetsOf(const CamsimProcess &cameras)
{
    std::string targets;
    for (const SimulatedCamera &camera : cameras.cameras())
        targets += camera.discovery + ' ';
    return targets;
}

std::string macText(const ndcp_device &device)
{
    std::string text;
    for (const std::uint8_t byte : device.mac) {
        constexpr char digits[] = "0123456789abcdef";
        text += (text.empty() ? "" : ":");
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

// A simulated camera comes to its new place a moment after it has answered.
int readWhenBack(ClientHarness &client, ndcp_device &record)
{
    int error = NDCP_ERROR_NETWORK;
    for (int i = 0; i < 20 && error == NDCP_ERROR_NETWORK; ++i)
        error = client.read(record);
    return error;
}

class NdcpCamsimTest : public testing::Test
{
protected:
    static std::vector<std::string> withOptions(const std::vector<std::string> &options)
    {
        std::vector<std::string> all = {"--user", "admin", "--password", "secret", "--canned"};
        all.insert(all.end(), options.begin(), options.end());
        return all;
    }

    static ndcp_device found(ClientHarness &client, const SimulatedCamera &camera)
    {
        for (ndcp_device device : client.search()) {
            if (device.uid == camera.uid) {
                setText(device.username, camera.user);
                setText(device.password, camera.password);
                return device;
            }
        }
        ADD_FAILURE() << "the camera was not found";
        return {};
    }

    TestContext m_context;
};

} // namespace

TEST_F(NdcpCamsimTest, FindsEveryCamera)
{
    const CamsimProcess cameras(withOptions({"--count", "3"}));
    searchOnlyAt(targetsOf(cameras));
    ClientHarness client(m_context);
    const std::vector<ndcp_device> devices = client.search();
    ASSERT_EQ(devices.size(), 3u);
    for (const SimulatedCamera &camera : cameras.cameras()) {
        const auto device =
            std::find_if(devices.begin(), devices.end(), [&camera](const ndcp_device &candidate) {
                return candidate.uid == camera.uid;
            });
        ASSERT_NE(device, devices.end());
        EXPECT_EQ(device->name, camera.name);
        EXPECT_EQ(device->ip, 0x7F000001u);
        EXPECT_EQ(static_cast<std::uint16_t>(device->http_port), camera.httpPort);
        EXPECT_STRNE(device->model, "");
    }
}

TEST_F(NdcpCamsimTest, ReadsAndWrites)
{
    const CamsimProcess cameras(withOptions({}));
    searchOnlyAt(targetsOf(cameras));
    ClientHarness client(m_context);
    ndcp_device record = found(client, cameras.camera());
    ASSERT_EQ(client.read(record), 0);
    EXPECT_EQ(macText(record), cameras.camera().mac);
    EXPECT_EQ(record.ip, 0x7F000001u);

    setText(record.name, "Front door");
    setText(record.location, "Hall");
    record.manual_ip = 1;
    record.gateway = 0x7F0000FE;
    record.manual_dns = 1;
    record.dns1 = 0x08080808;
    record.dns2 = 0x09090909;
    ASSERT_EQ(client.write(record), 0);

    ndcp_device again = found(client, cameras.camera());
    EXPECT_STREQ(again.name, "Front door");
    ASSERT_EQ(client.read(again), 0);
    EXPECT_EQ(again.manual_ip, 1u);
    EXPECT_EQ(again.gateway, 0x7F0000FEu);
    EXPECT_EQ(again.manual_dns, 1u);
    EXPECT_EQ(again.dns1, 0x08080808u);
    EXPECT_EQ(again.dns2, 0x09090909u);
    EXPECT_STREQ(again.location, "Hall");

    again.manual_ip = 0;
    again.manual_dns = 0;
    ASSERT_EQ(client.write(again), 0);
    ASSERT_EQ(readWhenBack(client, again), 0);
    EXPECT_EQ(again.manual_ip, 0u);
    EXPECT_EQ(again.manual_dns, 0u);
}

TEST_F(NdcpCamsimTest, MovesACameraToAnotherAddressAndPort)
{
    CamsimProcess cameras(withOptions({}));
    searchOnlyAt(targetsOf(cameras));
    ClientHarness client(m_context);
    ndcp_device record = found(client, cameras.camera());
    ASSERT_EQ(client.read(record), 0);
    int freePort = 0;
    {
        const CamsimProcess other(withOptions({}));
        freePort = other.camera().httpPort;
    }
    record.manual_ip = 1;
    record.ip = 0x7F000003;
    record.mask = 0xFFFFFF00;
    record.http_port = static_cast<std::int16_t>(freePort);
    ASSERT_EQ(client.write(record), 0);
    EXPECT_TRUE(
        m_context.runUntil([&cameras] { return cameras.status()["address"] == "127.0.0.3"; }));
    ndcp_device moved = record;
    moved.ip = 0;
    moved.http_port = 0;
    ASSERT_EQ(readWhenBack(client, moved), 0);
    EXPECT_EQ(moved.ip, 0x7F000003u);
    EXPECT_EQ(moved.mask, 0xFFFFFF00u);
    EXPECT_EQ(static_cast<std::uint16_t>(moved.http_port), freePort);
}

TEST_F(NdcpCamsimTest, RestartsACameraThatNeedsItToMove)
{
    CamsimProcess cameras(withOptions({"--reboot-needed", "--reboot-time", "0.2"}));
    searchOnlyAt(targetsOf(cameras));
    ClientHarness client(m_context);
    ndcp_device record = found(client, cameras.camera());
    ASSERT_EQ(client.read(record), 0);
    record.manual_ip = 1;
    record.ip = 0x7F000004;
    record.mask = 0xFF000000;
    ASSERT_EQ(client.write(record), 0);
    ASSERT_EQ(readWhenBack(client, record), 0);
    EXPECT_EQ(record.ip, 0x7F000004u);
}

TEST_F(NdcpCamsimTest, FindsACameraThatMovedByItself)
{
    CamsimProcess cameras(withOptions({}));
    searchOnlyAt(targetsOf(cameras));
    ClientHarness client(m_context);
    ndcp_device record = found(client, cameras.camera());
    ASSERT_TRUE(cameras.tell(0, "address 127.0.0.5"));
    ASSERT_EQ(client.read(record), 0);
    EXPECT_EQ(record.ip, 0x7F000005u);
}

TEST_F(NdcpCamsimTest, IsRefusedWithAWrongPassword)
{
    CamsimProcess cameras(withOptions({}));
    searchOnlyAt(targetsOf(cameras));
    ClientHarness client(m_context);
    ndcp_device record = found(client, cameras.camera());
    setText(record.password, "wrong");
    EXPECT_EQ(client.read(record), NDCP_ERROR_AUTHORIZATION);
    EXPECT_EQ(client.write(record), NDCP_ERROR_AUTHORIZATION);
    setText(record.username, "");
    EXPECT_EQ(client.read(record), NDCP_ERROR_AUTHORIZATION);
    setText(record.username, "admin");
    setText(record.password, "secret");
    EXPECT_EQ(client.read(record), 0);
    ASSERT_TRUE(cameras.tell(0, "password other"));
    EXPECT_EQ(client.read(record), NDCP_ERROR_AUTHORIZATION);
}

TEST_F(NdcpCamsimTest, ReadsACameraWithAWrongClockThatWantsTokens)
{
    CamsimProcess cameras(withOptions({"--onvif-login", "token"}));
    ASSERT_TRUE(cameras.tell(0, "clock-skew -86400"));
    searchOnlyAt(targetsOf(cameras));
    ClientHarness client(m_context);
    ndcp_device record = found(client, cameras.camera());
    EXPECT_EQ(client.read(record), 0);
    setText(record.password, "wrong");
    EXPECT_EQ(client.read(record), NDCP_ERROR_AUTHORIZATION);
}

TEST_F(NdcpCamsimTest, HasNoAnswerFromACameraThatIsOff)
{
    CamsimProcess cameras(withOptions({}));
    searchOnlyAt(targetsOf(cameras));
    ClientHarness client(m_context);
    ndcp_device record = found(client, cameras.camera());
    ASSERT_TRUE(cameras.tell(0, "power off"));
    EXPECT_EQ(client.read(record), NDCP_ERROR_NETWORK);
    EXPECT_EQ(client.write(record), NDCP_ERROR_NETWORK);
    ASSERT_TRUE(cameras.tell(0, "power on"));
    EXPECT_EQ(readWhenBack(client, record), 0);
}

TEST_F(NdcpCamsimTest, TellsThatACameraDoesNotTakeAnAddress)
{
    const CamsimProcess cameras(withOptions({}));
    searchOnlyAt(targetsOf(cameras));
    ClientHarness client(m_context);
    ndcp_device record = found(client, cameras.camera());
    ASSERT_EQ(client.read(record), 0);
    record.manual_ip = 1;
    record.ip = 0xC0000207; // no address of this computer
    record.mask = 0xFFFFFF00;
    EXPECT_EQ(client.write(record), NDCP_ERROR_SET_CONF);
    ASSERT_EQ(client.read(record), 0);
    EXPECT_EQ(record.ip, 0x7F000001u);
}
