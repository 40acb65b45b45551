#include "platform/onvif/camera_lookup.h"

#include "platform/base/glib_ptr.h"
#include "platform/base/text.h"
#include "platform/onvif/device_client.h"
#include "platform/onvif/media_client.h"
#include "platform/onvif/net_address.h"

#include <deque>
#include <set>
#include <utility>
#include <vector>

namespace onvif {

namespace {

// One more than the cameras of a client that shows a hundred, each with two users.
constexpr std::size_t maxKnownCameras = 256;

// What is kept of a camera between requests.
struct KnownCamera
{
    KnownCamera(GMainContext *context, const std::string &xaddr, const base::Credentials &user,
                ClearPassword clear, const LoginLimitPtr &loginLimit)
        : credentials(user)
        , clearPassword(clear)
        , limit(loginLimit)
        , soap(context, xaddr, user, {.clearPassword = clear, .limit = loginLimit})
    {
    }

    base::Credentials credentials;
    ClearPassword clearPassword;
    LoginLimitPtr limit;
    SoapClient soap;
    MediaServices media; ///< empty until requested
    /// Media 2 before the other, unless it reports no profiles.
    MediaVersion version = MediaVersion::Media2;
};

using KnownCameraPtr = std::shared_ptr<KnownCamera>;

// Finds the media service, unless it is known, before the request proper.
class MediaRequest : public Request
{
public:
    explicit MediaRequest(KnownCameraPtr camera)
        : m_camera(std::move(camera))
        , m_device(m_camera->soap)
    {
    }

    void start()
    {
        if (!m_camera->media.isEmpty()) {
            withMedia();
            return;
        }
        m_step = m_device.mediaServices([this](SoapStatus status, const MediaServices &found) {
            if (status != SoapStatus::Ok) {
                failed(status);
                return;
            }
            m_camera->media = found;
            m_camera->version = found.media2.empty() ? MediaVersion::Media1 : MediaVersion::Media2;
            withMedia();
        });
    }

protected:
    virtual void withMedia() = 0;
    virtual void failed(SoapStatus status) = 0;

    [[nodiscard]] MediaClient media() const
    {
        const bool isFirst = m_camera->version == MediaVersion::Media1;
        return {m_camera->soap, isFirst ? m_camera->media.media1 : m_camera->media.media2,
                m_camera->version};
    }

    // Whether there is an older media service, which is used from now on.
    bool takeOlderMedia()
    {
        if (m_camera->version == MediaVersion::Media1 || m_camera->media.media1.empty())
            return false;
        m_camera->version = MediaVersion::Media1;
        return true;
    }

    // A camera whose media service moved is queried for it again next time.
    void forgetMedia() { m_camera->media = {}; }

    void next(RequestPtr step) { m_step = std::move(step); }

private:
    KnownCameraPtr m_camera;
    DeviceClient m_device;
    RequestPtr m_step;
};

class StreamsRequest : public MediaRequest
{
public:
    using Done = std::function<void(SoapStatus, CameraStreams)>;

    StreamsRequest(KnownCameraPtr camera, Done done)
        : MediaRequest(std::move(camera))
        , m_done(std::move(done))
    {
    }

private:
    void withMedia() override
    {
        next(media().profiles([this](SoapStatus status, const std::vector<MediaProfile> &profiles) {
            const std::optional<ProfileChoice> choice = chooseProfiles(profiles);
            if ((status == SoapStatus::Ok && !choice) || status == SoapStatus::Fault) {
                if (takeOlderMedia())
                    withMedia();
                else
                    failed(SoapStatus::Fault);
                return;
            }
            if (status != SoapStatus::Ok) {
                failed(status);
                return;
            }
            m_streams.main = streamOf(choice->main);
            m_streams.sub = streamOf(choice->sub);
            askForMain();
        }));
    }

    static CameraStream streamOf(const MediaProfile &profile)
    {
        return {{}, profile.token, profile.width, profile.height};
    }

