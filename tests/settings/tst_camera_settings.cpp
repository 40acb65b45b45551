#include "tests/settings/settings_home.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QtTest>

#include <memory>

namespace {

QByteArray section(int index, const QByteArray &hostname, const QByteArray &rest = {})
{
    return "[" + QByteArray::number(index) + "]\nHOSTNAME=" + hostname + "\n" + rest;
}

QStringList hostnames(const CameraSettings &settings)
{
    QStringList names;
    for (int i = 0; i < settings.count(); ++i) {
        names << settings.at(i)->hostname;
    }
    return names;
}

} // namespace

/// Cameras and album path in the settings file.
class TstCameraSettings : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_home = std::make_unique<SettingsHome>(); }
    void cleanup() { m_home.reset(); }

    void startsEmptyWithoutAFile();
    void pathsStandBesideTheApplicationsData();
    void readsTwoCameras();
    void writesTwoCamerasToTheByte();
    void gapInTheNumbersEndsTheList();
    void sectionWithoutAHostnameIsSkipped();
    void typeInLowerCaseIsAnIpCamera();
    void multiLiveIsOnlyOne();
    void emptyNameIsWrittenAsAnEmptyValue();
    void albumPathWithASpaceComesBack();
    void albumPathTakesSlashes();
    void emptyAlbumPathKeepsTheDefault();
    void albumFolderIsMadeAtLoadOnly();
    void repeatedHostnameIsDropped();
    void addRefusesAHostnameThatIsThere();
    void removeFreesTheRecord();
    void recordStartsWithTheSubStream();
    void savingDropsWhatIsNotOurs();
    void unwritableFolderKeepsTheChange();
    void unreadableFileStartsEmpty();
    void fiveHundredCamerasLoad();
    void manyCamerasLoadInSensibleTime();
    void randomBytesNeverHarm();
    void nulBytesNeverHarm();
    void lineEndsInTextsDoNotBreakTheFile();
    void textsInTheLocalEncodingComeBack();
    void loadSaveLoadIsStable();
    void loadReplacesWhatWasThere();
    void cameraFolderStaysBelowTheAlbum_data();
    void cameraFolderStaysBelowTheAlbum();
    void anAlbumUnderTheHostNameItselfIsKept();

private:
    std::unique_ptr<SettingsHome> m_home;
};

void TstCameraSettings::startsEmptyWithoutAFile()
{
    CameraSettings settings;
    QCOMPARE(settings.load(), 0);
    QCOMPARE(settings.count(), 0);
    QCOMPARE(settings.at(0), nullptr);
    QCOMPARE(settings.at(-1), nullptr);
    QCOMPARE(settings.albumPath(), m_home->path() + "/Documents/Zelvaro/Album");
    QVERIFY(!QFile::exists(m_home->file()));
}

void TstCameraSettings::pathsStandBesideTheApplicationsData()
{
    CameraSettings settings;
    settings.load();
    QCOMPARE(settings.configDir(), m_home->folder());
    QCOMPARE(settings.configFile(), m_home->file());
    QVERIFY(QFileInfo(m_home->folder()).isDir());
}

void TstCameraSettings::readsTwoCameras()
{
    QFile sample(QFINDTESTDATA("data/two_cameras.cfg"));
    QVERIFY(sample.open(QIODevice::ReadOnly));
    m_home->write(sample.readAll().replace("C:/Users/owner", m_home->path().toUtf8()));
    CameraSettings settings;
    settings.load();
    QCOMPARE(settings.albumPath(), m_home->path() + "/Documents/Zelvaro/Album");
    QCOMPARE(settings.count(), 2);
    const CameraRecord &door = *settings.at(0);
    QCOMPARE(door.type, int(CAMERA_TYPE_P2P));
    QCOMPARE(door.hostname, QString("ZLV-000001-ABCDE"));
    QCOMPARE(door.username, QString("admin"));
    QCOMPARE(door.password, QString("s3cret"));
    QCOMPARE(door.name, QString("Front door"));
    QVERIFY(door.multiLive);
    const CameraRecord &garage = *settings.at(1);
    QCOMPARE(garage.password, QString());
    QCOMPARE(garage.name, QString("Garage"));
    QVERIFY(!garage.multiLive);
}

