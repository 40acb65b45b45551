#include "app/main_form.h"
#include "tests/e2e/program_run.h"
#include "tests/e2e/screen.h"
#include "tests/support/modal_script.h"
#include "ui/album/click_video_player.h"
#include "ui/album/fitted_frame.h"
#include "ui/album/photo_frame.h"
#include "ui/album/photo_mgr_form.h"
#include "ui/album/photo_mgr_item_form.h"
#include "ui/album/play_photo_form.h"
#include "ui/album/play_video_form.h"
#include "ui/common/message_box.h"
#include "ui/live/play_camera_form.h"
#include "ui/manager/camera_mgr_item_form.h"

#include <QFrame>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QSignalSpy>
#include <QSlider>
#include <QStackedWidget>
#include <QTest>
#include <QToolButton>

#include <phonon/mediaobject.h>
#include <phonon/seekslider.h>

#include <X11/keysym.h>

using zelvaro::test::CamsimProcess;

namespace {

constexpr int patience = 60'000;     // milliseconds for anything that needs a camera or a decoder
constexpr qint64 clipLength = 6'000; // milliseconds that each clip lasts at least

/// Share of points that two pictures of any size show alike, 0 to 1. JPEG, scaling and the tile's
/// border change some.
double likeness(const QImage &a, const QImage &b)
{
    constexpr QSize raster(32, 18);
    const QImage left = a.scaled(raster, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage right = b.scaled(raster, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    int alike = 0;
    for (int y = 0; y < raster.height(); ++y) {
        for (int x = 0; x < raster.width(); ++x) {
            const QColor p = left.pixelColor(x, y), q = right.pixelColor(x, y);
            alike +=
                qAbs(p.red() - q.red()) + qAbs(p.green() - q.green()) + qAbs(p.blue() - q.blue()) <
                90;
        }
    }
    return double(alike) / (raster.width() * raster.height());
}

bool shows(const QWidget *widget, const QString &pictureFile)
{
    return likeness(pictureOnScreen(*widget), QImage(pictureFile)) > 0.9;
}

} // namespace

/// The album from the first photo to the last deletion: what the live view has stored is found,
/// opened, stepped through, played and deleted with mouse and keys, and the folder holds after each
/// step what it should.
class TestAlbum : public QObject
{
    Q_OBJECT

private slots:
    void whatTheLiveViewStoresIsFoundShownAndDeleted();

private:
    void steps();
    void fillTheAlbum();
    void takePhotos(int count);
    void recordClips(int count);
    QString recordClip();
    void findThePhotos();
    void stepThroughThePhotos();
    void deletePhotoInTheViewer();
    void deletePhotosInTheGrid();
    void playAndPause();
    void seek();
    void stepAndZoomTheRecordings();
    void deleteWhatPlays();
    void leaveByTheToolBar();
    void deleteRecordingInTheGrid();
    void quit();

    int page() const
    {
        return m_window->findChild<QStackedWidget *>("stackedWidget")->currentIndex();
    }
    template <typename Page>
    Page *pageNamed(const char *name) const
    {
        return m_window->findChild<Page *>(QLatin1String(name));
    }
    QWidget *live() const { return m_window->findChild<CPlayCameraForm *>(); }
    CPhotoMgrForm *photos() const { return pageNamed<CPhotoMgrForm>("pagePhotoMgr"); }
    CPhotoMgrForm *videos() const { return pageNamed<CPhotoMgrForm>("pageVideoMgr"); }
    CPlayPhotoForm *viewer() const { return pageNamed<CPlayPhotoForm>("pagePlayPhoto"); }
    CPlayVideoForm *player() const { return pageNamed<CPlayVideoForm>("pagePlayVideo"); }

    /// The pointer's way through the server is shorter than that of what Qt has just moved.
    RealInput &settledInput() const
    {
        QGuiApplication::sync();
        return *m_input;
    }
    void click(const QWidget *parent, const char *button)
    {
        settledInput().click(parent->findChild<QToolButton *>(QLatin1String(button)));
    }
    static QString status(const QWidget *page)
    {
        return page->findChild<QLabel *>("labelStatus")->text();
    }
    /// The tiles that can be seen, in the order of their files.
    static QList<CPhotoMgrItemForm *> tiles(const QWidget *album)
    {
        QList<CPhotoMgrItemForm *> seen;
        for (auto *tile : album->findChildren<CPhotoMgrItemForm *>())
            if (tile->isVisible())
                seen << tile;
        std::sort(seen.begin(), seen.end(),
                  [](auto *a, auto *b) { return a->fileName() < b->fileName(); });
        return seen;
    }
    static QStringList names(const QWidget *album)
    {
        QStringList result;
        for (const CPhotoMgrItemForm *tile : tiles(album))
            result << tile->fileName();
        return result;
    }

    QString path(const QString &name) const
    {
        return m_run->albumFolder() + "/" + QString::fromStdString(m_uid) + "/" + name;
    }
    /// What the folder holds, without the picture of the camera's own tile.
    QStringList folder() const
    {
        QStringList files = m_run->album(m_uid);
        files.removeAll("thumb.jpeg");
        return files;
    }
    QStringList filesLike(const QString &pattern) const
    {
        return folder().filter(QRegularExpression(QRegularExpression::anchoredPattern(pattern)));
    }
    QStringList photoFiles() const { return filesLike("\\d{8}_\\d{6}\\.jpg"); }
    QStringList clipFiles() const { return filesLike("\\d{8}_\\d{6}\\.mp4"); }

    void answerQuestion(const QString &text, const char *button, const QWidget *deleteButton);
    Phonon::MediaObject *media() const { return player()->player()->mediaObject(); }
    QWidget *videoSurface() const { return player()->findChild<zelvaro::FittedFrame *>(); }
    bool playButtonSays(const char *text) const
    {
        return player()->findChild<QToolButton *>("btnPlay")->accessibleName() ==
               QLatin1String(text);
    }
    /// At its true size; how large it is shown depends on the window.
    bool plays(const QString &clip) const
    {
        const QRegularExpression line("^" + QRegularExpression::escape(clip) +
                                      "  640x360\\(\\d+%\\)$");
        return line.match(status(player())).hasMatch() && playButtonSays("Pause");
    }

    ProgramRun *m_run = nullptr;
    RealInput *m_input = nullptr;
    CMainForm *m_window = nullptr;
    std::string m_uid;
    QStringList m_photos; // file names, as the test expects them in the folder
    QStringList m_clips;
};

void TestAlbum::whatTheLiveViewStoresIsFoundShownAndDeleted()
{
    RealInput input;
    if (!input.isValid())
        QSKIP("The display has no XTEST extension.");
    CamsimProcess cameras({"--count", "2", "--user", "admin", "--password", "secret", "--name",
                           "Front door", "--name", "Garage", "--main-size", "640x360",
                           "--main-bitrate", "800000"});
    ProgramRun run;
    run.registerCameras(cameras);
    m_run = &run;
    m_input = &input;
    m_uid = cameras.camera(0).uid;
    bool finished = false;
    const int code = run.run([&](CMainForm &window) {
        m_window = &window;
        steps();
        finished = !QTest::currentTestFailed();
    });
    QVERIFY(finished);
    QCOMPARE(code, 0);
}

void TestAlbum::steps()
{
    QVERIFY(QTest::qWaitForWindowExposed(m_window));
    using Step = void (TestAlbum::*)();
    for (const Step step :
         {&TestAlbum::fillTheAlbum, &TestAlbum::findThePhotos, &TestAlbum::stepThroughThePhotos,
          &TestAlbum::deletePhotoInTheViewer, &TestAlbum::deletePhotosInTheGrid,
          &TestAlbum::playAndPause, &TestAlbum::seek, &TestAlbum::stepAndZoomTheRecordings,
          &TestAlbum::deleteWhatPlays, &TestAlbum::leaveByTheToolBar,
          &TestAlbum::deleteRecordingInTheGrid, &TestAlbum::quit}) {
        (this->*step)();
        if (QTest::currentTestFailed())
            return;
    }
}

// --- the live view -------------------------------------------------------------------------------

void TestAlbum::fillTheAlbum()
{
    const auto tile = [this] { return m_window->findChildren<CCameraMgrItemForm *>().value(0); };
    QTRY_VERIFY_WITH_TIMEOUT(
        tile() && tile()->findChild<QWidget *>("labelStatusImage")->toolTip() == "Connected",
        patience);
    settledInput().doubleClick(tile()->findChild<QWidget *>("frameCameraItem"));
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PagePlayCamera), patience);
    PictureWatch picture(*live()->findChild<QWidget *>("frameVideoFrame"));
    QTRY_VERIFY_WITH_TIMEOUT(status(live()).startsWith("640x360") && picture.hasMoved(), patience);
    takePhotos(3);
    if (!QTest::currentTestFailed())
        recordClips(2);
    click(live(), "btnBack");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PageCameraMgr), patience);
}

