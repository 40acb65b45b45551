#include "settings/ini_store.h"
#include "settings/stored_text.h"
#include "tests/settings/settings_home.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTextCodec>
#include <QtTest>

#include <cerrno>
#include <memory>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using zelvaro::SettingsText;
using zelvaro::StoredText;

namespace {

int diskWaits = 0;
bool diskFails = false;

using Store = std::unique_ptr<ini_file, int32_t (*)(ini_file *)>;

/// The encoding of the user's language while it lives.
class LocalEncoding
{
public:
    explicit LocalEncoding(const QByteArray &name) : m_before(QTextCodec::codecForLocale())
    {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(name));
    }
    ~LocalEncoding() { QTextCodec::setCodecForLocale(m_before); }
    LocalEncoding(const LocalEncoding &) = delete;
    LocalEncoding &operator=(const LocalEncoding &) = delete;

private:
    QTextCodec *m_before;
};

QByteArray section(int index, const QByteArray &hostname, const QByteArray &rest = {})
{
    return "[" + QByteArray::number(index) + "]\nHOSTNAME=" + hostname + "\n" + rest;
}

QStringList hostnames(const CameraSettings &settings)
{
    QStringList names;
    for (int i = 0; i < settings.count(); ++i)
        names << settings.at(i)->hostname;
    return names;
}

} // namespace

// The linker gives the store this in the place of the system's.
extern "C" {
int __real_fsync(int handle);

int __wrap_fsync(int handle)
{
    ++diskWaits;
    errno = EIO;
    return diskFails ? -1 : __real_fsync(handle);
}
}

/// Cameras and album path in the settings file.
class TestCameraSettings : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_home = std::make_unique<SettingsHome>(); }
    void cleanup() { m_home.reset(); }

    void startsEmptyWithoutAFile();
    void pathsStandBesideTheApplicationsData();
    void readsTwoCameras();
    void writesTwoCamerasToTheByte();
    void gapInTheNumbersEndsTheListAndIsKnown();
    void byteOrderMarkHidesNoCamera_data();
    void byteOrderMarkHidesNoCamera();
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
    void unreadableFileStartsEmptyAndIsKnown();
    void fileWithoutPermissionKeepsItsCameras();
    void firstSaveKeepsTheFileAsItWasFound();
    void leftoverOfAKilledSaveIsRemovedAtTheNextStart();
    void aSaveWaitsForTheDiskOnce();
    void aNewAlbumPathIsAnnounced();
    void fiveHundredCamerasLoad();
    void manyCamerasLoadInSensibleTime();
    void randomBytesNeverHarm();
    void nulBytesNeverHarm();
    void lineEndsInTextsDoNotBreakTheFile();
    void textsInTheLocalEncodingComeBack_data();
    void textsInTheLocalEncodingComeBack();
    void textsThatTheFileCannotHoldAreKnown();
    void storedTextSaysWhatComesBack();
    void loadSaveLoadIsStable();
    void loadReplacesWhatWasThere();
    void cameraFolderStaysBelowTheAlbum_data();
    void cameraFolderStaysBelowTheAlbum();
    void anAlbumUnderTheHostNameItselfIsKept();

private:
    std::unique_ptr<SettingsHome> m_home;
};

void TestCameraSettings::startsEmptyWithoutAFile()
{
    CameraSettings settings;
    QCOMPARE(settings.load(), 0);
    QCOMPARE(settings.count(), 0);
    QCOMPARE(settings.at(0), nullptr);
    QCOMPARE(settings.at(-1), nullptr);
    QCOMPARE(settings.albumPath(), m_home->path() + "/Documents/Zelvaro/Album");
    QVERIFY(!QFile::exists(m_home->file()));
}

void TestCameraSettings::pathsStandBesideTheApplicationsData()
{
    CameraSettings settings;
    settings.load();
    QCOMPARE(settings.configDir(), m_home->folder());
    QCOMPARE(settings.configFile(), m_home->file());
    QVERIFY(QFileInfo(m_home->folder()).isDir());
}

void TestCameraSettings::readsTwoCameras()
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

void TestCameraSettings::writesTwoCamerasToTheByte()
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

