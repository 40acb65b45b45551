#include "app/dialog_shadow.h"

#include "app/compositing.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QPainterPath>

namespace zelvaro {

namespace {

// How far the shadow of the frame images reaches (docs/look.md), and the radius of their corners.
constexpr QMargins shadow(10, 10, 10, 14);
constexpr int cornerRadius = 6;

} // namespace

DialogShadow::DialogShadow(QObject *parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool DialogShadow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Show && event->type() != QEvent::Resize)
        return false;
    auto *dialog = qobject_cast<QDialog *>(watched);
    if (!dialog || !dialog->testAttribute(Qt::WA_TranslucentBackground))
        return false;
    if (desktopComposes())
        dialog->clearMask();
    else
        dialog->setMask(withoutShadow(dialog->size()));
    return false;
}

QRegion DialogShadow::withoutShadow(const QSize &size)
{
    const QRect plate = QRect(QPoint(0, 0), size).marginsRemoved(shadow);
    if (!plate.isValid())
        return {};
    QPainterPath shape;
    shape.addRoundedRect(plate, cornerRadius, cornerRadius);
    return QRegion(shape.toFillPolygon().toPolygon());
}

} // namespace zelvaro
