#pragma once

#include "bench/measured_process.h"
#include "bench/peers.h"

#include <string>
#include <vector>

namespace bench {

/// A program that shows one camera in the top left corner of the screen.
struct Player
{
    std::string name;
    Command command;
    bool tellsPlay = false; ///< prints when play was requested, after its start-up
};

/// Our engine first, then the peers that are installed; the sub stream in this size.
std::vector<Player> livePlayers(const zelvaro::test::SimulatedCamera &camera, int width,
                                int height);

/// When the player requested the stream: printed by those that report it, else its start.
Clock::time_point playMoment(const Player &player, MeasuredProcess &process);

double milliseconds(Clock::duration duration);

} // namespace bench
