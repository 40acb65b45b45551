#include "ui/live/stream_details.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

#include <algorithm>

namespace zelvaro {

namespace {

constexpr double microsecondsPerMillisecond = 1000;

/// A text of a fixed field, which may lack its end.
template <std::size_t size>
QString text(const char (&field)[size])
{
    return QString::fromLatin1(field,
                               static_cast<int>(std::find(field, field + size, '\0') - field));
}

QString milliseconds(qint32 microseconds)
{
    return QLocale().toString(microseconds / microsecondsPerMillisecond, 'f', 1);
}

QString translated(const char *source)
{
    return QCoreApplication::translate("StreamDetails", source);
}

} // namespace

QString figuresText(const RtspPlayerFigures &figures)
{
    const QLocale locale;
    QStringList lines;
    lines << translated(QT_TRANSLATE_NOOP("StreamDetails", "Picture: %1, %2x%3, by %4"))
                 .arg(text(figures.codec))
                 .arg(figures.width)
                 .arg(figures.height)
                 .arg(text(figures.transport));
    if (const QString sound = text(figures.sound_codec); !sound.isEmpty())
        lines << translated(QT_TRANSLATE_NOOP("StreamDetails", "Sound: %1")).arg(sound);
    lines << translated(
                 QT_TRANSLATE_NOOP("StreamDetails", "Frames: %1 received, %2 drawn, %3 left out"))
                 .arg(locale.toString(qlonglong(figures.frames_received)),
                      locale.toString(qlonglong(figures.frames_drawn)),
                      locale.toString(qlonglong(figures.frames_dropped)));
    lines << translated(QT_TRANSLATE_NOOP("StreamDetails", "Packets: %1 received, %2 lost"))
                 .arg(locale.toString(qlonglong(figures.packets_received)),
                      locale.toString(qlonglong(figures.packets_lost)));
    lines << translated(QT_TRANSLATE_NOOP("StreamDetails", "Jitter %1 ms, delay %2 ms"))
                 .arg(milliseconds(figures.jitter), milliseconds(figures.delay));
    if (const QString decoder = text(figures.decoder); !decoder.isEmpty())
        lines << translated(QT_TRANSLATE_NOOP("StreamDetails", "Decoder: %1")).arg(decoder);
    return lines.join(QLatin1Char('\n'));
}

} // namespace zelvaro
