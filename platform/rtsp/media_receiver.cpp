#include "platform/rtsp/media_receiver.h"

#include "platform/rtsp/depacketizer.h"
#include "platform/rtsp/payload_kinds.h"
#include "platform/rtsp/reception_statistics.h"
#include "platform/rtsp/reorder_window.h"
#include "platform/rtsp/rtcp.h"
#include "platform/rtsp/rtp_clock.h"
#include "platform/rtsp/rtp_packet.h"
#include "platform/rtsp/session_description.h"
#include "platform/rtsp/stream_timeline.h"

#include <algorithm>
#include <random>
#include <utility>

namespace rtsp {

namespace {

constexpr int firstDynamicType = 96;
constexpr auto patience = std::chrono::seconds(1); ///< with other payload types
constexpr int maxAhead = 3000; ///< what is further ahead is another start (RFC 3550 A.1)

std::optional<base::SteadyClock::time_point>
earliest(std::optional<base::SteadyClock::time_point> a,
         std::optional<base::SteadyClock::time_point> b)
{
    if (!a || !b)
        return a ? a : b;
    return std::min(*a, *b);
}

/// The middle of an NTP time, ns since 1900.
int64_t nanosecondsOf(uint64_t ntpTime)
{
    const auto seconds = static_cast<int64_t>(ntpTime >> 32);
    const auto rest = static_cast<int64_t>((ntpTime & 0xffffffff) * 1'000'000'000 >> 32);
    return seconds * 1'000'000'000 + rest;
}

} // namespace

class MediaReceiver::Private : public ReorderWindow::Client, public Depacketizer::Client
{
public:
    Private(const MediaDescription &media, const PayloadFormat &format, StreamTimeline &timeline,
            MediaSink &sink, bool ordered);

    void takeRtp(std::span<const uint8_t> packet, TimePoint arrived);
    void takeRtcp(std::span<const uint8_t> packet, TimePoint arrived);

    void onOrdered(std::span<const uint8_t> packet, TimePoint arrived, unsigned missing) override;
    void onFrame(VideoFrame frame) override;
    void onPiece(AudioPiece piece) override;
    void onDamaged() override { ++m_statistics.damaged; }
    void onReferenceLost() override;

    ReorderWindow m_window;
    std::unique_ptr<Depacketizer> m_depacketizer;
    ReceptionStatistics m_reception;
    MediaStatistics m_statistics;
    const uint32_t m_ownSource = std::random_device()();
    bool m_goodbye = false;

private:
    bool isWanted(const RtpPacket &packet, TimePoint arrived);
    bool takesOver(int payloadType);
    bool isOfSource(const RtpPacket &packet);
    unsigned missingBefore(uint16_t number);
    void restart();
    void noteEpoch();

    const MediaDescription m_media;
    StreamTimeline &m_timeline;
    const StreamTimeline::Medium m_medium;
    MediaSink &m_sink;
    const bool m_ordered;
    RtpClock m_clock;
    unsigned m_epoch = 0;
    int64_t m_packetTime = 0; ///< of the first piece of a packet of sound
    uint64_t m_lastAudioTime = 0;

