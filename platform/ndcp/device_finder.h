#pragma once

#include "platform/base/credentials.h"
#include "platform/base/timer.h"
#include "platform/ndcp/configuration_times.h"
#include "platform/ndcp/network_configuration.h"
#include "platform/onvif/request.h"

#include <glib.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ndcp {

/// Looks for a device that is about to come to another address or port, or to restart: queries the
/// places where it may be, and the network for its UID, again and again until it is there.
class DeviceFinder : public onvif::Request
{
public:
    struct Wanted
    {
        std::string uid;                     ///< may be empty: then only the places are queried
        std::vector<onvif::MacAddress> macs; ///< of its interfaces; empty: not known
        std::vector<std::string> places;     ///< device services, the likeliest first
        /// Whether the device has arrived, when it answers at this service with this configuration.
        std::function<bool(const std::string &service, const NetworkConfiguration &)> isThere;
        /// For how long one that answers as before is waited for, in milliseconds.
        unsigned patience = 0;
    };

    struct Found
    {
        bool isThere = false;
        std::string service; ///< where it answered last; empty when it did not
    };

    using Done = std::function<void(const Found &)>;

    /// Ends after times.look milliseconds at the latest, or with the patience. done is never called
    /// inside.
    DeviceFinder(GMainContext *context, Wanted wanted, base::Credentials credentials,
                 const ConfigurationTimes &times, Done done);

private:
    void startRound();
    void askNext();
    void answered(onvif::SoapStatus status, const NetworkConfiguration &configuration);
    void search();
    [[nodiscard]] bool isSameDevice(const NetworkConfiguration &configuration) const;
    void finish(bool isThere);

    GMainContext *m_context;
    Wanted m_wanted;
    base::Credentials m_credentials;
    ConfigurationTimes m_times;
    Done m_done;
    std::size_t m_next = 0; ///< place
    std::string m_seenAt;
    bool m_wasSeen = false; ///< in this round
    gint64 m_started = g_get_monotonic_time();
    std::unique_ptr<onvif::SoapClient> m_soap;
    onvif::RequestPtr m_request;
    base::Timer m_pause;
    base::Timer m_end;
};

} // namespace ndcp
