#include "tests/gallery/checks.h"
#include "tests/gallery/controls.h"
#include "tests/support/tool_tip_text.h"
#include "ui/common/elided_label.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QGroupBox>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolTip>

namespace gallery {

namespace {

QString sizes(QSize needed, QSize given)
{
    return QStringLiteral("needs %1x%2, has %3x%4")
        .arg(needed.width())
        .arg(needed.height())
        .arg(given.width())
        .arg(given.height());
}

bool fits(QSize needed, QSize given)
{
    return needed.width() <= given.width() && needed.height() <= given.height();
}

/// Asks for the tool tip as a pointer that rests on the label does.
bool tellsWholeText(QLabel &label)
{
    QToolTip::hideText();
    const QPoint centre = label.rect().center();
    QHelpEvent event(QEvent::ToolTip, centre, label.mapToGlobal(centre));
    QApplication::sendEvent(&label, &event);
    const QString tip = QToolTip::text();
    QToolTip::hideText();
    return shownByToolTip(tip).contains(label.text());
}

QString clippedLabel(QLabel &label)
{
    const QString text = QStringLiteral("\"%1\": ").arg(label.text());
    if (qobject_cast<zelvaro::ElidedLabel *>(&label)) {
        const QRect place = label.contentsRect();
        if (label.fontMetrics().height() > place.height())
            return text + QStringLiteral("is lower than its font");
        if (label.fontMetrics().horizontalAdvance(label.text()) > place.width() &&
            !tellsWholeText(label))
            return text + QStringLiteral("is cut, and no tool tip tells the rest");
        return {};
    }
    if (label.wordWrap()) {
        const QSize needed(label.minimumSizeHint().width(), label.heightForWidth(label.width()));
        return fits(needed, label.size()) ? QString() : text + sizes(needed, label.size());
    }
    return fits(label.sizeHint(), label.size()) ? QString()
                                                : text + sizes(label.sizeHint(), label.size());
}

QString clippedButton(const QAbstractButton &button)
{
    if (!showsText(button) || fits(button.sizeHint(), button.size()))
        return {};
    return QStringLiteral("\"%1\": ").arg(button.text()) + sizes(button.sizeHint(), button.size());
}

QString clippedEdit(const QLineEdit &edit)
{
    const int needed = edit.minimumSizeHint().height();
    return needed <= edit.height() ? QString()
                                   : QStringLiteral("is lower than its font and borders need: ") +
                                         sizes({0, needed}, edit.size());
}

QStringList clippedHeadings(const QHeaderView &header)
{
    QStringList found;
    for (int section = 0; section < header.count(); ++section) {
        if (!header.isSectionHidden(section) &&
            header.sectionSizeHint(section) > header.sectionSize(section)) {
            found << QStringLiteral("heading \"%1\" needs %2, has %3")
                         .arg(header.model()
                                  ->headerData(section, header.orientation(), Qt::DisplayRole)
                                  .toString())
                         .arg(header.sectionSizeHint(section))
                         .arg(header.sectionSize(section));
        }
    }
    return found;
}

/// Rows whose text is elided must show it in full in a tool tip.
QStringList cutRows(const QAbstractItemView &view)
{
    QStringList found;
    const QAbstractItemModel *model = view.model();
    for (int row = 0; model && row < model->rowCount(); ++row) {
        for (int column = 0; column < model->columnCount(); ++column) {
            const QModelIndex index = model->index(row, column);
            const QRect place = view.visualRect(index) & view.viewport()->rect();
            if (place.isEmpty() || view.sizeHintForIndex(index).width() <= place.width())
                continue;
            if (index.data(Qt::ToolTipRole).toString().isEmpty()) {
                found << QStringLiteral("row \"%1\" is cut, and no tool tip tells the rest")
                             .arg(index.data().toString());
            }
        }
    }
    return found;
}

} // namespace

QStringList clippedTexts(QWidget &window)
{
    QStringList found;
    const auto add = [&found](const QWidget &widget, const QString &problem) {
        if (!problem.isEmpty())
            found << QStringLiteral("clipped: %1: %2").arg(nameOf(widget), problem);
    };
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        if (widget->window() != &window || !widget->isVisible())
            continue;
        if (auto *label = qobject_cast<QLabel *>(widget)) {
            if (!label->text().isEmpty())
                add(*label, clippedLabel(*label));
        } else if (const auto *button = qobject_cast<QAbstractButton *>(widget)) {
            add(*button, clippedButton(*button));
        } else if (const auto *edit = qobject_cast<QLineEdit *>(widget)) {
            add(*edit, clippedEdit(*edit));
        } else if (const auto *group = qobject_cast<QGroupBox *>(widget)) {
            if (group->minimumSizeHint().width() > group->width())
                add(*group, sizes(group->minimumSizeHint(), group->size()));
        } else if (const auto *header = qobject_cast<QHeaderView *>(widget)) {
            if (header->orientation() == Qt::Horizontal)
                for (const QString &problem : clippedHeadings(*header))
                    add(*header->parentWidget(), problem);
        } else if (const auto *view = qobject_cast<QAbstractItemView *>(widget)) {
            for (const QString &problem : cutRows(*view))
                add(*view, problem);
        }
    }
    return found;
}

} // namespace gallery
