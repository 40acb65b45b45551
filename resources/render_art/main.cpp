// Renders the drawings of resources/art into the PNG files of the resource tree, fills the
// palette into the style sheets, and writes the list of all files for the resource compiler:
//
//   render_art <art folder> <output folder> [alias=file ...]
//
// A file with the suffix .qss is filled in; every other one is listed as it is.

#include "resources/render_art/art_book.h"
#include "resources/render_art/render_image.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace {

using zelvaro::ArtBook;

/// The files of one image, depending on its density: both, or name.png alone.
QString renderFiles(ArtBook &book, const ArtBook::Image &image, const QString &output,
                    QTextStream &list)
{
    const QByteArray svg = book.svg(image).toUtf8();
    const int only = image.values.value(QStringLiteral("density")).toInt();
    for (const int density : {1, 2}) {
        if (!book.error().isEmpty() || (only != 0 && only != density))
            continue;
        const bool dense = density == 2 && only == 0;
        const QString alias = QStringLiteral("images/%1%2.png")
                                  .arg(image.name, dense ? QStringLiteral("@2x") : QString());
        const QString error =
            zelvaro::renderImage(svg, image.size * density, output + QLatin1Char('/') + alias);
        if (!error.isEmpty())
            return error;
        list << "<file>" << alias << "</file>\n";
    }
    return book.error();
}

QString addFile(ArtBook &book, const QString &argument, const QString &output, QTextStream &list)
{
    const QString alias = argument.section(QLatin1Char('='), 0, 0);
    const QString from = argument.section(QLatin1Char('='), 1);
    if (!from.endsWith(QLatin1String(".qss"))) {
        list << "<file alias=\"" << alias << "\">" << from << "</file>\n";
        return {};
    }
    QFile source(from);
    QFile target(output + QLatin1Char('/') + alias);
    if (!QDir().mkpath(QFileInfo(target).path()) || !source.open(QIODevice::ReadOnly) ||
        !target.open(QIODevice::WriteOnly))
        return QStringLiteral("%1: cannot be filled in").arg(from);
    target.write(book.filledIn(QString::fromUtf8(source.readAll()), from).toUtf8());
    list << "<file>" << alias << "</file>\n";
    return book.error();
}

QString write(const QString &name, const QString &text)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        return QStringLiteral("%1: %2").arg(name, file.errorString());
    return {};
}

/// Tells the build in the form of a makefile which drawings the list is made from.
QString dependencies(const QString &target, const QStringList &sources)
{
    QString text = target + QLatin1Char(':');
    for (QString source : sources)
        text += QLatin1String(" \\\n ") + source.replace(QLatin1Char(' '), QLatin1String("\\ "));
    return text + QLatin1Char('\n');
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments().mid(1);
    QTextStream errors(stderr);
    if (arguments.size() < 2) {
        errors << "usage: render_art <art folder> <output folder> [alias=file ...]\n";
        return 2;
    }

    ArtBook book(arguments[0]);
    const QString &output = arguments[1];
    QString text;
    QTextStream list(&text);
    list << "<RCC><qresource prefix=\"/\">\n";
    QString error = book.error();
    for (const ArtBook::Image &image : book.images())
        if (error.isEmpty())
            error = renderFiles(book, image, output, list);
    for (const QString &argument : arguments.mid(2))
        if (error.isEmpty())
            error = addFile(book, argument, output, list);
    list << "</qresource></RCC>\n";

    const QString listFile = output + QLatin1String("/zelvaro.qrc");
    if (error.isEmpty())
        error = write(listFile, text);
    if (error.isEmpty())
        error = write(output + QLatin1String("/zelvaro.d"), dependencies(listFile, book.sources()));
    if (!error.isEmpty()) {
        errors << "render_art: " << error << '\n';
        return 1;
    }
    return 0;
}
