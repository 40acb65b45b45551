#include "settings/camera_settings.h"
#include "tests/camera/session_test.h"
#include "tests/settings/settings_home.h"

#include <QImage>
#include <QSignalSpy>

/// The thumbnail of a camera.
class TestCamera : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void thumbStandsInTheCamerasFolder();
    void takingAThumbMakesTheFolderAndThePicture();
    void thumbIsReplaced();
    void failedThumbIsAnnouncedAllTheSame();
    void anotherAlbumMayHaveAnotherThumb();
    void albumThatCannotBeMadeDoesNotHarm();
    void hostnameWithSlashesMakesFoldersInTheAlbum();
    void hostnameThatLeadsOutOfTheAlbumStaysInIt();

private:
    QStringList filesBelow(const QString &folder) const;

    std::unique_ptr<CheckLog> m_checks;
    std::unique_ptr<SettingsHome> m_home;
    QString m_album;
};

void TestCamera::init()
{
    fake_cammgr::reset();
    m_checks = std::make_unique<CheckLog>();
    m_home = std::make_unique<SettingsHome>();
    CameraSettings::instance().load();
    m_album = m_home->path() + "/inner/album";
    CameraSettings::instance().setAlbumPath(m_album);
}

void TestCamera::cleanup()
{
    QCOMPARE(m_checks->take(), QStringList());
    m_checks.reset();
    m_home.reset();
    fake_cammgr::reset();
}

QStringList TestCamera::filesBelow(const QString &folder) const
{
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    return files;
}

void TestCamera::thumbStandsInTheCamerasFolder()
{
    Session session;
    QCOMPARE(session->thumb_path(), m_album + "/ZLV-1/thumb.jpeg");
    QVERIFY(!session->has_thumb());
}

void TestCamera::takingAThumbMakesTheFolderAndThePicture()
{
    Session session;
    session.startConnected();
    QSignalSpy changed(session.camera.get(), &CCamera::signalThumbChanged);
    QCOMPARE(session->take_thumb(), 1);
    QCOMPARE(changed.count(), 1);
    QVERIFY(session->has_thumb());
    QCOMPARE(QImage(session->thumb_path()).size(), QSize(16, 12));
    QCOMPARE(session.player()->last("RtspPlayer_Snapshot")->texts.at(0),
             session->thumb_path().toStdString());
}

void TestCamera::thumbIsReplaced()
{
    Session session;
    session.startConnected();
    session->take_thumb();
    session.player()->change([](fake_cammgr::Script &s) { s.snapshotImage = "other"; });
    session->take_thumb();
    QFile file(session->thumb_path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("other"));
}

void TestCamera::failedThumbIsAnnouncedAllTheSame()
{
    Session session;
    session.startConnected();
    session.player()->change([](fake_cammgr::Script &s) { s.results["RtspPlayer_Snapshot"] = -1; });
    QSignalSpy changed(session.camera.get(), &CCamera::signalThumbChanged);
    QCOMPARE(session->take_thumb(), 1);
    QCOMPARE(changed.count(), 1);
    QVERIFY(!session->has_thumb());
}

void TestCamera::anotherAlbumMayHaveAnotherThumb()
{
    Session session;
    QSignalSpy changed(session.camera.get(), &CCamera::signalThumbChanged);
    CameraSettings::instance().setAlbumPath(m_album + "/other");
    QCOMPARE(changed.count(), 1);
    QCOMPARE(session->thumb_path(), m_album + "/other/ZLV-1/thumb.jpeg");
}

void TestCamera::albumThatCannotBeMadeDoesNotHarm()
{
    QFile blocker(m_home->path() + "/inner");
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    Session session;
    session.startConnected();
    QCOMPARE(session->take_thumb(), 1);
    QVERIFY(!session->has_thumb());
}

void TestCamera::hostnameWithSlashesMakesFoldersInTheAlbum()
{
    Session session;
    session.record.hostname = "rtsp://cam.lan:554/stream";
    session->set_info(&session.record);
    session.startConnected();
    session->take_thumb();
    QVERIFY(session->has_thumb());
    QCOMPARE(filesBelow(m_home->path() + "/inner"),
             QStringList(m_album + "/rtsp%3A/cam.lan%3A554/stream/thumb.jpeg"));
}

void TestCamera::hostnameThatLeadsOutOfTheAlbumStaysInIt()
{
    Session session;
    session.record.hostname = "../../outside";
    session->set_info(&session.record);
    session.startConnected();
    session->take_thumb();
    QVERIFY(session->has_thumb());
    QCOMPARE(filesBelow(m_home->path()), QStringList(m_album + "/_/_/outside/thumb.jpeg"));
}

QTEST_MAIN(TestCamera)
#include "tst_camera.moc"
