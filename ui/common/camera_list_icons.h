#pragma once

#include <QStandardItem>
#include <QStandardItemModel>
#include <QVariant>

namespace zelvaro {

/// Role under which a row of a camera list keeps the pointer to what it represents.
constexpr int cameraListPointerRole = Qt::UserRole + 1;

/// A row of a camera list: the camera icon, the text, and the pointer to what it represents.
/// The model that it is appended to takes ownership.
QStandardItem *makeCameraListItem(const QString &text, const QVariant &pointer);

/// Gives the current row the icon of the current camera and all others the plain one. A negative
/// row marks none.
void markCurrentCamera(QStandardItemModel &model, int currentRow);

} // namespace zelvaro
