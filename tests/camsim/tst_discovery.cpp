#include "camsim/camsim_process.h"
#include "tests/camsim/peer.h"

#include "camsim/net.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

using namespace camsim::test;
using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;

namespace {

/// A UDP socket that talks to one camera's discovery port.
class Asker
{
public:
    explicit Asker(const SimulatedCamera &camera)
        : m_handle(camsim::net::bindUdp("127.0.0.1", 0, false))
    {
        const auto colon = camera.discovery.find(':');
        camsim::net::parseAddress(camera.discovery.substr(0, colon),
                                  std::atoi(camera.discovery.c_str() + colon + 1), m_camera);
    }
    ~Asker() { close(m_handle); }
    Asker(const Asker &) = delete;
    Asker &operator=(const Asker &) = delete;

    void send(const std::string &text) const
    {
        sendto(m_handle, text.data(), text.size(), 0, reinterpret_cast<const sockaddr *>(&m_camera),
               sizeof m_camera);
    }
    /// The next answer; empty when none comes in time.
    std::string receive(int milliseconds = 20'000) const
    {
        pollfd wait{m_handle, POLLIN, 0};
        if (poll(&wait, 1, milliseconds) != 1)
            return {};
        std::array<char, 65536> buffer;
        const ssize_t count = recv(m_handle, buffer.data(), buffer.size(), 0);
        return {buffer.data(), static_cast<std::size_t>(count)};
    }
    std::string ask(const std::string &text, int milliseconds = 20'000) const
    {
        send(text);
        return receive(milliseconds);
    }

private:
    int m_handle;
    sockaddr_in m_camera{};
};

std::string envelope(const std::string &action, const std::string &body)
{
    return "<?xml version=\"1.0\"?><e:Envelope xmlns:e=\"http://www.w3.org/2003/05/soap-envelope\" "
           "xmlns:w=\"http://schemas.xmlsoap.org/ws/2004/08/addressing\" "
           "xmlns:d=\"http://schemas.xmlsoap.org/ws/2005/04/discovery\" "
           "xmlns:dn=\"http://www.onvif.org/ver10/network/wsdl\"><e:Header><w:MessageID>uuid:4711"
           "</w:MessageID><w:To>urn:schemas-xmlsoap-org:ws:2005:04:discovery</w:To><w:Action>"
           "http://schemas.xmlsoap.org/ws/2005/04/discovery/" +
           action + "</w:Action></e:Header><e:Body>" + body + "</e:Body></e:Envelope>";
}

std::string probe(const std::string &types = "dn:NetworkVideoTransmitter",
                  const std::string &scopes = {})
{
    return envelope("Probe", "<d:Probe><d:Types>" + types + "</d:Types><d:Scopes>" + scopes +
                                 "</d:Scopes></d:Probe>");
}

std::string resolve(const std::string &uid)
{
    return envelope("Resolve", "<d:Resolve><w:EndpointReference><w:Address>urn:uuid:" + uid +
                                   "</w:Address></w:EndpointReference></d:Resolve>");
}

bool has(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(Discovery, AProbeIsAnsweredWithWhoAndWhere)
{
    const CamsimProcess camsim({"--name", "Front Door"});
    const SimulatedCamera &camera = camsim.camera();
    const std::string answer = Asker(camera).ask(probe());
    EXPECT_TRUE(has(answer, "<a:Address>urn:uuid:" + camera.uid + "</a:Address>")) << answer;
    EXPECT_TRUE(has(answer, "<a:RelatesTo>uuid:4711</a:RelatesTo>")) << answer;
    EXPECT_TRUE(has(answer, "<d:XAddrs>http://127.0.0.1:" + std::to_string(camera.httpPort) +
                                "/onvif/device_service</d:XAddrs>"))
        << answer;
    EXPECT_TRUE(has(answer, "dn:NetworkVideoTransmitter")) << answer;
    EXPECT_TRUE(has(answer, "onvif://www.onvif.org/name/Front%20Door")) << answer;
    EXPECT_TRUE(has(answer, "onvif://www.onvif.org/MacAddress/" + camera.mac)) << answer;
}

TEST(Discovery, OnlyProbesForItsTypesAndScopesAreAnswered)
{
    const CamsimProcess camsim;
    const Asker asker(camsim.camera());
    EXPECT_FALSE(asker.ask(probe("tds:Device")).empty());
    EXPECT_FALSE(asker.ask(probe("")).empty());
    EXPECT_FALSE(asker.ask(probe("", "onvif://www.onvif.org/type")).empty());
    asker.send(probe("wsdp:Printer"));
    asker.send(probe("", "onvif://www.onvif.org/type/audio"));
    asker.send("this is no XML");
    asker.send(std::string(2000, '\0'));
    asker.send(resolve("00000000-0000-0000-0000-000000000000"));
    EXPECT_TRUE(asker.receive(1'000).empty());
    EXPECT_FALSE(asker.ask(probe()).empty());
}

TEST(Discovery, ResolveFindsACameraThatMoved)
{
    CamsimProcess camsim;
    const SimulatedCamera &camera = camsim.camera();
    const Asker asker(camera);
    EXPECT_TRUE(has(asker.ask(resolve(camera.uid)), "http://127.0.0.1:"));
    EXPECT_TRUE(camsim.tell(0, "address 127.0.0.66"));
    const std::string hello = asker.receive();
    EXPECT_TRUE(has(hello, "<d:Hello>") && has(hello, "http://127.0.0.66:")) << hello;
    const std::string answer = asker.ask(resolve(camera.uid));
    EXPECT_TRUE(has(answer, "<d:ResolveMatch>") && has(answer, "http://127.0.0.66:")) << answer;
}

TEST(Discovery, AnAnswerMayListASecondDevice)
{
    for (const bool isBefore : {true, false}) {
        const CamsimProcess camsim({"--neighbour", isBefore ? "before" : "after"});
        const std::string answer = Asker(camsim.camera()).ask(probe());
        const std::size_t other = answer.find("name/Neighbour");
        const std::size_t own = answer.find(camsim.camera().uid);
        ASSERT_TRUE(other != std::string::npos && own != std::string::npos) << answer;
        EXPECT_EQ(other < own, isBefore);
    }
}

TEST(Discovery, ACameraThatIsOffSaysByeAndIsSilent)
{
    CamsimProcess camsim;
    const Asker asker(camsim.camera());
    EXPECT_FALSE(asker.ask(probe()).empty());
    EXPECT_TRUE(camsim.tell(0, "power off"));
    EXPECT_TRUE(has(asker.receive(), "<d:Bye>"));
    EXPECT_TRUE(asker.ask(probe(), 1'000).empty());
    EXPECT_TRUE(camsim.tell(0, "power on"));
    EXPECT_TRUE(has(asker.receive(), "<d:Hello>"));
    EXPECT_FALSE(asker.ask(probe()).empty());
}

TEST(Discovery, TheMulticastGroupIsAnsweredToo)
{
    // In a separate network, so that nothing leaves this machine.
    const std::string inNamespace =
        "unshare -Urn sh -c 'ip link set lo up multicast on && ip route add 239.0.0.0/8 dev lo && "
        "exec \"$0\" \"$@\"' ";
    if (run(inNamespace + "true").exitCode != 0)
        GTEST_SKIP() << "this machine lets nobody make network namespaces";
    const Outcome outcome = run(inNamespace + "python3 " MULTICAST_PROBE " " CAMSIM_PATH);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
    EXPECT_TRUE(outcome.has("3 cameras")) << outcome.output;
}