    void askForMain()
    {
        next(media().streamUri(
            m_streams.main.profileToken,
            [this](SoapStatus status, const std::string &address) {
                m_streams.main.uri = address;
                if (status != SoapStatus::Ok)
                    failed(status);
                else if (hasOneStream())
                    takeSub(SoapStatus::Ok, address);
                else
                    askForSub();
            }));
    }

    [[nodiscard]] bool hasOneStream() const
    {
        return m_streams.main.profileToken == m_streams.sub.profileToken;
    }

    void askForSub()
    {
        next(media().streamUri(
            m_streams.sub.profileToken,
            [this](SoapStatus status, const std::string &address) { takeSub(status, address); }));
    }

    void takeSub(SoapStatus status, const std::string &address)
    {
        m_streams.sub.uri = address;
        // One stream is better than none.
        if (status == SoapStatus::Fault)
            m_streams.sub = m_streams.main;
        else if (status != SoapStatus::Ok) {
            failed(status);
            return;
        }
        const Done done = std::move(m_done);
        done(SoapStatus::Ok, std::move(m_streams));
    }

    void failed(SoapStatus status) override
    {
        forgetMedia();
        const Done done = std::move(m_done);
        done(status, {});
    }

    Done m_done;
    CameraStreams m_streams;
};

class KeyFrameRequest : public MediaRequest
{
public:
    using Done = std::function<void(SoapStatus)>;

    KeyFrameRequest(KnownCameraPtr camera, std::string profileToken, Done done)
        : MediaRequest(std::move(camera))
        , m_profileToken(std::move(profileToken))
        , m_done(std::move(done))
    {
    }

private:
    void withMedia() override
    {
        next(media().setSynchronizationPoint(
            m_profileToken,
            [this](SoapStatus status) {
                if (status == SoapStatus::NoAnswer)
                    forgetMedia();
                finish(status);
            }));
    }

    void failed(SoapStatus status) override { finish(status); }

    void finish(SoapStatus status)
    {
        const Done done = std::move(m_done);
        done(status);
    }

    std::string m_profileToken;
    Done m_done;
};

class SnapshotRequest : public MediaRequest
{
public:
    SnapshotRequest(GMainContext *context, KnownCameraPtr camera, std::string profileToken,
                    PictureRequest::Done done)
        : MediaRequest(camera)
        , m_context(context)
        , m_camera(std::move(camera))
        , m_profileToken(std::move(profileToken))
        , m_done(std::move(done))
    {
    }

private:
    void withMedia() override
    {
        next(media().snapshotUri(
            m_profileToken,
            [this](SoapStatus status, const std::string &address) {
                if (status == SoapStatus::Ok)
                    get(address);
                else
                    failed(status);
            }));
    }

    void get(const std::string &address)
    {
        next(std::make_unique<PictureRequest>(
            m_context, address, m_camera->credentials, m_camera->clearPassword, m_camera->limit,
            [this](PictureStatus status, const std::string &picture) {
                const PictureRequest::Done done = std::move(m_done);
                done(status, picture);
            }));
    }

    void failed(SoapStatus status) override
    {
        if (status == SoapStatus::NoAnswer)
            forgetMedia();
        const PictureRequest::Done done = std::move(m_done);
        done(status == SoapStatus::Refused ? PictureStatus::Refused : PictureStatus::Failed, {});
    }

    GMainContext *m_context; ///< of the look-up, which outlives its requests
    KnownCameraPtr m_camera;
    std::string m_profileToken;
    PictureRequest::Done m_done;
};

class WebServerRequest : public Request
{
public:
    using Done = std::function<void(std::optional<WebServer>)>;

