#pragma once

namespace media {

/// Raises the number of file handles that this process may have open as far as the system allows
/// without privileges, up to what a full house of cameras needs. One source per system.
void raiseHandleLimit();

/// Gives memory that nothing in the process uses back to the system. Any thread. Takes a few
/// milliseconds, during which other allocations may block.
void releaseFreeMemory();

} // namespace media
