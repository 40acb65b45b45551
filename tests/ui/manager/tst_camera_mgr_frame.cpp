#include "tests/ui/manager/frame_test.h"
#include "ui/manager/camera_mgr_form.h"

#include <QDir>
#include <QImage>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

/// Which tiles there are, where they are and which are shown.
class CameraMgrFrameTest : public FrameTest
{
    Q_OBJECT

private slots:
    void oneTileForEachSessionInOrder();
    void withNoCamerasTheAddTileIsFirst();
    void columnsFollowTheWidth();
    void stretchPacksTheTilesTopLeft();
    void aPageNarrowerThanOneTileKeepsItsArrangement();
    void resizingThePageLaysOutAgain();
    void onlyTilesThatAreSeenHoldPictures();
    void theTabKeyReachesEveryTile();
    void scrollingAwayFromTheFocusDoesNotScrollBack();
    void playingAsksTheMainWindow();
};

void CameraMgrFrameTest::oneTileForEachSessionInOrder()
{
    build(3);
    QCOMPARE(tileUids(), QStringList({"UID-000", "UID-001", "UID-002"}));
    for (CCameraMgrItemForm *tile : m_frame->tiles())
        QVERIFY(cellOf(tile) != Cell());
}

void CameraMgrFrameTest::withNoCamerasTheAddTileIsFirst()
{
    build(0);
    m_frame->layoutTiles(1000);
    QVERIFY(m_frame->tiles().isEmpty());
    QCOMPARE(cellOf(addTile()), (Cell{0, 0}));
}

void CameraMgrFrameTest::columnsFollowTheWidth()
{
    build(7);
    const int tileWidth = addTile()->width();
    for (int width = tileWidth; width <= 2000; ++width) {
        m_frame->layoutTiles(width);
        const int columns = std::max(1, (width + 1) / (tileWidth + 21));
        for (int i = 0; i < 7; ++i)
            QCOMPARE(cellOf(tile(i)), (Cell{i / columns, i % columns}));
        QCOMPARE(cellOf(addTile()), (Cell{7 / columns, 7 % columns}));
    }
}

void CameraMgrFrameTest::stretchPacksTheTilesTopLeft()
{
    build(5);
    auto *grid = qobject_cast<QGridLayout *>(m_frame->layout());
    const int step = addTile()->width() + 21;
    m_frame->layoutTiles(3 * step);
    QCOMPARE(grid->columnStretch(3), 10);
    QCOMPARE(grid->rowStretch(2), 10); // the add tile is in row 1
    m_frame->layoutTiles(6 * step);
    QCOMPARE(grid->columnStretch(3), 0);
    QCOMPARE(grid->columnStretch(6), 10);
    QCOMPARE(grid->rowStretch(1), 10); // the add tile is in row 0
    QCOMPARE(grid->rowStretch(2), 0);
    QCOMPARE(grid->itemAtPosition(0, 0)->alignment(), Qt::AlignLeft | Qt::AlignTop);
}

void CameraMgrFrameTest::aPageNarrowerThanOneTileKeepsItsArrangement()
{
    build(5);
    const int tileWidth = addTile()->width();
    m_frame->layoutTiles(3 * (tileWidth + 21));
    m_frame->layoutTiles(tileWidth - 1);
    QCOMPARE(cellOf(tile(4)), (Cell{1, 1}));
    m_frame->layoutTiles(0);
    m_frame->layoutTiles(-5);
    QCOMPARE(cellOf(tile(4)), (Cell{1, 1}));
    m_frame->layoutTiles(tileWidth);
    QCOMPARE(cellOf(tile(4)), (Cell{4, 0}));
}

