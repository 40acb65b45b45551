#pragma once

namespace rtsp {

/**
 * What a stream has taught of its markers, which should be on the last packet of each frame
 * (RFC 6184 5.1): cameras set them on each slice, on parameter sets, or never. Apart for key frames
 * and others, which often have another number of slices.
 */
class MarkerLesson
{
public:
    /// A frame has ended as told by the next one.
    /// @param marked on its last packet with slices
    /// @param markedInside on another one too
    void noteEnd(bool marked, bool markedInside, unsigned slices)
    {
        m_steady = slices == m_slices ? m_steady + 1 : 0;
        m_slices = slices;
        m_unmarked = marked ? 0 : m_unmarked + 1;
        if (markedInside)
            noteLie();
        else if (marked)
            noteRight();
    }
    /// The frame did end at the marker.
    void noteRight()
    {
        ++m_right;
        if (m_right >= forgiven)
            m_lied = false;
    }
    /// The frame went on behind the marker.
    void noteLie()
    {
        m_lied = true;
        m_right = 0;
    }
    /// The frame went on behind as many slices as those before it had.
    void noteMoreSlices() { m_steady = 0; }

    [[nodiscard]] bool believesMarkers() const { return !m_lied && m_right >= proved; }
    [[nodiscard]] bool doubtsMarkers() const { return m_lied || m_unmarked >= steadyCount; }
    /// Whether a frame without believable markers has ended with so many slices.
    [[nodiscard]] bool endsAfter(unsigned slices) const
    {
        return doubtsMarkers() && m_steady >= steadyCount && slices == m_slices;
    }
    [[nodiscard]] bool mayBelieve() const { return !m_lied; }

private:
    static constexpr unsigned proved = 2;      ///< frames
    static constexpr unsigned steadyCount = 8; ///< frames with the same number of slices
    static constexpr unsigned forgiven = 1000; ///< frames

    bool m_lied = false;
    unsigned m_right = 0;
    unsigned m_unmarked = 0;
    unsigned m_slices = 0;
    unsigned m_steady = 0;
};

} // namespace rtsp
