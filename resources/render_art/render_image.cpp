#include "resources/render_art/render_image.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

namespace zelvaro {

QString renderImage(const QByteArray &svg, QSize pixels, const QString &file)
{
    QSvgRenderer renderer(svg);
    if (!renderer.isValid())
        return QStringLiteral("%1: not a drawing").arg(file);
    QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(QPointF(), picture.size()));
    painter.end();
    if (!QDir().mkpath(QFileInfo(file).path()) || !picture.save(file, "PNG"))
        return QStringLiteral("%1: cannot write").arg(file);
    return {};
}

} // namespace zelvaro
