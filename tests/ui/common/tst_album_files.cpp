#include "ui/common/album_files.h"

#include <QtTest>

class TestAlbumFiles : public QObject
{
    Q_OBJECT

private slots:
    void namesOfARecording();
    void nameOfAPhoto();
    void stampsHaveLeadingZerosInAnyLocale();
    void twoOfTheSameSecondHaveTheSameName();
    void aMissingFolderIsMadeWithItsParents();
    void theFiltersFindPhotosAndClipsOnly();
};

namespace {
const QDateTime moment(QDate(2024, 3, 5), QTime(7, 8, 9));
}

void TestAlbumFiles::namesOfARecording()
{
    const QString base = zelvaro::recordingBase(QStringLiteral("/album/H"), moment);
    QCOMPARE(base, QStringLiteral("/album/H/20240305_070809"));
    QCOMPARE(zelvaro::clipFile(base), QStringLiteral("/album/H/20240305_070809.mp4"));
    QCOMPARE(zelvaro::clipStill(zelvaro::clipFile(base)),
             QStringLiteral("/album/H/20240305_070809.mp4.jpeg"));
}

void TestAlbumFiles::nameOfAPhoto()
{
    QCOMPARE(zelvaro::photoFile(QStringLiteral("/album/H"), moment),
             QStringLiteral("/album/H/20240305_070809.jpg"));
}

void TestAlbumFiles::stampsHaveLeadingZerosInAnyLocale()
{
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    QCOMPARE(zelvaro::timeStamp(QDateTime(QDate(987, 1, 2), QTime(0, 0, 0))),
             QStringLiteral("/09870102_000000"));
    QCOMPARE(zelvaro::timeStamp(QDateTime(QDate(2038, 12, 31), QTime(23, 59, 58))),
             QStringLiteral("/20381231_235958"));
    QLocale::setDefault(QLocale::c());
}

void TestAlbumFiles::twoOfTheSameSecondHaveTheSameName()
{
    QCOMPARE(zelvaro::timeStamp(moment.addMSecs(999)), zelvaro::timeStamp(moment));
    QVERIFY(zelvaro::timeStamp(moment.addMSecs(1000)) != zelvaro::timeStamp(moment));
}

void TestAlbumFiles::aMissingFolderIsMadeWithItsParents()
{
    QTemporaryDir root;
    const QString folder = root.path() + QStringLiteral("/a/b/c d");
    zelvaro::makeFolder(folder);
    QVERIFY(QFileInfo(folder).isDir());
    zelvaro::makeFolder(folder);
    QVERIFY(QFileInfo(folder).isDir());
}

void TestAlbumFiles::theFiltersFindPhotosAndClipsOnly()
{
    QTemporaryDir root;
    const QString base = zelvaro::recordingBase(root.path(), moment);
    const QString clip = zelvaro::clipFile(base);
    const QStringList written{zelvaro::photoFile(root.path(), moment), clip,
                              zelvaro::clipStill(clip),
                              root.path() + QStringLiteral("/thumb.jpeg")};
    for (const QString &name : written) {
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    const QDir folder(root.path());
    QCOMPARE(folder.entryList({QString::fromLatin1(zelvaro::photoFilter)}, QDir::Files),
             QStringList{QStringLiteral("20240305_070809.jpg")});
    QCOMPARE(folder.entryList({QString::fromLatin1(zelvaro::clipFilter)}, QDir::Files),
             QStringList{QStringLiteral("20240305_070809.mp4")});
}

QTEST_GUILESS_MAIN(TestAlbumFiles)
#include "tst_album_files.moc"
