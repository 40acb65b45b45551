#pragma once

#include <QKeyEvent>

namespace zelvaro {

/// Escape as a widget sees it: pressed and released while the widget has the keyboard focus.
/// Dialogs and menus close when Escape is pressed, and its release comes to whatever has the focus
/// then; that widget did not see the press. A key that is held down and repeats is released once.
/// The widget passes its key and focus events on.
class EscapeKey
{
public:
    /// Whether this was a press of Escape, which the widget then keeps.
    bool press(const QKeyEvent &event)
    {
        const bool isEscape = event.key() == Qt::Key_Escape;
        m_pressed |= isEscape;
        return isEscape;
    }
    /// Whether Escape is released that was pressed here.
    bool release(const QKeyEvent &event)
    {
        if (event.key() != Qt::Key_Escape || event.isAutoRepeat() || !m_pressed)
            return false;
        m_pressed = false;
        return true;
    }
    void focusLost() { m_pressed = false; }

private:
    bool m_pressed = false;
};

} // namespace zelvaro
