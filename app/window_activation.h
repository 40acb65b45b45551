#pragma once

class QWidget;

namespace zelvaro {

/// Brings a main window before those of other programs and gives it the keyboard, also where it is
/// minimised or on another desktop. A dialog that blocks it, or a view of it that fills the screen,
/// comes to the front in its place. GUI thread.
void bringToFront(QWidget &mainWindow);

} // namespace zelvaro
