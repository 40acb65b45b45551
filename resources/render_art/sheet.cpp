// Draws all images of the resource tree on one sheet, each at 1x and at 2x on the background that
// it is made for:
//
//   art_sheet <art folder> <tree folder> <sheet.png>

#include "resources/render_art/art_book.h"

#include <QGuiApplication>
#include <QImage>
#include <QMap>
#include <QPainter>
#include <QTextStream>

namespace {

using zelvaro::ArtBook;
using zelvaro::Palette;

constexpr int sheetWidth = 1480;
constexpr int margin = 16;
constexpr int gap = 8;
constexpr int caption = 16;
constexpr int heading = 32;
constexpr int large = 128;

/// One image with both its pictures; the second is null for a frame, which has only one, and left
/// out for what is large anyway.
struct Sample
{
    QString name;
    QImage plain;
    QImage dense;

    QSize size() const
    {
        const int pictures = plain.width() + (dense.isNull() ? 0 : dense.width() + gap);
        return {qMax(pictures + 2 * gap, 150),
                qMax(plain.height(), dense.height()) + 2 * gap + caption};
    }
};

class Sheet
{
public:
    explicit Sheet(const Palette &palette)
        : m_palette(palette)
        , m_image(sheetWidth, 6000, QImage::Format_RGB32)
    {
        m_image.fill(m_palette.colours[QStringLiteral("chrome-top")]);
    }

    void addFolder(const QString &folder, const QVector<Sample> &samples)
    {
        newRow();
        QPainter painter(&m_image);
        painter.setPen(m_palette.colours[QStringLiteral("ink")]);
        QFont font(QStringLiteral("Carlito"));
        font.setPixelSize(18);
        font.setBold(true);
        painter.setFont(font);
        painter.drawText(QPoint(margin, m_y + 22), folder);
        m_y += heading;
        font.setPixelSize(11);
        font.setBold(false);
        painter.setFont(font);
        for (const Sample &sample : samples)
            add(painter, sample);
    }

    QImage whole()
    {
        newRow();
        return m_image.copy(0, 0, sheetWidth, m_y + margin);
    }

private:
    void newRow()
    {
        m_y += m_rowHeight;
        m_x = margin;
        m_rowHeight = 0;
    }

    void add(QPainter &painter, const Sample &sample)
    {
        const QSize size = sample.size();
        if (m_x + size.width() > sheetWidth - margin)
            newRow();
        const QRect plate(m_x, m_y, size.width(), size.height() - caption);
        painter.fillRect(plate, background(sample.name));
        painter.drawImage(plate.topLeft() + QPoint(gap, gap), sample.plain);
        painter.drawImage(plate.topLeft() + QPoint(2 * gap + sample.plain.width(), gap),
                          sample.dense);
        painter.drawText(plate.bottomLeft() + QPoint(0, caption - 3),
                         sample.name.section(QLatin1Char('/'), -1));
        m_x += size.width() + gap;
        m_rowHeight = qMax(m_rowHeight, size.height() + gap);
    }

    QColor background(const QString &name) const
    {
        const bool onDark = name.startsWith(QLatin1String("multilive/multilive")) ||
                            name.startsWith(QLatin1String("multilive/controlbk")) ||
                            name.endsWith(QLatin1String("videoframe"));
        const bool withShadow =
            name == QLatin1String("messageframe") || name == QLatin1String("settingframe");
        return m_palette.colours[onDark       ? QStringLiteral("well")
                                 : withShadow ? QStringLiteral("line")
                                              : QStringLiteral("chrome-bottom")];
    }

    Palette m_palette;
    QImage m_image;
    int m_x = margin;
    int m_y = margin;
    int m_rowHeight = 0;
};

Sample loadSample(const QString &name, const QString &file)
{
    Sample sample{name, QImage(file + QLatin1String(".png")), {}};
    if (sample.plain.width() < large)
        sample.dense = QImage(file + QLatin1String("@2x.png"));
    sample.dense.setDevicePixelRatio(1); // the sheet shows the pixels themselves
    return sample;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments().mid(1);
    QTextStream errors(stderr);
    if (arguments.size() != 3) {
        errors << "usage: art_sheet <art folder> <tree folder> <sheet.png>\n";
        return 2;
    }

    const ArtBook book(arguments[0]);
    QString error = book.error();
    const Palette palette = Palette::read(arguments[0] + QLatin1String("/palette.txt"), &error);
    if (!error.isEmpty()) {
        errors << "art_sheet: " << error << '\n';
        return 1;
    }

    QMap<QString, QVector<Sample>> folders;
    for (const ArtBook::Image &image : book.images()) {
        const QString file = arguments[1] + QLatin1String("/images/") + image.name;
        folders[image.name.contains(QLatin1Char('/')) ? image.name.section(QLatin1Char('/'), 0, 0)
                                                      : QStringLiteral("windows")]
            .append(loadSample(image.name, file));
    }
    Sheet sheet(palette);
    for (auto folder = folders.cbegin(); folder != folders.cend(); ++folder)
        sheet.addFolder(folder.key(), folder.value());
    if (!sheet.whole().save(arguments[2])) {
        errors << "art_sheet: " << arguments[2] << ": cannot write\n";
        return 1;
    }
    return 0;
}
