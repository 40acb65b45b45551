#include "ui/live/multi_live_frame.h"

#include "resources/resources.h"
#include "tests/ui/live/live_fixture.h"
#include "ui/live/multi_live_item_form.h"
#include "ui/live/video_frame.h"

#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace {
constexpr int deadline = LiveFixture::deadline;
}

class TestMultiLiveFrame : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init();
    void cleanup();

    void loadShowsTheChosenCamerasInListOrder();
    void everyTileStartsSilent();
    void clearStopsAndForgetsAll();
    void loadAfterClearStartsAnew();
    void gridShapesInAnAreaOf1000x700_data();
    void gridShapesInAnAreaOf1000x700();
    void withoutCamerasTheGridIsEmpty();
    void theGridFollowsTheAreaBothWays();
    void stretchesKeepTheTilesTogether();
    void onlyTheSelectedTileIsHeard();
    void selectingTheSelectedTileAgainMakesNoGap();
    void muteAndVolumeGoToTheSelectedTile();
    void aPressOnATileAndAReleaseOnTheFrameKeepItSelected();
    void aClickOnEmptySpaceDeselects();
    void aPressOnATileThatIsReleasedElsewhereDoesNotHoldTheNextClick();
    void aDoubleClickOnTheFrameDeselects();
    void aDoubleClickOnTheSelectedPictureKeepsIt();
    void selectionDoesNotSurviveAReload();
    void aCameraThatDoesNotConnectLeavesTheOthersAlone();
    void destructionStopsTheStreams();
    void destructionInFullScreen();
    void manyTiles();

private:
    void show(const QStringList &hostnames);
    QPoint cellOf(int tile) const; // (column, row)
    int volumeOf(int index) const { return m_live->lastNumber("RtspPlayer_SetVolume", index); }
    CMultiLiveItemForm *tile(int index) const { return m_frame->tiles().at(index); }
    bool looksSelected(int index) const;

    std::unique_ptr<LiveFixture> m_live;
    std::unique_ptr<QWidget> m_area;
    CMultiLiveFrame *m_frame = nullptr;
};

void TestMultiLiveFrame::init()
{
    m_live = std::make_unique<LiveFixture>();
    m_area = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(m_area.get());
    layout->setContentsMargins(0, 0, 0, 0);
    m_frame = new CMultiLiveFrame;
    m_frame->setClock(m_live->clock());
    layout->addWidget(m_frame);
    m_area->resize(1000, 700);
    m_area->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_area.get()));
}

void TestMultiLiveFrame::cleanup()
{
    m_area.reset();
    m_live.reset();
}

void TestMultiLiveFrame::show(const QStringList &hostnames)
{
    m_live->addCameras(hostnames);
    m_frame->load();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

QPoint TestMultiLiveFrame::cellOf(int index) const
{
    auto *layout = qobject_cast<QGridLayout *>(m_frame->layout());
    int row = -1, column = -1, rowSpan = 0, columnSpan = 0;
    layout->getItemPosition(layout->indexOf(tile(index)), &row, &column, &rowSpan, &columnSpan);
    return {column, row};
}

bool TestMultiLiveFrame::looksSelected(int index) const
{
    return tile(index)
        ->findChild<QWidget *>(QStringLiteral("frameCameraItemBk"))
        ->styleSheet()
        .contains(QStringLiteral("multiliveitemframe_hover.png"));
}

void TestMultiLiveFrame::loadShowsTheChosenCamerasInListOrder()
{
    m_live->addCameras({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    CameraSettings::instance().at(1)->multiLive = false;
    m_frame->load();
    QCOMPARE(m_frame->tiles().size(), 2);
    QCOMPARE(tile(0)->camera(), m_live->camera(0));
    QCOMPARE(tile(1)->camera(), m_live->camera(2));
    QCOMPARE(m_frame->shownCameras(), (QList<CCamera *>{m_live->camera(0), m_live->camera(2)}));
    QCOMPARE(tile(1)->findChild<QLabel *>(QStringLiteral("labelStatus"))->text(),
             QStringLiteral("Camera C is connecting..."));
    QCOMPARE(m_live->count("RtspPlayer_SetupP2PliveStream", 0), 1);
    QCOMPARE(m_live->count("RtspPlayer_SetupP2PliveStream", 1), 0);
    QCOMPARE(m_live->count("RtspPlayer_SetupP2PliveStream", 2), 1);
}

void TestMultiLiveFrame::everyTileStartsSilent()
{
    m_frame->setSound(false, 150);
    show({QStringLiteral("A"), QStringLiteral("B")});
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(volumeOf(i), 0);
        m_live->connectCamera(i);
        m_live->reports(2, i);
        QCOMPARE(volumeOf(i), 0);
    }
}

void TestMultiLiveFrame::clearStopsAndForgetsAll()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    QPointer<CMultiLiveItemForm> first = tile(0);
    emit first->selectCamera(first);
    m_frame->clear();
    QVERIFY(!first);
    QVERIFY(m_frame->tiles().isEmpty());
    QVERIFY(!m_frame->selectedTile());
    QVERIFY(!m_frame->layout());
    QVERIFY(m_frame->shownCameras().isEmpty());
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(m_live->count("RtspPlayer_Stop", i), 1);
        QCOMPARE(m_live->count("RtspPlayer_Stop_Connecting", i), 0);
    }
    m_frame->clear();
    QCOMPARE(m_live->count("RtspPlayer_Stop", 0), 1);
}

