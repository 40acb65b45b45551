#include "camsim/camsim_process.h"
#include "tests/camsim/peer.h"

#include <glib.h>
#include <gtest/gtest.h>

using namespace camsim::test;
using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;

namespace {

const std::string device = "http://www.onvif.org/ver10/device/wsdl";
const std::string media = "http://www.onvif.org/ver10/media/wsdl";
const std::string media2 = "http://www.onvif.org/ver20/media/wsdl";

std::string envelope(const std::string &body, const std::string &header = {})
{
    return "<s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\"><s:Header>" + header +
           "</s:Header><s:Body>" + body + "</s:Body></s:Envelope>";
}

std::string operation(const std::string &name, const std::string &arguments = {},
                      const std::string &service = device)
{
    return "<" + name + " xmlns=\"" + service +
           "\" xmlns:tt=\"http://www.onvif.org/ver10/schema\">" + arguments + "</" + name + ">";
}

/// A request by curl; login is curl's options for it. The HTTP status comes first.
std::string post(const SimulatedCamera &camera, const std::string &text, const std::string &login)
{
    return run("curl -s -m 30 -w '\\nstatus %{http_code}' " + login +
               " -H 'Content-Type: application/soap+xml' --data '" + text + "' http://" +
               camera.address + ":" + std::to_string(camera.httpPort) + "/onvif/device_service")
        .output;
}

std::string digest(const SimulatedCamera &camera)
{
    return "--digest -u " + camera.user + ":" + camera.password;
}

std::string ask(const SimulatedCamera &camera, const std::string &name,
                const std::string &arguments = {}, const std::string &service = device)
{
    return post(camera, envelope(operation(name, arguments, service)), digest(camera));
}

bool has(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

/// A WS-Security header as the UsernameToken profile 1.0 describes it.
std::string token(const std::string &user, const std::string &password, const std::string &created)
{
    const std::string nonce = "0123456789abcdef";
    const std::string text = nonce + created + password;
    GChecksum *sha1 = g_checksum_new(G_CHECKSUM_SHA1);
    g_checksum_update(sha1, reinterpret_cast<const guchar *>(text.data()),
                      static_cast<gssize>(text.size()));
    guint8 bytes[20];
    gsize size = sizeof bytes;
    g_checksum_get_digest(sha1, bytes, &size);
    g_checksum_free(sha1);
    gchar *proof = g_base64_encode(bytes, size);
    gchar *nonceText =
        g_base64_encode(reinterpret_cast<const guchar *>(nonce.data()), nonce.size());
    const std::string result = "<Security><UsernameToken><Username>" + user +
                               "</Username><Password>" + proof + "</Password><Nonce>" + nonceText +
                               "</Nonce><Created>" + created +
                               "</Created></UsernameToken></Security>";
    g_free(proof);
    g_free(nonceText);
    return result;
}

std::string timeText(int skew = 0)
{
    GDateTime *now = g_date_time_new_now_utc();
    GDateTime *then = g_date_time_add_seconds(now, skew);
    gchar *text = g_date_time_format(then, "%Y-%m-%dT%H:%M:%SZ");
    std::string result(text);
    g_free(text);
    g_date_time_unref(then);
    g_date_time_unref(now);
    return result;
}

} // namespace

TEST(Onvif, AsksForALoginButForTheTimeOfDay)
{
    const CamsimProcess camsim;
    const SimulatedCamera &camera = camsim.camera();
    const std::string information = envelope(operation("GetDeviceInformation"));
    EXPECT_TRUE(has(post(camera, information, ""), "status 401"));
    EXPECT_TRUE(has(post(camera, information, "--digest -u admin:wrong"), "status 401"));
    EXPECT_TRUE(has(post(camera, information, "--basic -u admin:camsim"), "<tds:Model>"));
    EXPECT_TRUE(has(post(camera, information, digest(camera)), "<tds:Model>"));
    EXPECT_TRUE(has(post(camera, envelope(operation("GetSystemDateAndTime")), ""), "<tt:Year>"));
}

TEST(Onvif, TakesAUsernameTokenThatFitsItsOwnClock)
{
    CamsimProcess camsim({"--onvif-login", "token"});
    const SimulatedCamera &camera = camsim.camera();
    const std::string body = operation("GetScopes");
    const auto answer = [&](const std::string &header) {
        return post(camera, envelope(body, header), "");
    };
    EXPECT_TRUE(has(answer(token("admin", "camsim", timeText())), "status 200"));
    EXPECT_TRUE(has(answer(token("admin", "wrong", timeText())), "ter:NotAuthorized"));
    EXPECT_TRUE(has(answer(token("other", "camsim", timeText())), "ter:NotAuthorized"));
    EXPECT_TRUE(has(post(camera, envelope(body), digest(camera)), "ter:NotAuthorized"));
    EXPECT_TRUE(camsim.tell(0, "clock-skew 3600"));
    EXPECT_TRUE(has(answer(token("admin", "camsim", timeText())), "ter:NotAuthorized"));
    EXPECT_TRUE(has(answer(token("admin", "camsim", timeText(3600))), "status 200"));
}

TEST(Onvif, TellsWhatIsNoRequestAndWhatItCannotDo)
{
    const CamsimProcess camsim;
    const SimulatedCamera &camera = camsim.camera();
    EXPECT_TRUE(has(post(camera, "hello", digest(camera)), "status 400"));
    EXPECT_TRUE(has(post(camera, "<a><b>", digest(camera)), "status 400"));
    EXPECT_TRUE(has(ask(camera, "MakeCoffee"), "ter:ActionNotSupported"));
}

TEST(Onvif, TellsItsProfilesAndWhereTheStreamsAre)
{
    const CamsimProcess camsim({"--alt-paths", "--main-size", "960x540"});
    const SimulatedCamera &camera = camsim.camera();
    const std::string profiles = ask(camera, "GetProfiles", "", media);
    EXPECT_TRUE(has(profiles, "token=\"profile_main\"")) << profiles;
    EXPECT_TRUE(has(profiles, "<tt:Width>960</tt:Width><tt:Height>540</tt:Height>"));
    EXPECT_TRUE(has(profiles, "<tt:Width>640</tt:Width><tt:Height>360</tt:Height>"));
    const auto uri = [&](const std::string &profile) {
        return ask(camera, "GetStreamUri", "<ProfileToken>" + profile + "</ProfileToken>", media);
    };
    EXPECT_TRUE(has(uri("profile_main"), "<tt:Uri>" + camera.mainUrl + "</tt:Uri>"));
    EXPECT_TRUE(has(uri("profile_sub"), "<tt:Uri>" + camera.subUrl + "</tt:Uri>"));
    EXPECT_TRUE(has(uri("profile_other"), "ter:NoProfile"));
    EXPECT_TRUE(has(ask(camera, "GetServices"), "/onvif/media_service"));
    EXPECT_TRUE(has(ask(camera, "GetCapabilities"), "/onvif/media_service"));
}

TEST(Onvif, Media2TellsTheConfigurationsThatAreAskedFor)
{
    const CamsimProcess camsim(
        {"--onvif-media", "2", "--codec", "h265", "--canned", "--main-size", "320x180"});
    const SimulatedCamera &camera = camsim.camera();
    const std::string services = ask(camera, "GetServices");
    EXPECT_TRUE(has(services, ">" + media2)) << services;
    EXPECT_FALSE(has(services, ">" + media)) << services;
    EXPECT_FALSE(has(ask(camera, "GetCapabilities"), "tt:Media"));
    EXPECT_TRUE(has(ask(camera, "GetProfiles", "", media), "ter:ActionNotSupported"));

    const std::string bare = ask(camera, "GetProfiles", "", media2);
    EXPECT_TRUE(has(bare, "token=\"profile_sub\"")) << bare;
    EXPECT_FALSE(has(bare, "tr2:Configurations")) << bare;
    const std::string profiles =
        ask(camera, "GetProfiles", "<Type>VideoSource</Type><Type>VideoEncoder</Type>", media2);
    EXPECT_TRUE(has(profiles, "<tt:Encoding>H265</tt:Encoding>")) << profiles;
    EXPECT_TRUE(has(profiles, "<tt:Width>320</tt:Width><tt:Height>180</tt:Height>"));
    EXPECT_TRUE(has(profiles, "<tt:SourceToken>video_source</tt:SourceToken>"));

    const auto uri = [&](const std::string &protocol) {
        return ask(camera, "GetStreamUri",
                   "<Protocol>" + protocol + "</Protocol><ProfileToken>profile_sub</ProfileToken>",
                   media2);
    };
    EXPECT_TRUE(has(uri("RtspUnicast"), "<tr2:Uri>" + camera.subUrl + "</tr2:Uri>"));
    EXPECT_TRUE(has(uri("RTP-Unicast"), "ter:InvalidStreamSetup"));
    EXPECT_TRUE(has(
        ask(camera, "SetSynchronizationPoint", "<ProfileToken>profile_sub</ProfileToken>", media2),
        "status 200"));
}

TEST(Onvif, BothMediaServicesTellTheSameStreams)
{
    const CamsimProcess camsim({"--onvif-media", "both"});
    const SimulatedCamera &camera = camsim.camera();
    const std::string services = ask(camera, "GetServices");
    EXPECT_TRUE(has(services, ">" + media2)) << services;
    EXPECT_TRUE(has(services, ">" + media)) << services;
    EXPECT_TRUE(has(ask(camera, "GetProfiles", "", media), "<trt:Profiles token=\"profile_main\""));
    EXPECT_TRUE(has(ask(camera, "GetProfiles", "<Type>All</Type>", media2),
                    "<tr2:Profiles token=\"profile_main\""));
}

TEST(Onvif, AStillPictureIsFetchedWithADigest)
{
    CamsimProcess camsim({"--onvif-media", "both", "--sub-size", "320x180", "--onvif-port", "0"});
    SimulatedCamera camera = camsim.camera();
    camera.httpPort = camera.onvifPort;
    const std::string profile = "<ProfileToken>profile_sub</ProfileToken>";
    const std::string address =
        "http://127.0.0.1:" + std::to_string(camera.onvifPort) + "/onvif/snapshot/profile_sub.jpg";
    EXPECT_TRUE(
        has(ask(camera, "GetSnapshotUri", profile, media), "<tt:Uri>" + address + "</tt:Uri>"));
    EXPECT_TRUE(
        has(ask(camera, "GetSnapshotUri", profile, media2), "<tr2:Uri>" + address + "</tr2:Uri>"));
    const auto fetch = [&](const std::string &login) {
        return run("curl -s -m 30 -o /dev/stderr -w '\\nstatus %{http_code} %{content_type}' " +
                   login + " " + address)
            .output;
    };
    EXPECT_TRUE(has(fetch(""), "status 401"));
    EXPECT_TRUE(has(fetch("--basic -u admin:camsim"), "status 401"));
    const std::string picture = fetch(digest(camera));
    EXPECT_TRUE(has(picture, "status 200 image/jpeg"));
    EXPECT_TRUE(has(picture, "\xff\xd8\xff")) << "no JPEG";
    EXPECT_EQ(camsim.statusNumber("snapshots"), 1);
}

TEST(Onvif, ACameraMayHaveNoStillPictures)
{
    const CamsimProcess camsim({"--no-snapshots"});
    EXPECT_TRUE(has(
        ask(camsim.camera(), "GetSnapshotUri", "<ProfileToken>profile_sub</ProfileToken>", media),
        "ter:ActionNotSupported"));
}

TEST(Onvif, ASynchronizationPointIsAKeyFrame)
{
    CamsimProcess camsim({"--key-interval", "600"});
    const SimulatedCamera &camera = camsim.camera();
    RawRtsp client(camera.address, camera.rtspPort, "/live/1/h264.sdp", camera.user,
                   camera.password);
    ASSERT_TRUE(client.play());
    ASSERT_TRUE(client.receivesData(30'000)); // the first key frame has passed
    client.connection().forget();
    const std::string answer =
        ask(camera, "SetSynchronizationPoint", "<ProfileToken>profile_sub</ProfileToken>", media);
    EXPECT_TRUE(has(answer, "status 200")) << answer;
    // A sequence parameter set: NAL unit type 7 in its own packet.
    const auto hasKeyFrame = [](const std::string &data) {
        for (std::size_t at = 0; at + 17 < data.size(); ++at)
            if (data[at] == '$' && data[at + 1] == 0 && (data[at + 16] & 0x1F) == 7 &&
                data[at + 17] == 0x42)
                return true;
        return false;
    };
    EXPECT_TRUE(hasKeyFrame(client.connection().readUntil(hasKeyFrame)));
    EXPECT_EQ(camsim.statusNumber("key_frame_requests"), 1);
}

TEST(Onvif, NameAndLocationAreKept)
{
    const CamsimProcess camsim;
    const SimulatedCamera &camera = camsim.camera();
    const std::string root = "onvif://www.onvif.org/";
    const std::string answer = ask(camera, "SetScopes",
                                   "<Scopes>" + root + "name/Front%20Door</Scopes><Scopes>" + root +
                                       "location/Gr%C3%BCn</Scopes>");
    EXPECT_TRUE(has(answer, "status 200")) << answer;
    const std::string scopes = ask(camera, "GetScopes");
    EXPECT_TRUE(has(scopes, root + "name/Front%20Door")) << scopes;
    EXPECT_TRUE(has(scopes, root + "location/Gr%C3%BCn")) << scopes;
    EXPECT_TRUE(has(scopes, "MacAddress/" + camera.mac)) << scopes;
}

TEST(Onvif, GatewayAndNameServersAreKept)
{
    const CamsimProcess camsim;
    const SimulatedCamera &camera = camsim.camera();
    ask(camera, "SetNetworkDefaultGateway", "<IPv4Address>127.1.2.3</IPv4Address>");
    EXPECT_TRUE(has(ask(camera, "GetNetworkDefaultGateway"), "127.1.2.3"));
    ask(camera, "SetDNS",
        "<FromDHCP>false</FromDHCP><DNSManual><tt:Type>IPv4</tt:Type><tt:IPv4Address>9.9.9.9"
        "</tt:IPv4Address></DNSManual>");
    const std::string dns = ask(camera, "GetDNS");
    EXPECT_TRUE(has(dns, "<tt:FromDHCP>false</tt:FromDHCP>")) << dns;
    EXPECT_TRUE(has(dns, "<tt:DNSManual><tt:Type>IPv4</tt:Type><tt:IPv4Address>9.9.9.9")) << dns;
    EXPECT_TRUE(has(ask(camera, "SetNetworkDefaultGateway", "<IPv4Address>nowhere</IPv4Address>"),
                    "ter:InvalidGatewayAddress"));
    ask(camera, "SetHostname", "<Name>door</Name>");
    EXPECT_TRUE(has(ask(camera, "GetHostname"), "<tt:Name>door</tt:Name>"));
}

namespace {

std::string manualAddress(const std::string &address)
{
    return "<InterfaceToken>eth0</"
           "InterfaceToken><NetworkInterface><tt:IPv4><tt:Manual><tt:Address>" +
           address +
           "</tt:Address><tt:PrefixLength>16</tt:PrefixLength></tt:Manual><tt:DHCP>false"
           "</tt:DHCP></tt:IPv4></NetworkInterface>";
}

} // namespace

TEST(Onvif, ANewAddressTakesEffect)
{
    const CamsimProcess camsim;
    SimulatedCamera camera = camsim.camera();
    EXPECT_TRUE(has(ask(camera, "GetNetworkInterfaces"), "<tt:DHCP>true</tt:DHCP>"));
    const std::string answer = ask(camera, "SetNetworkInterfaces", manualAddress("127.0.0.44"));
    EXPECT_TRUE(has(answer, "<tds:RebootNeeded>false</tds:RebootNeeded>")) << answer;
    camera.address = "127.0.0.44";
    EXPECT_TRUE(eventually([&] {
        return has(ask(camera, "GetNetworkInterfaces"), "<tt:Manual><tt:Address>127.0.0.44");
    }));
    EXPECT_TRUE(has(ask(camera, "GetCapabilities"), "http://127.0.0.44:"));
    EXPECT_FALSE(RawConnection("127.0.0.1", camera.httpPort).isConnected());
    EXPECT_TRUE(has(ask(camera, "SetNetworkInterfaces", manualAddress("198.51.100.1")),
                    "ter:ConfigurationConflict"));

    ask(camera, "SetNetworkInterfaces",
        "<InterfaceToken>eth0</InterfaceToken><NetworkInterface><tt:IPv4><tt:DHCP>true</tt:DHCP>"
        "</tt:IPv4></NetworkInterface>");
    camera.address = "127.0.0.1";
    EXPECT_TRUE(eventually(
        [&] { return has(ask(camera, "GetNetworkInterfaces"), "<tt:DHCP>true</tt:DHCP>"); }));
}

TEST(Onvif, ANewPortTakesEffect)
{
    const CamsimProcess camsim({"--count", "2"});
    SimulatedCamera camera = camsim.camera();
    // A port that is free, because the other camera gives it up.
    const auto setPort = [&](int port) {
        return ask(
            camera, "SetNetworkProtocols",
            "<NetworkProtocols><tt:Name>HTTP</tt:Name><tt:Enabled>true</tt:Enabled><tt:Port>" +
                std::to_string(port) + "</tt:Port></NetworkProtocols>");
    };
    EXPECT_TRUE(has(setPort(camsim.camera(1).httpPort), "ter:ConfigurationConflict"));
    EXPECT_TRUE(has(setPort(0), "status 400"));
    const int wanted =
        camera.httpPort > 40'000 ? camera.httpPort - 20'000 : camera.httpPort + 7'000;
    EXPECT_TRUE(has(setPort(wanted), "status 200"));
    camera.httpPort = wanted;
    EXPECT_TRUE(eventually([&] {
        return has(ask(camera, "GetNetworkProtocols"),
                   "<tt:Port>" + std::to_string(wanted) + "</tt:Port>");
    }));
}

TEST(Onvif, ANewAddressMayWaitForAReboot)
{
    CamsimProcess camsim({"--reboot-needed", "--reboot-time", "0.5"});
    SimulatedCamera camera = camsim.camera();
    const std::string answer = ask(camera, "SetNetworkInterfaces", manualAddress("127.0.0.45"));
    EXPECT_TRUE(has(answer, "<tds:RebootNeeded>true</tds:RebootNeeded>")) << answer;
    EXPECT_EQ(camsim.status()["address"], "127.0.0.1");
    EXPECT_TRUE(has(ask(camera, "SystemReboot"), "<tds:Message>"));
    EXPECT_TRUE(eventually([&] { return camsim.status()["address"] == "127.0.0.45"; }));
    camera.address = "127.0.0.45";
    EXPECT_TRUE(eventually([&] { return has(ask(camera, "GetHostname"), "status 200"); }));
}

namespace {

std::string login(const SimulatedCamera &camera)
{
    return " -u " + camera.user + ":" + camera.password;
}

const std::string interfaces = envelope(operation("GetNetworkInterfaces"));

} // namespace

TEST(OnvifOptions, WebPagesAndServicesMayHaveTwoPorts)
{
    const CamsimProcess camsim({"--onvif-port", "0"});
    SimulatedCamera camera = camsim.camera();
    EXPECT_NE(camera.onvifPort, camera.httpPort);
    EXPECT_TRUE(has(ask(camera, "GetNetworkInterfaces"), "status 404"));
    const std::string web = "http://127.0.0.1:" + std::to_string(camera.httpPort) + "/";
    EXPECT_TRUE(run("curl -s -m 30 " + web).has("Simulated camera"));
    const std::string port = "<tt:Port>" + std::to_string(camera.httpPort) + "</tt:Port>";
    camera.httpPort = camera.onvifPort;
    EXPECT_TRUE(has(ask(camera, "GetNetworkProtocols"), port));
    EXPECT_TRUE(has(ask(camera, "GetCapabilities"),
                    ":" + std::to_string(camera.onvifPort) + "/onvif/media_service"));
    EXPECT_FALSE(run("curl -s -m 30 http://127.0.0.1:" + std::to_string(camera.onvifPort) + "/")
                     .has("Simulated camera"));
}

TEST(OnvifOptions, LoginsAreRefusedInManyWays)
{
    const auto answers = [](const std::string &kind, bool withToken, const std::string &how) {
        const CamsimProcess camsim({"--onvif-login", kind});
        const SimulatedCamera &camera = camsim.camera();
        const std::string header =
            withToken ? token(camera.user, camera.password, timeText(0)) : std::string();
        return post(camera, envelope(operation("GetNetworkInterfaces"), header),
                    how.empty() ? "-i" : "-i " + how + login(camera));
    };
    const std::string bare = answers("bare-token", false, "");
    EXPECT_TRUE(has(bare, "status 400") && !has(bare, "Fault")) << bare;
    EXPECT_TRUE(has(answers("bare-token", true, ""), "status 200"));
    const std::string digest = answers("digest-token", false, "--digest");
    EXPECT_TRUE(has(digest, "status 401") && has(digest, "Digest realm")) << digest;
    EXPECT_TRUE(has(answers("digest-token", true, ""), "status 200"));
    EXPECT_TRUE(has(answers("basic", false, "--basic"), "status 200"));
    EXPECT_FALSE(has(answers("basic", false, ""), "Digest"));
}

TEST(OnvifOptions, TheClockMayHaveNoUtcOrNeedALogin)
{
    const std::string question = envelope(operation("GetSystemDateAndTime"));
    const CamsimProcess local({"--onvif-clock", "local"});
    const std::string answer = post(local.camera(), question, "");
    EXPECT_TRUE(has(answer, "LocalDateTime") && has(answer, "CST-8")) << answer;
    EXPECT_FALSE(has(answer, "UTCDateTime")) << answer;
    const CamsimProcess none({"--onvif-clock", "none"});
    EXPECT_TRUE(has(post(none.camera(), question, ""), "status 401"));
}

TEST(OnvifOptions, ThereMayBeTwoLenses)
{
    const CamsimProcess camsim({"--lenses", "2"});
    const std::string answer = ask(camsim.camera(), "GetProfiles", {}, media);
    for (const char *part :
         {"\"profile_main\"", "\"profile_sub_2\"", ">video_source<", ">video_source_2<", ">2560<"})
        EXPECT_TRUE(has(answer, part)) << part << answer;
}

TEST(OnvifOptions, AConnectionMayBeClosedAfterARefusal)
{
    const CamsimProcess camsim({"--close-after-401"});
    RawConnection connection("127.0.0.1", camsim.camera().httpPort);
    const std::string request =
        "POST /onvif/device_service HTTP/1.1\r\nHost: a\r\nContent-Length: " +
        std::to_string(interfaces.size()) + "\r\n\r\n" + interfaces;
    EXPECT_TRUE(connection.send(request));
    connection.readUntil([](const std::string &text) { return has(text, "</s:Envelope>"); });
    EXPECT_FALSE(connection.isClosed());
    connection.forget();
    EXPECT_TRUE(connection.send(request));
    EXPECT_EQ(connection.readUntil([](const std::string &text) { return has(text, "HTTP"); }), "");
    EXPECT_TRUE(connection.isClosed());
}

TEST(OnvifOptions, AGatewayMayHaveToBeInTheSubnet)
{
    const CamsimProcess camsim({"--strict-gateway"});
    SimulatedCamera camera = camsim.camera();
    const std::string gateway = "<IPv4Address>127.7.0.1</IPv4Address>";
    EXPECT_TRUE(has(ask(camera, "SetNetworkDefaultGateway", gateway), "status 400")) << "DHCP";
    ask(camera, "SetNetworkInterfaces", manualAddress("127.7.0.9"));
    camera.address = "127.7.0.9";
    EXPECT_TRUE(eventually(
        [&] { return has(ask(camera, "SetNetworkDefaultGateway", gateway), "status 200"); }));
    EXPECT_TRUE(has(ask(camera, "SetNetworkDefaultGateway", "<IPv4Address>10.0.0.1</IPv4Address>"),
                    "status 400"));
}

TEST(OnvifOptions, AMoveMayTakeTimeAndItsAnswerBeLost)
{
    CamsimProcess camsim({"--lost-answers", "--move-time", "1"});
    SimulatedCamera camera = camsim.camera();
    const std::string lost = ask(camera, "SetNetworkInterfaces", manualAddress("127.0.0.46"));
    EXPECT_FALSE(has(lost, "status 200")) << lost;
    EXPECT_FALSE(has(lost, "RebootNeeded")) << lost;
    EXPECT_TRUE(eventually([&] { return camsim.status()["rebooting"] == "1"; }));
    EXPECT_FALSE(RawConnection("127.0.0.46", camera.httpPort).isConnected());
    EXPECT_TRUE(eventually([&] { return camsim.status()["address"] == "127.0.0.46"; }));
    camera.address = "127.0.0.46";
    EXPECT_TRUE(eventually([&] { return has(ask(camera, "GetHostname"), "status 200"); }));
}
