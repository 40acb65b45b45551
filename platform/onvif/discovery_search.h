#pragma once

#include "platform/onvif/request.h"
#include "platform/onvif/ws_discovery_message.h"

#include <glib.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace onvif {

/// Maximum of devices that one search reports.
inline constexpr std::size_t maxDevices = 1000;

/// Where a search looks and when it ends.
struct SearchScope
{
    bool multicast = true;            ///< query on every interface that is up, IPv4 and IPv6
    std::vector<std::string> targets; ///< hosts to query directly, each with an optional ":port"
    unsigned milliseconds = 3000;     ///< how long answers are waited for
    std::string uid;                  ///< when set, this device is requested by Resolve too
    /// Only answers sent from one of the targets count: finds, by multicast, devices there that
    /// ignore unicast probes.
    bool onlyTargets = false;
    /// When set, the search ends with the first device for which it is true. Called for every
    /// answer, also of a device that has answered before.
    std::function<bool(const DiscoveredDevice &)> isWanted;

    /// Every interface, unless ZELVARO_DISCOVERY_MULTICAST is 0, and the targets that
    /// ZELVARO_DISCOVERY_TARGETS names, separated by commas or blanks.
    static SearchScope fromEnvironment();
};

struct SearchResult
{
    /// Merged by UID: the first to claim one has it, except that IPv4 replaces IPv6.
    std::vector<DiscoveredDevice> devices;
    std::optional<DiscoveredDevice> wanted; ///< the one that ended the search, see isWanted
};

/// One search for ONVIF devices (WS-Discovery). The questions go out three times within 1.5 s.
class DiscoverySearch : public Request
{
public:
    using Done = std::function<void(SearchResult)>;

    /// Starts on the context given, the default of the calling thread; done is called there once.
    DiscoverySearch(GMainContext *context, SearchScope scope, Done done);
    ~DiscoverySearch() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace onvif
