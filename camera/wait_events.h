#pragma once

namespace zelvaro {

/// Runs a local event loop for so long, without user input. Unlike QEventLoop::exec it also runs
/// when the application is quitting. GUI thread.
void waitEvents(int milliseconds);

} // namespace zelvaro