void TstCameraSettings::writesTwoCamerasToTheByte()
{
    CameraSettings settings;
    settings.load();
    settings.setAlbumPath("C:\\Users\\owner\\Documents/Zelvaro/Album");
    settings.addRecord(1, "ZLV-000001-ABCDE", "admin", "s3cret", "Front door", true);
    settings.addRecord(1, "ZLV-000002-FGHIJ", "admin", "", "Garage", false);
    QCOMPARE(settings.save(), 0);
    QFile sample(QFINDTESTDATA("data/two_cameras.cfg"));
    QVERIFY(sample.open(QIODevice::ReadOnly));
    QCOMPARE(m_home->read(), sample.readAll());
    QCOMPARE(QFile::permissions(m_home->file()) & ~QFile::Permissions(0xF00),
             QFile::ReadOwner | QFile::WriteOwner);
}

void TstCameraSettings::gapInTheNumbersEndsTheList()
{
    m_home->write(section(0, "a") + section(1, "b") + section(3, "c"));
    CameraSettings settings;
    settings.load();
    QCOMPARE(hostnames(settings), QStringList({"a", "b"}));
}

void TstCameraSettings::sectionWithoutAHostnameIsSkipped()
{
    m_home->write(section(0, "a") + section(1, "") + "[2]\nNAME=x\n" + section(3, "c"));
    CameraSettings settings;
    settings.load();
    QCOMPARE(hostnames(settings), QStringList({"a", "c"}));
}

void TstCameraSettings::typeInLowerCaseIsAnIpCamera()
{
    m_home->write(section(0, "a", "TYPE=p2p\n") + section(1, "b", "TYPE=P2P\n") + section(2, "c"));
    CameraSettings settings;
    settings.load();
    QCOMPARE(settings.at(0)->type, int(CAMERA_TYPE_IP));
    QCOMPARE(settings.at(1)->type, int(CAMERA_TYPE_P2P));
    QCOMPARE(settings.at(2)->type, int(CAMERA_TYPE_IP));
    settings.save();
    QVERIFY(m_home->read().contains("[0]\nTYPE=IP\nHOSTNAME=a\n"));
}

void TstCameraSettings::multiLiveIsOnlyOne()
{
    m_home->write(section(0, "a", "MULTILIVE=yes\n") + section(1, "b", "MULTILIVE=1\n") +
                  section(2, "c", "MULTILIVE=11\n") + section(3, "d", "MULTILIVE= 1 \n"));
    CameraSettings settings;
    settings.load();
    QCOMPARE(settings.at(0)->multiLive, false);
    QCOMPARE(settings.at(1)->multiLive, true);
    QCOMPARE(settings.at(2)->multiLive, false);
    QCOMPARE(settings.at(3)->multiLive, true);
}

void TstCameraSettings::emptyNameIsWrittenAsAnEmptyValue()
{
    CameraSettings settings;
    settings.load();
    settings.addRecord(1, "a", "u", "p", "", false);
    settings.save();
    QVERIFY(m_home->read().contains("\nNAME=\nMULTILIVE=0\n"));
}

void TstCameraSettings::albumPathWithASpaceComesBack()
{
    CameraSettings settings;
    settings.load();
    const QString path = m_home->path() + "/my album";
    settings.setAlbumPath(path);
    settings.save();
    QCOMPARE(m_home->read(), "ALBUMPATH=\"" + path.toUtf8() + "\"\n");
    CameraSettings again;
    again.load();
    QCOMPARE(again.albumPath(), path);
}

