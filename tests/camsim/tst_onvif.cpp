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