void TestAlbum::takePhotos(int count)
{
    for (int taken = 1; taken <= count; ++taken) {
        // A photo is named by its second.
        const QDateTime second = QDateTime::currentDateTime();
        QTRY_VERIFY_WITH_TIMEOUT(second.secsTo(QDateTime::currentDateTime()) >= 1, patience);
        click(live(), "btnSnapshot");
        QTRY_COMPARE_WITH_TIMEOUT(photoFiles().size(), taken, patience);
    }
    m_photos = photoFiles();
}

void TestAlbum::recordClips(int count)
{
    while (m_clips.size() < count) {
        const QString clip = recordClip();
        if (QTest::currentTestFailed())
            return;
        if (!clip.isEmpty())
            m_clips << clip;
    }
    QStringList expected = m_photos + m_clips;
    for (const QString &clip : qAsConst(m_clips))
        expected << clip + ".jpeg";
    expected.sort();
    QTRY_COMPARE_WITH_TIMEOUT(folder().join(' '), expected.join(' '), patience);
}

/// @return the name of the clip; empty when the stream broke on a machine that is too busy, and the
/// recording went on in another clip
QString TestAlbum::recordClip()
{
    auto *mark = live()->findChild<QLabel *>("labelRecording");
    const QStringList before = folder();
    const auto made = [&] {
        QStringList files = folder();
        // The temporary file of a clip that is being finished disappears by itself.
        files.erase(std::remove_if(files.begin(), files.end(),
                                   [](const QString &file) { return file.endsWith(".part"); }),
                    files.end());
        for (const QString &file : before)
            files.removeOne(file);
        return files;
    };
    click(live(), "btnRecord");
    const auto begun = [&] { return mark->styleSheet().contains("recordbtn_down"); };
    if (!QTest::qWaitFor([&] { return begun() && made().size() >= 2; }, patience))
        QTest::qFail("the recording does not begin", __FILE__, __LINE__);
    QElapsedTimer clock;
    clock.start();
    (void)QTest::qWaitFor([&] { return clock.hasExpired(clipLength); }, patience);
    click(live(), "btnRecord");
    if (!QTest::qWaitFor([&] { return !begun(); }, patience))
        QTest::qFail("the recording does not end", __FILE__, __LINE__);
    const QStringList files = made();
    if (files.size() == 2)
        return files.first();
    qInfo("recorded %s; once more", qPrintable(files.join(' ')));
    for (const QString &file : files)
        QFile::remove(path(file));
    return {};
}

