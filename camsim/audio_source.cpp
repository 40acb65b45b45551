#include "camsim/audio_source.h"

#include "camsim/tone.h"

namespace camsim {

AudioSource::AudioSource(Ticker &ticker, int index, std::chrono::milliseconds piece)
    : m_ticker(ticker)
    , m_piece(piece)
    , m_task(std::make_shared<std::atomic<Ticker::Id>>(0))
    , m_feeds([&ticker, task = m_task] { ticker.wake(*task); })
{
    const std::vector<std::uint8_t> tone = makeTone(index);
    const auto bytes = static_cast<std::size_t>(piece.count()) * 8;
    for (std::size_t at = 0; at + bytes <= tone.size(); at += bytes) {
        GstBuffer *buffer = gst_buffer_new_memdup(&tone[at], bytes);
        GST_BUFFER_DURATION(buffer) = GST_MSECOND * static_cast<guint64>(piece.count());
        m_pieces.push_back(buffer);
    }
    *m_task = m_ticker.add([this](Ticker::Time now) { return tick(now); });
}

AudioSource::~AudioSource()
{
    m_ticker.remove(*m_task);
    for (GstBuffer *piece : m_pieces)
        gst_buffer_unref(piece);
}

Ticker::Time AudioSource::tick(Ticker::Time now)
{
    const FeedList::Feeds feeds = m_feeds.active();
    if (feeds.empty())
        return Ticker::never();
    if (FeedList::isWatched(feeds) && m_next > now)
        return m_next;
    for (const auto &feed : feeds)
        feed->push(m_pieces[m_position]);
    m_position = (m_position + 1) % m_pieces.size();
    m_next = m_next + m_piece > now && m_next <= now ? m_next + m_piece : now + m_piece;
    return m_next;
}

} // namespace camsim
