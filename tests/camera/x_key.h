#pragma once

/// Presses and releases the space bar in a window of the X display, as a user's keyboard would:
/// the events come through the server. False when there is no display. Apart from Qt because both
/// define the same words.
bool pressSpaceInWindow(unsigned long window);