void TestCameraSettings::gapInTheNumbersEndsTheListAndIsKnown()
{
    const QByteArray file = section(0, "a") + section(1, "b") + section(3, "c");
    m_home->write(file);
    CameraSettings settings;
    settings.load();
    QCOMPARE(hostnames(settings), QStringList({"a", "b"}));
    QCOMPARE(settings.fileTroubles(), CameraSettings::CamerasNotLoaded);
    // They go with the save, and are known and kept nevertheless.
    settings.save();
    QCOMPARE(settings.fileTroubles(), CameraSettings::CamerasNotLoaded);
    QCOMPARE(m_home->copy(), file);
    settings.load();
    QCOMPARE(settings.fileTroubles(), CameraSettings::FileTroubles());
}

void TestCameraSettings::byteOrderMarkHidesNoCamera_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::newRow("before the album path") << QByteArray("ALBUMPATH=HOME/x\n");
    QTest::newRow("before a header") << QByteArray();
}

void TestCameraSettings::byteOrderMarkHidesNoCamera()
{
    QFETCH(QByteArray, first);
    const QByteArray home = m_home->path().toUtf8();
    m_home->write("\xEF\xBB\xBF" + QByteArray(first).replace("HOME", home) + section(0, "a") +
                  section(1, "b"));
    CameraSettings settings;
    settings.load();
    QCOMPARE(hostnames(settings), QStringList({"a", "b"}));
    QCOMPARE(settings.albumPath().endsWith("/x"), !first.isEmpty());
}

void TestCameraSettings::sectionWithoutAHostnameIsSkipped()
{
    m_home->write(section(0, "a") + section(1, "") + "[2]\nNAME=x\n" + section(3, "c"));
    CameraSettings settings;
    settings.load();
    QCOMPARE(hostnames(settings), QStringList({"a", "c"}));
}

void TestCameraSettings::typeInLowerCaseIsAnIpCamera()
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

void TestCameraSettings::multiLiveIsOnlyOne()
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

void TestCameraSettings::emptyNameIsWrittenAsAnEmptyValue()
{
    CameraSettings settings;
    settings.load();
    settings.addRecord(1, "a", "u", "p", "", false);
    settings.save();
    QVERIFY(m_home->read().contains("\nNAME=\nMULTILIVE=0\n"));
}

void TestCameraSettings::albumPathWithASpaceComesBack()
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

void TestCameraSettings::albumPathTakesSlashes()
{
    m_home->write("ALBUMPATH=" + m_home->path().toUtf8() + "\\one\\two\n");
    CameraSettings settings;
    settings.load();
    QCOMPARE(settings.albumPath(), m_home->path() + "/one/two");
}

void TestCameraSettings::emptyAlbumPathKeepsTheDefault()
{
    m_home->write("ALBUMPATH=\n");
    CameraSettings settings;
    settings.load();
    QCOMPARE(settings.albumPath(), m_home->path() + "/Documents/Zelvaro/Album");
}

void TestCameraSettings::albumFolderIsMadeAtLoadOnly()
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

void TestCameraSettings::repeatedHostnameIsDropped()
{
    m_home->write(section(0, "a", "NAME=first\n") + section(1, "a", "NAME=second\n") +
                  section(2, "A"));
    CameraSettings settings;
    settings.load();
    QCOMPARE(hostnames(settings), QStringList({"a", "A"}));
    QCOMPARE(settings.at(0)->name, QString("first"));
}

void TestCameraSettings::addRefusesAHostnameThatIsThere()
{
    CameraSettings settings;
    settings.load();
    QVERIFY(settings.addRecord(1, "a", "u", "p", "n", true));
    QVERIFY(!settings.addRecord(0, "a", "u2", "p2", "n2", false));
    QCOMPARE(settings.count(), 1);
    QCOMPARE(settings.at(0)->username, QString("u"));
    QVERIFY(settings.addRecord(0, "A", "", "", "", false));
}

void TestCameraSettings::removeFreesTheRecord()
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

void TestCameraSettings::recordStartsWithTheSubStream()
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

