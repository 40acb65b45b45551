#include "tests/gallery/checks.h"
#include "tests/gallery/controls.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QImage>
#include <QPointer>
#include <QPushButton>
#include <QSet>
#include <QSignalSpy>
#include <QTest>

namespace gallery {

namespace {

// A focus mark is at least a line of this many logical pixels.
constexpr int leastFocusMark = 24;
constexpr int visibleDifference = 40; // of the three channels' 765

QString accessibleName(QWidget &widget)
{
    const QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&widget);
    return interface ? interface->text(QAccessible::Name) : QString();
}

QImage picture(QWidget &window)
{
    return window.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

int differentPixels(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return INT_MAX;
    int different = 0;
    for (int y = 0; y < a.height(); ++y) {
        const auto *left = reinterpret_cast<const QRgb *>(a.constScanLine(y));
        const auto *right = reinterpret_cast<const QRgb *>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x) {
            different += left[x] != right[x] && qAbs(qRed(left[x]) - qRed(right[x])) +
                                                        qAbs(qGreen(left[x]) - qGreen(right[x])) +
                                                        qAbs(qBlue(left[x]) - qBlue(right[x])) >=
                                                    visibleDifference;
        }
    }
    return different;
}

void clearFocus()
{
    if (QWidget *focused = QApplication::focusWidget())
        focused->clearFocus();
}

} // namespace

QStringList unnamedControls(QWidget &window)
{
    QStringList found;
    for (QWidget *control : controlsOf(window)) {
        const auto *button = qobject_cast<QAbstractButton *>(control);
        if (!button)
            continue;
        if (!showsText(*button) && button->toolTip().isEmpty())
            found << QStringLiteral("no tool tip: %1").arg(nameOf(*button));
        if (button->isEnabled() && !(button->focusPolicy() & Qt::TabFocus))
            found << QStringLiteral("only a mouse reaches: %1").arg(nameOf(*button));
        if (accessibleName(*control).isEmpty())
            found << QStringLiteral("no accessible name: %1").arg(nameOf(*control));
    }
    for (QWidget *control : tabChain(window))
        if (accessibleName(*control).isEmpty())
            found << QStringLiteral("no accessible name: %1").arg(nameOf(*control));
    found.removeDuplicates();
    return found;
}

QStringList invisibleFocus(QWidget &window)
{
    QStringList found;
    QSet<QString> seen; // one of many tiles represents all
    for (QWidget *control : tabChain(window)) {
        if (seen.contains(nameOf(*control)) || placeIn(window, *control).size() != control->size())
            continue;
        seen.insert(nameOf(*control));
        clearFocus();
        const QImage without = picture(window);
        control->setFocus(Qt::TabFocusReason);
        if (differentPixels(picture(window), without) < leastFocusMark)
            found << QStringLiteral("focus cannot be seen: %1").arg(nameOf(*control));
    }
    clearFocus();
    return found;
}

QStringList backwardTabs(QWidget &window)
{
    QStringList found;
    const QVector<QWidget *> chain = tabChain(window);
    for (int i = 1; i < chain.size(); ++i) {
        const QWidget *from = chain.at(i - 1);
        const QWidget *to = chain.at(i);
        const QRect before(from->mapTo(&window, QPoint(0, 0)), from->size());
        const QRect after(to->mapTo(&window, QPoint(0, 0)), to->size());
        if (!placeIn(window, *from).contains(before)) // it is scrolled to when Tab reaches it
            continue;
        const bool up = after.bottom() < before.top();
        const bool inNextColumn = after.left() > before.right();
        const bool back = after.right() < before.left() && after.top() < before.bottom();
        if ((up && !inNextColumn) || back)
            found << QStringLiteral("Tab goes back: %1 to %2").arg(nameOf(*from), nameOf(*to));
    }
    return found;
}

QStringList deafKeys(QDialog &dialog)
{
    QStringList found;
    const auto buttons = dialog.findChildren<QPushButton *>();
    for (QPushButton *button : buttons)
        QObject::disconnect(button, &QPushButton::clicked, nullptr, nullptr);
    QWidget *focused = dialog.focusWidget() ? dialog.focusWidget() : &dialog;
    int pressed = 0;
    QObject context;
    for (QPushButton *button : buttons)
        QObject::connect(button, &QPushButton::clicked, &context, [&pressed] { ++pressed; });
    QTest::keyClick(focused, Qt::Key_Return);
    const bool writes = dialog.findChild<QPushButton *>(QStringLiteral("btnApply"));
    if (writes && pressed > 0)
        found << QStringLiteral("Enter presses a button of %1").arg(nameOf(dialog));
    if (!writes && pressed == 0 && dialog.isVisible())
        found << QStringLiteral("Enter does nothing in %1").arg(nameOf(dialog));
    dialog.show();
    QTest::keyClick(focused, Qt::Key_Escape);
    if (dialog.isVisible())
        found << QStringLiteral("Escape does not close %1").arg(nameOf(dialog));
    return found;
}

} // namespace gallery
