#include "camsim/audio_source.h"

#include "camsim/tone.h"

namespace camsim {

namespace {

constexpr std::chrono::milliseconds kPiece{40};
constexpr std::size_t kPieceBytes = 320;

} // namespace

AudioSource::AudioSource(Ticker &ticker, int index)
    : m_ticker(ticker)
    , m_task(std::make_shared<std::atomic<Ticker::Id>>(0))
    , m_feeds([&ticker, task = m_task] { ticker.wake(*task); })
{
    const std::vector<std::uint8_t> tone = makeTone(index);
    for (std::size_t at = 0; at < tone.size(); at += kPieceBytes) {
        GstBuffer *piece = gst_buffer_new_memdup(&tone[at], kPieceBytes);
        GST_BUFFER_DURATION(piece) = GST_MSECOND * kPiece.count();
        m_pieces.push_back(piece);
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
    m_next = m_next + kPiece > now && m_next <= now ? m_next + kPiece : now + kPiece;
    return m_next;
}

} // namespace camsim
