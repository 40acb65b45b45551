#include "camsim/discovery_responder.h"

#include "camsim/net.h"
#include "camsim/onvif_server.h"
#include "camsim/soap.h"

#include <arpa/inet.h>
#include <glib-unix.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <sstream>

namespace camsim {

using soap::add;

namespace {

constexpr const char *multicastGroup = "239.255.255.250";
constexpr int groupPort = 3702;
constexpr std::size_t remembered = 16;
const std::string actions = "http://schemas.xmlsoap.org/ws/2005/04/discovery/";
const std::string everyone = "urn:schemas-xmlsoap-org:ws:2005:04:discovery";
const std::string anonymous = "http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous";

std::string newMessageId()
{
    gchar *uuid = g_uuid_string_random();
    const std::string id = std::string("urn:uuid:") + uuid;
    g_free(uuid);
    return id;
}

/// All the words of a list of types or scopes are known.
bool allMatch(const std::string &list, const auto &isKnown)
{
    std::istringstream words(list);
    std::string word;
    while (words >> word)
        if (!isKnown(word))
            return false;
    return true;
}

bool isOwnType(const std::string &type)
{
    const std::string local =
        type.substr(type.find(':') == std::string::npos ? 0 : type.find(':') + 1);
    return local == "NetworkVideoTransmitter" || local == "Device";
}

void fillHeader(soap::Reply &reply, const std::string &action, const std::string &to,
                const std::string &relatesTo)
{
    static unsigned messageNumber = 0;
    add(reply.header(), "a:MessageID", newMessageId());
    if (!relatesTo.empty())
        add(reply.header(), "a:RelatesTo", relatesTo);
    add(reply.header(), "a:To", to);
    add(reply.header(), "a:Action", actions + action);
    pugi::xml_node sequence = add(reply.header(), "d:AppSequence");
    sequence.append_attribute("InstanceId") = "1";
    sequence.append_attribute("MessageNumber") = ++messageNumber;
}

std::string endpointOf(const Identity &identity)
{
    return "urn:uuid:" + identity.uid;
}

void describe(pugi::xml_node node, const CameraModel &camera, bool withDetails)
{
    add(add(node, "a:EndpointReference"), "a:Address", endpointOf(camera.identity()));
    if (!withDetails)
        return;
    add(node, "d:Types", "dn:NetworkVideoTransmitter tds:Device");
    std::string scopes;
    for (const Scope &scope : scopesOf(camera.identity()))
        scopes += (scopes.empty() ? "" : " ") + scope.uri;
    add(node, "d:Scopes", scopes);
    add(node, "d:XAddrs", camera.serviceUri("device_service"));
    add(node, "d:MetadataVersion", "1");
}

// A device that is reported and not there: port 9 is closed on this machine.
void describeNeighbour(pugi::xml_node node)
{
    add(add(node, "a:EndpointReference"), "a:Address",
        "urn:uuid:7d1c0b1e-0000-5000-8000-00000000beef");
    add(node, "d:Types", "dn:NetworkVideoTransmitter tds:Device");
    add(node, "d:Scopes", "onvif://www.onvif.org/name/Neighbour");
    add(node, "d:XAddrs", "http://127.0.0.1:9/onvif/device_service");
    add(node, "d:MetadataVersion", "1");
}

bool matchesScopes(const std::string &list, const Identity &identity)
{
    const std::vector<Scope> own = scopesOf(identity);
    return allMatch(list, [&own](const std::string &wanted) {
        // RFC 3986 rule: equal, or a prefix that ends at a segment.
        return std::any_of(own.begin(), own.end(), [&wanted](const Scope &scope) {
            return scope.uri == wanted ||
                   (scope.uri.starts_with(wanted) &&
                    (wanted.back() == '/' || scope.uri[wanted.size()] == '/'));
        });
    });
}

} // namespace

DiscoveryResponder::DiscoveryResponder(CameraModel &camera, Neighbour neighbour)
    : m_camera(camera)
    , m_neighbour(neighbour)
{
}

DiscoveryResponder::~DiscoveryResponder()
{
    for (const Socket &socket : {m_unicast, m_group}) {
        if (socket.source != 0)
            g_source_remove(socket.source);
        if (socket.handle >= 0)
            close(socket.handle);
    }
}

void DiscoveryResponder::watch(Socket &socket, int handle)
{
    socket.handle = handle;
    socket.port = net::portOf(handle);
    socket.source = g_unix_fd_add(handle, G_IO_IN, onReadable, this);
}

bool DiscoveryResponder::open(const std::string &address, int port)
{
    const int handle = net::bindUdp(address, port, false);
    if (handle < 0)
        return false;
    watch(m_unicast, handle);
    return true;
}

bool DiscoveryResponder::joinGroup(const std::string &interface)
{
    const int handle = net::bindUdp(multicastGroup, groupPort, true);
    if (handle < 0)
        return false;
    ip_mreqn request{};
    inet_pton(AF_INET, multicastGroup, &request.imr_multiaddr);
    request.imr_ifindex =
        interface.empty() ? 0 : static_cast<int>(if_nametoindex(interface.c_str()));
    const bool joined =
        (interface.empty() || request.imr_ifindex != 0) &&
        setsockopt(handle, IPPROTO_IP, IP_ADD_MEMBERSHIP, &request, sizeof request) == 0 &&
        setsockopt(handle, IPPROTO_IP, IP_MULTICAST_IF, &request, sizeof request) == 0;
    if (!joined) {
        close(handle);
        return false;
    }
    watch(m_group, handle);
    return true;
}

gboolean DiscoveryResponder::onReadable(gint handle, GIOCondition, gpointer self)
{
    static_cast<DiscoveryResponder *>(self)->receive(handle);
    return G_SOURCE_CONTINUE;
}

void DiscoveryResponder::receive(int handle)
{
    std::array<char, 65536> buffer;
    sockaddr_in asker{};
    socklen_t size = sizeof asker;
    const ssize_t count = recvfrom(handle, buffer.data(), buffer.size(), 0,
                                   reinterpret_cast<sockaddr *>(&asker), &size);
    if (count <= 0 || !m_enabled)
        return;
    const std::string answer =
        answerTo(std::string(buffer.data(), static_cast<std::size_t>(count)));
    if (answer.empty())
        return;
    remember(asker);
    // From the camera's own address, not from the group's.
    const int from = m_unicast.handle >= 0 ? m_unicast.handle : handle;
    sendto(from, answer.data(), answer.size(), 0, reinterpret_cast<const sockaddr *>(&asker), size);
}

void DiscoveryResponder::remember(const sockaddr_in &asker)
{
    const auto same = [&asker](const sockaddr_in &other) {
        return other.sin_port == asker.sin_port && other.sin_addr.s_addr == asker.sin_addr.s_addr;
    };
    std::erase_if(m_askers, same);
    m_askers.push_back(asker);
    if (m_askers.size() > remembered)
        m_askers.pop_front();
}

std::string DiscoveryResponder::answerTo(const std::string &text) const
{
    soap::Request request;
    if (!request.parse(text))
        return {};
    soap::Reply reply;
    const std::string asked = request.name();
    const std::string id = request.header("MessageID");
    if (asked == "Probe") {
        if (!allMatch(soap::textAt(request.operation(), "Types"), isOwnType) ||
            !matchesScopes(soap::textAt(request.operation(), "Scopes"), m_camera.identity()))
            return {};
        fillHeader(reply, "ProbeMatches", anonymous, id);
        describeMatches(add(reply.body(), "d:ProbeMatches"), "d:ProbeMatch");
        return reply.text();
    }
    if (asked == "Resolve" && soap::textAt(request.operation(), "EndpointReference/Address") ==
                                  endpointOf(m_camera.identity())) {
        fillHeader(reply, "ResolveMatches", anonymous, id);
        describeMatches(add(reply.body(), "d:ResolveMatches"), "d:ResolveMatch");
        return reply.text();
    }
    return {};
}

void DiscoveryResponder::describeMatches(pugi::xml_node matches, const char *name) const
{
    if (m_neighbour == Neighbour::Before)
        describeNeighbour(add(matches, name));
    describe(add(matches, name), m_camera, true);
    if (m_neighbour == Neighbour::After)
        describeNeighbour(add(matches, name));
}

void DiscoveryResponder::announce(const char *action)
{
    soap::Reply reply;
    fillHeader(reply, action, everyone, "");
    describe(add(reply.body(), (std::string("d:") + action).c_str()), m_camera,
             std::string_view(action) == "Hello");
    const std::string text = reply.text();
    const auto send = [&text](int handle, const sockaddr_in &to) {
        sendto(handle, text.data(), text.size(), 0, reinterpret_cast<const sockaddr *>(&to),
               sizeof to);
    };
    if (m_group.handle >= 0) {
        sockaddr_in group{};
        net::parseAddress(multicastGroup, groupPort, group);
        send(m_group.handle, group);
    }
    if (m_unicast.handle >= 0)
        for (const sockaddr_in &asker : m_askers)
            send(m_unicast.handle, asker);
}

} // namespace camsim
