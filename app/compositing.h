#pragma once

namespace zelvaro {

/// Whether the desktop blends windows with what is behind them. Without that, what is translucent
/// in a window shows black. GUI thread; about a millisecond.
bool desktopComposes();

} // namespace zelvaro
