#include "resources/resources.h"
#include "tests/support/modal_script.h"
#include "tests/support/tool_tip_text.h"
#include "tests/ui/common/shown_tip.h"
#include "tests/ui/live/live_fixture.h"
#include "ui/common/volume_slider_form.h"
#include "ui/live/multi_live_form.h"
#include "ui/live/multi_live_frame.h"
#include "ui/live/multi_live_item_form.h"
#include "ui/live/play_camera_form.h"
#include "ui/live/select_camera_form.h"
#include "ui/live/video_frame.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QToolButton>

namespace {

QStringList menuOf(QWidget *widget)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(3, 3),
                            widget->mapToGlobal(QPoint(3, 3)));
    QCoreApplication::sendEvent(widget, &event);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QStringList texts;
    for (const QAction *action : menu ? menu->actions() : QList<QAction *>())
        if (!action->isSeparator())
            texts << action->text();
    if (menu)
        menu->close();
    QApplication::setActiveWindow(widget->window()); // the platform of the tests activates popups
    return texts;
}

} // namespace

/// Keys and context menus of the live pages.
class TestLiveKeys : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init() { m_live = std::make_unique<LiveFixture>(); }
    void cleanup();

    void theKeysOfTheSingleView();
    void theKeysGoOnInFullScreen();
    void theMenuOfTheSingleView();
    void theTipsOfTheButtonsNameTheKeys();
    void theKeysOfTheGrid();
    void fullScreenIsForTheTileOneIsAt();
    void arrowsStepFromTileToTile();
    void theMenuOfATile();
    void theStatusTellsWhyThereIsNoPicture();
    void theStatusTellsTheFigures();
    void theMenuCopiesTheDetails();

private:
    void playOne();
    void playGrid(int cameras);
    void show(QWidget &page);
    CVideoFrame *picture() const
    {
        return m_single->findChild<CVideoFrame *>(QStringLiteral("frameVideoFrame"));
    }
    CMultiLiveFrame *frame() const
    {
        return m_grid->findChild<CMultiLiveFrame *>(QStringLiteral("frameMultiLive"));
    }
    QToolButton *button(QWidget *page, const char *name) const
    {
        return page->findChild<QToolButton *>(QLatin1String(name));
    }
    int calls(const char *name) const { return m_live->count(name); }

    std::unique_ptr<LiveFixture> m_live;
    std::unique_ptr<CPlayCameraForm> m_single;
    std::unique_ptr<CMultiLiveForm> m_grid;
};

void TestLiveKeys::cleanup()
{
    if (m_single)
        m_single->StopPlay();
    if (m_grid)
        m_grid->StopPlay();
    m_single.reset();
    m_grid.reset();
    m_live.reset();
}

void TestLiveKeys::show(QWidget &page)
{
    page.resize(800, 600);
    page.show();
    page.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&page));
}

void TestLiveKeys::playOne()
{
    m_live->addCameras({QStringLiteral("H")});
    m_single = std::make_unique<CPlayCameraForm>(nullptr, m_live->clock());
    show(*m_single);
    m_single->SetCamera(m_live->camera());
    m_single->StartPlay();
    m_live->connectCamera();
    m_live->reports(2);
}

void TestLiveKeys::playGrid(int cameras)
{
    QStringList names;
    for (int i = 0; i < cameras; ++i)
        names << QString(QLatin1Char(static_cast<char>('A' + i)));
    m_live->addCameras(names);
    m_grid = std::make_unique<CMultiLiveForm>(nullptr, m_live->clock());
    show(*m_grid);
    m_grid->StartPlay();
    for (int i = 0; i < cameras; ++i) {
        m_live->connectCamera(i);
        m_live->reports(2, i);
    }
}

