#include "platform/onvif/camera_location.h"

#include "platform/base/text.h"
#include "platform/onvif/device_client.h"
#include "platform/onvif/discovery_search.h"
#include "platform/onvif/net_address.h"
#include "platform/onvif/soap_message.h"

#include <array>
#include <memory>
#include <utility>
#include <vector>

namespace onvif {

namespace {

constexpr unsigned locateMilliseconds = 1500;
// Where cameras have their ONVIF services when it is not the usual port 80.
constexpr std::array<int, 9> servicePorts = {80, 8000, 8080, 8899, 2020, 5000, 8081, 8090, 10080};

CameraLocation locationOf(const DiscoveredDevice &device)
{
    const std::optional<HttpAddress> service = parseHttpAddress(device.serviceAddress);
    return {.address = service ? service->host : device.senderAddress,
            .xaddr = device.serviceAddress};
}

/// The search for the device with a UID. What is found has to name that UID itself, where it knows
/// the question, before anybody sends it a login: addresses change hands.
class ResolveRequest : public Request
{
public:
    using Done = std::function<void(std::optional<CameraLocation>)>;

    ResolveRequest(GMainContext *context, std::string uid, Done done)
        : m_context(context)
        , m_uid(std::move(uid))
        , m_done(std::move(done))
    {
        SearchScope scope = SearchScope::fromEnvironment();
        scope.uid = m_uid;
        if (m_uid.empty()) {
            // No device can have it: nothing is sent.
            scope.multicast = false;
            scope.targets.clear();
            scope.milliseconds = 0;
        }
        scope.isWanted = [wanted = m_uid](const DiscoveredDevice &device) {
            return base::sameUid(device.uid, wanted);
        };
        m_step = std::make_unique<DiscoverySearch>(context, std::move(scope),
                                                   [this](const SearchResult &result) {
                                                       if (result.wanted)
                                                           askIdentity(locationOf(*result.wanted));
                                                       else
                                                           finish(std::nullopt);
                                                   });
    }

private:
    void askIdentity(const CameraLocation &location)
    {
        m_soap =
            std::make_unique<SoapClient>(m_context, location.xaddr, base::Credentials{},
                                         SoapOptions{.questionMilliseconds = locateMilliseconds});
        m_device = std::make_unique<DeviceClient>(*m_soap);
        m_step = m_device->endpointReference(
            [this, location](SoapStatus status, const std::string &uid) {
                const bool isOther = status == SoapStatus::Ok && !base::sameUid(uid, m_uid);
                finish(isOther ? std::nullopt : std::optional(location));
            });
    }

    void finish(const std::optional<CameraLocation> &location)
    {
        const Done done = std::move(m_done);
        done(location);
    }

    GMainContext *m_context; ///< of the look-up, which outlives its requests
    const std::string m_uid;
    Done m_done;
    std::unique_ptr<SoapClient> m_soap;
    std::unique_ptr<DeviceClient> m_device;
    RequestPtr m_step;
};

/// The search for the device service of a host, by all ways at once.
class LocateRequest : public Request
{
public:
    LocateRequest(GMainContext *context, std::string host, std::function<void(CameraLocation)> done)
        : m_host(std::move(host))
        , m_done(std::move(done))
    {
        for (const int port : servicePorts)
            askPort(context, port);
        // Many cameras ignore unicast probes.
        SearchScope scope = SearchScope::fromEnvironment();
        scope.targets = {m_host};
        scope.onlyTargets = true;
        scope.milliseconds = locateMilliseconds;
        scope.isWanted = [](const DiscoveredDevice &) { return true; };
        m_search = std::make_unique<DiscoverySearch>(
            context, std::move(scope), [this](const SearchResult &result) { searched(result); });
    }

private:
    // What every device answers without a login (ONVIF Core 8.3.4).
    void askPort(GMainContext *context, int port)
    {
        const std::string service = usualDeviceService(m_host, port);
        const auto client =
            std::make_shared<SoapClient>(context, service, base::Credentials{},
                                         SoapOptions{.questionMilliseconds = locateMilliseconds});
        m_clients.push_back(client);
        m_questions.push_back(client->call(service, clockAction, clockBody, SoapKind::Question,
                                           [this, service](const SoapReply &reply) {
                                               if (reply.message && parseSystemTime(*reply.message))
                                                   finish({.address = m_host, .xaddr = service});
                                           }));
    }

    void searched(const SearchResult &result)
    {
        if (result.wanted)
            finish(locationOf(*result.wanted));
        else
            finish({.address = m_host, .xaddr = usualDeviceService(m_host), .isGuess = true});
    }

    // Once: who is told may destroy this request, which cancels the rest.
    void finish(const CameraLocation &location)
    {
        if (const auto done = std::exchange(m_done, nullptr))
            done(location);
    }

    const std::string m_host;
    std::function<void(CameraLocation)> m_done;
    std::vector<std::shared_ptr<SoapClient>> m_clients;
    std::vector<RequestPtr> m_questions;
    RequestPtr m_search;
};

} // namespace

RequestPtr findByUid(GMainContext *context, const std::string &uid,
                     std::function<void(std::optional<CameraLocation>)> done)
{
    return std::make_unique<ResolveRequest>(context, uid, std::move(done));
}

RequestPtr findAtHost(GMainContext *context, const std::string &host,
                      std::function<void(CameraLocation)> done)
{
    return std::make_unique<LocateRequest>(context, host, std::move(done));
}

} // namespace onvif
