#include "platform/base/camera_address.h"

#include <gtest/gtest.h>

using Kind = base::CameraAddress::Kind;

namespace {

struct HostCase
{
    const char *text;
    const char *host;
    uint16_t port;
    bool tls;
    const char *path;
};

constexpr HostCase hostCases[] = {
    {"192.168.1.20", "192.168.1.20", 554, false, ""},
    {"192.168.1.20:8554", "192.168.1.20", 8554, false, ""},
    {"  192.168.1.20\t", "192.168.1.20", 554, false, ""},
    {"cam.lan", "cam.lan", 554, false, ""},
    {"cam.lan:1", "cam.lan", 1, false, ""},
    {"front_door-2.lan", "front_door-2.lan", 554, false, ""},
    {"camera", "camera", 554, false, ""},
    {"[fe80::1]", "fe80::1", 554, false, ""},
    {"[fe80::1]:8554", "fe80::1", 8554, false, ""},
    {"[fe80::1%eth0]", "fe80::1%eth0", 554, false, ""},
    {"fe80::1", "fe80::1", 554, false, ""},
    {"fe80::1%eth0", "fe80::1%eth0", 554, false, ""},
    {"rtsp://[fe80::1%25eth0]:8554/s", "fe80::1%eth0", 8554, false, "/s"},
    {"::1", "::1", 554, false, ""},
    {"rtsp://192.168.1.20", "192.168.1.20", 554, false, ""},
    {"rtsp://192.168.1.20/", "192.168.1.20", 554, false, ""},
    {"RTSP://Cam.lan:8554/Streaming/Channels/101?a=b", "Cam.lan", 8554, false,
     "/Streaming/Channels/101?a=b"},
    {"rtsp://cam.lan?channel=1", "cam.lan", 554, false, "/?channel=1"},
    {"rtsp://cam.lan/a#b", "cam.lan", 554, false, "/a"},
    {"rtsps://cam.lan/a", "cam.lan", 322, true, "/a"},
    {"rtsps://[2001:db8::5]:443", "2001:db8::5", 443, true, ""},
};

TEST(CameraAddress, ReadsHostsWithAndWithoutPort)
{
    for (const HostCase &each : hostCases) {
        SCOPED_TRACE(each.text);
        const base::CameraAddress address = base::parseCameraAddress(each.text);
        ASSERT_EQ(address.kind, Kind::Host);
        EXPECT_EQ(address.endpoint,
                  (base::Endpoint{.host = each.host, .port = each.port, .tls = each.tls}));
        EXPECT_EQ(address.path, each.path);
    }
}

TEST(CameraAddress, TellsWhetherThePortWasNamed)
{
    EXPECT_FALSE(base::parseCameraAddress("cam.lan").hasPort);
    EXPECT_TRUE(base::parseCameraAddress("cam.lan:554").hasPort);
    EXPECT_FALSE(base::parseCameraAddress("rtsp://cam.lan/a").hasPort);
    EXPECT_TRUE(base::parseCameraAddress("rtsp://[::1]:554/a").hasPort);
}

TEST(CameraAddress, TakesTheLoginOfAFullAddress)
{
    const base::CameraAddress address =
        base::parseCameraAddress("rtsp://ad%40min:pa:s@s%2F@cam.lan:8554/x");
    ASSERT_EQ(address.kind, Kind::Host);
    EXPECT_EQ(address.endpoint.host, "cam.lan");
    EXPECT_EQ(address.username, "ad@min");
    EXPECT_EQ(address.password, "pa:s@s/");
}

TEST(CameraAddress, KnowsUidsAsDiscoveryShowsThem)
{
    for (const char *uid :
         {"1419d68a-1dd2-11b2-a105-000000000000", "urn:uuid:1419d68a-1dd2-11b2-a105-000000000000",
          "uuid:1419d68a-1dd2-11b2-a105-000000000000", "00:11:22:33:44:55", "SN:0042-A"}) {
        SCOPED_TRACE(uid);
        const base::CameraAddress address = base::parseCameraAddress(uid);
        EXPECT_EQ(address.kind, Kind::Uid);
        EXPECT_EQ(address.uid, uid);
        EXPECT_EQ(address.endpoint.port, 0);
    }
}

TEST(CameraAddress, ANameWithoutDotsMayBeAUid)
{
    EXPECT_EQ(base::parseCameraAddress("CAM-000042-ABCDE").kind, Kind::Host);
    EXPECT_EQ(base::parseCameraAddress("CAM-000042-ABCDE").uid, "CAM-000042-ABCDE");
    EXPECT_EQ(base::parseCameraAddress("cam.lan").uid, "");
    EXPECT_EQ(base::parseCameraAddress("camera:554").uid, "");
}

TEST(CameraAddress, RefusesGarbage)
{
    for (const char *text : {"",
                             "   ",
                             "a b",
                             "cam.lan/x",
                             "[fe80::1",
                             "[fe80::1]x",
                             "[cam]",
                             "rtsp://",
                             "rtsp:///a",
                             "rtsp://:554/a",
                             "rtsp://cam:0",
                             "rtsp://cam:65536",
                             "rtsp://cam:99999999999",
                             "rtsp://cam:port",
                             "rtsp://ca\r\nm/",
                             "rtsp://[::1/a",
                             "rtsp://0::1%eth0]:58x",
                             "[fe80::1%]",
                             "http://cam.lan",
                             ".x/",
                             "\xc3\xa4\xc3\xb6",
                             "rtsp://user@/a",
                             "cam\x7f"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(base::parseCameraAddress(text).kind, Kind::Invalid);
    }
    EXPECT_EQ(base::parseCameraAddress(std::string(100000, 'a')).kind, Kind::Invalid);
    EXPECT_EQ(base::parseCameraAddress("rtsp://cam/" + std::string(100000, 'a')).kind,
              Kind::Invalid);
    EXPECT_EQ(base::parseCameraAddress(std::string("cam\0.lan", 8)).kind, Kind::Invalid);
}

TEST(CameraAddress, ReadsTheAddressOfAWebService)
{
    EXPECT_EQ(base::parseUrl("http://192.168.1.20/onvif/device_service").endpoint,
              (base::Endpoint{.host = "192.168.1.20", .port = 80, .tls = false}));
    EXPECT_EQ(base::parseUrl("https://[::1]:8443/onvif").endpoint,
              (base::Endpoint{.host = "::1", .port = 8443, .tls = true}));
    EXPECT_EQ(base::parseUrl("ftp://cam.lan/").kind, Kind::Invalid);
    EXPECT_EQ(base::parseUrl("cam.lan").kind, Kind::Invalid);
}

TEST(CameraAddress, WritesTheOriginOfAStream)
{
    EXPECT_EQ(base::rtspOrigin({.host = "cam.lan", .port = 554, .tls = false}), "rtsp://cam.lan");
    EXPECT_EQ(base::rtspOrigin({.host = "cam.lan", .port = 8554, .tls = false}),
              "rtsp://cam.lan:8554");
    EXPECT_EQ(base::rtspOrigin({.host = "::1", .port = 554, .tls = false}), "rtsp://[::1]");
    EXPECT_EQ(base::rtspOrigin({.host = "cam.lan", .port = 322, .tls = true}), "rtsps://cam.lan");
    EXPECT_EQ(base::rtspOrigin({.host = "cam.lan", .port = 554, .tls = true}),
              "rtsps://cam.lan:554");
}

TEST(CameraAddress, ARequestLineTakesNoBlanksAndNoControlCharacters)
{
    EXPECT_TRUE(base::hasNoWhitespace("/live/0/h264.sdp?x=\xc3\xbc"));
    for (const char *text : {"a b", "a\r\nb", "\t", "a\x7f", "\x01"})
        EXPECT_FALSE(base::hasNoWhitespace(text));
    EXPECT_FALSE(base::hasNoWhitespace(std::string("a\0b", 3)));
}

} // namespace
