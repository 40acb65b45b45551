#pragma once

#include "tests/gallery/scene.h"

#include <QStringList>

class QDialog;
class QWidget;

/// What may be wrong with a window on the screen. Each function gives one text for each finding;
/// none means that all is well. GUI thread only.
namespace gallery {

/// Labels, buttons and headings whose text does not fit, and elided texts without a tool tip.
QStringList clippedTexts(QWidget &window);
/// Controls that overlap, and those that stick out of their parent.
QStringList misplacedControls(QWidget &window);

/// Buttons without text that lack a tool tip or a name, controls that an assistive program cannot
/// name, and buttons that only a mouse can reach.
QStringList unnamedControls(QWidget &window);
/// Controls that look the same with and without the keyboard focus. The window must be active.
QStringList invisibleFocus(QWidget &window);
/// Steps of the Tab key that go back up the window.
QStringList backwardTabs(QWidget &window);

/// Escape must close the dialog, and Enter press its default button; where "Apply" writes to a
/// camera, Enter must press none. The dialog is used up.
QStringList deafKeys(QDialog &dialog);

/// Style sheets that name images which cannot be read.
QStringList missingImages(QWidget &window);
/// Icons and pictures that a dense screen would blow up.
QStringList blurredPictures(QWidget &window);

} // namespace gallery
