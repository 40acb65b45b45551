#include "platform/onvif/discovery_search.h"

#include "platform/base/text.h"
#include "platform/base/timer.h"
#include "platform/onvif/discovery_socket.h"
#include "platform/onvif/log.h"
#include "platform/onvif/network_interfaces.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace onvif {

namespace {

constexpr guint16 discoveryPort = 3702;
constexpr const char *discoveryGroup = "239.255.255.250";
constexpr const char *discoveryGroup6 = "ff02::c";
// When the questions go out, in milliseconds after the start.
constexpr std::array<unsigned, 3> rounds = {0, 500, 1200};
// IPv4 goes ahead by the longest time for which a device may hold its answer back (WS-Discovery
// 2.4): of a device that has both, the IPv4 address is the one that the user knows.
constexpr std::size_t firstRoundOfIpv6 = 1;
// A flood of answers is read up to here, so that it cannot keep a core busy.
constexpr int maxDatagrams = 20'000;
constexpr std::size_t maxTargets = 1024;
// For a sender outside every network of this computer nothing is known of its subnet.
constexpr Ipv4 unknownSubnet = 0;

std::string newMessageId()
{
    return base::GTextPtr(g_uuid_string_random()).get();
}

base::GObjectPtr<GSocketAddress> groupAddress()
{
    return base::GObjectPtr<GSocketAddress>(
        g_inet_socket_address_new_from_string(discoveryGroup, discoveryPort));
}

base::GObjectPtr<GSocketAddress> groupAddress6(unsigned interface)
{
    const base::GObjectPtr<GInetAddress> group(g_inet_address_new_from_string(discoveryGroup6));
    return base::GObjectPtr<GSocketAddress>(G_SOCKET_ADDRESS(
        g_object_new(G_TYPE_INET_SOCKET_ADDRESS, "address", group.get(), "port",
                     static_cast<guint>(discoveryPort), "scope-id", interface, nullptr)));
}

bool isIpv6(std::string_view host)
{
    return host.find(':') != std::string_view::npos;
}

std::vector<std::string> splitTargets(std::string_view text)
{
    constexpr std::string_view separators = ", \t\r\n;";
    std::vector<std::string> targets;
    std::size_t position = text.find_first_not_of(separators);
    while (position != std::string_view::npos && targets.size() < maxTargets) {
        const std::size_t end = text.find_first_of(separators, position);
        targets.emplace_back(text.substr(position, end - position));
        position = text.find_first_not_of(separators, end);
    }
    return targets;
}

void fillGaps(DiscoveredDevice &known, const DiscoveredDevice &more)
{
    if (known.name.empty())
        known.name = more.name;
    if (known.model.empty())
        known.model = more.model;
    if (known.location.empty())
        known.location = more.location;
    if (!known.mac)
        known.mac = more.mac;
}

} // namespace

SearchScope SearchScope::fromEnvironment()
{
    SearchScope scope;
    const char *multicast = g_getenv("ZELVARO_DISCOVERY_MULTICAST");
    scope.multicast = !multicast || std::string_view(multicast) != "0";
    if (const char *targets = g_getenv("ZELVARO_DISCOVERY_TARGETS"))
        scope.targets = splitTargets(targets);
    return scope;
}

class DiscoverySearch::Private
{
public:
    Private(GMainContext *context, SearchScope scope, Done done);
    ~Private() { g_cancellable_cancel(m_cancellable.get()); }

private:
    struct Multicaster
    {
        std::unique_ptr<DiscoverySocket> socket;
        base::GObjectPtr<GSocketAddress> group;
    };

    void openMulticastSockets();
    void findTargets();
    void findNextAddress(GSocketAddressEnumerator *enumerator);
    static void foundAddress(GObject *enumerator, GAsyncResult *result, gpointer self);
    void addTarget(base::GObjectPtr<GSocketAddress> address);
    DiscoverySocket *unicastSocket(GSocketFamily family);
    [[nodiscard]] std::vector<std::string> questions();
    void sendRound(std::size_t round);
    void sendToIpv6Groups();
    void received(std::string_view datagram, const std::string &sender);
    [[nodiscard]] bool isTarget(std::string_view sender) const;
    void add(DiscoveredDevice device);
    [[nodiscard]] Ipv4 subnetMaskOf(std::string_view sender) const;
    void finish();

