#include "tests/gallery/controls.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QScrollBar>
#include <QToolButton>

namespace gallery {

namespace {

bool isControl(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return !label->text().isEmpty() || label->pixmap(Qt::ReturnByValue).isNull() == false;
    if (qobject_cast<const QScrollBar *>(widget) || qobject_cast<const QHeaderView *>(widget))
        return false;
    return qobject_cast<const QAbstractButton *>(widget) ||
           qobject_cast<const QLineEdit *>(widget) ||
           qobject_cast<const QAbstractSlider *>(widget) ||
           qobject_cast<const QAbstractItemView *>(widget) ||
           qobject_cast<const QComboBox *>(widget) || qobject_cast<const QProgressBar *>(widget);
}

bool insideControl(const QWidget *widget, const QWidget *window)
{
    for (const QWidget *parent = widget->parentWidget(); parent && parent != window;
         parent = parent->parentWidget())
        if (isControl(parent))
            return true;
    return false;
}

} // namespace

QVector<QWidget *> controlsOf(QWidget &window)
{
    QVector<QWidget *> controls;
    for (QWidget *widget : window.findChildren<QWidget *>())
        if (widget->window() == &window && widget->isVisible() && isControl(widget) &&
            !insideControl(widget, &window))
            controls.append(widget);
    return controls;
}

QVector<QWidget *> tabChain(QWidget &window)
{
    QVector<QWidget *> chain;
    for (QWidget *widget = window.nextInFocusChain(); widget != &window;
         widget = widget->nextInFocusChain())
        if (widget->window() == &window && widget->isVisible() && widget->isEnabled() &&
            widget->focusPolicy() & Qt::TabFocus && !widget->focusProxy())
            chain.append(widget);
    return chain;
}

bool isScrolled(const QWidget &window, const QWidget &widget)
{
    for (const QWidget *parent = widget.parentWidget(); parent && parent != &window;
         parent = parent->parentWidget())
        if (qobject_cast<const QAbstractScrollArea *>(parent))
            return true;
    return false;
}

QRect placeIn(const QWidget &window, const QWidget &widget)
{
    QRect place = QRect(widget.mapTo(&window, QPoint(0, 0)), widget.size());
    for (const QWidget *parent = widget.parentWidget(); parent; parent = parent->parentWidget()) {
        place &= QRect(parent->mapTo(&window, QPoint(0, 0)), parent->size());
        if (parent == &window)
            break;
    }
    return place;
}

QString nameOf(const QWidget &widget)
{
    QString name = widget.objectName();
    for (const QWidget *parent = widget.parentWidget(); name.isEmpty() && parent;
         parent = parent->parentWidget())
        if (!parent->objectName().isEmpty())
            name = QStringLiteral("in ") + parent->objectName();
    return QStringLiteral("%1 (%2)").arg(name, QLatin1String(widget.metaObject()->className()));
}

bool showsText(const QWidget &button)
{
    if (const auto *tool = qobject_cast<const QToolButton *>(&button))
        return tool->toolButtonStyle() != Qt::ToolButtonIconOnly && !tool->text().isEmpty();
    const auto *any = qobject_cast<const QAbstractButton *>(&button);
    return any && !any->text().isEmpty();
}

} // namespace gallery
