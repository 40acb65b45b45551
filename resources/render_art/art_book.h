#pragma once

#include "resources/palette.h"

#include <QMap>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>

namespace zelvaro {

/// The drawings of the program: the list of images, the SVG sources that they are made of and the
/// palette. Every operation that can fail sets error() and from then on does nothing.
class ArtBook
{
public:
    struct Image
    {
        QString name; ///< path below images/, without ".png"
        QSize size;   ///< logical pixels
        QString drawing;
        QMap<QString, QString> values;
    };

    /// Reads palette.txt and images.txt of the folder.
    explicit ArtBook(const QString &folder);

    const QString &error() const { return m_error; }
    const QVector<Image> &images() const { return m_images; }
    /// Every file that was read so far.
    const QStringList &sources() const { return m_sources; }

    /// The image as a whole SVG text, with every name replaced by its value.
    QString svg(const Image &image);
    /// Any other text with the palette's names in it.
    QString filledIn(const QString &text, const QString &where);

private:
    struct Kind
    {
        QString drawing;
        QMap<QString, QString> values;
    };

    QString read(const QString &name);
    void readImages();
    bool readLine(const QString &line);
    QString inner(const QString &drawing);
    QString value(const QString &name, const Image &image);
    void fill(QString &text, const Image &image);
    void fail(const QString &message);

    QString m_folder;
    QString m_error;
    QStringList m_sources;
    Palette m_palette;
    QMap<QString, Kind> m_kinds;
    QVector<Image> m_images;
};

} // namespace zelvaro
