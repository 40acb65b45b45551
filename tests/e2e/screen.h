#pragma once

#include <QImage>
#include <QWidget>

/// What is on the screen where the widget is, whatever has drawn it.
QImage pictureOnScreen(const QWidget &widget);

/// Watches a widget's place on the screen, for live pictures that other threads draw.
class PictureWatch
{
public:
    explicit PictureWatch(const QWidget &widget) : m_widget(widget) {}

    /// Whether the picture has changed since the first look at which there was one: a place that
    /// is of one colour shows none.
    bool hasMoved();

private:
    const QWidget &m_widget;
    QImage m_first;
    bool m_moved = false;
};
