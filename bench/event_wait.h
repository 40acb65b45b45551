#pragma once

#include <chrono>
#include <functional>

namespace bench {

/// Runs the event loop for so long, or until something holds, which is checked every `look`.
/// @return whether it came to hold. GUI thread only.
bool wait(std::chrono::milliseconds duration, const std::function<bool()> &until = {},
          std::chrono::milliseconds look = std::chrono::milliseconds(5));

} // namespace bench
