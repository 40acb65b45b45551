#include "platform/onvif/network_interfaces.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cstring>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>

namespace onvif {

namespace {

struct InterfaceListDeleter
{
    void operator()(ifaddrs *list) const { freeifaddrs(list); }
};

using InterfaceList = std::unique_ptr<ifaddrs, InterfaceListDeleter>;

InterfaceList interfaceList()
{
    ifaddrs *first = nullptr;
    return InterfaceList(getifaddrs(&first) == 0 ? first : nullptr);
}

bool carriesMulticast(const ifaddrs &entry)
{
    constexpr unsigned wanted = IFF_UP | IFF_RUNNING | IFF_MULTICAST;
    return (entry.ifa_flags & wanted) == wanted && (entry.ifa_flags & IFF_LOOPBACK) == 0;
}

Ipv4 hostOrder(const sockaddr *address)
{
    sockaddr_in ipv4 = {};
    std::memcpy(&ipv4, address, sizeof ipv4);
    return ntohl(ipv4.sin_addr.s_addr);
}

} // namespace

std::vector<LocalAddress> localAddresses()
{
    std::vector<LocalAddress> addresses;
    const InterfaceList list = interfaceList();
    for (const ifaddrs *entry = list.get(); entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || !entry->ifa_netmask || entry->ifa_addr->sa_family != AF_INET ||
            !carriesMulticast(*entry))
            continue;
        addresses.push_back({hostOrder(entry->ifa_addr), hostOrder(entry->ifa_netmask)});
    }
    return addresses;
}

std::vector<unsigned> ipv6Interfaces()
{
    std::set<unsigned> indices;
    const InterfaceList list = interfaceList();
    for (const ifaddrs *entry = list.get(); entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || entry->ifa_addr->sa_family != AF_INET6 || !carriesMulticast(*entry))
            continue;
        if (const unsigned index = if_nametoindex(entry->ifa_name); index != 0)
            indices.insert(index);
    }
    return {indices.begin(), indices.end()};
}

std::string interfaceName(unsigned index)
{
    std::array<char, IF_NAMESIZE> name = {};
    return if_indextoname(index, name.data()) ? name.data() : std::to_string(index);
}

std::optional<MacAddress> neighbourMac(Ipv4 address)
{
    constexpr unsigned complete = 0x2; // ATF_COM
    const std::string wanted = ipv4Text(address);
    std::ifstream table("/proc/net/arp");
    std::string line;
    std::getline(table, line); // headings
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        std::string ip;
        std::string type;
        std::string mac;
        unsigned flags = 0;
        fields >> ip >> type >> std::hex >> flags >> mac;
        if (fields && ip == wanted && (flags & complete) != 0)
            return parseMac(mac);
    }
    return std::nullopt;
}

} // namespace onvif
