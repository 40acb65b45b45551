#include "tests/gallery/checks.h"
#include "tests/gallery/controls.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImageReader>
#include <QLabel>
#include <QRegularExpression>
#include <QSet>
#include <QWindow>

namespace gallery {

namespace {

// What a style sheet names to show no image at all.
const QString noImage = QStringLiteral("none.jpg");

QSet<QString> imagesOf(const QString &sheet)
{
    static const QRegularExpression url(
        QStringLiteral(R"rx(url\(\s*(?:"([^"]*)"|([^)]*))\s*\))rx"));
    QSet<QString> names;
    for (auto match = url.globalMatch(sheet); match.hasNext();) {
        const QRegularExpressionMatch one = match.next();
        names.insert(one.captured(1).isEmpty() ? one.captured(2).trimmed() : one.captured(1));
    }
    names.remove(noImage);
    return names;
}

/// The size in device pixels must be what the screen shows.
bool isSharp(const QPixmap &pixmap, QSize shown, qreal ratio)
{
    return pixmap.width() + 1 >= shown.width() * ratio;
}

} // namespace

QStringList missingImages(QWidget &window)
{
    static QSet<QString> readable;
    QStringList found;
    const auto check = [&found](const QString &sheet, const QString &where) {
        for (const QString &name : imagesOf(sheet)) {
            if (readable.contains(name))
                continue;
            if (QImageReader(name).canRead())
                readable.insert(name);
            else
                found << QStringLiteral("missing image: %1 in %2").arg(name, where);
        }
    };
    check(qApp->styleSheet(), QStringLiteral("the application's style sheet"));
    check(window.styleSheet(), nameOf(window));
    for (const QWidget *widget : window.findChildren<QWidget *>())
        check(widget->styleSheet(), nameOf(*widget));
    return found;
}

QStringList blurredPictures(QWidget &window)
{
    QStringList found;
    const qreal ratio = window.devicePixelRatioF();
    for (QWidget *control : controlsOf(window)) {
        if (const auto *button = qobject_cast<QAbstractButton *>(control)) {
            if (button->icon().isNull())
                continue;
            const QPixmap pixmap = button->icon().pixmap(window.windowHandle(), button->iconSize());
            if (!isSharp(pixmap, button->iconSize(), ratio))
                found << QStringLiteral("blurred: the icon of %1").arg(nameOf(*button));
        } else if (const auto *label = qobject_cast<QLabel *>(control)) {
            const QPixmap pixmap = label->pixmap(Qt::ReturnByValue);
            if (!pixmap.isNull() &&
                !isSharp(pixmap, pixmap.size() / pixmap.devicePixelRatio(), ratio))
                found << QStringLiteral("blurred: the picture of %1").arg(nameOf(*label));
        }
    }
    return found;
}

} // namespace gallery
