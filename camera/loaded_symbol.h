#pragma once

namespace zelvaro {

/// Address of an exported function of the program or of a library that is loaded; null when there
/// is none of that name. Any thread. One source for each system.
[[nodiscard]] void *loadedSymbol(const char *name);

} // namespace zelvaro