    WebServerRequest(KnownCameraPtr camera, const Done &done)
        : m_camera(std::move(camera))
        , m_device(m_camera->soap)
        , m_step(m_device.networkProtocols(
              [done, prefersTls = isSecure(m_camera->soap.deviceService())](
                  SoapStatus status, const std::vector<NetworkProtocol> &protocols) {
                  done(status == SoapStatus::Ok ? webServerOf(protocols, prefersTls)
                                                : std::nullopt);
              }))
    {
    }

private:
    static bool isSecure(const std::string &address)
    {
        const std::optional<HttpAddress> service = parseHttpAddress(address);
        return service && service->secure;
    }

    KnownCameraPtr m_camera;
    DeviceClient m_device;
    RequestPtr m_step;
};

} // namespace

class CameraLookup::Private
{
public:
    explicit Private(GMainContext *mainContext) : context(g_main_context_ref(mainContext)) {}

    KnownCameraPtr camera(const std::string &xaddr, const base::Credentials &credentials,
                          const LoginLimitPtr &limit)
    {
        const ClearPassword clear =
            foundByUid.contains(xaddr) ? ClearPassword::Never : ClearPassword::AsLastResort;
        for (const KnownCameraPtr &known : m_known)
            if (known->soap.deviceService() == xaddr && known->credentials == credentials &&
                known->clearPassword == clear && known->limit == limit)
                return known;
        if (m_known.size() == maxKnownCameras)
            m_known.pop_front();
        return m_known.emplace_back(
            std::make_shared<KnownCamera>(context.get(), xaddr, credentials, clear, limit));
    }

    base::GMainContextPtr context;
    /// Device services reported by the answer to a Resolve or Probe for a UID. Any host may claim a
    /// UID: such a device never gets the password in clear.
    std::set<std::string> foundByUid;

private:
    std::deque<KnownCameraPtr> m_known; ///< oldest first; running requests hold theirs
};

CameraLookup::CameraLookup(GMainContext *context) : d(std::make_shared<Private>(context)) {}

CameraLookup::~CameraLookup() = default;

RequestPtr CameraLookup::resolve(const std::string &uid,
                                 std::function<void(std::optional<CameraLocation>)> done)
{
    return findByUid(
        d->context.get(), base::uidFromEndpoint(uid),
        [known = d, done = std::move(done)](const std::optional<CameraLocation> &location) {
            if (location)
                known->foundByUid.insert(location->xaddr);
            done(location);
        });
}

RequestPtr CameraLookup::locate(const std::string &host, std::function<void(CameraLocation)> done)
{
    return findAtHost(d->context.get(), host, std::move(done));
}

RequestPtr CameraLookup::streamUris(const std::string &xaddr, const base::Credentials &credentials,
                                    std::function<void(SoapStatus, CameraStreams)> done,
                                    const LoginLimitPtr &limit)
{
    auto request =
        std::make_unique<StreamsRequest>(d->camera(xaddr, credentials, limit), std::move(done));
    request->start();
    return request;
}

RequestPtr CameraLookup::webServer(const std::string &xaddr, const base::Credentials &credentials,
                                   std::function<void(std::optional<WebServer>)> done,
                                   const LoginLimitPtr &limit)
{
    return std::make_unique<WebServerRequest>(d->camera(xaddr, credentials, limit), done);
}

RequestPtr CameraLookup::snapshot(const std::string &xaddr, const std::string &profileToken,
                                  const base::Credentials &credentials,
                                  std::function<void(PictureStatus, std::string)> done,
                                  const LoginLimitPtr &limit)
{
    auto request = std::make_unique<SnapshotRequest>(
        d->context.get(), d->camera(xaddr, credentials, limit), profileToken, std::move(done));
    request->start();
    return request;
}

RequestPtr CameraLookup::requestKeyFrame(const std::string &xaddr, const std::string &profileToken,
                                         const base::Credentials &credentials,
                                         std::function<void(SoapStatus)> done,
                                         const LoginLimitPtr &limit)
{
    auto request = std::make_unique<KeyFrameRequest>(d->camera(xaddr, credentials, limit),
                                                     profileToken, std::move(done));
    request->start();
    return request;
}

} // namespace onvif
