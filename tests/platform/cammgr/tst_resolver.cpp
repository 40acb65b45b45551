#include "platform/cammgr/resolver.h"

#include "tests/platform/onvif/support/discovery_answers.h"
#include "tests/platform/onvif/support/raw_peer.h"
#include "tests/platform/onvif/support/soap_device.h"

#include <gtest/gtest.h>

#include <optional>

using base::parseCameraAddress;
using cammgr::Resolver;

namespace {

constexpr const char *uid = "4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101";

std::string protocol(const std::string &name, bool isEnabled, int port)
{
    return "<tds:NetworkProtocols><tt:Name>" + name + "</tt:Name><tt:Enabled>" +
           (isEnabled ? "true" : "false") + "</tt:Enabled><tt:Port>" + std::to_string(port) +
           "</tt:Port></tds:NetworkProtocols>";
}

/// A camera with nothing but ONVIF's device service, which discovery finds by its UID.
class ResolverTest : public testing::Test
{
protected:
    ResolverTest()
        : m_finder(m_context, [this](const std::string &question) {
            AnnouncedDevice device;
            device.xaddrs = m_device.service();
            return std::vector<std::string>{
                discoveryAnswer("ProbeMatches", messageIdOf(question), {device})};
        })
    {
        g_setenv("ZELVARO_DISCOVERY_TARGETS", m_finder.target().c_str(), TRUE);
        g_setenv("ZELVARO_DISCOVERY_MULTICAST", "0", TRUE);
    }

    ~ResolverTest() override
    {
        g_unsetenv("ZELVARO_DISCOVERY_TARGETS");
        g_unsetenv("ZELVARO_DISCOVERY_MULTICAST");
    }

    void reportProtocols(const std::string &protocols)
    {
        m_device.answer("GetNetworkProtocols", "<tds:GetNetworkProtocolsResponse>" + protocols +
                                                   "</tds:GetNetworkProtocolsResponse>");
    }

    base::Endpoint webServer(const base::Credentials &credentials = {})
    {
        Resolver resolver(m_lookup, parseCameraAddress(uid), credentials);
        std::optional<base::Endpoint> got;
        resolver.findWebServer([&got](const base::Endpoint &endpoint) { got = endpoint; });
        EXPECT_TRUE(m_context.runUntil([&got] { return got.has_value(); }));
        return got.value_or(base::Endpoint());
    }

    TestContext m_context;
    SoapDevice m_device{m_context};
    onvif::CameraLookup m_lookup{m_context.get()};
    UdpPeer m_finder;
};

} // namespace

TEST_F(ResolverTest, TheWebPagesAreWhereTheCameraSays)
{
    reportProtocols(protocol("RTSP", true, 554) + protocol("HTTP", true, 8088));
    EXPECT_EQ(webServer(), (base::Endpoint{.host = "127.0.0.1", .port = 8088, .tls = false}))
        << "not at the port of ONVIF's services";
}

TEST_F(ResolverTest, WhoServesPagesByTlsOnlyIsAskedThere)
{
    reportProtocols(protocol("HTTP", false, 80) + protocol("HTTPS", true, 8443));
    EXPECT_EQ(webServer(), (base::Endpoint{.host = "127.0.0.1", .port = 8443, .tls = true}));
}

TEST_F(ResolverTest, TheWebPagesOfWhoDoesNotTellAreAtTheUsualPort)
{
    const base::Endpoint usual = {.host = "127.0.0.1", .port = 80, .tls = false};
    m_device.answerFault("GetNetworkProtocols", "ter:ActionNotSupported");
    EXPECT_EQ(webServer(), usual);
    reportProtocols("");
    EXPECT_EQ(webServer(), usual);
    reportProtocols(protocol("HTTP", true, 8088));
    m_device.guard(SoapDevice::Guard::Digest, "admin", "secret");
    EXPECT_EQ(webServer({"admin", "wrong"}), usual);
    EXPECT_EQ(webServer({"admin", "secret"}).port, 8088);
}

TEST_F(ResolverTest, SeveralBatchesAtOnceAreAllAnswered)
{
    reportProtocols(protocol("HTTP", true, 8088));
    Resolver resolver(m_lookup, parseCameraAddress(uid), {});
    int answers = 0;
    for (int i = 0; i < 3; ++i)
        resolver.findWebServer([&answers](const base::Endpoint &endpoint) {
            answers += endpoint.port == 8088 ? 1 : 0;
        });
    EXPECT_TRUE(m_context.runUntil([&answers] { return answers == 3; }));
    EXPECT_EQ(m_device.seen("GetNetworkProtocols").size(), 1u);
}

TEST_F(ResolverTest, ACameraThatIsNotFoundHasNoWebServer)
{
    Resolver resolver(m_lookup, parseCameraAddress("00000000-8f6b-4c57-9a55-3f1d50e6a101"), {});
    std::optional<base::Endpoint> got;
    resolver.findWebServer([&got](const base::Endpoint &endpoint) { got = endpoint; });
    EXPECT_TRUE(m_context.runUntil([&got] { return got.has_value(); }));
    EXPECT_EQ(got->port, 0);
}