void TestLiveKeys::theKeysOfTheSingleView()
{
    playOne();
    QTest::keyClick(m_single.get(), Qt::Key_S);
    QCOMPARE(m_live->lastText("RtspPlayer_Snapshot"),
             m_live->folder() + QStringLiteral("/20240305_070809.jpg"));
    QCOMPARE(m_live->desktop.sounds.size(), 1);
    QTest::keyClick(m_single.get(), Qt::Key_R);
    QCOMPARE(calls("RtspPlayer_BeginWriting"), 1);
    QTest::keyClick(m_single.get(), Qt::Key_R);
    QCOMPARE(calls("RtspPlayer_EndWriting"), 1);
    QTest::keyClick(m_single.get(), Qt::Key_T);
    QCOMPARE(calls("AudioUpload_Play"), 1);
    QTest::keyClick(m_single.get(), Qt::Key_T);
    QCOMPARE(calls("AudioUpload_Stop"), 1);
    QTest::keyClick(m_single.get(), Qt::Key_M);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 0);
    QTest::keyClick(m_single.get(), Qt::Key_M);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 100);
    const int width = picture()->width();
    QTest::keyClick(m_single.get(), Qt::Key_Minus);
    QVERIFY(picture()->width() < width);
    QTest::keyClick(m_single.get(), Qt::Key_Plus);
    QCOMPARE(picture()->width(), width);
    QTest::keyClick(m_single.get(), Qt::Key_F);
    QVERIFY(picture()->isWindow());
}

void TestLiveKeys::theKeysGoOnInFullScreen()
{
    playOne();
    QTest::keyClick(m_single.get(), Qt::Key_F);
    QVERIFY(QTest::qWaitForWindowActive(picture()));
    QTest::keyClick(picture(), Qt::Key_R);
    QCOMPARE(calls("RtspPlayer_BeginWriting"), 1);
    // The key is the button's: it enters only.
    QTest::keyClick(picture(), Qt::Key_F);
    QVERIFY(picture()->isWindow());
    QTest::keyClick(picture(), Qt::Key_Escape);
    QVERIFY(!picture()->isWindow());
}

void TestLiveKeys::theMenuOfTheSingleView()
{
    playOne();
    const QStringList onPage = menuOf(picture());
    for (const char *text :
         {"Snapshot", "Record", "Zoom in", "Zoom out", "Full screen", "Mute", "Talk", "Back"})
        QVERIFY2(onPage.contains(QLatin1String(text)), text);
    QCOMPARE(menuOf(m_single->findChild<QWidget *>(QStringLiteral("frameVideoArea"))), onPage);
    QTest::keyClick(m_single.get(), Qt::Key_F);
    QVERIFY(QTest::qWaitForWindowActive(picture()));
    QVERIFY(!menuOf(picture()).contains(QStringLiteral("Full screen")));
}

void TestLiveKeys::theTipsOfTheButtonsNameTheKeys()
{
    playOne();
    QCOMPARE(ShownTip(button(m_single.get(), "btnRecord")).text(), QStringLiteral("Record (R)"));
    QCOMPARE(ShownTip(button(m_single.get(), "btnMute")).text(), QStringLiteral("Mute (M)"));
}

void TestLiveKeys::theKeysOfTheGrid()
{
    playGrid(2);
    QTest::keyClick(m_grid.get(), Qt::Key_S);
    QCOMPARE(m_live->count("RtspPlayer_Snapshot", 0), 1);
    QCOMPARE(m_live->count("RtspPlayer_Snapshot", 1), 1);
    QTest::keyClick(m_grid.get(), Qt::Key_M);
    QVERIFY(m_grid->findChild<CVolumeSliderForm *>()->isMuted());
    bool asked = false;
    ModalScript cancel([&asked](CSelectCameraForm *dialog) {
        asked = true;
        dialog->reject();
    });
    QTest::keyClick(m_grid.get(), Qt::Key_C);
    QVERIFY(asked);
}

void TestLiveKeys::fullScreenIsForTheTileOneIsAt()
{
    playGrid(3);
    CMultiLiveItemForm *tile = frame()->tiles().at(1);
    tile->setFocus();
    QTest::keyClick(m_grid.get(), Qt::Key_F);
    QVERIFY(tile->picture()->isWindow());
    QVERIFY(!frame()->tiles().at(0)->picture()->isWindow());
    QVERIFY(QTest::qWaitForWindowActive(tile->picture()));
    QTest::keyClick(tile->picture(), Qt::Key_Escape);
    QVERIFY(!tile->picture()->isWindow());
}

