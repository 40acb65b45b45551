#pragma once

#include "settings/camera_settings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A separate home for the settings: nothing of the real one is read or written.
/// Construct it before CameraSettings::load.
class SettingsHome
{
public:
    SettingsHome()
    {
        qputenv("HOME", QFile::encodeName(m_home.path()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_home.path() + QStringLiteral("/data")));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_home.path() + QStringLiteral("/config")));
    }

    QString path() const { return m_home.path(); }
    QString folder() const { return path() + QStringLiteral("/data/Zelvaro"); }
    QString file() const { return folder() + QStringLiteral("/Zelvaro.cfg"); }

    void write(const QByteArray &bytes) const
    {
        QDir().mkpath(folder());
        QFile file(this->file());
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
    }
    QByteArray read() const { return read(file()); }
    /// The copy of the file as a run found it.
    QByteArray copy() const { return read(file() + QStringLiteral(".bak")); }

private:
    static QByteArray read(const QString &name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }

    QTemporaryDir m_home;
};
