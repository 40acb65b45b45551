#include "tests/ui/album/album_fixture.h"
#include "ui/album/click_video_player.h"
#include "ui/album/play_video_form.h"

#include <QLabel>
#include <QLibraryInfo>
#include <QProcess>
#include <QToolButton>

/// The video page on a system where the media framework has nothing to play with. The program runs
/// itself once more in a mount namespace in which the folder of back ends is empty.
class TestNoBackEnd : public QObject
{
    Q_OBJECT

private slots:
    void theStatusLineSaysSo();

private:
    void runWithoutBackEnd();
    void lookAtThePage();
};

namespace {

constexpr char inside[] = "ZELVARO_TEST_NO_BACK_END";
constexpr int noNamespace = 99; // exit code

} // namespace

void TestNoBackEnd::theStatusLineSaysSo()
{
    if (qEnvironmentVariableIsSet(inside))
        lookAtThePage();
    else
        runWithoutBackEnd();
}

void TestNoBackEnd::runWithoutBackEnd()
{
    if (QProcess::execute("unshare", {"-rm", "true"}) != 0)
        QSKIP("no mount namespace may be made here");
    const QString folder =
        QLibraryInfo::location(QLibraryInfo::PluginsPath) + "/phonon4qt5_backend";
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    child.start("unshare", {"-rm", "sh", "-c",
                            QString("mount -t tmpfs none \"$1\" || exit %1; %2=1 exec \"$2\"")
                                .arg(noNamespace)
                                .arg(inside),
                            "sh", folder, QCoreApplication::applicationFilePath()});
    QVERIFY(child.waitForFinished(90000));
    if (child.exitCode() == noNamespace)
        QSKIP("nothing may be mounted here");
    QCOMPARE(child.exitCode(), 0);
}

void TestNoBackEnd::lookAtThePage()
{
    QVERIFY(!ClickVideoPlayer().hasBackEnd());
    AlbumFixture album;
    QWidget owner;
    PageHost::TileList list;
    for (const char *name : {"a.mp4", "b.mp4"}) {
        auto *tile = new CPhotoMgrItemForm(&owner);
        tile->setItem(name, album.write("A", name));
        list << tile;
    }
    CPlayVideoForm page;
    page.resize(900, 700);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    page.setList(&list);
    page.showVideo(list.first());
    const auto *status = page.findChild<QLabel *>("labelStatus");
    const QString says = "  640x480(100%)  Recordings cannot be played: no back end of Phonon is "
                         "installed.";
    QTRY_COMPARE_WITH_TIMEOUT(status->text(), "a.mp4" + says, AlbumFixture::deadline);
    for (const char *button : {"btnPlay", "btnZoomIn", "btnZoomOut", "btnFullScreen", "btnNext"})
        QTest::mouseClick(page.findChild<QToolButton *>(button), Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(status->text(), "b.mp4" + says, AlbumFixture::deadline);
    QTest::mouseClick(page.findChild<QToolButton *>("btnDelete"), Qt::LeftButton);
    QTest::mouseClick(page.findChild<QToolButton *>("btnBack"), Qt::LeftButton);
    QCOMPARE(list.size(), 1);
    QCOMPARE(album.host.pages, QStringList({"back to videos"}));
    page.stop(true);
}

QTEST_MAIN(TestNoBackEnd)
#include "tst_no_back_end.moc"
