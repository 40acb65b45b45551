#pragma once

#include "settings/camera_list.h"
#include "settings/camera_settings.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/settings/settings_home.h"
#include "ui/album/photo_mgr_item_form.h"
#include "ui/common/page_host.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QtTest>

/// Keeps what the album pages ask the main window for.
class AlbumHost : public PageHost
{
public:
    AlbumHost() { setPageHost(this); }
    ~AlbumHost() override { setPageHost(nullptr); }

    QWidget *dialogParent() override { return nullptr; }
    void leavePages() override { pages << QStringLiteral("leave"); }
    void showCameraMgr() override { pages << QStringLiteral("manager"); }
    void showSearchCameraList() override { pages << QStringLiteral("search"); }
    void playCamera(CCamera *) override { pages << QStringLiteral("play"); }
    void showMultiLive() override { pages << QStringLiteral("multi"); }
    void showPhotoMgr() override { pages << QStringLiteral("photos"); }
    void backToPhotoMgr() override { pages << QStringLiteral("back to photos"); }
    void showPhoto(TileList *tiles, CPhotoMgrItemForm *tile) override
    {
        pages << QStringLiteral("photo");
        list = tiles;
        current = tile;
    }
    void showVideoMgr() override { pages << QStringLiteral("videos"); }
    void backToVideoMgr() override { pages << QStringLiteral("back to videos"); }
    void playVideo(TileList *tiles, CPhotoMgrItemForm *tile) override
    {
        pages << QStringLiteral("video");
        list = tiles;
        current = tile;
    }

    QStringList pages;
    TileList *list = nullptr;
    CPhotoMgrItemForm *current = nullptr;
};

/// Cameras named "Camera A" and so on with their sessions over the scripted library, and an album
/// folder of the test's own.
class AlbumFixture
{
public:
    static constexpr int Deadline = 30000; // ms

    AlbumFixture()
    {
        fake_cammgr::reset();
        CameraSettings::instance().load();
        CameraSettings::instance().setAlbumPath(m_home.path() + QStringLiteral("/Album"));
    }
    /// Ends the sessions. The pages must be gone.
    ~AlbumFixture()
    {
        CCameraList::instance().closing();
        CCameraList::instance().destroyAll();
        fake_cammgr::reset();
    }

    static void addCameras(const QStringList &hostnames)
    {
        for (const QString &hostname : hostnames) {
            CameraSettings::instance().addRecord(CAMERA_TYPE_P2P, hostname, QStringLiteral("admin"),
                                                 QStringLiteral("secret"),
                                                 QStringLiteral("Camera ") + hostname, false);
        }
        CCameraList::instance().startSessions(CameraSettings::instance());
    }

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

    AlbumHost host;

private:
    SettingsHome m_home;
};

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
