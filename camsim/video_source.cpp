#include "camsim/video_source.h"

#include "camsim/timecode.h"

namespace camsim {

namespace {

// An encoder without clients is kept this long, for those that reconnect.
constexpr std::chrono::seconds encoderIdle{5};

/// Length of the parameter sets at the start of an access unit in byte-stream format: all that
/// lies before the first NAL unit that holds picture data (types 1 to 5).
std::size_t parameterSetLength(const std::uint8_t *data, std::size_t size)
{
    for (std::size_t i = 0; i + 3 < size; ++i) {
        if (data[i] != 0 || data[i + 1] != 0 || data[i + 2] != 1)
            continue;
        const int type = data[i + 3] & 0x1F;
        if (type >= 1 && type <= 5)
            return i > 0 && data[i - 1] == 0 ? i - 1 : i;
        i += 3;
    }
    return 0;
}

} // namespace

VideoSource::VideoSource(Ticker &ticker, const VideoSettings &settings)
    : m_ticker(ticker)
    , m_task(std::make_shared<std::atomic<Ticker::Id>>(0))
    , m_settings(settings)
    , m_feeds([&ticker, task = m_task] { ticker.wake(*task); })
{
}

void VideoSource::start(Ticker::Task task)
{
    *m_task = m_ticker.add(std::move(task));
}

void VideoSource::stop()
{
    m_ticker.remove(*m_task);
}

VideoSettings VideoSource::settings() const
{
    const std::lock_guard lock(m_mutex);
    return m_settings;
}

bool VideoSource::isEarly(Ticker::Time now, const FeedList::Feeds &feeds) const
{
    return FeedList::isWatched(feeds) && m_beat > now;
}

Ticker::Time VideoSource::nextBeat(Ticker::Time now, int fps)
{
    const std::chrono::nanoseconds period{1'000'000'000 / fps};
    m_beat += period;
    // After a pause, or when this machine cannot keep up, the beat starts over.
    if (m_beat < now - period || m_beat > now + 2 * period)
        m_beat = now + period;
    return m_beat;
}

LiveVideo::LiveVideo(Ticker &ticker, const VideoSettings &settings, PictureSettings picture)
    : VideoSource(ticker, settings)
    , m_picture(std::move(picture))
{
    start([this](Ticker::Time now) { return tick(now); });
    if (m_picture.warm)
        wake();
}

LiveVideo::~LiveVideo()
{
    stop();
    m_encoder.reset(); // before what its thread writes to
}

void LiveVideo::forceKeyFrame()
{
    m_keyWanted = true;
}

void LiveVideo::configure(const VideoSettings &settings)
{
    const std::lock_guard lock(m_mutex);
    m_settings = settings;
    m_changed = true;
}

void LiveVideo::rebuild(const VideoSettings &settings)
{
    if (!m_scene || m_changed) {
        m_scene = std::make_unique<Scene>(m_picture.scene, m_picture.name, settings.width,
                                          settings.height, m_picture.timeCode);
    }
    m_encoder = std::make_unique<Encoder>(
        settings, [this](GstBuffer *unit, bool isKey) { deliver(unit, isKey); });
    m_changed = false;
}

Ticker::Time LiveVideo::tick(Ticker::Time now)
{
    const FeedList::Feeds feeds = m_feeds.active();
    if (feeds.empty() && !m_picture.warm) {
        if (!m_encoder)
            return Ticker::never();
        if (now - m_lastUse >= encoderIdle) {
            m_encoder.reset();
            return Ticker::never();
        }
        return m_lastUse + encoderIdle;
    }
    m_lastUse = now;
    if (isEarly(now, feeds))
        return beat();

    const VideoSettings current = settings();
    if (m_changed || !m_encoder)
        rebuild(current);
    bool keyWanted = m_keyWanted.exchange(false);
    for (const auto &feed : feeds)
        keyWanted = keyWanted || (feed->state() == Feed::State::Fresh && !m_picture.warm);
    if (keyWanted)
        m_encoder->forceKeyFrame();

    const double seconds = std::chrono::duration<double>(now.time_since_epoch()).count();
    m_encoder->encode([&](const PictureView &view) {
        m_scene->draw(view, seconds, std::time(nullptr), timecode::now());
    });
    return nextBeat(now, current.fps);
}

void LiveVideo::deliver(GstBuffer *unit, bool isKey)
{
    if (isKey) {
        GstMapInfo map;
        if (gst_buffer_map(unit, &map, GST_MAP_READ)) {
            const std::size_t length = parameterSetLength(map.data, map.size);
            m_parameterSets.assign(map.data, map.data + length);
            gst_buffer_unmap(unit, &map);
        }
    }
    for (const auto &feed : m_feeds.active()) {
        if (feed->state() == Feed::State::Fresh && !isKey) {
            if (!m_picture.warm || m_parameterSets.empty())
                continue;
            // A client that joins between two key frames still learns the size from the
            // description.
            GstBuffer *sets = gst_buffer_new_memdup(m_parameterSets.data(), m_parameterSets.size());
            feed->push(sets);
            gst_buffer_unref(sets);
        }
        feed->push(unit);
    }
}

} // namespace camsim
