#include "platform/media/gop_buffer.h"

namespace media {

namespace {

// Audio is a few kB/s; the bound is for cameras that send garbage.
constexpr size_t maxAudioUnits = 4096;

} // namespace

void GopBuffer::takeFrame(const AccessUnit &unit)
{
    std::lock_guard lock(m_mutex);
    if (unit.key)
        startOver();
    else if (m_frames.empty())
        return;
    m_bytes += unit.size();
    if (m_bytes > m_byteLimit) {
        startOver();
        return;
    }
    if (unit.key)
        while (!m_audio.empty() && m_audio.front().time < unit.time)
            m_audio.pop_front();
    m_frames.push_back(unit);
}

void GopBuffer::takeAudio(const AudioUnit &unit)
{
    std::lock_guard lock(m_mutex);
    m_audio.push_back(unit);
    if (m_audio.size() > maxAudioUnits)
        m_audio.pop_front();
}

std::vector<AccessUnit> GopBuffer::frames() const
{
    std::lock_guard lock(m_mutex);
    return m_frames;
}

std::vector<AudioUnit> GopBuffer::audio() const
{
    std::lock_guard lock(m_mutex);
    return {m_audio.begin(), m_audio.end()};
}

void GopBuffer::clear()
{
    std::lock_guard lock(m_mutex);
    startOver();
    m_audio.clear();
}

void GopBuffer::startOver()
{
    m_frames.clear();
    m_bytes = 0;
}

} // namespace media
