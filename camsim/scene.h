#pragma once

#include "camsim/picture.h"

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace camsim {

/// What a camera sees: a painted landscape in which something passes by, with the camera's name,
/// the time of day and the time code over it. Each scene index has its own landscape.
class Scene
{
public:
    static constexpr int count = 6;

    Scene(int index, std::string name, int width, int height, bool timeCode);

    /// Draws a whole frame. seconds moves the picture, clock is shown as local time, and timeCodeMs
    /// is drawn as the time code.
    void draw(const PictureView &picture, double seconds, std::time_t clock,
              std::uint32_t timeCodeMs);

private:
    struct Mover
    {
        Sprite sprite;
        double speed = 0;  ///< widths of the picture per second; negative: from right to left
        double height = 0; ///< where its middle is, as a part of the picture's height
        double swing = 0;  ///< how far it moves up and down, as a part of the picture's height
        double start = 0;  ///< where it is at time 0, as a part of its way
    };

    void paintMovers(int index);
    void paintCaption(std::time_t clock);

    std::string m_name;
    int m_width;
    int m_height;
    bool m_timeCode;
    Sprite m_background;
    std::vector<Mover> m_movers;
    Sprite m_caption;
    std::time_t m_captionTime = -1;
};

} // namespace camsim
