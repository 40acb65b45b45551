#include "ui/common/camera_list_icons.h"

#include "ui/common/tool_tip.h"

#include <QIcon>

namespace zelvaro {

namespace {

QIcon plainIcon()
{
    return QIcon(QStringLiteral(":/images/photomgr/cameraicon.png"));
}

} // namespace

QStandardItem *makeCameraListItem(const QString &text, const QVariant &pointer)
{
    auto *item = new QStandardItem(plainIcon(), text);
    item->setToolTip(plainToolTip(text)); // a list may be too narrow for it
    item->setData(pointer, cameraListPointerRole);
    return item;
}

void markCurrentCamera(QStandardItemModel &model, int currentRow)
{
    const QIcon plain = plainIcon();
    for (int row = 0; row < model.rowCount(); ++row)
        model.item(row)->setIcon(plain);
    if (QStandardItem *current = model.item(currentRow))
        current->setIcon(QIcon(QStringLiteral(":/images/photomgr/cameraicon_down.png")));
}

} // namespace zelvaro
