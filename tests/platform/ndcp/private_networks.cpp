#include "tests/platform/ndcp/private_networks.h"

#include "tests/platform/onvif/support/discovery_answers.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string_view>

namespace {

constexpr int discoveryPort = 3702;
constexpr const char *discoveryGroup = "239.255.255.250";
constexpr const char *discoveryGroup6 = "ff02::c";

std::string network(int number)
{
    return "10.77." + std::to_string(number) + '.';
}

std::string nearEnd(int number)
{
    return "near" + std::to_string(number);
}

std::string farEnd(int number)
{
    return "far" + std::to_string(number);
}

bool run(const std::string &command)
{
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

bool writeFile(const char *path, const std::string &text)
{
    const int file = open(path, O_WRONLY);
    if (file < 0)
        return false;
    const bool isWritten = write(file, text.data(), text.size()) == ssize_t(text.size());
    close(file);
    return isWritten;
}

// Without privileges a user namespace gives the right to make network namespaces, where the
// system allows it.
bool enterAsUser()
{
    const std::string user = std::to_string(getuid());
    const std::string group = std::to_string(getgid());
    return unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 &&
           writeFile("/proc/self/setgroups", "deny") &&
           writeFile("/proc/self/uid_map", "0 " + user + " 1") &&
           writeFile("/proc/self/gid_map", "0 " + group + " 1");
}

bool waitForByte(int handle, int milliseconds)
{
    pollfd ready = {handle, POLLIN, 0};
    char byte = 0;
    return poll(&ready, 1, milliseconds) == 1 && read(handle, &byte, 1) == 1;
}

int openDeviceSocket(const std::string &address)
{
    const int handle = socket(AF_INET, SOCK_DGRAM, 0);
    // Bound to the group, as many cameras are: what is sent to the device's own address is lost.
    sockaddr_in group = {};
    group.sin_family = AF_INET;
    group.sin_port = htons(discoveryPort);
    inet_pton(AF_INET, discoveryGroup, &group.sin_addr);
    ip_mreq membership = {};
    inet_pton(AF_INET, discoveryGroup, &membership.imr_multiaddr);
    inet_pton(AF_INET, address.c_str(), &membership.imr_interface);
    const bool isOpen =
        bind(handle, reinterpret_cast<const sockaddr *>(&group), sizeof group) == 0 &&
        setsockopt(handle, IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership) == 0;
    if (!isOpen) {
        close(handle);
        return -1;
    }
    return handle;
}

int openDeviceSocket6(int number)
{
    const int handle = socket(AF_INET6, SOCK_DGRAM, 0);
    sockaddr_in6 group = {};
    group.sin6_family = AF_INET6;
    group.sin6_port = htons(discoveryPort);
    group.sin6_scope_id = if_nametoindex(farEnd(number).c_str());
    inet_pton(AF_INET6, discoveryGroup6, &group.sin6_addr);
    ipv6_mreq membership = {};
    membership.ipv6mr_multiaddr = group.sin6_addr;
    membership.ipv6mr_interface = group.sin6_scope_id;
    const bool isOpen =
        bind(handle, reinterpret_cast<const sockaddr *>(&group), sizeof group) == 0 &&
        setsockopt(handle, IPPROTO_IPV6, IPV6_ADD_MEMBERSHIP, &membership, sizeof membership) == 0;
    if (!isOpen) {
        close(handle);
        return -1;
    }
    return handle;
}

void answerProbe(int handle, const AnnouncedDevice &device)
{
    std::array<char, 65'536> buffer = {};
    sockaddr_storage from = {};
    socklen_t fromSize = sizeof from;
    const ssize_t length = recvfrom(handle, buffer.data(), buffer.size(), MSG_DONTWAIT,
                                    reinterpret_cast<sockaddr *>(&from), &fromSize);
    if (length <= 0)
        return;
    const std::string question(buffer.data(), static_cast<std::size_t>(length));
    const std::string answer = discoveryAnswer("ProbeMatches", messageIdOf(question), {device});
    sendto(handle, answer.data(), answer.size(), 0, reinterpret_cast<const sockaddr *>(&from),
           fromSize);
}

/// What a device says by each protocol; a socket of -1 is silent.
struct DeviceSockets
{
    int ipv4 = -1;
    int ipv6 = -1;
};

void answerProbes(const DeviceSockets &sockets, int lifeline, const std::string &address,
                  const std::string &uid)
{
    AnnouncedDevice device;
    device.endpoint = "urn:uuid:" + uid;
    device.xaddrs = "http://192.0.2.1/elsewhere http://" + address + ":8899/onvif/device_service";
    AnnouncedDevice device6 = device;
    device6.xaddrs = "http://[fe80::77:2]:8899/onvif/device_service";
    while (true) {
        std::array<pollfd, 3> ready = {
            {{sockets.ipv4, POLLIN, 0}, {sockets.ipv6, POLLIN, 0}, {lifeline, POLLIN, 0}}};
        if (poll(ready.data(), ready.size(), -1) < 0 && errno != EINTR)
            return;
        if (ready[2].revents != 0)
            return;
        if (ready[0].revents != 0)
            answerProbe(sockets.ipv4, device);
        if (ready[1].revents != 0)
            answerProbe(sockets.ipv6, device6);
    }
}

// An address that counts at once, and no other of its kind.
bool addLinkLocalAddress(const std::string &interface, const std::string &address)
{
    return run("ip link set " + interface + " addrgenmode none") &&
           run("ip addr add " + address + "/64 dev " + interface + " nodad");
}

// The process of a device: leaves the network, waits for its cable, answers until it has to end.
[[noreturn]] void runDevice(int number, const std::string &uid, PrivateNetworks::Answers answers,
                            int lifeline, int report)
{
    using Answers = PrivateNetworks::Answers;
    const std::string address = network(number) + "2";
    const auto tell = [report] { return write(report, "1", 1) == 1; };
    if (unshare(CLONE_NEWNET) != 0 || !tell() || !waitForByte(lifeline, 30'000))
        _exit(1);
    const bool hasIpv6 = PrivateNetworks::missingIpv6().empty();
    if ((hasIpv6 && !addLinkLocalAddress(farEnd(number), "fe80::77:2")) ||
        !run("ip addr add " + address + "/24 dev " + farEnd(number)) ||
        !run("ip link set " + farEnd(number) + " up"))
        _exit(1);
    DeviceSockets sockets;
    if (answers != Answers::Ipv6)
        sockets.ipv4 = openDeviceSocket(address);
    if (answers != Answers::Ipv4)
        sockets.ipv6 = openDeviceSocket6(number);
    const bool isOpen = (answers == Answers::Ipv6 || sockets.ipv4 >= 0) &&
                        (answers == Answers::Ipv4 || sockets.ipv6 >= 0);
    if (!isOpen || !tell())
        _exit(1);
    answerProbes(sockets, lifeline, address, uid);
    _exit(0);
}

} // namespace

std::string PrivateNetworks::enter()
{
    if (!run("ip -V"))
        return "the program \"ip\" is missing";
    if (unshare(CLONE_NEWNET) != 0 && !enterAsUser())
        return "network namespaces are not permitted: " + std::string(std::strerror(errno));
    // What this process sends to an address of its own goes through the loopback interface.
    if (!run("ip link set lo up") || !run("ip link add probe0 type veth peer name probe1") ||
        !run("ip link del probe0"))
        return "virtual network cables are not permitted";
    return {};
}

PrivateNetworks::~PrivateNetworks()
{
    for (const int lifeline : m_lifelines)
        close(lifeline);
    for (const pid_t device : m_devices)
        waitpid(device, nullptr, 0);
}

std::string PrivateNetworks::missingIpv6()
{
    std::ifstream file("/proc/sys/net/ipv6/conf/default/disable_ipv6");
    int isOff = 1;
    return file >> isOff && isOff == 0 ? std::string() : "this system has no IPv6";
}

std::string PrivateNetworks::interfaceName(int number)
{
    return nearEnd(number);
}

bool PrivateNetworks::addDevice(int number, const std::string &uid, Answers answers)
{
    std::array<int, 2> lifeline = {};
    std::array<int, 2> report = {};
    if (pipe2(lifeline.data(), O_CLOEXEC) != 0 || pipe2(report.data(), O_CLOEXEC) != 0)
        return false;
    const pid_t device = fork();
    if (device < 0)
        return false;
    if (device == 0) {
        // A device holds no lifeline, neither its own nor those of the ones before.
        close(lifeline[1]);
        for (const int other : m_lifelines)
            close(other);
        runDevice(number, uid, answers, lifeline[0], report[1]);
    }
    close(lifeline[0]);
    close(report[1]);
    m_devices.push_back(device);
    m_lifelines.push_back(lifeline[1]);

    const bool isUp =
        waitForByte(report[0], 30'000) &&
        run("ip link add " + nearEnd(number) + " type veth peer name " + farEnd(number) +
            " address " + deviceMac(number)) &&
        run("ip link set " + farEnd(number) + " netns " + std::to_string(device)) &&
        (!missingIpv6().empty() || addLinkLocalAddress(nearEnd(number), "fe80::77:1")) &&
        run("ip addr add " + network(number) + "1/24 dev " + nearEnd(number)) &&
        run("ip link set " + nearEnd(number) + " up") && write(lifeline[1], "1", 1) == 1 &&
        waitForByte(report[0], 30'000);
    close(report[0]);
    return isUp;
}

std::string PrivateNetworks::deviceMac(int number)
{
    return "02:5a:00:00:00:0" + std::to_string(number);
}

bool PrivateNetworks::takeDown(int number)
{
    return run("ip link set " + nearEnd(number) + " down");
}