void TestCameraSettings::savingDropsWhatIsNotOurs()
{
    m_home->write("# by hand\nOTHER=1\n" + section(0, "a", "COLOR=red\n"));
    CameraSettings settings;
    settings.load();
    settings.setAlbumPath("/x");
    settings.save();
    QCOMPARE(m_home->read(), QByteArray("ALBUMPATH=/x\n[0]\nTYPE=IP\nHOSTNAME=a\nUSERNAME=\n"
                                        "PASSWORD=\nNAME=\nMULTILIVE=0\n"));
}

void TestCameraSettings::unwritableFolderKeepsTheChange()
{
    CameraSettings settings;
    settings.load();
    QSignalSpy troubles(&settings, &CameraSettings::fileTroublesChanged);
    // A file in the place of the folder refuses everybody, the super-user too.
    QVERIFY(QDir().rmdir(m_home->folder()));
    QFile blocker(m_home->folder());
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    settings.addRecord(1, "a", "", "", "", false);
    QCOMPARE(settings.save(), 0);
    QCOMPARE(settings.save(), 0);
    QCOMPARE(settings.count(), 1);
    QCOMPARE(settings.fileTroubles(), CameraSettings::NotWritten);
    QCOMPARE(troubles.count(), 1);
    QVERIFY(blocker.remove());
    QCOMPARE(settings.save(), 0);
    QVERIFY(m_home->read().contains("HOSTNAME=a\n"));
    QCOMPARE(settings.fileTroubles(), CameraSettings::FileTroubles());
    QCOMPARE(troubles.count(), 2);
}

void TestCameraSettings::unreadableFileStartsEmptyAndIsKnown()
{
    QVERIFY(QDir().mkpath(m_home->file())); // a folder
    CameraSettings settings;
    QCOMPARE(settings.load(), 0);
    QCOMPARE(settings.count(), 0);
    QCOMPARE(settings.fileTroubles(), CameraSettings::NotRead);
    QVERIFY(QDir().rmdir(m_home->file()));
    settings.load();
    QCOMPARE(settings.fileTroubles(), CameraSettings::FileTroubles());
}

