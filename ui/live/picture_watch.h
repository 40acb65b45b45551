#pragma once

#include "ui/common/album_files.h"

#include <optional>

class CCamera;

namespace zelvaro {

/// Follows how old the picture of a live stream is: by the figures of the library, or, where it has
/// none, by whether the stream plays and how many frames came within the last second. GUI thread
/// only.
class PictureWatch
{
public:
    explicit PictureWatch(Clock clock) : m_clock(std::move(clock)) {}

    /// Another stream: there was no picture yet.
    void reset();
    /// Once a second at least, or the times are coarser.
    void look(const CCamera &camera);

    /// When the last picture came; nullopt before the first.
    std::optional<QDateTime> last() const { return m_last; }
    /// Milliseconds since then; 0 before the first picture.
    qint64 age() const;
    QDateTime now() const { return m_clock(); }

private:
    Clock m_clock;
    std::optional<QDateTime> m_last;
    bool m_countsFrames = false; // the library has told a frame rate other than 0
};

} // namespace zelvaro
