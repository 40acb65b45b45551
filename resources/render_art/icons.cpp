// Renders the application icon for the desktop's icon theme:
//
//   render_icons <art folder> <output folder>
//
// writes SIZExSIZE/apps/zelvaro.png and scalable/apps/zelvaro.svg. Each size has the drawing of
// the next larger icon of the program, so that small ones keep their few bold shapes.

#include "resources/render_art/art_book.h"
#include "resources/render_art/render_image.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <algorithm>

namespace {

using zelvaro::ArtBook;

// The sizes of the hicolor theme in which desktops look for applications.
constexpr int sizes[] = {16, 22, 24, 32, 36, 48, 64, 72, 96, 128, 192, 256, 512};

/// The application's icons, smallest first.
QVector<ArtBook::Image> applicationIcons(const ArtBook &book)
{
    QVector<ArtBook::Image> icons;
    std::copy_if(
        book.images().begin(), book.images().end(), std::back_inserter(icons),
        [](const ArtBook::Image &image) {
            return image.name == QLatin1String("appicon") ||
                   image.name.startsWith(QLatin1String("appicon/"));
        });
    std::sort(icons.begin(), icons.end(),
              [](const auto &a, const auto &b) { return a.size.width() < b.size.width(); });
    return icons;
}

QString writeScalable(const QByteArray &svg, const QString &folder)
{
    QFile file(folder + QLatin1String("/zelvaro.svg"));
    if (!QDir().mkpath(folder) || !file.open(QIODevice::WriteOnly) || file.write(svg) != svg.size())
        return QStringLiteral("%1: cannot write").arg(file.fileName());
    return {};
}

QString renderAll(ArtBook &book, const QString &output)
{
    const QVector<ArtBook::Image> icons = applicationIcons(book);
    if (icons.isEmpty())
        return QStringLiteral("no application icon");
    for (const int size : sizes) {
        const auto next = std::find_if(icons.begin(), icons.end(), [size](const auto &icon) {
            return icon.size.width() >= size;
        });
        const ArtBook::Image &icon = next != icons.end() ? *next : icons.last();
        const QString file = QStringLiteral("%1/%2x%2/apps/zelvaro.png").arg(output).arg(size);
        const QString error =
            zelvaro::renderImage(book.svg(icon).toUtf8(), QSize(size, size), file);
        if (!error.isEmpty())
            return error;
    }
    const QString error =
        writeScalable(book.svg(icons.last()).toUtf8(), output + QLatin1String("/scalable/apps"));
    return error.isEmpty() ? book.error() : error;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments().mid(1);
    QTextStream errors(stderr);
    if (arguments.size() != 2) {
        errors << "usage: render_icons <art folder> <output folder>\n";
        return 2;
    }
    ArtBook book(arguments[0]);
    const QString error = book.error().isEmpty() ? renderAll(book, arguments[1]) : book.error();
    if (!error.isEmpty()) {
        errors << "render_icons: " << error << '\n';
        return 1;
    }
    return 0;
}
