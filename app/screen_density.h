#pragma once

namespace zelvaro {

/// Whether this desktop scales by at least an eighth. Smaller factors are ignored: screens report
/// rounded sizes, so 96 dpi often reads as 100. To be called before the application object is made;
/// takes about a millisecond.
bool isDenseDesktop();

} // namespace zelvaro
