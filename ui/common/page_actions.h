#pragma once

#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>

#include <functional>

class QAbstractButton;
class QAction;
class QMenu;
class QPoint;
class QWidget;

namespace zelvaro {

/// What the user can do on a page, by key and by a context menu on the page's pictures. A key
/// counts while the page, or its picture in full screen, is in the active window, whatever has the
/// keyboard focus there; a text field keeps what is typed into it. GUI thread only; the widgets are
/// not owned.
class PageActions : public QObject
{
    Q_OBJECT

public:
    /// Whether a key that is held down acts again and again.
    enum class Held
    {
        Once,
        Repeats
    };

    explicit PageActions(QWidget *page);

    /// Does what the button does, by clicking it, and names the first of the keys in the button's
    /// tool tip. The menu has it by the accessible name of the button.
    QAction *add(QAbstractButton *button, const QList<QKeySequence> &keys, Held held = Held::Once);
    QAction *add(const QString &text, const QList<QKeySequence> &keys, std::function<void()> act,
                 Held held = Held::Once);
    /// The page handles the key itself: the menu and the tool tip only name it.
    QAction *addHandled(QAbstractButton *button, const QKeySequence &key);
    void addSeparator();

    /// The menu shows the action with a tick while this is true.
    void tickWhile(QAction *action, std::function<bool()> isOn);
    /// The action means nothing while the picture is in full screen: its menu lacks it there.
    void leaveOutInFullScreen(QAction *action) { m_onPageOnly.insert(action); }
    /// Adds what depends on the moment to the end of a menu that is about to be shown on a widget.
    void setExtras(std::function<void(QMenu &menu, QWidget *on)> extras);

    /// A right click on the widget, or the menu key while it has the focus, opens the menu. A
    /// widget that becomes a window of its own, as in full screen, takes the keys along.
    void offerOn(QWidget *widget);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void nameKey(QAbstractButton *button, const QKeySequence &key);
    void popUp(QWidget *widget, const QPoint &place);
    void renew(QAction *action);

    QWidget *m_page;
    QList<QAction *> m_actions;
    QSet<QAction *> m_onPageOnly;
    QHash<QAction *, std::function<bool()>> m_ticks;
    std::function<void(QMenu &, QWidget *)> m_extras;
    QHash<const QObject *, QString> m_keyNames;    // of the buttons
    QHash<QAction *, QAbstractButton *> m_buttons; // that the actions click
    QSet<QAction *> m_handled;                     // whose keys the page handles itself
    QList<QPointer<QWidget>> m_offered;
};

} // namespace zelvaro
