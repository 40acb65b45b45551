#pragma once

#include <QRect>
#include <QString>
#include <QVector>
#include <QWidget>

namespace gallery {

/// The visible widgets below window that a user reads or operates: buttons, labels with something
/// on them, edits, sliders, lists. Inner parts of one (the button of a spin box, a list's scroll
/// bar) do not count.
QVector<QWidget *> controlsOf(QWidget &window);

/// The enabled controls that the Tab key reaches, in its order.
QVector<QWidget *> tabChain(QWidget &window);

/// The part of a widget that is inside all its parents, in the window's coordinates. A scroll
/// area's contents may be anywhere: they are cut without harm.
QRect placeIn(const QWidget &window, const QWidget &widget);
bool isScrolled(const QWidget &window, const QWidget &widget);

/// "btnOk (QPushButton)", with its parents where its own name is not enough.
QString nameOf(const QWidget &widget);

/// Whether the button shows its text.
bool showsText(const QWidget &button);

} // namespace gallery
