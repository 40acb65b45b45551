#pragma once

#include "camera/camera.h"
#include "settings/camera_list.h"
#include "settings/camera_settings.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/settings/settings_home.h"
#include "ui/common/album_files.h"
#include "ui/common/desktop.h"
#include "ui/common/page_host.h"

#include <QCoreApplication>
#include <QStringList>
#include <QtTest>

/// Keeps what the pages ask of the desktop.
class RecordingDesktop : public Desktop
{
public:
    RecordingDesktop() { setDesktop(this); }
    ~RecordingDesktop() override { setDesktop(nullptr); }

    bool openUrl(const QUrl &) override { return false; }
    void playSound(const QString &file) override { sounds << file; }
    QString chooseFolder(QWidget *, const QString &, const QString &) override { return {}; }

    QStringList sounds;
};

/// Keeps which pages are asked for.
class RecordingHost : public PageHost
{
public:
    RecordingHost() { setPageHost(this); }
    ~RecordingHost() override { setPageHost(nullptr); }

    QWidget *dialogParent() override { return parent; }
    void leavePages() override { pages << QStringLiteral("leave"); }
    void showCameraMgr() override { pages << QStringLiteral("manager"); }
    void showSearchCameraList() override { pages << QStringLiteral("search"); }
    void playCamera(CCamera *) override { pages << QStringLiteral("play"); }
    void showMultiLive() override { pages << QStringLiteral("multi"); }
    void showPhotoMgr() override { pages << QStringLiteral("photos"); }
    void backToPhotoMgr() override { pages << QStringLiteral("back to photos"); }
    void showPhoto(TileList *, CPhotoMgrItemForm *) override { pages << QStringLiteral("photo"); }
    void showVideoMgr() override { pages << QStringLiteral("videos"); }
    void backToVideoMgr() override { pages << QStringLiteral("back to videos"); }
    void playVideo(TileList *, CPhotoMgrItemForm *) override { pages << QStringLiteral("video"); }

    QWidget *parent = nullptr;
    QStringList pages;
};

/// Debug lines as they are written while this lives.
class LogLines
{
public:
    LogLines()
    {
        s_lines.clear();
        m_before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { s_lines << text; });
    }
    ~LogLines() { qInstallMessageHandler(m_before); }

    QStringList starting(const QString &begin) const
    {
        return s_lines.filter(
            QRegularExpression(QLatin1Char('^') + QRegularExpression::escape(begin)));
    }

private:
    static inline QStringList s_lines;
    QtMessageHandler m_before;
};

/// Registered cameras with their sessions over the scripted library, a standing clock, and the
/// recording desktop and host.
class LiveFixture
{
public:
    static constexpr int Deadline = 20000; // ms

    LiveFixture()
    {
        fake_cammgr::reset();
        CameraSettings::instance().load();
        // The document folder of a test is the one of its home only where the system says so.
        CameraSettings::instance().setAlbumPath(m_home.path() + QStringLiteral("/Album"));
    }

    /// Ends the sessions. Form and dialogs must be gone.
    ~LiveFixture()
    {
        CCameraList::instance().closing();
        CCameraList::instance().destroyAll();
        for (const std::string &breach : fake_cammgr::breaches())
            QFAIL(breach.c_str());
    }

    /// Registers cameras named "Camera A" and so on, with these host names.
    void addCameras(const QStringList &hostnames, bool multiLive = true)
    {
        CameraSettings &settings = CameraSettings::instance();
        for (const QString &hostname : hostnames) {
            settings.addRecord(CAMERA_TYPE_P2P, hostname, QStringLiteral("admin"),
                               QStringLiteral("secret"), QStringLiteral("Camera ") + hostname,
                               multiLive);
        }
        CCameraList::instance().startSessions(settings);
    }

    static CCamera *camera(int index = 0) { return CCameraList::instance().at(index); }
    static std::shared_ptr<fake_cammgr::Player> player(int index = 0)
    {
        return fake_cammgr::player(camera(index)->hostname().toStdString());
    }

    /// The camera's probe is answered; runs what hangs on it.
    static void connectCamera(int index = 0)
    {
        answer(index, [index] { player(index)->probeOk(); });
    }
    static void failCamera(int index = 0)
    {
        answer(index, [index] { player(index)->probeFailed(); });
    }

    /// One report of the session, as each answered probe makes one.
    static void report(int index = 0)
    {
        emit camera(index)->signalStateReport();
        QCoreApplication::sendPostedEvents();
    }
    static void reports(int count, int index = 0)
    {
        for (int i = 0; i < count; ++i)
            report(index);
    }

    static void change(const std::function<void(fake_cammgr::Script &)> &edit, int index = 0)
    {
        player(index)->change(edit);
    }
    static void setPlaying(bool playing, int index = 0)
    {
        change([playing](auto &script) { script.playing = playing; }, index);
    }

    /// Names of the player's calls in order, of those in wanted.
    static QStringList calls(const QStringList &wanted, int index = 0)
    {
        QStringList names;
        for (const fake_cammgr::Call &call : player(index)->calls()) {
            const QString name = QString::fromStdString(call.name);
            if (wanted.contains(name))
                names << name;
        }
        return names;
    }
    static int count(const char *name, int index = 0) { return player(index)->count(name); }
    /// First text argument of the last call; empty when there was none.
    static QString lastText(const char *name, int index = 0)
    {
        const auto call = player(index)->last(name);
        return call && !call->texts.empty() ? QString::fromStdString(call->texts.front())
                                            : QString();
    }
    /// First number argument of the last call; -1 when there was none.
    static int lastNumber(const char *name, int index = 0)
    {
        const auto call = player(index)->last(name);
        return call && !call->numbers.empty() ? static_cast<int>(call->numbers.front()) : -1;
    }

    QString folder(int index = 0) const
    {
        return CameraSettings::instance().albumPath() + QLatin1Char('/') +
               camera(index)->hostname();
    }

    zelvaro::Clock clock()
    {
        return [this] { return now; };
    }

    QDateTime now{QDate(2024, 3, 5), QTime(7, 8, 9)};
    RecordingDesktop desktop;
    RecordingHost host;

private:
    static void answer(int index, const std::function<void()> &answerProbe)
    {
        QSignalSpy reports(camera(index), &CCamera::signalStateReport);
        answerProbe();
        QTRY_VERIFY_WITH_TIMEOUT(!reports.isEmpty(), Deadline);
        QCoreApplication::sendPostedEvents();
    }

    SettingsHome m_home;
};
