#pragma once

#include "bench/measured_process.h"
#include "bench/screen_reader.h"

#include <optional>
#include <vector>

namespace bench {

/// Glass to glass latency of the picture on the screen, in milliseconds: from the moment that the
/// camera drew the time code to the moment that it could be read.
class LatencyProbe
{
public:
    explicit LatencyProbe(ScreenReader &screen) : m_screen(screen) {}

    /// When a picture that was drawn after the given moment first stood on the screen.
    std::optional<Clock::time_point> waitForPicture(Clock::time_point after,
                                                    std::chrono::milliseconds deadline);

    /// A new frame on the screen.
    struct Sighting
    {
        Clock::time_point moment;
        double latency = 0; ///< ms
    };

    /// One for each new frame.
    std::vector<Sighting> watch(std::chrono::milliseconds duration);
    /// The same, only how late they are.
    std::vector<double> sample(std::chrono::milliseconds duration);

private:
    ScreenReader &m_screen;
};

} // namespace bench
