#pragma once

#include "tests/support/sessions_fixture.h"
#include "ui/album/photo_mgr_item_form.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QtTest>

#include <ctime>

/// Cameras with their album folders, in which the test writes.
class AlbumFixture : public SessionsFixture
{
public:
    static constexpr int deadline = 30000; // ms

    QString root() const { return CameraSettings::instance().albumPath(); }
    QString path(const QString &hostname, const QString &name) const
    {
        return root() + QLatin1Char('/') + hostname + QLatin1Char('/') + name;
    }
    QString write(const QString &hostname, const QString &name, const QByteArray &bytes = "x") const
    {
        const QString file = path(hostname, name);
        QDir().mkpath(root() + QLatin1Char('/') + hostname);
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(file));
        return file;
    }
    /// Looks like a file of the album and cannot be deleted, whatever user runs the test.
    QString writeUndeletable(const QString &hostname, const QString &name) const
    {
        QDir().mkpath(path(hostname, name));
        write(hostname, name + QStringLiteral("/inside"));
        return path(hostname, name);
    }
    QString writePicture(const QString &hostname, const QString &name, QColor colour,
                         QSize size = {64, 48}) const
    {
        const QString file = path(hostname, name);
        QDir().mkpath(root() + QLatin1Char('/') + hostname);
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        if (!image.save(file, "JPG", 95))
            qFatal("cannot write %s", qPrintable(file));
        return file;
    }
};

/// Processor time of this thread, in milliseconds: what others do on the machine does not count.
inline int threadTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<int>(time.tv_sec * 1000 + time.tv_nsec / 1'000'000);
}

/// What the keyboard sends while a key is held down.
inline void repeatKey(QWidget *widget, Qt::Key key)
{
    QKeyEvent again(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(widget, &again);
}

/// Colour in the middle of what a widget shows; JPEG and scaling change it a little.
inline QColor centreOf(QWidget *widget)
{
    const QImage image = widget->grab().toImage();
    return image.pixelColor(image.width() / 2, image.height() / 2);
}

inline bool alike(QColor a, QColor b)
{
    return qAbs(a.red() - b.red()) < 24 && qAbs(a.green() - b.green()) < 24 &&
           qAbs(a.blue() - b.blue()) < 24;
}
