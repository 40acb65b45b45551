#include "ui/live/picture_watch.h"

#include "camera/camera.h"

namespace zelvaro {

void PictureWatch::reset()
{
    m_last.reset();
    m_countsFrames = false;
}

void PictureWatch::look(const CCamera &camera)
{
    if (const auto figures = camera.figures()) {
        if (figures->picture_age >= 0)
            m_last = m_clock().addMSecs(-figures->picture_age);
        return;
    }
    if (!camera.is_playing())
        return;
    const bool frames = camera.get_frame_rate() > 0;
    m_countsFrames |= frames;
    if (frames || !m_countsFrames)
        m_last = m_clock();
}

qint64 PictureWatch::age() const
{
    return m_last ? std::max<qint64>(0, m_last->msecsTo(m_clock())) : 0;
}

} // namespace zelvaro
