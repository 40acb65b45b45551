#include "ui/common/tile_form.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace zelvaro {

TileForm::TileForm(QWidget *parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
}

// Accepted first: the tile may be deleted, or its page hidden, when the item has been opened.
void TileForm::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mouseDoubleClickEvent(event);
        return;
    }
    event->accept();
    openItem();
}

// A key that is still held from elsewhere, as from a question that it answered, opens nothing.
void TileForm::keyPressEvent(QKeyEvent *event)
{
    if (event->isAutoRepeat()) {
        QWidget::keyPressEvent(event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        openItem();
        break;
    case Qt::Key_Delete:
        deleteItem();
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void TileForm::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    showFocus(true);
}

void TileForm::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    showFocus(false);
}

} // namespace zelvaro