    int m_payloadType;
    std::optional<TimePoint> m_lastWanted; ///< packet of m_payloadType, else the first one
    std::optional<uint32_t> m_source;
    std::optional<uint32_t> m_otherSource; ///< that sent the last packet over UDP, once
    std::optional<uint16_t> m_next;        ///< number, over TCP
};

MediaReceiver::Private::Private(const MediaDescription &media, const PayloadFormat &format,
                                StreamTimeline &timeline, MediaSink &sink, bool ordered)
    : m_window(*this)
    , m_depacketizer(makeDepacketizer(media, format, *this))
    , m_reception(clockRateOf(*payloadKindOf(media.kind, format), format))
    , m_media(media)
    , m_timeline(timeline)
    , m_medium(media.kind == MediaKind::Video ? StreamTimeline::Medium::Video
                                              : StreamTimeline::Medium::Audio)
    , m_sink(sink)
    , m_ordered(ordered)
    , m_clock(clockRateOf(*payloadKindOf(media.kind, format), format))
    , m_payloadType(format.payloadType)
{
}

void MediaReceiver::Private::takeRtp(std::span<const uint8_t> bytes, TimePoint arrived)
{
    if (isRtcpPacket(bytes)) {
        takeRtcp(bytes, arrived);
        return;
    }
    const std::optional<RtpPacket> packet = parseRtpPacket(bytes);
    if (!packet || !isWanted(*packet, arrived) || !isOfSource(*packet))
        return;
    m_goodbye = false;
    ++m_statistics.packets;
    m_statistics.bytes += bytes.size();
    static_cast<void>(m_timeline.sinceStart(arrived)); // which may begin here
    m_reception.note(*packet, arrived);
    if (m_ordered)
        onOrdered(bytes, arrived, missingBefore(packet->number));
    else
        m_window.take(packet->number, bytes, arrived);
}

bool MediaReceiver::Private::isWanted(const RtpPacket &packet, TimePoint arrived)
{
    if (packet.payloadType != m_payloadType &&
        (!m_lastWanted || arrived - *m_lastWanted < patience || !takesOver(packet.payloadType))) {
        if (!m_lastWanted)
            m_lastWanted = arrived;
        return false;
    }
    m_lastWanted = arrived;
    return true;
}

/// Whether packets of a type that was not expected are taken from here on: those of another format
/// of the medium, and dynamic types that were not described.
bool MediaReceiver::Private::takesOver(int payloadType)
{
    const auto described =
        std::find_if(m_media.formats.begin(), m_media.formats.end(),
                     [&](const PayloadFormat &each) { return each.payloadType == payloadType; });
    if (described == m_media.formats.end()) {
        if (payloadType < firstDynamicType)
            return false;
    } else {
        std::unique_ptr<Depacketizer> other = makeDepacketizer(m_media, *described, *this);
        if (!other)
            return false;
        m_depacketizer = std::move(other);
    }
    m_payloadType = payloadType;
    return true;
}

// Cameras that start their encoder anew begin with another source. Over UDP a stray packet of
// somebody else is not such a start: it takes two in a row.
bool MediaReceiver::Private::isOfSource(const RtpPacket &packet)
{
    if (m_source == packet.source) {
        m_otherSource.reset();
        return true;
    }
    if (m_source && !m_ordered && m_otherSource != packet.source) {
        m_otherSource = packet.source;
        return false;
    }
    const bool goesOn = m_ordered && m_next == packet.number;
    if (m_source && !goesOn)
        restart();
    m_source = packet.source;
    m_otherSource.reset();
    return true;
}

void MediaReceiver::Private::restart()
{
    m_window.restart();
    m_depacketizer->restart();
    m_clock.restart();
    m_next.reset();
    m_timeline.setWallClock(m_medium, std::nullopt);
}

/// Over TCP, where nothing comes late: what is missing was left out by the camera.
unsigned MediaReceiver::Private::missingBefore(uint16_t number)
{
    const int ahead = m_next ? static_cast<int16_t>(number - *m_next) : 0;
    m_next = static_cast<uint16_t>(number + 1);
    if (ahead <= 0)
        return 0;
    return ahead < maxAhead ? static_cast<unsigned>(ahead) : 1;
}

void MediaReceiver::Private::onOrdered(std::span<const uint8_t> bytes, TimePoint arrived,
                                       unsigned missing)
{
    m_statistics.lost += missing;
    const std::optional<RtpPacket> packet = parseRtpPacket(bytes);
    if (!packet)
        return;
    m_depacketizer->take({packet->payload, packet->time, packet->marker, missing > 0, arrived});
}

void MediaReceiver::Private::noteEpoch()
{
    if (std::exchange(m_epoch, m_clock.epoch()) != m_clock.epoch())
        m_timeline.setWallClock(m_medium, std::nullopt);
}

void MediaReceiver::Private::onFrame(VideoFrame frame)
{
    const int64_t time =
        m_clock.next(frame.time, m_timeline.sinceStart(frame.began), frame.bipredictive);
    noteEpoch();
    base::AccessUnit unit;
    unit.payload = std::make_shared<const base::Bytes>(std::move(frame.payload));
    unit.format = std::move(frame.format);
    unit.number = ++m_statistics.units;
    unit.time = static_cast<uint64_t>(std::max<int64_t>(time, 0));
    unit.key = frame.key;
    unit.reference = frame.reference;
    unit.bipredictive = frame.bipredictive;
    unit.arrived = frame.completed;
    m_sink.onVideo(unit);
}

void MediaReceiver::Private::onPiece(AudioPiece piece)
{
    // A packet may have several pieces, of which the first one has its time.
    if (piece.later == 0) {
        m_packetTime = m_clock.next(piece.time, m_timeline.sinceStart(piece.arrived), false);
        noteEpoch();
        m_packetTime += m_timeline.nextAudioShift();
    }
    const int64_t time = std::max<int64_t>(m_packetTime + piece.later, 0);
    m_lastAudioTime = std::max(m_lastAudioTime, static_cast<uint64_t>(time));
    ++m_statistics.units;
    base::AudioUnit unit;
    unit.payload = std::make_shared<const base::Bytes>(std::move(piece.payload));
    unit.format = std::move(piece.format);
    unit.time = m_lastAudioTime;
    m_sink.onAudio(unit);
}

void MediaReceiver::Private::onReferenceLost()
{
    if (m_medium == StreamTimeline::Medium::Video)
        m_sink.onPacketsLost();
}

void MediaReceiver::Private::takeRtcp(std::span<const uint8_t> bytes, TimePoint arrived)
{
    const RtcpNews news = parseRtcp(bytes);
    if (news.report && (!m_source || news.report->source == *m_source)) {
        m_reception.noteReport(*news.report, arrived);
        // Cameras without a clock say 0.
        const std::optional<int64_t> time = m_clock.at(news.report->rtpTime);
        if (time && news.report->ntpTime != 0)
            m_timeline.setWallClock(m_medium, nanosecondsOf(news.report->ntpTime) - *time);
    }
    for (const uint32_t source : news.goodbyes)
        if (!m_source || source == *m_source)
            m_goodbye = true;
}

std::unique_ptr<MediaReceiver> MediaReceiver::create(const MediaDescription &media,
                                                     StreamTimeline &timeline, MediaSink &sink,
                                                     bool ordered)
{
    const PayloadFormat *format = playableFormat(media);
    if (!format)
        return nullptr;
    return std::unique_ptr<MediaReceiver>(
        new MediaReceiver(std::make_unique<Private>(media, *format, timeline, sink, ordered)));
}

MediaReceiver::MediaReceiver(std::unique_ptr<Private> made) : d(std::move(made)) {}

MediaReceiver::~MediaReceiver() = default;

void MediaReceiver::takeRtp(std::span<const uint8_t> packet, TimePoint arrived)
{
    d->takeRtp(packet, arrived);
}

void MediaReceiver::takeRtcp(std::span<const uint8_t> packet, TimePoint arrived)
{
    d->takeRtcp(packet, arrived);
}

std::optional<MediaReceiver::TimePoint> MediaReceiver::deadline() const
{
    return earliest(d->m_window.deadline(), d->m_depacketizer->deadline());
}

void MediaReceiver::tick(TimePoint now)
{
    d->m_window.tick(now);
    d->m_depacketizer->tick(now);
}

base::Bytes MediaReceiver::receiverReport(TimePoint now)
{
    return makeReceiverReport(d->m_ownSource, ownName, d->m_reception.report(now));
}

bool MediaReceiver::saidGoodbye() const
{
    return d->m_goodbye;
}

MediaStatistics MediaReceiver::statistics() const
{
    MediaStatistics statistics = d->m_statistics;
    statistics.reordered = d->m_window.reordered();
    statistics.dropped = d->m_window.dropped();
    statistics.jitter = d->m_reception.jitter();
    return statistics;
}

} // namespace rtsp
