#pragma once

#include <QPoint>
#include <QString>
#include <Qt>

#include <memory>

class QWidget;

/// Mouse and keyboard as the X server gives them to every program: the events of these calls take
/// the same way as a person's, through the server, the window manager and Qt's platform plug-in.
/// GUI thread only. A call that points at a widget waits until the
/// server would give it the event, and fails the test when that does not come. Each call returns
/// when the server has taken the events; what they cause is waited for by the test, on a condition.
class RealInput
{
public:
    RealInput();
    ~RealInput();

    /// False when the display has no XTEST extension.
    bool isValid() const;

    /// Whether the server has the window where Qt has it: the window manager moves what the program
    /// has moved when it comes to it, and replays a press that it holds meanwhile elsewhere.
    bool isSettled(const QWidget *window) const;

    /// Points are in the widget's coordinates; a negative point means its centre.
    void moveTo(const QWidget *widget, QPoint point = QPoint(-1, -1));
    void click(const QWidget *widget, QPoint point = QPoint(-1, -1));
    void doubleClick(const QWidget *widget, QPoint point = QPoint(-1, -1));
    /// Presses the left button at the first point, moves in steps, and releases at the second.
    void drag(const QWidget *widget, QPoint from, QPoint to);

    /// Types printable ASCII into whatever has the keyboard focus.
    void type(const QString &text);
    /// Presses and releases one key, by its X key symbol (for example XK_Escape).
    void key(unsigned long keySymbol);
    void selectAll();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
