#pragma once

#include <QCoreApplication>

namespace zelvaro {

/// While it lives, widgets that are created get no window of the window system but are drawn on
/// their parent, whatever attributes the program set at its start. For what needs none: many small
/// widgets are made and moved sooner so, and may lie beyond the 32,767 pixels that a window can be
/// placed at under X11. QWidget::create() of Qt 5 gives every widget a window as long as the
/// attribute of the program is set, whatever the widget's own attributes say. GUI thread only.
class Windowless
{
public:
    Windowless() : m_native(QCoreApplication::testAttribute(Qt::AA_NativeWindows))
    {
        QCoreApplication::setAttribute(Qt::AA_NativeWindows, false);
    }
    ~Windowless() { QCoreApplication::setAttribute(Qt::AA_NativeWindows, m_native); }
    Windowless(const Windowless &) = delete;
    Windowless &operator=(const Windowless &) = delete;

private:
    bool m_native;
};

} // namespace zelvaro
