#include "tests/ui/album/album_fixture.h"
#include "ui/album/click_video_player.h"
#include "ui/album/play_video_form.h"

#include <QLabel>
#include <QProcess>
#include <QToolButton>

#include <phonon/mediaobject.h>

/// Plays a real recording on the display.
class TestPlayback : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aRecordingPlaysAtItsTrueSize();
    void pauseAndResume();
    void theEndShowsPlayAndTheSameButtonStartsAgain();
    void aPauseAtTheEndIsAStop();
    void theTimeRunsToTheEnd();
    void leavingStops();
    void deletingWhatPlaysGoesToTheNext();
    void aRecordingThatIsCutOffDoesNotHoldThePage();
    void recordingsThatPlayAsFarAsTheyCan_data();
    void recordingsThatPlayAsFarAsTheyCan();
    void aRecordingOfSoundOnlyDoesNotHoldThePage();
    void aRecordingThatIsGoneDoesNotHoldThePage();

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
        QTRY_VERIFY_WITH_TIMEOUT(m_page->player()->isPlaying(), AlbumFixture::deadline);
    }
    QString status() { return m_page->findChild<QLabel *>("labelStatus")->text(); }
    QToolButton *button(const char *name) { return m_page->findChild<QToolButton *>(name); }
    void click(const char *name) { QTest::mouseClick(button(name), Qt::LeftButton); }

    /// Runs a pipeline that ends in a file; empty when it fails.
    QByteArray record(const QString &pipeline);
    /// At 25 frames a second, a key frame every ten, with the index first.
    QByteArray makeClip(int frames);
    QByteArray withoutFirstFrames(const QByteArray &clip);

    QTemporaryDir m_folder;
    QByteArray m_clip; // longer than a busy machine looks away
    QByteArray m_shortClip;
    std::unique_ptr<AlbumFixture> m_album;
    std::unique_ptr<QWidget> m_owner;
    std::unique_ptr<CPlayVideoForm> m_page;
    PageHost::TileList m_list;
};

void TestPlayback::initTestCase()
{
    if (!ClickVideoPlayer().hasBackEnd())
        QSKIP("no back end of Phonon is installed");
    m_clip = makeClip(500);
    m_shortClip = makeClip(50);
    if (m_clip.isEmpty() || m_shortClip.isEmpty())
        QSKIP("a recording cannot be made: gst-launch-1.0 with x264enc is missing");
}

