#include "resources/render_art/art_book.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

namespace zelvaro {

namespace {

/// "name=value" words; false when a word is anything else.
bool readValues(const QStringList &words, QMap<QString, QString> &values)
{
    for (const QString &word : words) {
        const int equals = word.indexOf(QLatin1Char('='));
        if (equals < 1)
            return false;
        values.insert(word.left(equals), word.mid(equals + 1));
    }
    return true;
}

QSize readSize(const QString &word)
{
    const QStringList sides = word.split(QLatin1Char('x'));
    return sides.size() == 2 ? QSize(sides[0].toInt(), sides[1].toInt()) : QSize();
}

} // namespace

ArtBook::ArtBook(const QString &folder)
    : m_folder(folder)
    , m_sources(folder + QLatin1String("/palette.txt"))
    , m_palette(Palette::read(m_sources.first(), &m_error))
{
    readImages();
}

/// A file of the folder; fails when it cannot be read.
QString ArtBook::read(const QString &name)
{
    QFile file(m_folder + QLatin1Char('/') + name);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        fail(QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()));
        return {};
    }
    if (!m_sources.contains(file.fileName()))
        m_sources.append(file.fileName());
    return QString::fromUtf8(file.readAll());
}

void ArtBook::readImages()
{
    int number = 0;
    for (const QString &text : read(QStringLiteral("images.txt")).split(QLatin1Char('\n'))) {
        const QString line = text.simplified();
        ++number;
        if (!line.isEmpty() && !line.startsWith(QLatin1Char('#')) && !readLine(line))
            fail(QStringLiteral("images.txt:%1: cannot read \"%2\"").arg(number).arg(line));
    }
}

bool ArtBook::readLine(const QString &line)
{
    const QStringList words = line.split(QLatin1Char(' '));
    if (words.size() < 3)
        return false;

    if (words[0] == QLatin1String("kind")) {
        Kind kind{words[2], {}};
        const bool good = readValues(words.mid(3), kind.values);
        m_kinds.insert(words[1], kind);
        return good;
    }

    Image image{words[0], readSize(words[1]), words[2], {}};
    const auto kind = m_kinds.constFind(image.drawing);
    if (kind != m_kinds.cend()) {
        image.values = kind->values;
        image.drawing = kind->drawing;
    }
    const bool good = !image.size.isEmpty() && readValues(words.mid(3), image.values);
    m_images.append(image);
    return good;
}

/// The content between the opening and the closing svg tag.
QString ArtBook::inner(const QString &drawing)
{
    const QString whole = read(drawing + QLatin1String(".svg"));
    const int tag = whole.indexOf(QLatin1String("<svg"));
    const int begin = whole.indexOf(QLatin1Char('>'), tag) + 1;
    const int end = whole.lastIndexOf(QLatin1String("</svg>"));
    if (tag < 0 || end < begin) {
        fail(QStringLiteral("%1.svg: no svg element").arg(drawing));
        return {};
    }
    return whole.mid(begin, end - begin).trimmed();
}

QString ArtBook::value(const QString &name, const Image &image)
{
    if (name == QLatin1String("width"))
        return QString::number(image.size.width());
    if (name == QLatin1String("height"))
        return QString::number(image.size.height());

    QString value = image.values.value(name, name);
    if (value.startsWith(QLatin1Char('@')))
        return inner(value.mid(1));
    const auto colour = m_palette.colours.constFind(value);
    if (colour != m_palette.colours.cend())
        return colour->name();
    if (!image.values.contains(name))
        fail(QStringLiteral("%1: nothing is named \"%2\"").arg(image.name, name));
    return value;
}

void ArtBook::fill(QString &text, const Image &image)
{
    static const QRegularExpression named(
        QStringLiteral("\\{\\{([a-z]+(?:-[a-z]+)*)([+-]\\d+)?\\}\\}"));
    // What is put in may itself hold names: the search continues where the replacement begins.
    for (auto match = named.match(text); match.hasMatch() && m_error.isEmpty();
         match = named.match(text, match.capturedStart())) {
        QString replacement = value(match.captured(1), image);
        if (!match.captured(2).isEmpty())
            replacement = QString::number(replacement.toDouble() + match.captured(2).toInt());
        text.replace(match.capturedStart(), match.capturedLength(), replacement);
    }
}

QString ArtBook::svg(const Image &image)
{
    QString text = read(image.drawing + QLatin1String(".svg"));
    fill(text, image);
    return text;
}

QString ArtBook::filledIn(const QString &text, const QString &where)
{
    QString result = text;
    fill(result, Image{where, {}, {}, {}});
    return result;
}

void ArtBook::fail(const QString &message)
{
    if (m_error.isEmpty())
        m_error = message;
}

} // namespace zelvaro
