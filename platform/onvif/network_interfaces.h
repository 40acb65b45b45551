#pragma once

#include "platform/onvif/net_address.h"
#include "platform/onvif/scopes.h"

#include <optional>
#include <string>
#include <vector>

// The networks of this computer; each operating system reports them in its own way.
namespace onvif {

/// An IPv4 address of this computer, on an interface that is up and carries multicast.
struct LocalAddress
{
    Ipv4 address = 0;
    Ipv4 mask = 0;
};

/// All such addresses, those of the loopback interface left out.
std::vector<LocalAddress> localAddresses();

/// The interfaces that are up, carry multicast and have an IPv6 address, by their index; the
/// loopback interface left out.
std::vector<unsigned> ipv6Interfaces();

/// Name of the interface with this index, as IPv6 addresses contain it after "%"; its number when
/// there is no such interface.
std::string interfaceName(unsigned index);

/// Hardware address of a neighbour that this computer has exchanged packets with recently.
std::optional<MacAddress> neighbourMac(Ipv4 address);

} // namespace onvif
