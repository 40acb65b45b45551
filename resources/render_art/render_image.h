#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

namespace zelvaro {

/// Draws an SVG text into a PNG file of this many pixels; makes the file's folder.
/// @return what is wrong; empty when the file was written
QString renderImage(const QByteArray &svg, QSize pixels, const QString &file);

} // namespace zelvaro
