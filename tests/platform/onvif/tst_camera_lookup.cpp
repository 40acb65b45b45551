#include "platform/onvif/camera_lookup.h"

#include "platform/onvif/net_address.h"
#include "tests/platform/onvif/support/discovery_answers.h"
#include "tests/platform/onvif/support/raw_peer.h"
#include "tests/platform/onvif/support/soap_device.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <utility>

namespace onvif {

namespace {

constexpr const char *uuid = "4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101";

std::string profile(const std::string &token, int width, int height)
{
    return "<trt:Profiles token=\"" + token +
           "\"><tt:VideoEncoderConfiguration><tt:Encoding>H264</tt:Encoding><tt:Resolution>"
           "<tt:Width>" +
           std::to_string(width) + "</tt:Width><tt:Height>" + std::to_string(height) +
           "</tt:Height></tt:Resolution></tt:VideoEncoderConfiguration></trt:Profiles>";
}

std::string streamUri(const std::string &uri)
{
    return "<trt:GetStreamUriResponse><trt:MediaUri><tt:Uri>" + uri +
           "</tt:Uri></trt:MediaUri></trt:GetStreamUriResponse>";
}

class CameraLookupTest : public testing::Test
{
protected:
    struct Streams
    {
        SoapStatus status = SoapStatus::NoAnswer;
        CameraStreams streams;
    };

    CameraLookupTest()
    {
        searchOnlyAt("");
        m_device.answer("GetCapabilities",
                        "<tds:GetCapabilitiesResponse><tds:Capabilities><tt:Media><tt:XAddr>"
                        "http://192.0.2.7/onvif/media</tt:XAddr></tt:Media></tds:Capabilities>"
                        "</tds:GetCapabilitiesResponse>");
        m_device.answer("GetProfiles", "<trt:GetProfilesResponse>" + profile("s", 640, 360) +
                                           profile("m", 1920, 1080) + "</trt:GetProfilesResponse>");
        m_device.answer("GetStreamUri", streamUri("rtsp://admin:x@192.0.2.7:8554/stream"));
        m_device.answer("SetSynchronizationPoint", "<trt:SetSynchronizationPointResponse/>");
    }

    ~CameraLookupTest() override
    {
        g_unsetenv("ZELVARO_DISCOVERY_TARGETS");
        g_unsetenv("ZELVARO_DISCOVERY_MULTICAST");
    }

    Streams streams(const base::Credentials &credentials = {})
    {
        Streams got;
        bool isDone = false;
        const RequestPtr request = m_lookup.streamUris(m_device.service(), credentials,
                                                       [&](SoapStatus status, CameraStreams found) {
                                                           got = {status, std::move(found)};
                                                           isDone = true;
                                                       });
        EXPECT_FALSE(isDone);
        EXPECT_TRUE(m_context.runUntil([&isDone] { return isDone; }));
        return got;
    }

    SoapStatus keyFrame(const std::string &token)
    {
        std::optional<SoapStatus> got;
        const RequestPtr request = m_lookup.requestKeyFrame(
            m_device.service(), token, {}, [&got](SoapStatus status) { got = status; });
        EXPECT_TRUE(m_context.runUntil([&got] { return got.has_value(); }));
        return got.value_or(SoapStatus::NoAnswer);
    }

    std::optional<CameraLocation> resolve(const std::string &uid)
    {
        std::optional<CameraLocation> got;
        bool isDone = false;
        const RequestPtr request = m_lookup.resolve(
            uid,
            [&](std::optional<CameraLocation> location) {
                got = std::move(location);
                isDone = true;
            });
        EXPECT_TRUE(m_context.runUntil([&isDone] { return isDone; }));
        return got;
    }

    static void searchOnlyAt(const std::string &targets)
    {
        g_setenv("ZELVARO_DISCOVERY_TARGETS", targets.c_str(), TRUE);
        g_setenv("ZELVARO_DISCOVERY_MULTICAST", "0", TRUE);
    }