void TestMultiLiveFrame::loadAfterClearStartsAnew()
{
    show({QStringLiteral("A")});
    m_frame->clear();
    m_frame->load();
    QCOMPARE(m_frame->tiles().size(), 1);
    QCOMPARE(m_live->count("RtspPlayer_SetupP2PliveStream"), 2);
}

void TestMultiLiveFrame::gridShapesInAnAreaOf1000x700_data()
{
    QTest::addColumn<int>("tiles");
    QTest::addColumn<QPoint>("rowsColumns");
    QTest::addColumn<QSize>("tileSize");
    QTest::newRow("1") << 1 << QPoint(1, 1) << QSize(913, 670);
    QTest::newRow("3") << 3 << QPoint(2, 2) << QSize(446, 320);
    QTest::newRow("4") << 4 << QPoint(2, 2) << QSize(446, 320);
    QTest::newRow("9") << 9 << QPoint(3, 3) << QSize(290, 203);
}

void TestMultiLiveFrame::gridShapesInAnAreaOf1000x700()
{
    QFETCH(int, tiles);
    QFETCH(QPoint, rowsColumns);
    QFETCH(QSize, tileSize);
    QStringList hostnames;
    for (int i = 0; i < tiles; ++i)
        hostnames << QString::number(i);
    show(hostnames);
    QCOMPARE(QPoint(m_frame->shape().rows, m_frame->shape().columns), rowsColumns);
    for (int i = 0; i < tiles; ++i) {
        QCOMPARE(cellOf(i), QPoint(i % rowsColumns.y() + 1, i / rowsColumns.y()));
        QCOMPARE(tile(i)->minimumSize(), tileSize);
        QCOMPARE(tile(i)->maximumSize(), tileSize);
        QTRY_COMPARE_WITH_TIMEOUT(tile(i)->size(), tileSize, deadline);
        QTRY_VERIFY_WITH_TIMEOUT(tile(i)->isVisible(), deadline);
        QVERIFY(m_frame->rect().contains(tile(i)->geometry()));
        for (int other = 0; other < i; ++other)
            QVERIFY(!tile(i)->geometry().intersects(tile(other)->geometry()));
    }
}

void TestMultiLiveFrame::withoutCamerasTheGridIsEmpty()
{
    m_live->addCameras({QStringLiteral("A")}, false);
    m_frame->load();
    QVERIFY(m_frame->tiles().isEmpty());
    QCOMPARE(m_frame->shape().rows, 1);
    QCOMPARE(m_frame->shape().columns, 1);
    QCOMPARE(QSize(m_frame->shape().width, m_frame->shape().height), QSize(1000, 700));
    QTest::mouseClick(m_frame, Qt::LeftButton);
    QTest::mouseDClick(m_frame, Qt::LeftButton);
    m_frame->setSound(true, 10);
}

