#pragma once

#include <QString>

namespace zelvaro {

/// A tool tip that shows exactly this text, whatever it contains: names and addresses come from
/// cameras and other devices. Qt guesses the format of a tool tip, so a text is handed over as rich
/// text in which nothing is markup. Blanks and line ends are kept; long texts are wrapped. An empty
/// text is no tool tip.
QString plainToolTip(const QString &text);

} // namespace zelvaro
