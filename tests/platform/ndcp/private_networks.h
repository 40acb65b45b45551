#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

/// Networks that no other process sees: this process moves to a separate network namespace, and
/// each device gets another one, joined by a virtual cable. Needs the right to make namespaces and
/// the program "ip".
class PrivateNetworks
{
public:
    /// Empty when they can be made; otherwise why not. Call first, before any thread is made: on
    /// success the process stays in its namespace.
    static std::string enter();

    PrivateNetworks() = default;
    ~PrivateNetworks();
    PrivateNetworks(const PrivateNetworks &) = delete;
    PrivateNetworks &operator=(const PrivateNetworks &) = delete;

    /// By which protocols a device answers multicast probes.
    enum class Answers
    {
        Ipv4,
        Ipv6,
        Both
    };

    /// A network 10.77.number.0/24 with this process at .1 and a device at .2 that answers
    /// multicast probes, and no others, with this UID and a device service at port 8899. Both ends
    /// have link-local addresses too, fe80::77:1 and fe80::77:2, where the system knows IPv6. False
    /// when the cable or the device did not come up.
    [[nodiscard]] bool addDevice(int number, const std::string &uid,
                                 Answers answers = Answers::Ipv4);

    /// Empty when there is IPv6 in these networks; otherwise why not.
    static std::string missingIpv6();

    /// This process's end of a cable.
    static std::string interfaceName(int number);

    /// Hardware address of the device's end of the cable, as text.
    static std::string deviceMac(int number);

    /// Takes this process's end of a cable down.
    static bool takeDown(int number);

private:
    std::vector<pid_t> m_devices;
    std::vector<int> m_lifelines; ///< a device ends when its lifeline closes
};
