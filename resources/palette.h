#pragma once

#include <QColor>
#include <QMap>
#include <QString>
#include <QVector>

namespace zelvaro {

/// The named colours of the program and the pairs of them that may be text and background.
struct Palette
{
    struct TextPair
    {
        QString text;
        QString background;
    };

    QMap<QString, QColor> colours;
    QVector<TextPair> textPairs;

    /// Reads "name #rrggbb" and "text a on b" lines; "#" followed by a blank begins a comment.
    /// On a line that is neither, or a pair of unknown colours, error says where.
    static Palette read(const QString &file, QString *error);
};

/// Contrast of two opaque colours by relative luminance, 1 to 21 (WCAG 2.1, 1.4.3).
double contrast(const QColor &a, const QColor &b);

} // namespace zelvaro