    TestContext m_context;
    SoapDevice m_device{m_context};
    CameraLookup m_lookup{m_context.get()};
};

} // namespace

TEST_F(CameraLookupTest, ResolvesAUid)
{
    AnnouncedDevice other;
    other.endpoint = "urn:uuid:00000000-8f6b-4c57-9a55-3f1d50e6a101";
    for (const bool comesFirst : {true, false}) {
        UdpPeer peer(m_context, [&other, comesFirst](const std::string &question) {
            std::vector<AnnouncedDevice> devices = {AnnouncedDevice(), other};
            if (!comesFirst)
                std::swap(devices[0], devices[1]);
            return std::vector<std::string>{
                discoveryAnswer("ProbeMatches", messageIdOf(question), devices)};
        });
        searchOnlyAt(peer.target());
        const auto location = resolve(uuid);
        ASSERT_TRUE(location);
        EXPECT_EQ(location->address, "127.0.0.1");
        EXPECT_EQ(location->xaddr, "http://127.0.0.1:8080/onvif/device_service");
    }
}

TEST_F(CameraLookupTest, NeverTellsThePasswordInClearToWhoeverClaimsAUid)
{
    RawServer thief("HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"r\"\r\n"
                    "Content-Length: 0\r\n\r\n",
                    RawServer::End::StayOpen, "127.0.0.31");
    UdpPeer peer(m_context, [&thief](const std::string &question) {
        AnnouncedDevice claim;
        claim.xaddrs = thief.service();
        return std::vector<std::string>{
            discoveryAnswer("ProbeMatches", messageIdOf(question), {claim})};
    });
    searchOnlyAt(peer.target());
    const auto location = resolve(uuid);
    ASSERT_TRUE(location);
    const auto statusOf = [this](const std::string &xaddr) {
        std::optional<SoapStatus> got;
        const RequestPtr request = m_lookup.streamUris(
            xaddr, {"admin", "secret"}, [&got](SoapStatus status, const auto &) { got = status; });
        EXPECT_TRUE(m_context.runUntil([&got] { return got.has_value(); }));
        return got.value_or(SoapStatus::NoAnswer);
    };
    const auto tellsPassword = [&thief] {
        const std::vector<std::string> requests = thief.requests();
        return std::any_of(requests.begin(), requests.end(), [](const std::string &request) {
            return request.find("Basic YW") != std::string::npos;
        });
    };
    EXPECT_EQ(statusOf(location->xaddr), SoapStatus::Refused);
    EXPECT_FALSE(thief.requests().empty());
    EXPECT_FALSE(tellsPassword());
    // At an address that the user gave it is the last resort.
    EXPECT_EQ(statusOf(thief.service() + "/typed"), SoapStatus::Refused);
    EXPECT_TRUE(tellsPassword());
}

TEST_F(CameraLookupTest, BelievesNobodyWhoCallsItselfOtherwise)
{
    UdpPeer peer(m_context, [this](const std::string &question) {
        AnnouncedDevice device;
        device.xaddrs = m_device.service();
        return std::vector<std::string>{
            discoveryAnswer("ProbeMatches", messageIdOf(question), {device})};
    });
    searchOnlyAt(peer.target());
    const auto callItself = [this](const std::string &guid) {
        m_device.answer("GetEndpointReference",
                        "<tds:GetEndpointReferenceResponse><tds:GUID>" + guid +
                            "</tds:GUID></tds:GetEndpointReferenceResponse>");
    };
    EXPECT_TRUE(resolve(uuid)) << "does not know the question";
    callItself("urn:uuid:4FA94C7C-8f6b-4c57-9a55-3f1d50e6a101");
    EXPECT_TRUE(resolve(uuid));
    callItself("");
    EXPECT_TRUE(resolve(uuid));
    callItself("urn:uuid:00000000-8f6b-4c57-9a55-3f1d50e6a101");
    EXPECT_FALSE(resolve(uuid));
    for (const SoapDevice::Seen &request : m_device.seen())
        EXPECT_EQ(request.text.find("Username"), std::string::npos);
}

TEST_F(CameraLookupTest, DoesNotResolveAnUnknownUid)
{
    UdpPeer peer(m_context, [](const std::string &question) {
        return std::vector<std::string>{
            discoveryAnswer("ProbeMatches", messageIdOf(question), {AnnouncedDevice{}})};
    });
    searchOnlyAt(peer.target());
    EXPECT_FALSE(resolve("11111111-8f6b-4c57-9a55-3f1d50e6a101"));
}

TEST_F(CameraLookupTest, DoesNotAskForAUidThatNoDeviceCanHave)
{
    UdpPeer peer(m_context, [](const std::string &) { return std::vector<std::string>(); });
    searchOnlyAt(peer.target());
    EXPECT_FALSE(resolve("../../x"));
    EXPECT_FALSE(resolve(""));
    m_context.drain();
    EXPECT_TRUE(peer.received().empty());
}

TEST_F(CameraLookupTest, LocatesTheServiceOfAHost)
{
    UdpPeer peer(m_context, [](const std::string &question) {
        return std::vector<std::string>{
            discoveryAnswer("ProbeMatches", messageIdOf(question), {AnnouncedDevice{}})};
    });
    std::optional<CameraLocation> got;
    const RequestPtr request = m_lookup.locate(
        peer.target(), [&got](CameraLocation found) { got = std::move(found); });
    EXPECT_TRUE(m_context.runUntil([&got] { return got.has_value(); }));
    EXPECT_EQ(got->xaddr, "http://127.0.0.1:8080/onvif/device_service");
}

TEST_F(CameraLookupTest, TakesTheUsualServiceOfASilentHost)
{
    UdpPeer peer(m_context, [](const std::string &) { return std::vector<std::string>(); });
    std::optional<CameraLocation> got;
    const RequestPtr request = m_lookup.locate(
        "127.0.0.1", [&got](CameraLocation found) { got = std::move(found); });
    EXPECT_TRUE(m_context.runUntil([&got] { return got.has_value(); }));
    EXPECT_EQ(got->address, "127.0.0.1");
    EXPECT_EQ(got->xaddr, "http://127.0.0.1/onvif/device_service");
    EXPECT_TRUE(got->isGuess);
}

std::string httpAnswer(const std::string &type, const std::string &text)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: " + type +
           "\r\nContent-Length: " + std::to_string(text.size()) + "\r\n\r\n" + text;
}

