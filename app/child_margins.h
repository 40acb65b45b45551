#pragma once

class QObject;

namespace zelvaro {

/// Declares that native child windows have no frame. Without that the GUI toolkit queries the
/// window system for it, level by level up the tree, each time one of them moves or gets another
/// size: a grid of cameras has hundreds. For child windows made from here on, for as long as the
/// owner lives. GUI thread, once there is an application object.
void declareChildMargins(QObject *owner);

} // namespace zelvaro