    base::GMainContextPtr m_context;
    SearchScope m_scope;
    Done m_done;
    base::GObjectPtr<GCancellable> m_cancellable{g_cancellable_new()};
    std::vector<LocalAddress> m_localAddresses = localAddresses();
    std::vector<Multicaster> m_multicasters;
    std::vector<base::GObjectPtr<GSocketAddress>> m_groups6; ///< one for each interface
    std::unique_ptr<DiscoverySocket> m_unicast4;
    std::unique_ptr<DiscoverySocket> m_unicast6;
    std::vector<base::GObjectPtr<GSocketAddress>> m_targets;
    std::set<std::string> m_askedIds;
    std::vector<std::string> m_lastQuestions;
    SearchResult m_result;
    int m_datagrams = 0;
    std::array<base::Timer, rounds.size()> m_roundTimers;
    base::Timer m_endTimer;
};

DiscoverySearch::Private::Private(GMainContext *context, SearchScope scope, Done done)
    : m_context(g_main_context_ref(context))
    , m_scope(std::move(scope))
    , m_done(std::move(done))
{
    g_warn_if_fail(base::isThreadDefault(context));
    if (m_scope.multicast)
        openMulticastSockets();
    for (std::size_t i = 0; i < rounds.size(); ++i)
        m_roundTimers[i].start(
            std::chrono::milliseconds(rounds[i]), [this, i] { sendRound(i); }, context);
    m_endTimer.start(
        std::chrono::milliseconds(m_scope.milliseconds), [this] { finish(); }, context);
    findTargets();
}

void DiscoverySearch::Private::openMulticastSockets()
{
    for (const LocalAddress &local : m_localAddresses) {
        Multicaster multicaster;
        multicaster.socket = DiscoverySocket::open(
            m_context.get(), G_SOCKET_FAMILY_IPV4, local.address,
            [this](std::string_view text, const std::string &sender) { received(text, sender); });
        if (!multicaster.socket)
            continue;
        multicaster.group = groupAddress();
        m_multicasters.push_back(std::move(multicaster));
    }
    for (const unsigned interface : ipv6Interfaces())
        m_groups6.push_back(groupAddress6(interface));
}

void DiscoverySearch::Private::findTargets()
{
    for (const std::string &target : m_scope.targets) {
        const base::GObjectPtr<GSocketConnectable> host(
            g_network_address_parse(target.c_str(), discoveryPort, nullptr));
        if (!host)
            continue;
        const base::GObjectPtr<GSocketAddressEnumerator> enumerator(
            g_socket_connectable_enumerate(host.get()));
        findNextAddress(enumerator.get());
    }
}

// A name may have several addresses; all are queried.
void DiscoverySearch::Private::findNextAddress(GSocketAddressEnumerator *enumerator)
{
    g_socket_address_enumerator_next_async(enumerator, m_cancellable.get(), foundAddress, this);
}

void DiscoverySearch::Private::foundAddress(GObject *enumerator, GAsyncResult *result,
                                            gpointer self)
{
    GError *error = nullptr;
    base::GObjectPtr<GSocketAddress> address(g_socket_address_enumerator_next_finish(
        G_SOCKET_ADDRESS_ENUMERATOR(enumerator), result, &error));
    const base::GErrorPtr failure(error);
    // A destroyed search has cancelled: self is not to be touched.
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) || !address)
        return;
    auto *search = static_cast<Private *>(self);
    search->addTarget(std::move(address));
    search->findNextAddress(G_SOCKET_ADDRESS_ENUMERATOR(enumerator));
}

void DiscoverySearch::Private::addTarget(base::GObjectPtr<GSocketAddress> address)
{
    if (m_targets.size() >= maxTargets)
        return;
    if (DiscoverySocket *socket = unicastSocket(g_socket_address_get_family(address.get()))) {
        // Names are looked up while the first round is already out.
        for (const std::string &question : m_lastQuestions)
            socket->send(address.get(), question);
        m_targets.push_back(std::move(address));
    }
}

DiscoverySocket *DiscoverySearch::Private::unicastSocket(GSocketFamily family)
{
    std::unique_ptr<DiscoverySocket> &socket =
        family == G_SOCKET_FAMILY_IPV6 ? m_unicast6 : m_unicast4;
    if (!socket) {
        socket = DiscoverySocket::open(
            m_context.get(), family, std::nullopt,
            [this](std::string_view text, const std::string &sender) { received(text, sender); });
    }
    return socket.get();
}