TEST_F(CameraLookupTest, LocatesTheServiceOfASilentHostByItsPort)
{
    // The ports are fixed, so the address is this process' own.
    const int process = getpid();
    const std::string host = "127." + std::to_string(1 + (process >> 8) % 254) + '.' +
                             std::to_string(process % 256) + ".77";
    const TinyServer pages(
        [](TinyServer::Connection &connection) {
            while (!connection.readRequest().empty())
                connection.write(httpAnswer("text/html", "<html><body/></html>"));
        },
        host, 8080);
    const TinyServer camera(
        [](TinyServer::Connection &connection) {
            while (!connection.readRequest().empty())
                connection.write(httpAnswer(
                    "application/soap+xml",
                    SoapDevice::envelope(
                        "<tds:GetSystemDateAndTimeResponse><tds:SystemDateAndTime>"
                        "<tt:UTCDateTime><tt:Time><tt:Hour>1</tt:Hour><tt:Minute>2</tt:Minute>"
                        "<tt:Second>3</tt:Second></tt:Time><tt:Date><tt:Year>2026</tt:Year>"
                        "<tt:Month>4</tt:Month><tt:Day>5</tt:Day></tt:Date></tt:UTCDateTime>"
                        "</tds:SystemDateAndTime></tds:GetSystemDateAndTimeResponse>")));
        },
        host, 8899);
    std::optional<CameraLocation> got;
    const RequestPtr request = m_lookup.locate(
        host, [&got](CameraLocation found) { got = std::move(found); });
    EXPECT_TRUE(m_context.runUntil([&got] { return got.has_value(); }));
    EXPECT_EQ(got->xaddr, "http://" + host + ":8899/onvif/device_service");
    EXPECT_FALSE(got->isGuess);
    EXPECT_TRUE(m_context.runUntil([&pages] { return !pages.requests().empty(); }));
    for (const std::string &text : pages.requests())
        EXPECT_EQ(text.find("Username"), std::string::npos);
}

TEST_F(CameraLookupTest, FindsMainAndSubStream)
{
    const Streams got = streams();
    EXPECT_EQ(got.status, SoapStatus::Ok);
    EXPECT_EQ(got.streams.main.profileToken, "m");
    EXPECT_EQ(got.streams.main.width, 1920);
    EXPECT_EQ(got.streams.sub.profileToken, "s");
    EXPECT_EQ(got.streams.sub.height, 360);
    EXPECT_EQ(got.streams.main.uri, "rtsp://127.0.0.1:8554/stream") << "held to the camera";
    EXPECT_EQ(m_device.seen("GetStreamUri").size(), 2u);
}

TEST_F(CameraLookupTest, GivesTheOnlyStreamTwice)
{
    m_device.answer("GetProfiles", "<trt:GetProfilesResponse>" + profile("only", 640, 360) +
                                       "</trt:GetProfilesResponse>");
    const Streams got = streams();
    EXPECT_EQ(got.status, SoapStatus::Ok);
    EXPECT_EQ(got.streams.sub.uri, "rtsp://127.0.0.1:8554/stream");
    EXPECT_EQ(got.streams.sub.profileToken, "only");
    EXPECT_EQ(m_device.seen("GetStreamUri").size(), 1u);
}

TEST_F(CameraLookupTest, AsksNewerDevicesForTheirServices)
{
    m_device.answerFault("GetCapabilities", "ter:ActionNotSupported");
    m_device.answer("GetServices",
                    "<tds:GetServicesResponse><tds:Service><tds:Namespace>"
                    "http://www.onvif.org/ver10/media/wsdl</tds:Namespace><tds:XAddr>" +
                        m_device.service() +
                        "</tds:XAddr></tds:Service></tds:GetServicesResponse>");
    EXPECT_EQ(streams().status, SoapStatus::Ok);
}