void TestMultiLiveFrame::theGridFollowsTheAreaBothWays()
{
    show({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D")});
    m_area->resize(1600, 1000);
    QTRY_COMPARE_WITH_TIMEOUT(tile(0)->size(), QSize(666 - 20, 500 - 30), deadline);
    QCOMPARE(m_frame->size(), QSize(1600, 1000));
    m_area->resize(500, 400);
    QTRY_COMPARE_WITH_TIMEOUT(m_frame->size(), QSize(500, 400), deadline);
    QTRY_COMPARE_WITH_TIMEOUT(tile(0)->size(), QSize(250 - 20, 187 - 30), deadline);
    m_area->resize(300, 900);
    QTRY_COMPARE_WITH_TIMEOUT(tile(0)->size(), QSize(300 - 20, 225 - 30), deadline);
    QCOMPARE(m_frame->shape().columns, 1);
    QCOMPARE(m_frame->layout()->count(), 4);
}

void TestMultiLiveFrame::stretchesKeepTheTilesTogether()
{
    show({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    const auto *layout = qobject_cast<QGridLayout *>(m_frame->layout());
    QCOMPARE(layout->spacing(), 10);
    QCOMPARE(layout->rowStretch(0), 1);
    QCOMPARE(layout->rowStretch(1), 0);
    QCOMPARE(layout->rowStretch(3), 1);
    QCOMPARE(layout->columnStretch(0), 1);
    QCOMPARE(layout->columnStretch(1), 0);
    QCOMPARE(layout->columnStretch(3), 1);
    QTRY_VERIFY_WITH_TIMEOUT(tile(1)->isVisible(), deadline);
    QCOMPARE(tile(1)->x() - tile(0)->geometry().right() - 1, 10);
    QCOMPARE(tile(0)->x() - 0, m_frame->width() - 1 - tile(1)->geometry().right());
}

void TestMultiLiveFrame::onlyTheSelectedTileIsHeard()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    m_frame->setSound(false, 80);
    QTest::mouseClick(tile(0), Qt::LeftButton, {}, QPoint(3, 3));
    QCOMPARE(m_frame->selectedTile(), tile(0));
    QVERIFY(looksSelected(0));
    QCOMPARE(volumeOf(0), 80);
    QCOMPARE(volumeOf(1), 0);
    QTest::mouseClick(tile(1), Qt::LeftButton, {}, QPoint(3, 3));
    QCOMPARE(m_frame->selectedTile(), tile(1));
    QVERIFY(!looksSelected(0));
    QVERIFY(looksSelected(1));
    QCOMPARE(volumeOf(0), 0);
    QCOMPARE(volumeOf(1), 80);
}

void TestMultiLiveFrame::selectingTheSelectedTileAgainMakesNoGap()
{
    show({QStringLiteral("A")});
    m_frame->setSound(false, 80);
    QTest::mouseClick(tile(0), Qt::LeftButton, {}, QPoint(3, 3));
    m_live->player()->forgetCalls();
    QTest::mouseClick(tile(0), Qt::LeftButton, {}, QPoint(3, 3));
    QVERIFY(looksSelected(0));
    for (const fake_cammgr::Call &call : m_live->player()->calls())
        if (call.name == "RtspPlayer_SetVolume")
            QCOMPARE(call.numbers.front(), std::intptr_t(80));
}

void TestMultiLiveFrame::muteAndVolumeGoToTheSelectedTile()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    m_frame->setSound(false, 80);
    QTest::mouseClick(tile(1), Qt::LeftButton, {}, QPoint(3, 3));
    m_frame->setSound(true, 80);
    QCOMPARE(volumeOf(1), 0);
    m_frame->setSound(true, 120);
    QCOMPARE(volumeOf(1), 0);
    m_frame->setSound(false, 120);
    QCOMPARE(volumeOf(1), 120);
    QCOMPARE(volumeOf(0), 0);
}

void TestMultiLiveFrame::aPressOnATileAndAReleaseOnTheFrameKeepItSelected()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    QTest::mousePress(tile(0), Qt::LeftButton, {}, QPoint(3, 3));
    QTest::mouseRelease(m_frame, Qt::LeftButton, {}, QPoint(1, 1));
    QCOMPARE(m_frame->selectedTile(), tile(0));
    QVERIFY(looksSelected(0));
}

void TestMultiLiveFrame::aClickOnEmptySpaceDeselects()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    m_frame->setSound(false, 80);
    QTest::mouseClick(tile(0), Qt::LeftButton, {}, QPoint(3, 3));
    QTest::mouseClick(m_frame, Qt::LeftButton, {}, QPoint(1, m_frame->height() - 2));
    QVERIFY(!m_frame->selectedTile());
    QVERIFY(!looksSelected(0));
    QCOMPARE(volumeOf(0), 0);
    m_frame->setSound(false, 90);
    QCOMPARE(volumeOf(0), 0);
    QCOMPARE(volumeOf(1), 0);
}

