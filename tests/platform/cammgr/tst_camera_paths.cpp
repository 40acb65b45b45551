#include "platform/cammgr/cammgr.h"

#include "tests/platform/cammgr/player_messages.h"
#include "tests/platform/onvif/support/discovery_answers.h"
#include "tests/platform/onvif/support/raw_peer.h"
#include "tests/platform/onvif/support/soap_device.h"
#include "tests/platform/rtsp/scripted_camera.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using Connection = ScriptedCamera::Connection;
using Request = ScriptedCamera::Request;

namespace {

constexpr const char *uid = "4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101";
constexpr const char *clientsPath = "/live/0/h264.sdp";
constexpr const char *ownPath = "/onvif/profile1";

/// A camera as "Discover" finds it: it has its stream at a path of its own, which only ONVIF knows.
class OtherPathsTest : public testing::TestWithParam<std::string>
{
protected:
    OtherPathsTest()
        : m_camera({.script =
                        [refusal = GetParam()](const Request &request, Connection &connection) {
                            if (request.method != "DESCRIBE" ||
                                request.url.find(ownPath) != std::string::npos)
                                return false;
                            if (refusal == "close")
                                connection.close();
                            else if (refusal != "silence")
                                connection.answer(request, refusal);
                            return true;
                        }})
        , m_finder(m_context, [this](const std::string &question) {
            AnnouncedDevice device;
            device.xaddrs = m_device.service();
            return std::vector<std::string>{
                discoveryAnswer("ProbeMatches", messageIdOf(question), {device})};
        })
    {
        g_setenv("ZELVARO_DISCOVERY_TARGETS", m_finder.target().c_str(), TRUE);
        g_setenv("ZELVARO_DISCOVERY_MULTICAST", "0", TRUE);
        m_device.answer("GetCapabilities", "<tds:GetCapabilitiesResponse><tds:Capabilities>"
                                           "<tt:Media><tt:XAddr>" +
                                               m_device.service() +
                                               "</tt:XAddr></tt:Media></tds:Capabilities>"
                                               "</tds:GetCapabilitiesResponse>");
        m_device.answer(
            "GetProfiles",
            "<trt:GetProfilesResponse><trt:Profiles token=\"p\"><tt:VideoEncoderConfiguration>"
            "<tt:Encoding>H264</tt:Encoding><tt:Resolution><tt:Width>320</tt:Width>"
            "<tt:Height>240</tt:Height></tt:Resolution></tt:VideoEncoderConfiguration>"
            "</trt:Profiles></trt:GetProfilesResponse>");
        m_device.answer("GetStreamUri", "<trt:GetStreamUriResponse><trt:MediaUri><tt:Uri>" +
                                            m_camera.url(ownPath) +
                                            "</tt:Uri></trt:MediaUri></trt:GetStreamUriResponse>");
        m_player =
            RtspPlayer_Create(uid, "admin", "secret", &PlayerMessages::callback, &m_messages);
    }
    ~OtherPathsTest() override
    {
        RtspPlayer_Stop(m_player);
        RtspPlayer_DeleteSync(m_player);
        g_unsetenv("ZELVARO_DISCOVERY_TARGETS");
        g_unsetenv("ZELVARO_DISCOVERY_MULTICAST");
    }

    /// The device and its discovery live on the test's own context.
    bool runUntil(const std::function<bool()> &condition)
    {
        return m_context.runUntil(condition, 60s);
    }

    TestContext m_context;
    SoapDevice m_device{m_context};
    ScriptedCamera m_camera;
    UdpPeer m_finder;
    PlayerMessages m_messages;
    RtspPlayer *m_player = nullptr;
};

TEST_P(OtherPathsTest, AreFoundByTheProbe)
{
    RtspPlayer_TickAlive(m_player);
    ASSERT_TRUE(runUntil([this] { return m_messages.count() > 0; }));
    EXPECT_EQ(m_messages.next()->kind, CAMMGR_MSG_PROBE_OK);
    RtspPlayer_SetupP2PliveStream(m_player, clientsPath, 0);
    RtspPlayer_Play(m_player);
    EXPECT_TRUE(runUntil([this] { return RtspPlayer_IsPlaying(m_player) != 0; }));
}

TEST_P(OtherPathsTest, AreFoundByTheStream)
{
    RtspPlayer_SetupP2PliveStream(m_player, clientsPath, 0);
    RtspPlayer_Play(m_player);
    EXPECT_TRUE(runUntil([this] { return RtspPlayer_IsPlaying(m_player) != 0; }));
}

INSTANTIATE_TEST_SUITE_P(Refusals, OtherPathsTest,
                         testing::Values("400 Bad Request", "403 Forbidden", "404 Not Found",
                                         "405 Method Not Allowed", "406 Not Acceptable",
                                         "451 Parameter Not Understood", "453 Not Enough Bandwidth",
                                         "454 Session Not Found", "500 Internal Server Error",
                                         "503 Service Unavailable", "551 Option not supported",
                                         "close", "silence"),
                         [](const testing::TestParamInfo<std::string> &info) {
                             const std::string &text = info.param;
                             return text.front() >= 'a' ? text : "Status" + text.substr(0, 3);
                         });

} // namespace