void CameraMgrFrameTest::resizingThePageLaysOutAgain()
{
    m_registry->addMany(6);
    m_registry->start();
    CCameraMgrForm page;
    page.fill();
    page.resize(1000, 600);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    auto *frame = page.findChild<CCameraMgrFrame *>("frameCameraMgr");
    auto *scroll = page.findChild<QScrollArea *>("scrollCameraMgr");
    QVERIFY(frame && scroll);
    for (const int width : {1000, 700, 480, 300, 1300}) {
        page.resize(width, 600);
        QTRY_VERIFY_WITH_TIMEOUT(page.width() == width, deadline);
        const int columns = std::max(1, (scroll->viewport()->width() + 1) / (199 + 21));
        auto *grid = qobject_cast<QGridLayout *>(frame->layout());
        int row = 0;
        int column = 0;
        int rows = 0;
        int spanned = 0;
        grid->getItemPosition(grid->indexOf(frame->tiles().at(5)), &row, &column, &rows, &spanned);
        QCOMPARE(row, 5 / columns);
        QCOMPARE(column, 5 % columns);
    }
}

void CameraMgrFrameTest::onlyTilesThatAreSeenHoldPictures()
{
    m_registry->addMany(100);
    m_registry->start();
    for (int i = 0; i < 100; ++i) {
        const QString file = m_registry->cameras().at(i)->thumb_path();
        QVERIFY(QDir().mkpath(QFileInfo(file).path()));
        QImage image(16, 12, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(file, "JPEG"));
    }
    CCameraMgrForm page;
    page.fill();
    page.resize(1000, 600);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    auto *frame = page.findChild<CCameraMgrFrame *>("frameCameraMgr");
    const auto holds = [&](int i) {
        return frame->tiles()
            .at(i)
            ->findChild<QFrame *>("frameCameraItem")
            ->styleSheet()
            .contains("thumb.jpeg");
    };
    QTRY_VERIFY_WITH_TIMEOUT(!holds(99), deadline);
    QVERIFY(holds(0));
    auto *bar = page.findChild<QScrollArea *>("scrollCameraMgr")->verticalScrollBar();
    QTRY_VERIFY_WITH_TIMEOUT(bar->maximum() > 0, deadline);
    bar->setValue(bar->maximum());
    QVERIFY(holds(99));
    QVERIFY(!holds(0));
}

void CameraMgrFrameTest::theTabKeyReachesEveryTile()
{
    m_registry->addMany(30);
    m_registry->start();
    CCameraMgrForm page;
    page.fill();
    page.resize(500, 400);
    page.show();
    QVERIFY(QTest::qWaitForWindowActive(&page));
    auto *frame = page.findChild<CCameraMgrFrame *>("frameCameraMgr");
    frame->tiles().at(0)->setFocus();
    for (CCameraMgrItemForm *tile : frame->tiles()) {
        QCOMPARE(page.focusWidget(), tile);
        QVERIFY(!tile->visibleRegion().isEmpty());
        QTest::keyClick(page.focusWidget(), Qt::Key_Tab);
        QCOMPARE(page.focusWidget()->objectName(), QString("btnMenu"));
        QTest::keyClick(page.focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(page.focusWidget()->objectName(), QString("btnAdd"));
}

void CameraMgrFrameTest::scrollingAwayFromTheFocusDoesNotScrollBack()
{
    m_registry->addMany(60);
    m_registry->start();
    CCameraMgrForm page;
    page.fill();
    page.resize(500, 400);
    page.show();
    QVERIFY(QTest::qWaitForWindowActive(&page));
    auto *frame = page.findChild<CCameraMgrFrame *>("frameCameraMgr");
    auto *bar = page.findChild<QScrollArea *>("scrollCameraMgr")->verticalScrollBar();
    frame->tiles().at(0)->setFocus();
    const int end = bar->maximum();
    QVERIFY(end > 1000);
    bar->setValue(end);
    QCOMPARE(bar->maximum(), end);
    QCOMPARE(bar->value(), end);
    QCOMPARE(page.focusWidget(), frame->tiles().at(0));
    QVERIFY(frame->tiles().at(1)->isHidden());
    QVERIFY(frame->tiles().at(59)->isVisible());
}

void CameraMgrFrameTest::playingAsksTheMainWindow()
{
    build(2);
    QTest::mouseDClick(tile(1), Qt::LeftButton);
    QCOMPARE(m_host->pages, QStringList({"play"}));
    QCOMPARE(m_host->played, Registry::cameras().at(1));
}

QTEST_MAIN(CameraMgrFrameTest)
#include "tst_camera_mgr_frame.moc"