void TestMultiLiveFrame::aPressOnATileThatIsReleasedElsewhereDoesNotHoldTheNextClick()
{
    show({QStringLiteral("A")});
    QTest::mousePress(tile(0), Qt::LeftButton, {}, QPoint(3, 3));
    QTest::mouseClick(m_frame, Qt::LeftButton, {}, QPoint(1, m_frame->height() - 2));
    QVERIFY(!m_frame->selectedTile());
}

void TestMultiLiveFrame::aDoubleClickOnTheFrameDeselects()
{
    show({QStringLiteral("A")});
    m_frame->setSound(false, 80);
    QTest::mouseClick(tile(0), Qt::LeftButton, {}, QPoint(3, 3));
    QMouseEvent doubleClick(QEvent::MouseButtonDblClick, QPointF(1, 1), Qt::LeftButton,
                            Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_frame, &doubleClick);
    QVERIFY(!m_frame->selectedTile());
    QCOMPARE(volumeOf(0), 0);
}

void TestMultiLiveFrame::aDoubleClickOnTheSelectedPictureKeepsIt()
{
    show({QStringLiteral("A")});
    QWidget *picture = tile(0)->findChild<CVideoFrame *>()->renderSurface();
    QTest::mouseClick(picture, Qt::LeftButton);
    QTest::mouseDClick(picture, Qt::LeftButton);
    QCOMPARE(m_frame->selectedTile(), tile(0));
    QVERIFY(tile(0)->findChild<CVideoFrame *>()->isFullScreen());
    QTest::keyClick(tile(0)->findChild<CVideoFrame *>(), Qt::Key_Escape);
    QTest::mouseDClick(tile(0), Qt::LeftButton, {}, QPoint(3, 3));
    QCOMPARE(m_frame->selectedTile(), tile(0));
}

void TestMultiLiveFrame::selectionDoesNotSurviveAReload()
{
    show({QStringLiteral("A")});
    m_frame->setSound(false, 80);
    QTest::mouseClick(tile(0), Qt::LeftButton, {}, QPoint(3, 3));
    m_frame->clear();
    m_frame->load();
    m_frame->setSound(false, 80);
    QVERIFY(!m_frame->selectedTile());
    QVERIFY(!looksSelected(0));
    QCOMPARE(volumeOf(0), 0);
}

void TestMultiLiveFrame::aCameraThatDoesNotConnectLeavesTheOthersAlone()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    m_live->player(0)->probeFailed();
    m_live->connectCamera(1);
    m_live->reports(2, 1);
    m_live->report(0);
    const auto status = [this](int index) {
        return tile(index)->findChild<QLabel *>(QStringLiteral("labelStatus"))->text();
    };
    QCOMPARE(status(0), QStringLiteral("Camera A is connecting..."));
    QCOMPARE(status(1), QStringLiteral("640x360  15FPS 512.00Kbps"));
}

void TestMultiLiveFrame::destructionStopsTheStreams()
{
    show({QStringLiteral("A")});
    m_live->connectCamera();
    m_live->report();
    QVERIFY(m_live->camera()->is_playing());
    m_area.reset();
    QVERIFY(!m_live->camera()->is_playing());
}

void TestMultiLiveFrame::destructionInFullScreen()
{
    show({QStringLiteral("A")});
    m_live->connectCamera();
    m_live->report();
    QPointer<QWidget> surface = tile(0)->findChild<CVideoFrame *>();
    QTest::mouseDClick(surface, Qt::LeftButton);
    QVERIFY(surface->isFullScreen());
    m_area.reset();
    QVERIFY(!surface);
    QVERIFY(!m_live->camera()->is_playing());
}

void TestMultiLiveFrame::manyTiles()
{
    QStringList hostnames;
    for (int i = 0; i < 36; ++i)
        hostnames << QString::number(i);
    show(hostnames);
    QCOMPARE(m_frame->tiles().size(), 36);
    for (int i = 0; i < 36; ++i) {
        m_live->connectCamera(i);
        m_live->report(i);
        QVERIFY(m_live->camera(i)->is_playing());
    }
    m_frame->clear();
    for (int i = 0; i < 36; ++i)
        QVERIFY(!m_live->camera(i)->is_playing());
}

QTEST_MAIN(TestMultiLiveFrame)
#include "tst_multi_live_frame.moc"
