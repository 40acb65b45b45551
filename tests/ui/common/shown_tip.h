#pragma once

#include <QApplication>
#include <QHelpEvent>
#include <QImage>
#include <QToolTip>
#include <QWidget>

/// The tool tip that comes up when the pointer rests on a widget, which must be in an active
/// window.
class ShownTip
{
public:
    explicit ShownTip(QWidget *widget)
    {
        const QPoint middle = widget->rect().center();
        QHelpEvent rest(QEvent::ToolTip, middle, widget->mapToGlobal(middle));
        QCoreApplication::sendEvent(widget, &rest);
        keep();
    }
    /// A tip with this text, as one of the widget.
    ShownTip(QWidget *widget, const QString &text)
    {
        QToolTip::showText(widget->mapToGlobal(widget->rect().center()), text, widget);
        keep();
    }
    ~ShownTip() { QToolTip::hideText(); }

    /// Empty when no tip came up.
    QString text() const { return m_text; }
    QImage picture() const { return m_picture; }

private:
    void keep()
    {
        m_text = QToolTip::text();
        for (QWidget *window : QApplication::topLevelWidgets())
            if (window->inherits("QTipLabel") && window->isVisible())
                m_picture = window->grab().toImage();
    }

    QString m_text;
    QImage m_picture;
};
