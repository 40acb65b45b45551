#pragma once

namespace cammgr {

/// Makes errors of the X server a line in the log: without a handler of its own a process ends
/// when somebody draws on a window that has just gone. Once per process; any thread.
void surviveXErrors();

} // namespace cammgr