/// As after a run of the super-user. Permissions do not bind that one, so the child is somebody
/// else.
void TestCameraSettings::fileWithoutPermissionKeepsItsCameras()
{
    const QByteArray file = section(0, "a");
    m_home->write(file);
    QVERIFY(QFile::setPermissions(m_home->file(), QFile::Permissions()));
    for (const QString &path : {m_home->path(), m_home->path() + "/data", m_home->folder()})
        QCOMPARE(chmod(QFile::encodeName(path).constData(), 0777), 0);
    const pid_t child = fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        if (geteuid() == 0 && setuid(65534) != 0)
            _exit(2);
        CameraSettings settings;
        settings.load();
        const bool known =
            settings.count() == 0 && settings.fileTroubles() == CameraSettings::NotRead;
        settings.addRecord(1, "b", "", "", "", false);
        settings.save();
        _exit(known && settings.fileTroubles().testFlag(CameraSettings::NotWritten) ? 0 : 1);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 0);
    QVERIFY(QFile::setPermissions(m_home->file(), QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(m_home->read(), file);
}

void TestCameraSettings::firstSaveKeepsTheFileAsItWasFound()
{
    const QByteArray found = "# by hand\n" + section(0, "a");
    m_home->write(found);
    CameraSettings settings;
    settings.load();
    QCOMPARE(m_home->copy(), QByteArray("(no file)"));
    for (const char *hostname : {"b", "c"}) {
        settings.addRecord(1, hostname, "", "", "", false);
        settings.save();
        QCOMPARE(m_home->copy(), found);
    }
    QCOMPARE(QFile::permissions(m_home->file() + ".bak") & ~QFile::Permissions(0xF00),
             QFile::ReadOwner | QFile::WriteOwner);
    const QByteArray saved = m_home->read();
    CameraSettings nextRun;
    nextRun.load();
    nextRun.removeRecord(nextRun.at(0));
    nextRun.save();
    QCOMPARE(m_home->copy(), saved);
}

void TestCameraSettings::leftoverOfAKilledSaveIsRemovedAtTheNextStart()
{
    m_home->write(section(0, "a"));
    QVERIFY(QFile::copy(m_home->file(), m_home->file() + ".new-Ab12Cd"));
    CameraSettings settings;
    settings.load();
    QCOMPARE(QDir(m_home->folder()).entryList(QDir::Files), QStringList("Zelvaro.cfg"));
}

void TestCameraSettings::aSaveWaitsForTheDiskOnce()
{
    CameraSettings settings;
    settings.load();
    for (const bool fails : {false, true}) {
        diskWaits = 0;
        diskFails = fails;
        settings.save();
        diskFails = false;
        QCOMPARE(settings.fileTroubles().testFlag(CameraSettings::NotWritten), fails);
        // The second time the copy of the file is the first's.
        QCOMPARE(diskWaits, 1);
    }
}

void TestCameraSettings::aNewAlbumPathIsAnnounced()
{
    CameraSettings settings;
    settings.load();
    QSignalSpy changed(&settings, &CameraSettings::albumPathChanged);
    settings.setAlbumPath(QString(settings.albumPath()).replace('/', '\\'));
    QCOMPARE(changed.count(), 0);
    settings.setAlbumPath("/x");
    QCOMPARE(changed.count(), 1);
}

void TestCameraSettings::fiveHundredCamerasLoad()
{
    CameraSettings settings;
    settings.load();
    for (int i = 0; i < 500; ++i)
        QVERIFY(settings.addRecord(1, QString("host %1").arg(i), "u", "p", "n", i % 2));
    settings.save();
    CameraSettings again;
    again.load();
    QCOMPARE(hostnames(again), hostnames(settings));
}

void TestCameraSettings::manyCamerasLoadInSensibleTime()
{
    QByteArray file;
    for (int i = 0; file.size() < (10 << 20); ++i)
        file += section(i, "h" + QByteArray::number(i));
    m_home->write(file);
    CameraSettings settings;
    QElapsedTimer timer;
    timer.start();
    settings.load();
    QVERIFY(settings.count() > 300000);
    // Seconds where looking through the list for each camera would take minutes.
    QVERIFY2(timer.elapsed() < 60000, qPrintable(QString::number(timer.elapsed())));
}

void TestCameraSettings::randomBytesNeverHarm()
{
    QRandomGenerator random(42);
    for (int round = 0; round < 100; ++round) {
        QByteArray bytes = section(0, "a");
        for (int i = random.bounded(2000); i > 0; --i)
            bytes.insert(random.bounded(bytes.size()), char(random.bounded(256)));
        m_home->write(bytes);
        CameraSettings settings;
        QCOMPARE(settings.load(), 0);
        QCOMPARE(settings.save(), 0);
    }
}

void TestCameraSettings::nulBytesNeverHarm()
{
    m_home->write(QByteArray("ALBUMPATH=\0x\n[0]\nHOSTNAME=a\0b\nNAME\0=n\n", 38));
    CameraSettings settings;
    settings.load();
    QCOMPARE(hostnames(settings), QStringList("a"));
    QCOMPARE(settings.at(0)->name, QString());
}

void TestCameraSettings::lineEndsInTextsDoNotBreakTheFile()
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

void TestCameraSettings::textsInTheLocalEncodingComeBack_data()
{
    QTest::addColumn<QByteArray>("encoding");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("UTF-8") << QByteArray("UTF-8") << QStringLiteral("Tür 門")
                           << QByteArray("T\xC3\xBCr \xE9\x96\x80");
    QTest::newRow("Latin-1") << QByteArray("ISO-8859-1") << QStringLiteral("Tür café")
                             << QByteArray("T\xFCr caf\xE9");
}

void TestCameraSettings::textsInTheLocalEncodingComeBack()
{
    QFETCH(QByteArray, encoding);
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    const LocalEncoding local(encoding);
    CameraSettings settings;
    settings.load();
    settings.addRecord(1, "a", "", "", name, false);
    settings.save();
    QVERIFY(m_home->read().contains("NAME=\"" + bytes + "\"\n"));
    QCOMPARE(settings.fileTroubles(), CameraSettings::FileTroubles());
    settings.load();
    QCOMPARE(settings.at(0)->name, name);
}

void TestCameraSettings::textsThatTheFileCannotHoldAreKnown()
{
    const LocalEncoding local("ISO-8859-1");
    CameraSettings settings;
    settings.load();
    settings.addRecord(1, "a", "", "", QStringLiteral("門"), false);
    settings.save();
    QCOMPARE(settings.fileTroubles(), CameraSettings::TextsNotKept);
    settings.at(0)->name = QString(300, 'x');
    settings.save();
    QCOMPARE(settings.fileTroubles(), CameraSettings::TextsNotKept);
    settings.at(0)->name = "x";
    settings.save();
    QCOMPARE(settings.fileTroubles(), CameraSettings::FileTroubles());
}

/// What the dialogs refuse is what the file would lose, no more and no less.
void TestCameraSettings::storedTextSaysWhatComesBack()
{
    const LocalEncoding local("UTF-8");
    for (const QString &unit : {QStringLiteral("x"), QStringLiteral("x y\""), QStringLiteral("ü"),
                                QStringLiteral("門 ")}) {
        for (int length = 200; length < 270; ++length) {
            QString text;
            while (text.toUtf8().size() < length)
                text += unit;
            CameraSettings settings;
            settings.load();
            while (settings.count() > 0)
                settings.removeRecord(settings.at(0));
            settings.setAlbumPath(m_home->path() + "/" + text);
            settings.addRecord(1, text, text, text, text, false);
            settings.save();
            const QByteArray file = m_home->read();
            const auto comesBack = [&](SettingsText which, const QString &stored) {
                Store store(ini_open(QFile::encodeName(m_home->file()), "r"), ini_close);
                ini_select_section(store.get(), which == SettingsText::AlbumPath ? nullptr : "0");
                const char *bytes = ini_get_string(store.get(), zelvaro::settingsKey(which));
                return QString::fromLocal8Bit(bytes) == stored;
            };
            for (const SettingsText which :
                 {SettingsText::AlbumPath, SettingsText::Hostname, SettingsText::Username,
                  SettingsText::Password, SettingsText::Name}) {
                const QString stored =
                    which == SettingsText::AlbumPath ? settings.albumPath() : text;
                QCOMPARE(zelvaro::storedText(which, stored) == StoredText::Whole,
                         comesBack(which, stored));
            }
        }
    }
    const LocalEncoding narrow("ISO-8859-1");
    QVERIFY(zelvaro::storedText(SettingsText::Name, QStringLiteral("ü")) == StoredText::Whole);
    QVERIFY(zelvaro::storedText(SettingsText::Name, QStringLiteral("門")) ==
            StoredText::Unencodable);
    QVERIFY(zelvaro::storedText(SettingsText::Name, QString(251, 'x')) == StoredText::TooLong);
}

void TestCameraSettings::loadSaveLoadIsStable()
{
    QRandomGenerator random(2018);
    const QString alphabet = QStringLiteral("ab0 =\"[]#;\\/,'");
    const auto text = [&](int least) {
        QString made;
        for (int i = least + random.bounded(30); i > 0; --i)
            made += alphabet[random.bounded(alphabet.size())];
        return made;
    };
    for (int round = 0; round < 60; ++round) {
        CameraSettings settings;
        settings.load();
        while (settings.count() > 0)
            settings.removeRecord(settings.at(0));
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

void TestCameraSettings::loadReplacesWhatWasThere()
{
    m_home->write(section(0, "a"));
    CameraSettings settings;
    settings.load();
    settings.load();
    QCOMPARE(settings.count(), 1);
}

void TestCameraSettings::cameraFolderStaysBelowTheAlbum_data()
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

void TestCameraSettings::cameraFolderStaysBelowTheAlbum()
{
    QFETCH(QString, hostname);
    QFETCH(QString, folder);
    CameraSettings settings;
    settings.setAlbumPath("/album");
    QCOMPARE(settings.cameraFolder(hostname), folder);
    QVERIFY((QDir::cleanPath(settings.cameraFolder(hostname)) + "/").startsWith("/album/"));
}

void TestCameraSettings::anAlbumUnderTheHostNameItselfIsKept()
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

QTEST_GUILESS_MAIN(TestCameraSettings)
#include "tst_camera_settings.moc"
