#pragma once

#include <QString>

namespace zelvaro {

/// The looks that every frameless dialog shares: push buttons and line edits drawn from the
/// ":/images/dlgctrl/" image families, label colours, and the line under the title. A dialog puts
/// its own rules behind these.
QString dialogStyleSheet();

} // namespace zelvaro