// --- photos --------------------------------------------------------------------------------------

void TestAlbum::findThePhotos()
{
    click(m_window, "btnPhotoMgr");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PagePhotoMgr), patience);
    QTRY_COMPARE_WITH_TIMEOUT(names(photos()), m_photos, patience);

    auto *list = photos()->findChild<QListView *>("listCameraList");
    const auto clickCamera = [this, list](int row) {
        settledInput().click(list->viewport(),
                             list->visualRect(list->model()->index(row, 0)).center());
    };
    clickCamera(1);
    QTRY_VERIFY_WITH_TIMEOUT(names(photos()).isEmpty(), patience);
    QCOMPARE(list->currentIndex().data().toString(), QStringLiteral("Garage"));
    clickCamera(0);
    QTRY_COMPARE_WITH_TIMEOUT(names(photos()), m_photos, patience);
    for (const CPhotoMgrItemForm *tile : tiles(photos()))
        QTRY_VERIFY_WITH_TIMEOUT(
            shows(tile->findChild<QFrame *>("framePhotoItem"), tile->fullPath()), patience);
}

void TestAlbum::stepThroughThePhotos()
{
    settledInput().doubleClick(tiles(photos()).first()->findChild<QFrame *>("framePhotoItem"));
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PagePlayPhoto), patience);
    const auto *picture = viewer()->findChild<CPhotoFrame *>("framePhoto");
    const auto isShown = [&](int index) {
        return status(viewer()).startsWith(m_photos.at(index) + "  640x360(") &&
               shows(picture, path(m_photos.at(index)));
    };
    QTRY_VERIFY_WITH_TIMEOUT(isShown(0), patience);
    click(viewer(), "btnNext");
    QTRY_VERIFY_WITH_TIMEOUT(isShown(1), patience);
    settledInput().key(XK_Right);
    QTRY_VERIFY_WITH_TIMEOUT(isShown(2), patience);
    settledInput().key(XK_Right); // there is no way round
    click(viewer(), "btnPrev");
    QTRY_VERIFY_WITH_TIMEOUT(isShown(1), patience);

    click(viewer(), "btnZoomOut");
    QTRY_COMPARE_WITH_TIMEOUT(status(viewer()), m_photos.at(1) + "  640x360(75%)", patience);
    settledInput().doubleClick(picture);
    QTRY_VERIFY_WITH_TIMEOUT(picture->isFullScreen() && picture->isActiveWindow(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(picture->size(), picture->screen()->size(), patience);
    settledInput().key(XK_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(!picture->isWindow() && isShown(1), patience);
    QCOMPARE(photoFiles(), m_photos);
}

void TestAlbum::deletePhotoInTheViewer()
{
    click(viewer(), "btnDelete");
    m_photos.removeAt(1);
    QTRY_COMPARE_WITH_TIMEOUT(photoFiles(), m_photos, patience);
    QTRY_VERIFY_WITH_TIMEOUT(status(viewer()).startsWith(m_photos.at(1)), patience);
    click(viewer(), "btnBack");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PagePhotoMgr), patience);
    QTRY_COMPARE_WITH_TIMEOUT(names(photos()), m_photos, patience);
}