void TstCameraSettings::albumPathTakesSlashes()
{
    m_home->write("ALBUMPATH=" + m_home->path().toUtf8() + "\\one\\two\n");
    CameraSettings settings;
    settings.load();
    QCOMPARE(settings.albumPath(), m_home->path() + "/one/two");
}

void TstCameraSettings::emptyAlbumPathKeepsTheDefault()
{
    m_home->write("ALBUMPATH=\n");
    CameraSettings settings;
    settings.load();
    QCOMPARE(settings.albumPath(), m_home->path() + "/Documents/Zelvaro/Album");
}

void TstCameraSettings::albumFolderIsMadeAtLoadOnly()
{
    CameraSettings settings;
    settings.load();
    QVERIFY(QFileInfo(settings.albumPath()).isDir());
    settings.setAlbumPath(m_home->path() + "/later");
    settings.save();
    QVERIFY(!QFileInfo::exists(settings.albumPath()));
    settings.load();
    QVERIFY(QFileInfo(settings.albumPath()).isDir());
}

void TstCameraSettings::repeatedHostnameIsDropped()
{
    m_home->write(section(0, "a", "NAME=first\n") + section(1, "a", "NAME=second\n") +
                  section(2, "A"));
    CameraSettings settings;
    settings.load();
    QCOMPARE(hostnames(settings), QStringList({"a", "A"}));
    QCOMPARE(settings.at(0)->name, QString("first"));
}

void TstCameraSettings::addRefusesAHostnameThatIsThere()
{
    CameraSettings settings;
    settings.load();
    QVERIFY(settings.addRecord(1, "a", "u", "p", "n", true));
    QVERIFY(!settings.addRecord(0, "a", "u2", "p2", "n2", false));
    QCOMPARE(settings.count(), 1);
    QCOMPARE(settings.at(0)->username, QString("u"));
    QVERIFY(settings.addRecord(0, "A", "", "", "", false));
}

void TstCameraSettings::removeFreesTheRecord()
{
    CameraSettings settings;
    settings.load();
    CameraRecord *first = settings.addRecord(1, "a", "", "", "", false);
    settings.addRecord(1, "b", "", "", "", false);
    settings.removeRecord(first);
    QCOMPARE(hostnames(settings), QStringList("b"));
    CameraRecord stranger;
    settings.removeRecord(&stranger);
    settings.removeRecord(nullptr);
    QCOMPARE(settings.count(), 1);
}

void TstCameraSettings::recordStartsWithTheSubStream()
{
    m_home->write(section(0, "a"));
    CameraSettings settings;
    settings.load();
    QCOMPARE(settings.at(0)->streamPath, QString("/live/1/h264.sdp"));
    QCOMPARE(settings.at(0)->recordSelected, false);
    settings.at(0)->recordSelected = true;
    settings.save();
    settings.load();
    QCOMPARE(settings.at(0)->recordSelected, false);
}

void TstCameraSettings::savingDropsWhatIsNotOurs()
{
    m_home->write("# by hand\nOTHER=1\n" + section(0, "a", "COLOR=red\n"));
    CameraSettings settings;
    settings.load();
    settings.setAlbumPath("/x");
    settings.save();
    QCOMPARE(m_home->read(), QByteArray("ALBUMPATH=/x\n[0]\nTYPE=IP\nHOSTNAME=a\nUSERNAME=\n"
                                        "PASSWORD=\nNAME=\nMULTILIVE=0\n"));
}

void TstCameraSettings::unwritableFolderKeepsTheChange()
{
    CameraSettings settings;
    settings.load();
    // A file in the place of the folder refuses everybody, the super-user too.
    QVERIFY(QDir().rmdir(m_home->folder()));
    QFile blocker(m_home->folder());
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    settings.addRecord(1, "a", "", "", "", false);
    QCOMPARE(settings.save(), 0);
    QCOMPARE(settings.count(), 1);
    QVERIFY(blocker.remove());
    QCOMPARE(settings.save(), 0);
    QVERIFY(m_home->read().contains("HOSTNAME=a\n"));
}

