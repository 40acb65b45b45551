#pragma once

#include <QIcon>
#include <QString>

namespace zelvaro {

/// Makes the resource tree (":/images/", ":/style/", the translations) readable. Call it once, at
/// start, before any widget is built; further calls do nothing.
void initResources();

/// The style sheet of the whole application; forms add the styles of their objects to it.
QString applicationStyleSheet();

/// The program's icon in every size from 16 to 512 pixels.
QIcon applicationIcon();

/// Gives the running QApplication its base style, palette, font, icon and style sheet, so that the
/// program looks the same on every desktop. After initResources() and before the first widget.
void applyLook();

} // namespace zelvaro
