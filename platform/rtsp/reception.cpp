#include "platform/rtsp/reception.h"

#include "platform/rtsp/depacketizer.h"

#include <algorithm>
#include <utility>

namespace rtsp {
namespace {

using namespace std::chrono_literals;
using base::SteadyClock;

constexpr auto firstPacketLimit = 10s; // cameras that start an encoder on demand
constexpr auto firstFrameLimit = 30s;  // the longest distance of key frames that is usual
constexpr auto silenceLimit = 5s;
constexpr auto watchPeriod = 1s;

const MediaDescription *firstPlayable(const SessionDescription &description, MediaKind kind)
{
    const auto found = std::find_if(
        description.media.begin(), description.media.end(),
        [kind](const MediaDescription &media) { return media.kind == kind && isPlayable(media); });
    return found == description.media.end() ? nullptr : &*found;
}

/// The format of a picture that cannot be played; null when there is no picture.
const PayloadFormat *otherVideo(const SessionDescription &description)
{
    for (const MediaDescription &media : description.media)
        if (media.kind == MediaKind::Video && !media.formats.empty() && !media.backChannel)
            return &media.formats.front();
    return nullptr;
}

/// What there is instead of a picture that can be played.
TrackChoice nothingIn(const SessionDescription &description)
{
    TrackChoice choice;
    choice.missing = "the camera sends no video";
    if (const PayloadFormat *other = otherVideo(description)) {
        choice.codec = other->encoding.empty()
                           ? "payload type " + std::to_string(other->payloadType)
                           : other->encoding;
        choice.missing = "the video is " + choice.codec + ", which is not supported";
    }
    return choice;
}

} // namespace

Receiver::Private::Private(Receiver::Client &client, const StreamRequest &request)
    : m_client(client)
    , m_wantsAudio(request.wantsAudio)
    , m_connection(*this, request, {})
{
}

void Receiver::Private::close()
{
    m_watch.stop();
    m_connection.close();
}

TrackChoice Receiver::Private::chooseTracks(const SessionDescription &description)
{
    const MediaDescription *video = firstPlayable(description, MediaKind::Video);
    const MediaDescription *audio = firstPlayable(description, MediaKind::Audio);
    MediaSink &sink = *this;
    TrackChoice choice;
    if (video) {
        const auto timeline = std::make_shared<StreamTimeline>();
        choice.tracks.push_back(std::make_unique<IncomingTrack>(*video, timeline, sink));
        if (audio && m_wantsAudio)
            choice.tracks.push_back(std::make_unique<IncomingTrack>(*audio, timeline, sink));
    } else {
        choice = nothingIn(description);
    }
    if (!std::exchange(m_isDescribed, true)) {
        const PayloadFormat *format = audio ? playableFormat(*audio) : nullptr;
        m_client.described(video != nullptr, audio != nullptr,
                           format ? describedSound(*audio, *format) : nullptr);
    }
    return choice;
}

/// The first of the chosen tracks; null while there is no session.
IncomingTrack *Receiver::Private::video() const
{
    return static_cast<IncomingTrack *>(m_connection.firstTrack());
}

MediaStatistics Receiver::Private::videoStatistics() const
{
    return video() ? video()->statistics() : MediaStatistics();
}

void Receiver::Private::playing()
{
    m_playAnswered = SteadyClock::now();
    if (m_frames == 0)
        m_lastSign = m_playAnswered;
    watch();
    tellPlays();
}

void Receiver::Private::connectionEnded(const StreamFailure &failure)
{
    m_watch.stop();
    m_client.ended(failure);
}

void Receiver::Private::tellPlays()
{
    if (!isClosed() && !std::exchange(m_toldPlays, true))
        m_client.plays();
}

void Receiver::Private::watch()
{
    if (isClosed() || !m_connection.isPlaying())
        return;
    const auto now = SteadyClock::now();
    IncomingTrack &video = *this->video();
    if (m_frames == 0 && video.takeSign())
        m_lastSign = now;
    if (video.saidGoodbye())
        m_connection.end({StreamEnd::Closed, "the camera ended the stream"});
    else if (!video.hasReceived() && now - m_playAnswered >= firstPacketLimit)
        m_connection.tryAnotherWay({StreamEnd::Stalled, "no video came"});
    else if (video.hasReceived() && now - m_lastSign >= silenceLimit)
        m_connection.end({StreamEnd::Stalled, "no video came any more"});
    else if (m_frames == 0 && now - m_playAnswered >= firstFrameLimit)
        m_connection.end({StreamEnd::Stalled, "no frame could be made of the video"});
    if (isClosed() || !m_connection.isPlaying())
        return;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_lastSign + silenceLimit - now);
    m_watch.start(std::clamp<std::chrono::milliseconds>(left, 50ms, watchPeriod),
                  [this] { watch(); });
}

void Receiver::Private::onVideo(const base::AccessUnit &unit)
{
    if (isClosed())
        return;
    m_lastSign = unit.arrived;
    ++m_frames;
    tellPlays();
    if (!isClosed())
        m_client.video(unit);
}

void Receiver::Private::onAudio(const base::AudioUnit &unit)
{
    if (!isClosed())
        m_client.audio(unit);
}

void Receiver::Private::onPacketsLost()
{
    if (!isClosed())
        m_client.lostPackets();
}

} // namespace rtsp