void TestLiveKeys::arrowsStepFromTileToTile()
{
    playGrid(4); // two rows of two
    frame()->tiles().at(0)->setFocus();
    const auto step = [this](Qt::Key key) {
        QTest::keyClick(QApplication::focusWidget(), key);
        for (int i = 0; i < frame()->tiles().size(); ++i)
            if (frame()->tiles().at(i)->hasFocus())
                return i;
        return -1;
    };
    QCOMPARE(step(Qt::Key_Right), 1);
    QCOMPARE(step(Qt::Key_Right), 1);
    QCOMPARE(step(Qt::Key_Down), 3);
    QCOMPARE(step(Qt::Key_Left), 2);
    QCOMPARE(step(Qt::Key_Up), 0);
    QCOMPARE(step(Qt::Key_Up), 0);
}

void TestLiveKeys::theMenuOfATile()
{
    playGrid(2);
    CMultiLiveItemForm *tile = frame()->tiles().at(1);
    const QPoint middle = tile->picture()->rect().center();
    QTest::mouseClick(tile->picture(), Qt::RightButton, {}, middle);
    QCOMPARE(frame()->selectedTile(), tile);
    const QStringList texts = menuOf(tile->picture());
    for (const char *text :
         {"Hear this camera", "Full screen", "Select cameras", "Snapshot", "Record", "Mute"})
        QVERIFY2(texts.contains(QLatin1String(text)), text);
}

void TestLiveKeys::theStatusTellsWhyThereIsNoPicture()
{
    m_live->addCameras({QStringLiteral("H")});
    m_live->change([](auto &script) {
        script.playPlays = false;
        script.reason = CAMMGR_REASON_CODEC_UNKNOWN;
        script.reasonDetail = "VP8";
    });
    m_single = std::make_unique<CPlayCameraForm>(nullptr, m_live->clock());
    show(*m_single);
    m_single->SetCamera(m_live->camera());
    m_single->StartPlay();
    m_live->report();
    QCOMPARE(
        shownByToolTip(m_single->findChild<QWidget *>(QStringLiteral("labelStatus"))->toolTip()),
        QStringLiteral("Camera H is connecting...\nThe camera sends VP8, which cannot be shown. "
                       "Set it to H.264, H.265 or MJPEG."));
}

void TestLiveKeys::theStatusTellsTheFigures()
{
    playOne();
    RtspPlayerFigures figures = {};
    figures.width = 640;
    figures.height = 360;
    figures.jitter = 1500;
    figures.delay = 4200;
    figures.frames_received = 100;
    figures.frames_drawn = 90;
    figures.frames_dropped = 10;
    figures.packets_received = 500;
    figures.packets_lost = 7;
    qstrcpy(figures.codec, "H264");
    qstrcpy(figures.sound_codec, "PCMU");
    qstrcpy(figures.transport, "TCP");
    // Without its end, as a library might leave it.
    std::fill(std::begin(figures.decoder), std::end(figures.decoder), 'd');
    m_live->change([&figures](auto &script) { script.figures = figures; });
    m_live->report();
    const QString tip =
        shownByToolTip(m_single->findChild<QWidget *>(QStringLiteral("labelStatus"))->toolTip());
    QCOMPARE(tip.section(QLatin1Char('\n'), 1),
             QStringLiteral("Picture: H264, 640x360, by TCP\nSound: PCMU\n"
                            "Frames: 100 received, 90 drawn, 10 left out\n"
                            "Packets: 500 received, 7 lost\nJitter 1.5 ms, delay 4.2 ms\n"
                            "Decoder: ") +
                 QString(32, QLatin1Char('d')));
}

void TestLiveKeys::theMenuCopiesTheDetails()
{
    playOne();
    QVERIFY(menuOf(picture()).contains(QStringLiteral("Copy as text")));
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(3, 3));
    QCoreApplication::sendEvent(picture(), &event);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    menu->actions().last()->trigger();
    menu->close();
    QCOMPARE(QGuiApplication::clipboard()->text(),
             m_single->findChild<QLabel *>(QStringLiteral("labelStatus"))->text());
}

QTEST_MAIN(TestLiveKeys)
#include "tst_live_keys.moc"
