#pragma once

#include <QPoint>
#include <QPointer>
#include <QWidget>

/// The title strip of a frameless window: dragging it with the left button moves the window that
/// it is attached to, never above or left of the screen origin. GUI thread only.
class CTitleWidget : public QWidget
{
    Q_OBJECT

public:
    explicit CTitleWidget(QWidget *parent = nullptr);

    /// The window to move (not owned, may die first) and whether dragging moves it.
    void attach(QWidget *window, bool movable);
    /// Changes only whether dragging moves the window.
    void setMovable(bool movable);

signals:
    /// After every move: the window's new geometry.
    void signalSetMoveRect(QRect rect);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    bool canMove() const { return m_movable && m_target; }
    void recordStart(const QPoint &globalPos);

    QPointer<QWidget> m_target;
    bool m_movable = false;
    QPoint m_pressOffset; // (0, 0) means "nothing recorded"
    QPoint m_windowPosition;
};