void TestAlbum::answerQuestion(const QString &text, const char *button, const QWidget *deleteButton)
{
    ModalScript modals([&](CMessageBox *box) {
        QCOMPARE(box->findChild<QLabel *>("labelMessage")->text(), text);
        settledInput().click(box->findChild<QPushButton *>(QLatin1String(button)));
    });
    settledInput().click(deleteButton);
    QTRY_VERIFY_WITH_TIMEOUT(modals.done() && !QApplication::activeModalWidget(), patience);
}

void TestAlbum::deletePhotosInTheGrid()
{
    const auto deleteButton = [this] {
        return tiles(photos()).first()->findChild<QToolButton *>("btnDelete");
    };
    answerQuestion("Delete photo?", "btnCancel", deleteButton());
    QCOMPARE(photoFiles(), m_photos);
    QCOMPARE(names(photos()), m_photos);
    while (!m_photos.isEmpty() && !QTest::currentTestFailed()) {
        answerQuestion("Delete photo?", "btnOk", deleteButton());
        m_photos.removeFirst();
        QTRY_COMPARE_WITH_TIMEOUT(photoFiles(), m_photos, patience);
        QTRY_COMPARE_WITH_TIMEOUT(names(photos()), m_photos, patience);
    }
    const QStringList left = {m_clips.at(0), m_clips.at(0) + ".jpeg", m_clips.at(1),
                              m_clips.at(1) + ".jpeg"};
    // A temporary file, such as that of the camera's picture, disappears by itself.
    QTRY_COMPARE_WITH_TIMEOUT(folder().join(' '), left.join(' '), patience);
}

// --- recordings ----------------------------------------------------------------------------------

void TestAlbum::playAndPause()
{
    click(m_window, "btnVideoMgr");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PageVideoMgr), patience);
    QTRY_COMPARE_WITH_TIMEOUT(names(videos()), m_clips, patience);
    for (const CPhotoMgrItemForm *tile : tiles(videos()))
        QTRY_VERIFY_WITH_TIMEOUT(
            shows(tile->findChild<QFrame *>("framePhotoItem"), tile->fullPath() + ".jpeg"),
            patience);

    click(tiles(videos()).first(), "btnPlay");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PagePlayVideo), patience);
    if (!player()->player()->hasBackEnd())
        QSKIP("No back end of Phonon is installed.");
    QTRY_VERIFY_WITH_TIMEOUT(plays(m_clips.at(0)), patience);
    PictureWatch picture(*videoSurface());
    QTRY_VERIFY_WITH_TIMEOUT(picture.hasMoved(), patience);
    // The player learns the length on its own thread, which may come after the first picture.
    QTRY_VERIFY2_WITH_TIMEOUT(media()->totalTime() > clipLength / 2,
                              qPrintable(QString("%1 ms").arg(media()->totalTime())), patience);

    click(player(), "btnPlay");
    QTRY_VERIFY_WITH_TIMEOUT(playButtonSays("Play"), patience);
    QCOMPARE(media()->state(), Phonon::PausedState);
}