std::string services(const std::string &device, bool hasMedia1)
{
    const auto service = [&device](const std::string &version) {
        return "<tds:Service><tds:Namespace>http://www.onvif.org/" + version +
               "/media/wsdl</tds:Namespace><tds:XAddr>" + device + "</tds:XAddr></tds:Service>";
    };
    return "<tds:GetServicesResponse>" + (hasMedia1 ? service("ver10") : std::string()) +
           service("ver20") + "</tds:GetServicesResponse>";
}

std::string profile2(const std::string &token, int width, int height)
{
    return "<tr2:Profiles token=\"" + token +
           "\"><tr2:Configurations><tr2:VideoEncoder><tt:Encoding>H265</tt:Encoding>"
           "<tt:Resolution><tt:Width>" +
           std::to_string(width) + "</tt:Width><tt:Height>" + std::to_string(height) +
           "</tt:Height></tt:Resolution></tr2:VideoEncoder></tr2:Configurations></tr2:Profiles>";
}

TEST_F(CameraLookupTest, PrefersMedia2WhichNamesH265)
{
    for (const bool hasMedia1 : {true, false}) {
        if (!hasMedia1)
            m_device.answerFault("GetCapabilities", "ter:ActionNotSupported");
        m_device.answer("GetServices", services(m_device.service(), hasMedia1));
        m_device.answer("GetProfiles", "<tr2:GetProfilesResponse>" + profile2("s", 640, 360) +
                                           profile2("m", 3840, 2160) +
                                           "</tr2:GetProfilesResponse>");
        m_device.answer("GetStreamUri",
                        "<tr2:GetStreamUriResponse><tr2:Uri>rtsp://192.0.2.7/h265</tr2:Uri>"
                        "</tr2:GetStreamUriResponse>");
        m_device.answer("SetSynchronizationPoint", "<tr2:SetSynchronizationPointResponse/>");
        const Streams got = streams({"user", hasMedia1 ? "1" : "2"}); // asked afresh
        EXPECT_EQ(got.status, SoapStatus::Ok);
        EXPECT_EQ(got.streams.main.profileToken, "m");
        EXPECT_EQ(got.streams.main.height, 2160);
        EXPECT_EQ(got.streams.main.uri, "rtsp://127.0.0.1/h265");
        EXPECT_NE(m_device.seen("GetProfiles").back().find("tr2:Type"), std::string::npos);
    }
}

TEST_F(CameraLookupTest, TakesMedia1WhereMedia2HasNoProfiles)
{
    m_device.answer("GetServices", services(m_device.service(), true));
    m_device.answer("tr2:GetProfiles", "<tr2:GetProfilesResponse/>");
    const Streams got = streams();
    EXPECT_EQ(got.status, SoapStatus::Ok);
    EXPECT_EQ(got.streams.main.profileToken, "m");
    EXPECT_EQ(m_device.seen("GetProfiles").size(), 2u);
    EXPECT_EQ(keyFrame("m"), SoapStatus::Ok);
    EXPECT_NE(m_device.seen("SetSynchronizationPoint").back().find("<trt:"), std::string::npos);
}

TEST_F(CameraLookupTest, TellsWhyThereAreNoStreams)
{
    m_device.answer("GetProfiles", "<trt:GetProfilesResponse/>");
    EXPECT_EQ(streams().status, SoapStatus::Fault);
    m_device.answer("GetProfiles", "<trt:GetProfilesResponse>" + profile("s", 640, 360) +
                                       "</trt:GetProfilesResponse>");
    m_device.answer("GetStreamUri", streamUri("file:///etc/passwd"));
    EXPECT_EQ(streams().status, SoapStatus::Fault);
    m_device.guard(SoapDevice::Guard::Digest, "admin", "secret");
    EXPECT_EQ(streams({"admin", "wrong"}).status, SoapStatus::Refused);
}

TEST_F(CameraLookupTest, AsksForAKeyFrameWithoutLookingForTheServiceAgain)
{
    EXPECT_EQ(streams().status, SoapStatus::Ok);
    EXPECT_EQ(keyFrame("m"), SoapStatus::Ok);
    EXPECT_EQ(keyFrame("s"), SoapStatus::Ok);
    EXPECT_EQ(m_device.seen("GetCapabilities").size(), 1u);
    const auto asked = m_device.seen("SetSynchronizationPoint");
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_NE(asked[0].find("<trt:ProfileToken>m</trt:ProfileToken>"), std::string::npos);
}

TEST_F(CameraLookupTest, CancelsWhatIsDestroyed)
{
    bool isCalled = false;
    m_device.keepSilent("GetProfiles");
    {
        const RequestPtr request = m_lookup.streamUris(
            m_device.service(), {}, [&isCalled](SoapStatus, const auto &) { isCalled = true; });
        EXPECT_TRUE(m_context.runUntil([this] { return !m_device.seen("GetProfiles").empty(); }));
    }
    m_context.drain();
    EXPECT_FALSE(isCalled);
}

} // namespace onvif
