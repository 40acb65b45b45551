#include "platform/ndcp/device_finder.h"

#include "platform/base/text.h"
#include "platform/ndcp/configuration_reader.h"
#include "platform/ndcp/log.h"
#include "platform/onvif/discovery_search.h"

#include <algorithm>
#include <utility>

namespace ndcp {

using onvif::SoapStatus;

namespace {

// More places than that are made up.
constexpr std::size_t maxPlaces = 16;

} // namespace

DeviceFinder::DeviceFinder(GMainContext *context, Wanted wanted, base::Credentials credentials,
                           const ConfigurationTimes &times, Done done)
    : m_context(context)
    , m_wanted(std::move(wanted))
    , m_credentials(std::move(credentials))
    , m_times(times)
    , m_done(std::move(done))
    , m_pause(context, std::chrono::milliseconds(0), [this] { startRound(); })
    , m_end(context, std::chrono::milliseconds(times.look), [this] { finish(false); })
{
    m_times.soap.questionMilliseconds = times.lookQuestion;
}

void DeviceFinder::startRound()
{
    const gint64 milliseconds = (g_get_monotonic_time() - m_started) / 1000;
    if (m_wasSeen && milliseconds >= m_wanted.patience) {
        finish(false);
        return;
    }
    m_next = 0;
    m_wasSeen = false;
    askNext();
}

void DeviceFinder::askNext()
{
    m_request.reset();
    if (m_next == m_wanted.places.size()) {
        search();
        return;
    }
    m_soap = std::make_unique<onvif::SoapClient>(m_context, m_wanted.places[m_next], m_credentials,
                                                 m_times.soap);
    m_request = std::make_unique<ConfigurationReader>(
        *m_soap, false, [this](SoapStatus status, const NetworkConfiguration &configuration) {
            answered(status, configuration);
        });
}

void DeviceFinder::answered(SoapStatus status, const NetworkConfiguration &configuration)
{
    if (status == SoapStatus::Ok && isSameDevice(configuration)) {
        m_seenAt = m_wanted.places[m_next];
        m_wasSeen = true;
        const bool isThere = m_wanted.isThere(m_seenAt, configuration);
        g_log(logDomain, G_LOG_LEVEL_DEBUG, "the device is at %s, %s", m_seenAt.c_str(),
              isThere ? "as wanted" : "as before");
        if (isThere) {
            finish(true);
            return;
        }
    }
    ++m_next;
    askNext();
}

// The pause between two rounds, in which a device that has got its address elsewhere may say so.
void DeviceFinder::search()
{
    if (m_wanted.uid.empty()) {
        m_pause.start(
            std::chrono::milliseconds(m_times.pause), [this] { startRound(); }, m_context);
        return;
    }
    onvif::SearchScope scope = onvif::SearchScope::fromEnvironment();
    scope.uid = m_wanted.uid;
    scope.milliseconds = m_times.pause;
    scope.isWanted = [this](const onvif::DiscoveredDevice &device) {
        const std::vector<std::string> &places = m_wanted.places;
        return base::sameUid(device.uid, m_wanted.uid) &&
               std::find(places.begin(), places.end(), device.serviceAddress) == places.end();
    };
    m_request = std::make_unique<onvif::DiscoverySearch>(
        m_context, std::move(scope), [this](const onvif::SearchResult &result) {
            if (result.wanted && m_wanted.places.size() < maxPlaces)
                m_wanted.places.insert(m_wanted.places.begin(), result.wanted->serviceAddress);
            startRound();
        });
}

bool DeviceFinder::isSameDevice(const NetworkConfiguration &configuration) const
{
    const std::vector<onvif::MacAddress> &macs = configuration.macs;
    return macs.empty() || m_wanted.macs.empty() ||
           std::find_first_of(macs.begin(), macs.end(), m_wanted.macs.begin(),
                              m_wanted.macs.end()) != macs.end();
}

void DeviceFinder::finish(bool isThere)
{
    m_request.reset();
    m_pause.stop();
    m_end.stop();
    // The receiver may destroy this object.
    const Done done = std::move(m_done);
    done({isThere, m_seenAt});
}

} // namespace ndcp
