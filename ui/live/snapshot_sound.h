#pragma once

namespace zelvaro {

/// The shutter sound, from the "sounds" folder next to the executable. Does not wait.
void playSnapshotSound();

} // namespace zelvaro