QByteArray TestPlayback::record(const QString &pipeline)
{
    const QString clip = m_folder.filePath("clip.mp4");
    QProcess maker;
    maker.start("gst-launch-1.0", QStringList("-q") + pipeline.split(' ') +
                                      QStringList{"!", "filesink", "location=" + clip});
    QFile file(clip);
    if (!maker.waitForFinished(60000) || maker.exitCode() != 0 || !file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

QByteArray TestPlayback::makeClip(int frames)
{
    return record(QString("videotestsrc num-buffers=%1 ! "
                          "video/x-raw,width=320,height=180,framerate=25/1 ! "
                          "x264enc speed-preset=ultrafast key-int-max=10 ! h264parse ! "
                          "mp4mux faststart=true")
                      .arg(frames));
}

QByteArray TestPlayback::withoutFirstFrames(const QByteArray &clip)
{
    const QString from = m_folder.filePath("whole.mp4");
    const QString to = m_folder.filePath("rest.mp4");
    QFile whole(from);
    if (!whole.open(QIODevice::WriteOnly) || whole.write(clip) != clip.size())
        return {};
    whole.close();
    QFile file(to);
    if (QProcess::execute("ffmpeg", {"-v", "error", "-y", "-i", from, "-c", "copy", "-bsf:v",
                                     "noise=drop='lt(n,5)'", to}) != 0 ||
        !file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

void TestPlayback::init()
{
    m_album = std::make_unique<AlbumFixture>();
    m_owner = std::make_unique<QWidget>();
    m_page = std::make_unique<CPlayVideoForm>();
    m_page->resize(900, 700);
}

void TestPlayback::cleanup()
{
    m_page.reset();
    m_list.clear();
    m_owner.reset();
    m_album.reset();
}

void TestPlayback::show()
{
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
    m_page->setList(&m_list);
    m_page->showVideo(m_list.first());
}

void TestPlayback::aRecordingPlaysAtItsTrueSize()
{
    add("a.mp4", m_clip);
    show();
    QCOMPARE(status(), QString("a.mp4  640x480(100%)"));
    QTRY_COMPARE_WITH_TIMEOUT(status(), QString("a.mp4  320x180(100%)"), AlbumFixture::deadline);
}

void TestPlayback::pauseAndResume()
{
    add("a.mp4", m_clip);
    show();
    waitPlaying();
    click("btnPlay");
    QTRY_VERIFY_WITH_TIMEOUT(!m_page->player()->isPlaying(), AlbumFixture::deadline);
    QTRY_COMPARE_WITH_TIMEOUT(button("btnPlay")->accessibleName(), QString("Play"),
                              AlbumFixture::deadline);
    click("btnPlay");
    QTRY_COMPARE_WITH_TIMEOUT(button("btnPlay")->accessibleName(), QString("Pause"),
                              AlbumFixture::deadline);
}

void TestPlayback::theEndShowsPlayAndTheSameButtonStartsAgain()
{
    add("a.mp4", m_shortClip);
    m_page->setList(&m_list);
    QSignalSpy finished(m_page->player()->mediaObject(), &Phonon::MediaObject::finished);
    show();
    for (int round = 1; round <= 2; ++round) {
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), round, AlbumFixture::deadline);
        QTRY_VERIFY_WITH_TIMEOUT(!m_page->player()->isPlaying(), AlbumFixture::deadline);
        QCOMPARE(button("btnPlay")->accessibleName(), QString("Play"));
        if (round == 1)
            click("btnPlay");
    }
}

void TestPlayback::aPauseAtTheEndIsAStop()
{
    add("a.mp4", m_shortClip);
    show();
    waitPlaying();
    ClickVideoPlayer *player = m_page->player();
    click("btnPlay");
    QTRY_VERIFY_WITH_TIMEOUT(player->isPaused(), AlbumFixture::deadline);
    m_page->slotStateChanged(Phonon::PausedState, Phonon::PlayingState);
    QVERIFY(player->isPaused());
    player->seek(player->totalTime());
    QTRY_VERIFY_WITH_TIMEOUT(player->isAtEnd(), AlbumFixture::deadline);
    QVERIFY(player->isPaused());
    m_page->slotStateChanged(Phonon::PausedState, Phonon::PlayingState);
    QTRY_COMPARE_WITH_TIMEOUT(player->mediaObject()->state(), Phonon::StoppedState,
                              AlbumFixture::deadline);
}

void TestPlayback::theTimeRunsToTheEnd()
{
    add("a.mp4", m_shortClip);
    show();
    const auto *time = m_page->findChild<QLabel *>("labelTime");
    QTRY_COMPARE_WITH_TIMEOUT(time->text(), QString("0:01 / 0:02"), AlbumFixture::deadline);
}

void TestPlayback::leavingStops()
{
    add("a.mp4", m_clip);
    show();
    waitPlaying();
    m_page->stop(true);
    QTRY_VERIFY_WITH_TIMEOUT(!m_page->player()->isPlaying(), AlbumFixture::deadline);
    QCOMPARE(button("btnPlay")->accessibleName(), QString("Play"));
}

void TestPlayback::deletingWhatPlaysGoesToTheNext()
{
    add("a.mp4", m_clip);
    add("b.mp4", m_clip);
    show();
    waitPlaying();
    click("btnDelete");
    QVERIFY(!QFile::exists(m_album->path("A", "a.mp4")));
    QTRY_COMPARE_WITH_TIMEOUT(status(), QString("b.mp4  320x180(100%)"), AlbumFixture::deadline);
    waitPlaying();
    click("btnDelete");
    QTRY_VERIFY_WITH_TIMEOUT(!m_page->player()->isPlaying(), AlbumFixture::deadline);
    QCOMPARE(m_album->host.pages, QStringList({"back to videos"}));
}

// Cut off before its index, as by a recorder that writes it at the end.
void TestPlayback::aRecordingThatIsCutOffDoesNotHoldThePage()
{
    const int index = m_clip.indexOf("moov");
    QVERIFY(index > 0);
    add("a.mp4", m_clip.left(index + 100));
    add("b.mp4", m_clip);
    show();
    QTRY_VERIFY_WITH_TIMEOUT(status().contains("cannot be played"), AlbumFixture::deadline);
    click("btnNext");
    QTRY_COMPARE_WITH_TIMEOUT(status(), QString("b.mp4  320x180(100%)"), AlbumFixture::deadline);
}

void TestPlayback::recordingsThatPlayAsFarAsTheyCan_data()
{
    QTest::addColumn<QByteArray>("clip");
    QTest::newRow("without audio") << m_shortClip;
    QTest::newRow("with audio") << record(
        "videotestsrc num-buffers=50 ! video/x-raw,width=320,height=180,framerate=25/1 ! "
        "x264enc speed-preset=ultrafast ! h264parse ! mp4mux name=mux "
        "audiotestsrc num-buffers=80 ! audioconvert ! avenc_aac ! mux. mux.");
    QTest::newRow("without a key frame at the start") << withoutFirstFrames(m_shortClip);
    QTest::newRow("cut off by a crash") << m_shortClip.left(m_shortClip.size() * 2 / 3);
    QByteArray damaged = m_shortClip;
    damaged.replace(damaged.size() / 3, 2000, QByteArray(2000, '\x5a'));
    QTest::newRow("damaged in the middle") << damaged;
}

void TestPlayback::recordingsThatPlayAsFarAsTheyCan()
{
    QFETCH(QByteArray, clip);
    if (clip.isEmpty())
        QSKIP("this recording cannot be made: an encoder or ffmpeg is missing");
    add("a.mp4", clip);
    add("b.mp4", m_clip);
    m_page->setList(&m_list);
    QSignalSpy states(m_page->player()->mediaObject(), &Phonon::MediaObject::stateChanged);
    show();
    const auto reached = [&](Phonon::State state) {
        return std::any_of(states.cbegin(), states.cend(), [state](const QVariantList &change) {
            return change.first().value<Phonon::State>() == state;
        });
    };
    QTRY_VERIFY_WITH_TIMEOUT(reached(Phonon::PlayingState), AlbumFixture::deadline);
    QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("a.mp4  320x180(100%)"), AlbumFixture::deadline);
    QTRY_VERIFY_WITH_TIMEOUT(!m_page->player()->isPlaying(), AlbumFixture::deadline);
    QTRY_COMPARE_WITH_TIMEOUT(button("btnPlay")->accessibleName(), QString("Play"),
                              AlbumFixture::deadline);
    click("btnNext");
    QTRY_COMPARE_WITH_TIMEOUT(status(), QString("b.mp4  320x180(100%)"), AlbumFixture::deadline);
    waitPlaying();
}

void TestPlayback::aRecordingOfSoundOnlyDoesNotHoldThePage()
{
    const QByteArray sound =
        record("audiotestsrc num-buffers=60 ! audioconvert ! avenc_aac ! mp4mux");
    if (sound.isEmpty())
        QSKIP("this recording cannot be made: an encoder is missing");
    add("a.mp4", sound);
    add("b.mp4", m_clip);
    m_page->setList(&m_list);
    QSignalSpy states(m_page->player()->mediaObject(), &Phonon::MediaObject::stateChanged);
    show();
    QTRY_VERIFY_WITH_TIMEOUT(!states.isEmpty(), AlbumFixture::deadline);
    QVERIFY(status().startsWith("a.mp4  640x480("));
    click("btnNext");
    QTRY_COMPARE_WITH_TIMEOUT(status(), QString("b.mp4  320x180(100%)"), AlbumFixture::deadline);
    waitPlaying();
}

void TestPlayback::aRecordingThatIsGoneDoesNotHoldThePage()
{
    add("a.mp4", m_clip);
    add("b.mp4", m_clip);
    QVERIFY(QFile::remove(m_album->path("A", "a.mp4")));
    show();
    QTRY_VERIFY_WITH_TIMEOUT(status().contains("cannot be played"), AlbumFixture::deadline);
    click("btnNext");
    QTRY_COMPARE_WITH_TIMEOUT(status(), QString("b.mp4  320x180(100%)"), AlbumFixture::deadline);
    waitPlaying();
}

QTEST_MAIN(TestPlayback)
#include "tst_playback.moc"