// Each round has new identifiers: devices answer a repeated identifier only once, and that answer
// may be the one that was lost.
std::vector<std::string> DiscoverySearch::Private::questions()
{
    std::vector<std::string> ids;
    std::vector<std::string> texts;
    const auto nextId = [&ids] { return ids.emplace_back(newMessageId()); };
    if (!m_scope.uid.empty())
        texts.push_back(buildResolve(m_scope.uid, nextId()));
    texts.push_back(buildProbe(ProbeType::NetworkVideoTransmitter, nextId()));
    texts.push_back(buildProbe(ProbeType::Device, nextId()));
    m_askedIds.insert(ids.begin(), ids.end());
    return texts;
}

void DiscoverySearch::Private::sendRound(std::size_t round)
{
    m_lastQuestions = questions();
    for (const std::string &question : m_lastQuestions) {
        for (const Multicaster &multicaster : m_multicasters)
            multicaster.socket->send(multicaster.group.get(), question);
        for (const base::GObjectPtr<GSocketAddress> &target : m_targets)
            unicastSocket(g_socket_address_get_family(target.get()))->send(target.get(), question);
    }
    if (m_scope.multicast && round >= firstRoundOfIpv6)
        sendToIpv6Groups();
}

// One socket does for all interfaces: the group's address has the interface with it.
void DiscoverySearch::Private::sendToIpv6Groups()
{
    DiscoverySocket *socket = m_groups6.empty() ? nullptr : unicastSocket(G_SOCKET_FAMILY_IPV6);
    if (!socket)
        return;
    for (const base::GObjectPtr<GSocketAddress> &group : m_groups6)
        for (const std::string &question : m_lastQuestions)
            socket->send(group.get(), question);
}

void DiscoverySearch::Private::received(std::string_view datagram, const std::string &sender)
{
    if (m_result.wanted || ++m_datagrams > maxDatagrams ||
        (m_scope.onlyTargets && !isTarget(sender)))
        return;
    std::optional<DiscoveryAnswer> answer = parseDiscoveryAnswer(datagram);
    if (!answer || (!answer->relatesTo.empty() && !m_askedIds.contains(answer->relatesTo)))
        return;
    for (DiscoveredDevice &device : answer->devices) {
        device.senderAddress = sender;
        device.serviceAddress = chooseXAddr(device.xaddrs, sender, subnetMaskOf(sender));
        g_log(logDomain, G_LOG_LEVEL_DEBUG, "%s answers from %s: %s", device.uid.c_str(),
              sender.c_str(), device.serviceAddress.c_str());
        if (m_scope.isWanted && !m_result.wanted && m_scope.isWanted(device)) {
            m_result.wanted = device;
            // Not from here: the socket that is being read would go.
            m_endTimer.start(
                std::chrono::milliseconds(0), [this] { finish(); }, m_context.get());
        }
        add(std::move(device));
    }
}

bool DiscoverySearch::Private::isTarget(std::string_view sender) const
{
    return std::any_of(
        m_targets.begin(), m_targets.end(),
        [sender](const base::GObjectPtr<GSocketAddress> &target) {
            return hostText(target.get()) == sender;
        });
}

void DiscoverySearch::Private::add(DiscoveredDevice device)
{
    std::vector<DiscoveredDevice> &devices = m_result.devices;
    const auto known =
        std::find_if(devices.begin(), devices.end(), [&device](const DiscoveredDevice &other) {
            return base::sameUid(other.uid, device.uid);
        });
    if (known == devices.end()) {
        if (devices.size() < maxDevices)
            devices.push_back(std::move(device));
        return;
    }
    if (isIpv6(known->senderAddress) && !isIpv6(device.senderAddress))
        std::swap(*known, device);
    else if (known->senderAddress != device.senderAddress)
        return;
    fillGaps(*known, device);
}

Ipv4 DiscoverySearch::Private::subnetMaskOf(std::string_view sender) const
{
    const std::optional<Ipv4> address = parseIpv4(sender);
    for (const LocalAddress &local : m_localAddresses)
        if (address && (*address & local.mask) == (local.address & local.mask))
            return local.mask;
    return unknownSubnet;
}

void DiscoverySearch::Private::finish()
{
    g_cancellable_cancel(m_cancellable.get());
    m_multicasters.clear();
    m_unicast4.reset();
    m_unicast6.reset();
    for (base::Timer &timer : m_roundTimers)
        timer.stop();
    // The receiver may destroy the search.
    const Done done = std::exchange(m_done, nullptr);
    done(std::move(m_result));
}

DiscoverySearch::DiscoverySearch(GMainContext *context, SearchScope scope, Done done)
    : d(std::make_unique<Private>(context, std::move(scope), std::move(done)))
{
}

DiscoverySearch::~DiscoverySearch() = default;

} // namespace onvif