void TstCameraSettings::unreadableFileStartsEmpty()
{
    QVERIFY(QDir().mkpath(m_home->file())); // a folder
    CameraSettings settings;
    QCOMPARE(settings.load(), 0);
    QCOMPARE(settings.count(), 0);
}

void TstCameraSettings::fiveHundredCamerasLoad()
{
    CameraSettings settings;
    settings.load();
    for (int i = 0; i < 500; ++i) {
        QVERIFY(settings.addRecord(1, QString("host %1").arg(i), "u", "p", "n", i % 2));
    }
    settings.save();
    CameraSettings again;
    again.load();
    QCOMPARE(hostnames(again), hostnames(settings));
}

void TstCameraSettings::manyCamerasLoadInSensibleTime()
{
    QByteArray file;
    for (int i = 0; file.size() < (10 << 20); ++i) {
        file += section(i, "h" + QByteArray::number(i));
    }
    m_home->write(file);
    CameraSettings settings;
    QElapsedTimer timer;
    timer.start();
    settings.load();
    QVERIFY(settings.count() > 300000);
    // Seconds where looking through the list for each camera would take minutes.
    QVERIFY2(timer.elapsed() < 60000, qPrintable(QString::number(timer.elapsed())));
}

void TstCameraSettings::randomBytesNeverHarm()
{
    QRandomGenerator random(42);
    for (int round = 0; round < 100; ++round) {
        QByteArray bytes = section(0, "a");
        for (int i = random.bounded(2000); i > 0; --i) {
            bytes.insert(random.bounded(bytes.size()), char(random.bounded(256)));
        }
        m_home->write(bytes);
        CameraSettings settings;
        QCOMPARE(settings.load(), 0);
        QCOMPARE(settings.save(), 0);
    }
}

void TstCameraSettings::nulBytesNeverHarm()
{
    m_home->write(QByteArray("ALBUMPATH=\0x\n[0]\nHOSTNAME=a\0b\nNAME\0=n\n", 38));
    CameraSettings settings;
    settings.load();
    QCOMPARE(hostnames(settings), QStringList("a"));
    QCOMPARE(settings.at(0)->name, QString());
}

void TstCameraSettings::lineEndsInTextsDoNotBreakTheFile()
{
    CameraSettings settings;
    settings.load();
    settings.addRecord(1, "a", "u\n[1]\nHOSTNAME=evil", QString::fromLatin1("p\0q", 3), "n\r\nm",
                       false);
    settings.addRecord(1, "b", "", "", "", false);
    settings.save();
    settings.load();
    QCOMPARE(hostnames(settings), QStringList({"a", "b"}));
    QCOMPARE(settings.at(0)->username, QString("u [1] HOSTNAME=evil"));
    QCOMPARE(settings.at(0)->password, QString("p q"));
    QCOMPARE(settings.at(0)->name, QString("n  m"));
}

void TstCameraSettings::textsInTheLocalEncodingComeBack()
{
    CameraSettings settings;
    settings.load();
    const QString name = QString::fromLocal8Bit(QStringLiteral("Tür café").toLocal8Bit());
    settings.addRecord(1, "a", "", "", name, false);
    settings.save();
    QVERIFY(m_home->read().contains("NAME=\"" + name.toLocal8Bit() + "\"\n"));
    settings.load();
    QCOMPARE(settings.at(0)->name, name);
}

