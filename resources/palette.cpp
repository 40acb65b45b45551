#include "resources/palette.h"

#include <QFile>
#include <QStringList>

#include <cmath>

namespace zelvaro {

Palette Palette::read(const QString &fileName, QString *error)
{
    Palette palette;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        *error = QStringLiteral("%1: %2").arg(fileName, file.errorString());
        return palette;
    }
    for (int number = 1; !file.atEnd(); ++number) {
        const QString line = QString::fromUtf8(file.readLine()).simplified();
        if (line.isEmpty() || line == QLatin1String("#") || line.startsWith(QLatin1String("# ")))
            continue;
        const QStringList words = line.split(QLatin1Char(' '));
        if (words.size() == 4 && words[0] == QLatin1String("text") &&
            words[2] == QLatin1String("on") && palette.colours.contains(words[1]) &&
            palette.colours.contains(words[3])) {
            palette.textPairs.append({words[1], words[3]});
        } else if (words.size() == 2 && QColor::isValidColor(words[1])) {
            palette.colours.insert(words[0], QColor(words[1]));
        } else {
            *error =
                QStringLiteral("%1:%2: cannot read \"%3\"").arg(fileName).arg(number).arg(line);
            return palette;
        }
    }
    return palette;
}

namespace {

double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

} // namespace

double contrast(const QColor &a, const QColor &b)
{
    const double first = luminance(a);
    const double second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

} // namespace zelvaro
