#include "camera/camera.h"
#include "tests/support/registry.h"
#include "ui/manager/camera_mgr_form.h"
#include "ui/manager/camera_mgr_frame.h"
#include "ui/manager/camera_mgr_item_form.h"
#include "ui/manager/still_fetcher.h"

#include <QDir>
#include <QFile>
#include <QFrame>
#include <QSignalSpy>
#include <QtTest>

using zelvaro::StillFetcher;

namespace {

constexpr int deadline = 20000; // milliseconds
constexpr char call[] = "RtspPlayer_FetchStill";

} // namespace

class TestStillFetcher : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aMissingPictureIsFetched();
    void aCameraThatIsNotConnectedIsNotAsked();
    void aFreshPictureIsKept();
    void anOldPictureIsFetched();
    void twoCamerasAtATime();
    void nothingWhileThePageIsHidden();
    void aCameraThatGivesNoneIsLeftInPeaceForAWhile();
    void aCameraThatIsRemovedMeanwhileIsForgotten();
    void thePageShowsWhatWasFetched();

private:
    static CCamera *camera(int index) { return Registry::cameras().at(index); }
    static std::shared_ptr<fake_cammgr::Player> player(int index)
    {
        return fake_cammgr::player(camera(index)->hostname().toStdString());
    }
    static QList<CCamera *> all()
    {
        QList<CCamera *> cameras;
        for (int i = 0; i < Registry::cameras().count(); ++i)
            cameras.append(camera(i));
        return cameras;
    }
    void start(int count)
    {
        Registry::addMany(count);
        Registry::start();
    }
    static void connectCamera(int index)
    {
        player(index)->probeOk();
        QTRY_COMPARE_WITH_TIMEOUT(camera(index)->get_state(), int(CAMERA_STATE_CONNECTED),
                                  deadline);
    }
    static int asked()
    {
        int count = 0;
        for (const fake_cammgr::Call &made : fake_cammgr::calls())
            count += made.name == call;
        return count;
    }
    static void writePicture(int index, int age)
    {
        const QString path = camera(index)->thumb_path();
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-age),
                                 QFileDevice::FileModificationTime));
    }
    static void answer(int index, int result = 0)
    {
        QSignalSpy fetched(camera(index), &CCamera::signalStillFetched);
        player(index)->send(CAMMGR_MSG_STILL, result);
        QTRY_COMPARE_WITH_TIMEOUT(fetched.size(), 1, deadline);
    }

    std::unique_ptr<Registry> m_registry;
};

void TestStillFetcher::init()
{
    m_registry = std::make_unique<Registry>();
}

void TestStillFetcher::cleanup()
{
    m_registry.reset();
}

void TestStillFetcher::aMissingPictureIsFetched()
{
    start(1);
    connectCamera(0);
    StillFetcher fetcher;
    fetcher.setCameras(all());
    fetcher.setShown(true);
    QCOMPARE(asked(), 1);
    QCOMPARE(QString::fromStdString(player(0)->last(call)->texts.front()), camera(0)->thumb_path());
    QVERIFY(QFileInfo::exists(QFileInfo(camera(0)->thumb_path()).path()));
    QSignalSpy changed(camera(0), &CCamera::signalThumbChanged);
    answer(0);
    QCOMPARE(changed.size(), 1);
}

void TestStillFetcher::aCameraThatIsNotConnectedIsNotAsked()
{
    start(1);
    StillFetcher fetcher;
    fetcher.setCameras(all());
    fetcher.setShown(true);
    QCOMPARE(asked(), 0);
    connectCamera(0);
    QCOMPARE(asked(), 1);
}

void TestStillFetcher::aFreshPictureIsKept()
{
    start(1);
    connectCamera(0);
    writePicture(0, 500);
    StillFetcher fetcher;
    fetcher.setCameras(all());
    fetcher.setShown(true);
    QCOMPARE(asked(), 0);
}

void TestStillFetcher::anOldPictureIsFetched()
{
    start(2);
    connectCamera(0);
    connectCamera(1);
    writePicture(0, 700);
    writePicture(1, -7000); // the clock was wrong when it was taken
    StillFetcher fetcher;
    fetcher.setCameras(all());
    fetcher.setShown(true);
    QCOMPARE(asked(), 2);
}

void TestStillFetcher::twoCamerasAtATime()
{
    start(5);
    for (int i = 0; i < 5; ++i)
        connectCamera(i);
    StillFetcher fetcher;
    fetcher.setCameras(all());
    fetcher.setShown(true);
    QCOMPARE(asked(), 2);
    writePicture(1, 0);
    answer(1);
    QCOMPARE(asked(), 3);
    QCOMPARE(player(2)->count(call), 1);
    // What scrolls out of sight is under way nevertheless.
    fetcher.setCameras({camera(3), camera(4)});
    QCOMPARE(asked(), 3);
    writePicture(0, 0);
    answer(0);
    QCOMPARE(asked(), 4);
    QCOMPARE(player(3)->count(call), 1);
}

void TestStillFetcher::nothingWhileThePageIsHidden()
{
    start(3);
    for (int i = 0; i < 3; ++i)
        connectCamera(i);
    StillFetcher fetcher;
    fetcher.setCameras(all());
    QCOMPARE(asked(), 0);
    fetcher.setShown(true);
    QCOMPARE(asked(), 2);
    fetcher.setShown(false);
    answer(0);
    answer(1);
    QCOMPARE(asked(), 2);
}

void TestStillFetcher::aCameraThatGivesNoneIsLeftInPeaceForAWhile()
{
    start(1);
    connectCamera(0);
    StillFetcher fetcher;
    fetcher.setCameras(all());
    fetcher.setShown(true);
    QSignalSpy changed(camera(0), &CCamera::signalThumbChanged);
    answer(0, -1);
    QCOMPARE(changed.size(), 0);
    fetcher.setShown(false);
    fetcher.setShown(true);
    QCOMPARE(asked(), 1);
}

void TestStillFetcher::aCameraThatIsRemovedMeanwhileIsForgotten()
{
    start(3);
    for (int i = 0; i < 3; ++i)
        connectCamera(i);
    StillFetcher fetcher;
    fetcher.setCameras(all());
    fetcher.setShown(true);
    QCOMPARE(asked(), 2);
    camera(0)->stop();
    camera(0)->wait_stopped();
    Registry::cameras().remove(camera(0));
    fetcher.setCameras(all());
    QCOMPARE(asked(), 3);
}

void TestStillFetcher::thePageShowsWhatWasFetched()
{
    fake_cammgr::Script script;
    script.still = 0;
    fake_cammgr::setDefaults(script);
    start(1);
    CCameraMgrForm page;
    page.fill();
    page.resize(600, 400);
    connectCamera(0);
    QCOMPARE(asked(), 0);
    page.show();
    const auto *tile = page.findChild<CCameraMgrItemForm *>();
    const auto *picture = tile->findChild<QFrame *>(QStringLiteral("frameCameraItem"));
    QTRY_VERIFY_WITH_TIMEOUT(picture->styleSheet().contains(QStringLiteral("thumb.jpeg")),
                             deadline);
    QVERIFY(QFileInfo::exists(camera(0)->thumb_path()));
}

QTEST_MAIN(TestStillFetcher)
#include "tst_still_fetcher.moc"
