#pragma once

namespace media {

/// Makes errors of the X server a line in the log: without an error handler a process ends when
/// something draws on a window that was just destroyed. Once per process; any thread.
void surviveXErrors();

} // namespace media
