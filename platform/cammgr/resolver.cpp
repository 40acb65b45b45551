#include "platform/cammgr/resolver.h"

#include "platform/base/known_keys.h"

#include <algorithm>
#include <utility>

namespace cammgr {
namespace {

constexpr uint16_t rtspPort = 554;
constexpr uint16_t httpPort = 80;

/// Waiters may call again while they are answered.
template <class Waiters, class... Answer>
void answerAll(Waiters &waiters, Answer... answer)
{
    for (auto &waiter : std::exchange(waiters, {}))
        waiter(answer...);
}

} // namespace

Resolver::Resolver(onvif::CameraLookup &lookup, base::CameraAddress address,
                   base::Credentials credentials, onvif::LoginLimitPtr limit)
    : m_lookup(lookup)
    , m_address(std::move(address))
    , m_credentials(std::move(credentials))
    , m_limit(std::move(limit))
{
    if (m_address.kind == base::CameraAddress::Kind::Host) {
        m_endpoint = m_address.endpoint;
        m_isFresh = true;
    }
}

void Resolver::find(std::function<void(bool)> done)
{
    if (m_isFresh || m_address.kind == base::CameraAddress::Kind::Invalid) {
        done(m_isFresh);
        return;
    }
    m_findWaiters.push_back(std::move(done));
    if (m_findWaiters.size() == 1)
        lookUp();
}

void Resolver::lost()
{
    if (!m_address.uid.empty())
        m_isFresh = false;
}

void Resolver::lookUp()
{
    m_findRequest = m_lookup.resolve(
        m_address.uid,
        [this](std::optional<onvif::CameraLocation> location) {
            if (location)
                located(*location);
            else
                finishFind(m_endpoint.port != 0);
        });
}

void Resolver::located(const onvif::CameraLocation &location)
{
    const bool moved = !m_xaddr.empty() && m_xaddr != location.xaddr;
    m_xaddr = location.xaddr;
    m_isFoundByUid = true;
    m_isGuess = false;
    m_streams.reset();
    if (m_endpoint.host != location.address)
        m_endpoint = {.host = location.address, .port = rtspPort, .tls = false};
    // Only the stream addresses contain the RTSP port.
    findStreams([this, moved](const onvif::CameraStreams *streams) {
        if (streams) {
            const base::CameraAddress main = base::parseUrl(streams->main.uri);
            if (main.kind == base::CameraAddress::Kind::Host)
                m_endpoint = main.endpoint;
        }
        m_isFresh = true;
        if (moved && onMoved)
            onMoved();
        finishFind(true);
    });
}

void Resolver::finishFind(bool found)
{
    answerAll(m_findWaiters, found);
}

void Resolver::locate(std::function<void()> then)
{
    if (!m_xaddr.empty() || m_endpoint.host.empty()) {
        then();
        return;
    }
    m_locateWaiters.push_back(std::move(then));
    if (m_locateWaiters.size() > 1)
        return;
    m_locateRequest = m_lookup.locate(m_endpoint.host, [this](onvif::CameraLocation location) {
        m_xaddr = location.xaddr;
        m_isGuess = location.isGuess;
        answerAll(m_locateWaiters);
    });
}

void Resolver::locateAgain()
{
    if (m_isGuess)
        m_xaddr.clear();
}

void Resolver::findStreams(std::function<void(const onvif::CameraStreams *)> done)
{
    if (m_streams) {
        done(&*m_streams);
        return;
    }
    m_streamWaiters.push_back(std::move(done));
    if (m_streamWaiters.size() == 1)
        locate([this] { askStreams(); });
}

void Resolver::askStreams()
{
    if (m_xaddr.empty()) {
        answerAll(m_streamWaiters, nullptr);
        return;
    }
    m_streamRequest = m_lookup.streamUris(
        m_xaddr, m_credentials,
        [this](onvif::SoapStatus status, onvif::CameraStreams streams) {
            if (status == onvif::SoapStatus::Ok && isThisCamera(streams))
                m_streams = std::move(streams);
            answerAll(m_streamWaiters, m_streams ? &*m_streams : nullptr);
        },
        m_limit);
}

bool Resolver::isThisCamera(const onvif::CameraStreams &streams) const
{
    // Behind one address there may be several cameras, distinguished by the port that the user
    // gave.
    if (m_address.kind != base::CameraAddress::Kind::Host || !m_address.hasPort)
        return true;
    return base::parseUrl(streams.main.uri).endpoint.port == m_address.endpoint.port;
}

void Resolver::findWebServer(std::function<void(const base::Endpoint &)> done)
{
    m_webServerWaiters.push_back(std::move(done));
    if (m_webServerWaiters.size() > 1)
        return;
    find([this](bool found) {
        if (found)
            locate([this] { askWebServer(); });
        else
            answerAll(m_webServerWaiters, base::Endpoint());
    });
}

// Queried each time: its port can be changed in the camera's set-up.
void Resolver::askWebServer()
{
    const base::CameraAddress service = base::parseUrl(m_xaddr);
    const std::string host =
        service.kind == base::CameraAddress::Kind::Host ? service.endpoint.host : m_endpoint.host;
    if (m_xaddr.empty()) {
        answerAll(m_webServerWaiters, base::Endpoint{.host = host, .port = httpPort, .tls = false});
        return;
    }
    m_webServerRequest = m_lookup.webServer(
        m_xaddr, m_credentials,
        [this, host](std::optional<onvif::WebServer> server) {
            const onvif::WebServer usual = {.port = httpPort, .tls = false};
            const onvif::WebServer &found = server ? *server : usual;
            answerAll(m_webServerWaiters, base::Endpoint{.host = host,
                                                         .port = static_cast<uint16_t>(found.port),
                                                         .tls = found.tls});
        },
        m_limit);
}

void Resolver::fetchSnapshot(const std::string &profileToken,
                             std::function<void(onvif::PictureStatus, std::string)> done)
{
    if (m_xaddr.empty() || profileToken.empty())
        done(onvif::PictureStatus::Failed, {});
    else
        m_snapshotRequest =
            m_lookup.snapshot(m_xaddr, profileToken, m_credentials, std::move(done), m_limit);
}

void Resolver::requestKeyFrame(const std::string &profileToken)
{
    if (m_xaddr.empty() || profileToken.empty())
        return;
    m_keyFrameRequest = m_lookup.requestKeyFrame(
        m_xaddr, profileToken, m_credentials, [](onvif::SoapStatus) {}, m_limit);
}

/// At which the camera's services are reached.
std::vector<std::string> Resolver::hosts() const
{
    std::vector<std::string> hosts = {m_endpoint.host};
    const base::CameraAddress service = base::parseUrl(m_xaddr);
    if (service.kind == base::CameraAddress::Kind::Host && service.endpoint.host != hosts.front())
        hosts.push_back(service.endpoint.host);
    return hosts;
}

bool Resolver::hasChangedKey() const
{
    const std::vector<std::string> all = hosts();
    return std::any_of(all.begin(), all.end(), [](const std::string &host) {
        return base::KnownKeys::instance().hasChanged(host);
    });
}

void Resolver::trustKey()
{
    for (const std::string &host : hosts())
        base::KnownKeys::instance().trustChanged(host);
}

} // namespace cammgr
