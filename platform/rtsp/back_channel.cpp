#include "platform/rtsp/back_channel.h"

#include "platform/base/destroy_later.h"
#include "platform/rtsp/outgoing_track.h"
#include "platform/rtsp/sendable_sound.h"
#include "platform/rtsp/stream_connection.h"

#include <utility>

namespace rtsp {
namespace {

constexpr const char *feature = "www.onvif.org/ver20/backchannel";

SessionPlan backChannelPlan()
{
    SessionPlan plan;
    plan.require = feature;
    return plan;
}

} // namespace

/// One start of a channel.
class BackChannel::Private : public StreamConnection::Client
{
public:
    Private(BackChannel::Client &client, const StreamRequest &request)
        : m_client(client)
        , m_connection(*this, request, backChannelPlan())
    {
    }

    StreamConnection &connection() { return m_connection; }
    void send(std::span<const uint8_t> sound, uint64_t ticks)
    {
        if (m_connection.isClosed() || !m_connection.isPlaying())
            return;
        const base::Bytes payload = payloadOf(m_format, sound);
        if (!payload.empty())
            static_cast<OutgoingTrack *>(m_connection.firstTrack())->send(payload, ticks);
    }

private:
    TrackChoice chooseTracks(const SessionDescription &description) override
    {
        TrackChoice choice;
        const std::optional<SendableSound> sound = chooseSendable(description);
        if (!sound) {
            choice.missing = "the camera takes no sound, or none of a known kind";
            return choice;
        }
        m_format = *sound->format;
        choice.tracks.push_back(std::make_unique<OutgoingTrack>(*sound->media, m_format));
        return choice;
    }
    void playing() override { m_client.opened(m_format); }
    bool isSettled() const override { return true; }
    void connectionEnded(const StreamFailure &failure) override
    {
        m_client.ended(failure.end, failure.text);
    }

    BackChannel::Client &m_client;
    PayloadFormat m_format;
    StreamConnection m_connection;
};

BackChannel::BackChannel(Client &client, StreamRequest request)
    : m_client(client)
    , m_request(std::move(request))
{
}

BackChannel::~BackChannel()
{
    close();
}

void BackChannel::start()
{
    close();
    d = std::make_shared<Private>(m_client, m_request);
    d->connection().start();
}

void BackChannel::send(std::span<const uint8_t> sound, uint64_t ticks)
{
    if (d)
        d->send(sound, ticks);
}

void BackChannel::close(std::function<void()> closed)
{
    if (!d) {
        if (closed)
            closed();
        return;
    }
    d->connection().close(std::move(closed));
    // Not now: it may be calling the client.
    base::destroyLater(std::move(d));
}

} // namespace rtsp