void TestAlbum::seek()
{
    auto *slider = player()->findChild<Phonon::SeekSlider *>()->findChild<QSlider *>();
    QVERIFY(slider && slider->isVisible());
    const auto handleAt = [slider](double share) {
        constexpr int margin = 8; // half of the handle
        return QPoint(margin + int(share * (slider->width() - 2 * margin)), slider->height() / 2);
    };
    // Where the handle is: it follows the time now and then only.
    const double before =
        double(slider->value() - slider->minimum()) / (slider->maximum() - slider->minimum());
    const QImage picture = pictureOnScreen(*videoSurface());
    const double target = before < 0.5 ? 0.8 : 0.1;
    settledInput().drag(slider, handleAt(before), handleAt(target));
    QTRY_VERIFY2_WITH_TIMEOUT(
        qAbs(double(media()->currentTime()) / media()->totalTime() - target) < 0.15,
        qPrintable(QString("%1 of %2 ms").arg(media()->currentTime()).arg(media()->totalTime())),
        patience);
    QTRY_VERIFY_WITH_TIMEOUT(pictureOnScreen(*videoSurface()) != picture, patience);
    click(player(), "btnPlay");
    QTRY_VERIFY_WITH_TIMEOUT(playButtonSays("Pause"), patience);
    // At the end the same button starts again.
    QTRY_VERIFY_WITH_TIMEOUT(playButtonSays("Play"), patience);
    QTRY_COMPARE_WITH_TIMEOUT(media()->state(), Phonon::StoppedState, patience);
    click(player(), "btnPlay");
    QTRY_VERIFY_WITH_TIMEOUT(playButtonSays("Pause"), patience);
}

void TestAlbum::stepAndZoomTheRecordings()
{
    click(player(), "btnPrev");
    click(player(), "btnNext");
    QTRY_VERIFY_WITH_TIMEOUT(plays(m_clips.at(1)), patience);
    click(player(), "btnZoomOut");
    QTRY_COMPARE_WITH_TIMEOUT(status(player()), m_clips.at(1) + "  640x360(75%)", patience);
    settledInput().doubleClick(videoSurface());
    QTRY_VERIFY_WITH_TIMEOUT(videoSurface()->isFullScreen() && videoSurface()->isActiveWindow(),
                             patience);
    settledInput().key(XK_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(!videoSurface()->isWindow(), patience);
    click(player(), "btnPrev");
    QTRY_VERIFY_WITH_TIMEOUT(plays(m_clips.at(0)), patience);
    QCOMPARE(clipFiles(), m_clips);
}

void TestAlbum::deleteWhatPlays()
{
    const QString deleted = m_clips.takeFirst();
    click(player(), "btnDelete");
    // The still stays: only the album's grid deletes it.
    QTRY_COMPARE_WITH_TIMEOUT(
        folder(), QStringList({deleted + ".jpeg", m_clips.first(), m_clips.first() + ".jpeg"}),
        patience);
    QTRY_VERIFY_WITH_TIMEOUT(plays(m_clips.first()), patience);
    click(player(), "btnBack");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PageVideoMgr), patience);
    QCOMPARE(media()->state(), Phonon::StoppedState);
    QTRY_COMPARE_WITH_TIMEOUT(names(videos()), m_clips, patience);
}

void TestAlbum::leaveByTheToolBar()
{
    settledInput().doubleClick(tiles(videos()).first()->findChild<QFrame *>("framePhotoItem"));
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PagePlayVideo), patience);
    QTRY_COMPARE_WITH_TIMEOUT(media()->state(), Phonon::PlayingState, patience);
    click(m_window, "btnVideoMgr");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PageVideoMgr), patience);
    QTRY_COMPARE_WITH_TIMEOUT(media()->state(), Phonon::StoppedState, patience);
    QTRY_COMPARE_WITH_TIMEOUT(names(videos()), m_clips, patience);
}

void TestAlbum::deleteRecordingInTheGrid()
{
    const auto deleteButton = [this] {
        return tiles(videos()).first()->findChild<QToolButton *>("btnDelete");
    };
    const QStringList before = folder();
    answerQuestion("Delete video?", "btnCancel", deleteButton());
    QCOMPARE(folder(), before);
    answerQuestion("Delete video?", "btnOk", deleteButton());
    QTRY_COMPARE_WITH_TIMEOUT(folder().size(), 1, patience); // the still that was left behind
    QTRY_VERIFY_WITH_TIMEOUT(names(videos()).isEmpty(), patience);
    QVERIFY(clipFiles().isEmpty());
}

void TestAlbum::quit()
{
    auto *close = m_window->findChild<QToolButton *>("btnClose");
    QSignalSpy clicked(close, &QToolButton::clicked);
    settledInput().click(close);
    QTRY_COMPARE_WITH_TIMEOUT(clicked.count(), 1, patience);
}

QTEST_APPLESS_MAIN(TestAlbum)
#include "tst_album.moc"