void TstCameraSettings::loadSaveLoadIsStable()
{
    QRandomGenerator random(2018);
    const QString alphabet = QStringLiteral("ab0 =\"[]#;\\/,'");
    const auto text = [&](int least) {
        QString made;
        for (int i = least + random.bounded(30); i > 0; --i) {
            made += alphabet[random.bounded(alphabet.size())];
        }
        return made;
    };
    for (int round = 0; round < 60; ++round) {
        CameraSettings settings;
        settings.load();
        while (settings.count() > 0) {
            settings.removeRecord(settings.at(0));
        }
        for (int i = random.bounded(12); i > 0; --i) {
            settings.addRecord(random.bounded(2), text(1), text(0), text(0), text(0),
                               random.bounded(2));
        }
        settings.save();
        const QByteArray written = m_home->read();
        CameraSettings again;
        again.load();
        QCOMPARE(again.count(), settings.count());
        for (int i = 0; i < again.count(); ++i) {
            const CameraRecord &left = *settings.at(i);
            const CameraRecord &right = *again.at(i);
            QCOMPARE(std::tie(right.type, right.hostname, right.username, right.password,
                              right.name, right.multiLive),
                     std::tie(left.type, left.hostname, left.username, left.password, left.name,
                              left.multiLive));
        }
        again.save();
        QCOMPARE(m_home->read(), written);
    }
}

void TstCameraSettings::loadReplacesWhatWasThere()
{
    m_home->write(section(0, "a"));
    CameraSettings settings;
    settings.load();
    settings.load();
    QCOMPARE(settings.count(), 1);
}

void TstCameraSettings::cameraFolderStaysBelowTheAlbum_data()
{
    QTest::addColumn<QString>("hostname");
    QTest::addColumn<QString>("folder");
    QTest::newRow("uid") << "ZLV-1"
                         << "/album/ZLV-1";
    QTest::newRow("slash makes a folder in a folder") << "a/b"
                                                      << "/album/a/b";
    QTest::newRow("address") << "rtsp://h:554/x"
                             << "/album/rtsp%3A//h%3A554/x";
    QTest::newRow("backslash") << "a\\b"
                               << "/album/a/b";
    QTest::newRow("parent") << ".."
                            << "/album/_";
    QTest::newRow("parents") << "../../etc"
                             << "/album/_/_/etc";
    QTest::newRow("parents in the middle") << "a/../../b"
                                           << "/album/a/_/_/b";
    QTest::newRow("parents with backslashes") << "..\\..\\x"
                                              << "/album/_/_/x";
    QTest::newRow("dots in a name") << "a..b/..c"
                                    << "/album/a..b/..c";
    QTest::newRow("absolute") << "/etc"
                              << "/album//etc";
    QTest::newRow("nul") << QString::fromLatin1("a\0b", 3) << "/album/ab";
    QTest::newRow("parent with a nul") << QString::fromLatin1(".\0.", 3) << "/album/_";
    QTest::newRow("empty") << ""
                           << "/album/";
}

void TstCameraSettings::cameraFolderStaysBelowTheAlbum()
{
    QFETCH(QString, hostname);
    QFETCH(QString, folder);
    CameraSettings settings;
    settings.setAlbumPath("/album");
    QCOMPARE(settings.cameraFolder(hostname), folder);
    QVERIFY((QDir::cleanPath(settings.cameraFolder(hostname)) + "/").startsWith("/album/"));
}

void TstCameraSettings::anAlbumUnderTheHostNameItselfIsKept()
{
    CameraSettings settings;
    settings.setAlbumPath(m_home->path() + "/Album");
    const QString folder = m_home->path() + "/Album/cam.lan%3A8554";
    QCOMPARE(settings.cameraFolder("cam.lan:8554"), folder);
    QVERIFY(QDir().mkpath(folder));
    QCOMPARE(settings.cameraFolder("cam.lan:8554"), folder);
    const QString former = m_home->path() + "/Album/cam.lan:8554";
    QVERIFY(QDir().mkpath(former));
    QCOMPARE(settings.cameraFolder("cam.lan:8554"), former);
    // A file is no album.
    QVERIFY(QDir().rmdir(former));
    QVERIFY(QFile(former).open(QIODevice::WriteOnly));
    QCOMPARE(settings.cameraFolder("cam.lan:8554"), folder);
}

QTEST_GUILESS_MAIN(TstCameraSettings)
#include "tst_camera_settings.moc"
