#include "ui/common/page_actions.h"

#include <QAbstractButton>
#include <QAction>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QToolTip>

namespace zelvaro {

PageActions::PageActions(QWidget *page) : QObject(page), m_page(page) {}

QAction *PageActions::add(const QString &text, const QList<QKeySequence> &keys,
                          std::function<void()> act, Held held)
{
    auto *action = new QAction(text, this);
    action->setShortcuts(keys);
    action->setAutoRepeat(held == Held::Repeats);
    connect(action, &QAction::triggered, this, [act = std::move(act)] { act(); });
    m_actions.append(action);
    m_page->addAction(action);
    for (const QPointer<QWidget> &widget : qAsConst(m_offered))
        if (widget)
            widget->addAction(action);
    return action;
}

QAction *PageActions::add(QAbstractButton *button, const QList<QKeySequence> &keys, Held held)
{
    if (!keys.isEmpty())
        nameKey(button, keys.first());
    QAction *action = add(
        button->accessibleName(), keys, [button] { button->click(); }, held);
    m_buttons.insert(action, button);
    return action;
}

QAction *PageActions::addHandled(QAbstractButton *button, const QKeySequence &key)
{
    QAction *action = add(button, {});
    nameKey(button, key);
    m_handled.insert(action);
    return action;
}

void PageActions::addSeparator()
{
    auto *separator = new QAction(this);
    separator->setSeparator(true);
    m_actions.append(separator);
}

void PageActions::tickWhile(QAction *action, std::function<bool()> isOn)
{
    action->setCheckable(true);
    m_ticks[action] = std::move(isOn);
}

void PageActions::setExtras(std::function<void(QMenu &, QWidget *)> extras)
{
    m_extras = std::move(extras);
}

void PageActions::offerOn(QWidget *widget)
{
    m_offered.removeAll(nullptr);
    m_offered.append(widget);
    widget->addActions(m_actions);
    widget->installEventFilter(this);
}

void PageActions::nameKey(QAbstractButton *button, const QKeySequence &key)
{
    m_keyNames.insert(button, key.toString(QKeySequence::NativeText));
    button->installEventFilter(this);
}

// The tool tip itself stays as the form has it: it names the button for assistive programs too.
bool PageActions::eventFilter(QObject *watched, QEvent *event)
{
    auto *widget = qobject_cast<QWidget *>(watched);
    if (widget && event->type() == QEvent::ToolTip && m_keyNames.contains(watched) &&
        !widget->toolTip().isEmpty()) {
        const QString tip =
            QStringLiteral("%1 (%2)").arg(widget->toolTip(), m_keyNames.value(watched));
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), tip, widget);
        return true;
    }
    if (widget && event->type() == QEvent::ContextMenu && m_offered.contains(widget)) {
        auto *request = static_cast<QContextMenuEvent *>(event);
        const bool byKey = request->reason() == QContextMenuEvent::Keyboard;
        popUp(widget, byKey ? widget->mapToGlobal(widget->rect().center()) : request->globalPos());
        request->accept();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void PageActions::popUp(QWidget *widget, const QPoint &place)
{
    // Not the widget's, whose style sheet would be the menu's too.
    auto *menu = new QMenu(m_page);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (QAction *action : qAsConst(m_actions)) {
        if (widget->isWindow() && m_onPageOnly.contains(action))
            continue;
        renew(action);
        menu->addAction(action);
    }
    if (m_extras)
        m_extras(*menu, widget);
    menu->popup(place);
}

// Buttons change their names with what they would do.
void PageActions::renew(QAction *action)
{
    if (const QAbstractButton *button = m_buttons.value(action)) {
        QString text = button->accessibleName();
        if (m_handled.contains(action))
            text += QLatin1Char('\t') + m_keyNames.value(button);
        action->setText(text);
    }
    if (const auto isOn = m_ticks.value(action))
        action->setChecked(isOn());
}

} // namespace zelvaro
