#include "tests/ui/album/album_fixture.h"
#include "ui/album/click_video_player.h"
#include "ui/album/play_video_form.h"

#include <QLabel>
#include <QProcess>
#include <QToolButton>

#include <phonon/mediaobject.h>

/// Plays a real recording on the display.
class tst_Playback : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aRecordingPlaysAtItsTrueSize();
    void pauseAndResume();
    void theEndShowsPlayAndTheSameButtonStartsAgain();
    void leavingStops();
    void deletingWhatPlaysGoesToTheNext();
    void aRecordingThatIsCutOffDoesNotHoldThePage();

private:
    void add(const QString &name, const QByteArray &bytes)
    {
        auto *tile = new CPhotoMgrItemForm(m_owner.get());
        tile->setItem(name, m_album->write("A", name, bytes));
        m_list << tile;
    }
    void show();
    void waitPlaying()
    {
        QTRY_VERIFY_WITH_TIMEOUT(m_page->player()->isPlaying(), AlbumFixture::Deadline);
    }
    QString status() { return m_page->findChild<QLabel *>("labelStatus")->text(); }
    QToolButton *button(const char *name) { return m_page->findChild<QToolButton *>(name); }
    void click(const char *name) { QTest::mouseClick(button(name), Qt::LeftButton); }

    /// At 25 frames a second.
    QByteArray makeClip(int frames);

    QTemporaryDir m_folder;
    QByteArray m_clip; // longer than a busy machine looks away
    QByteArray m_shortClip;
    std::unique_ptr<AlbumFixture> m_album;
    std::unique_ptr<QWidget> m_owner;
    std::unique_ptr<CPlayVideoForm> m_page;
    PageHost::TileList m_list;
};

void tst_Playback::initTestCase()
{
    if (!ClickVideoPlayer().hasBackEnd())
        QSKIP("no back end of Phonon is installed");
    m_clip = makeClip(500);
    m_shortClip = makeClip(50);
    if (m_clip.isEmpty() || m_shortClip.isEmpty())
        QSKIP("a recording cannot be made: gst-launch-1.0 with x264enc is missing");
}

QByteArray tst_Playback::makeClip(int frames)
{
    const QString clip = m_folder.filePath("clip.mp4");
    QProcess maker;
    maker.start("gst-launch-1.0",
                {"-q", "videotestsrc", QString("num-buffers=%1").arg(frames), "!",
                 "video/x-raw,width=320,height=180,framerate=25/1", "!", "x264enc",
                 "speed-preset=ultrafast", "key-int-max=10", "!", "h264parse", "!", "mp4mux", "!",
                 "filesink", "location=" + clip});
    QFile file(clip);
    if (!maker.waitForFinished(60000) || maker.exitCode() != 0 || !file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

void tst_Playback::init()
{
    m_album = std::make_unique<AlbumFixture>();
    m_owner = std::make_unique<QWidget>();
    m_page = std::make_unique<CPlayVideoForm>();
    m_page->resize(900, 700);
}

void tst_Playback::cleanup()
{
    m_page.reset();
    m_list.clear();
    m_owner.reset();
    m_album.reset();
}

void tst_Playback::show()
{
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
    m_page->setList(&m_list);
    m_page->showVideo(m_list.first());
}

void tst_Playback::aRecordingPlaysAtItsTrueSize()
{
    add("a.mp4", m_clip);
    show();
    QCOMPARE(status(), QString("a.mp4  640x480(100%)"));
    QTRY_COMPARE_WITH_TIMEOUT(status(), QString("a.mp4  320x180(100%)"), AlbumFixture::Deadline);
}

void tst_Playback::pauseAndResume()
{
    add("a.mp4", m_clip);
    show();
    waitPlaying();
    click("btnPlay");
    QTRY_VERIFY_WITH_TIMEOUT(!m_page->player()->isPlaying(), AlbumFixture::Deadline);
    QTRY_COMPARE_WITH_TIMEOUT(button("btnPlay")->accessibleName(), QString("Play"),
                              AlbumFixture::Deadline);
    click("btnPlay");
    QTRY_COMPARE_WITH_TIMEOUT(button("btnPlay")->accessibleName(), QString("Pause"),
                              AlbumFixture::Deadline);
}

void tst_Playback::theEndShowsPlayAndTheSameButtonStartsAgain()
{
    add("a.mp4", m_shortClip);
    m_page->setList(&m_list);
    QSignalSpy finished(m_page->player()->mediaObject(), &Phonon::MediaObject::finished);
    show();
    for (int round = 1; round <= 2; ++round) {
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), round, AlbumFixture::Deadline);
        QTRY_VERIFY_WITH_TIMEOUT(!m_page->player()->isPlaying(), AlbumFixture::Deadline);
        QCOMPARE(button("btnPlay")->accessibleName(), QString("Play"));
        if (round == 1)
            click("btnPlay");
    }
}

void tst_Playback::leavingStops()
{
    add("a.mp4", m_clip);
    show();
    waitPlaying();
    m_page->stop(true);
    QTRY_VERIFY_WITH_TIMEOUT(!m_page->player()->isPlaying(), AlbumFixture::Deadline);
    QCOMPARE(button("btnPlay")->accessibleName(), QString("Play"));
}

void tst_Playback::deletingWhatPlaysGoesToTheNext()
{
    add("a.mp4", m_clip);
    add("b.mp4", m_clip);
    show();
    waitPlaying();
    click("btnDelete");
    QVERIFY(!QFile::exists(m_album->path("A", "a.mp4")));
    QTRY_COMPARE_WITH_TIMEOUT(status(), QString("b.mp4  320x180(100%)"), AlbumFixture::Deadline);
    waitPlaying();
    click("btnDelete");
    QTRY_VERIFY_WITH_TIMEOUT(!m_page->player()->isPlaying(), AlbumFixture::Deadline);
    QCOMPARE(m_album->host.pages, QStringList({"back to videos"}));
}

void tst_Playback::aRecordingThatIsCutOffDoesNotHoldThePage()
{
    add("a.mp4", m_clip.left(m_clip.size() / 2));
    add("b.mp4", m_clip);
    show();
    QTRY_VERIFY_WITH_TIMEOUT(status().contains("cannot be played"), AlbumFixture::Deadline);
    click("btnNext");
    QTRY_COMPARE_WITH_TIMEOUT(status(), QString("b.mp4  320x180(100%)"), AlbumFixture::Deadline);
}

QTEST_MAIN(tst_Playback)
#include "tst_playback.moc"
