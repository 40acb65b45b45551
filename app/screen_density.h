#pragma once

namespace zelvaro {

/// Whether this desktop wants sizes larger than one screen pixel for one logical pixel, by an
/// eighth at least: what a screen's rounded millimetres make of 96 dots per inch is no wish for a
/// blurred picture. Ask before the application object is made; about a millisecond.
bool isDenseDesktop();

} // namespace zelvaro
