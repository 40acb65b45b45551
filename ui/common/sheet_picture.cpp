#include "ui/common/sheet_picture.h"

#include "ui/common/progressive_jpeg.h"

#include <QDateTime>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>
#include <QWidget>

#include <algorithm>

namespace zelvaro {

namespace {

// A JPEG in one scan is made smaller while it is read; all else is held whole before.
constexpr qint64 mostPixels = 32'000'000;
constexpr qint64 mostScannedPixels = 120'000'000;

// Laid over a picture that is no longer so.
constexpr QColor dimming(11, 16, 22, 150);

bool mayDecode(const QImageReader &reader, QSize size)
{
    const qint64 pixels = static_cast<qint64>(size.width()) * size.height();
    if (pixels <= mostPixels)
        return pixels > 0;
    return pixels <= mostScannedPixels && reader.format() == "jpeg" &&
           !isProgressiveJpeg(reader.fileName());
}

QPixmap decoded(const QString &file, QSize shown)
{
    QImageReader reader(file);
    const QSize size = reader.size();
    if (mayDecode(reader, size)) {
        const QSize covering = size.scaled(shown, Qt::KeepAspectRatioByExpanding);
        if (covering.width() < size.width())
            reader.setScaledSize(covering.expandedTo({1, 1}));
        const QPixmap picture = QPixmap::fromImageReader(&reader);
        if (!picture.isNull())
            return picture;
    }
    QPixmap nothing(1, 1);
    nothing.fill(Qt::transparent);
    return nothing;
}

/// Room for one more picture in the pixmap cache of the process while it lives: by itself the cache
/// holds 2.6 megapixels and refuses what is larger.
class CacheRoom
{
public:
    explicit CacheRoom(const QPixmap &picture) : m_limit(QPixmapCache::cacheLimit())
    {
        const qint64 bits =
            static_cast<qint64>(picture.width()) * picture.height() * std::max(picture.depth(), 32);
        QPixmapCache::setCacheLimit(m_limit + static_cast<int>(bits / 8 / 1024) + 1);
    }
    ~CacheRoom() { QPixmapCache::setCacheLimit(m_limit); }
    CacheRoom(const CacheRoom &) = delete;
    CacheRoom &operator=(const CacheRoom &) = delete;

private:
    const int m_limit; // kilobytes
};

QString hexadecimal(quint64 value, int digits)
{
    QString text;
    for (; digits > 0; --digits, value >>= 4)
        text += QLatin1Char("0123456789abcdef"[value & 0xf]);
    return text;
}

/// What QPixmap::load() of Qt 5.15 looks a file up by in the cache of the process. Where another Qt
/// names it otherwise the picture is decoded whole: tests/ui/album checks it.
QString cacheKey(const QString &file)
{
    const QFileInfo info(file);
    const auto time = static_cast<uint>(info.lastModified().toSecsSinceEpoch());
    return QLatin1String("qt_pixmap") + info.absoluteFilePath() + hexadecimal(time, 8) +
           hexadecimal(static_cast<quint64>(info.size()), 16) + hexadecimal(0, 8);
}

} // namespace

QSize pictureSize(const QString &file)
{
    const QSize size = QImageReader(file).size();
    return size.isEmpty() ? QSize(0, 0) : size;
}

void setPictureSheet(QWidget *widget, const QString &sheet, const QString &file, QSize shown,
                     PictureLook look)
{
    const QString key = cacheKey(file);
    QPixmap picture = decoded(file, shown);
    if (look == PictureLook::Dimmed)
        QPainter(&picture).fillRect(picture.rect(), dimming);
    const CacheRoom room(picture);
    // A sheet whose picture is not in the cache would decode the file whole.
    if (!QPixmapCache::insert(key, picture)) {
        widget->setStyleSheet({});
        return;
    }
    widget->setStyleSheet(sheet);
    widget->ensurePolished();
    // The file itself is loaded at its own size.
    QPixmapCache::remove(key);
}

} // namespace zelvaro
