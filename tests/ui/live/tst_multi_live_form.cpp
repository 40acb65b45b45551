#include "ui/live/multi_live_form.h"

#include "resources/resources.h"
#include "tests/support/declared.h"
#include "tests/support/message_check.h"
#include "tests/support/modal_script.h"
#include "tests/ui/live/live_fixture.h"
#include "ui/common/message_box.h"
#include "ui/common/volume_slider_form.h"
#include "ui/live/multi_live_frame.h"
#include "ui/live/multi_live_item_form.h"
#include "ui/live/select_camera_form.h"
#include "ui/live/select_camera_item_form.h"
#include "ui/live/select_camera_recording_form.h"

#include <QLabel>
#include <QToolButton>

namespace {
constexpr int deadline = LiveFixture::deadline;
}

class TestMultiLiveForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init();
    void cleanup();

    void slotsStandInOrder();
    void startLoadsAndAppliesThePanelsSound();
    void volumeAndMuteGoToTheSelectedTile();
    void snapshotOfAllPlayingTilesWithOneSound();
    void recordAsksWhichCamerasAndRecordsThose();
    void recordCancelledTogglesNothing();
    void recordWithoutShownCamerasTurnsOnWithoutAnyTile();
    void recordAgainStopsAll();
    void aRecordingTileThatIsNotPlayingYetBeginsWhenItDoes();
    void selectReloadsTheGrid();
    void selectCancelledLeavesThePage();
    void changingTheViewWhileRecordingAsks();
    void cancelInTheWarningLeavesRecordingsAndGridUnchanged();
    void okInTheWarningStopsTheRecordings();
    void mayLeaveAsksOnlyWhileRecording();
    void leavingResetsTheRecordButton();
    void theDialogStandsOverTheMainWindow();
    void theKeyboardReachesEveryControl();
    void theEmptyGridSaysSoInTheDarkWell();
    void noTileLeavesTheWell_data();
    void noTileLeavesTheWell();

private:
    template <typename T = QWidget>
    T *child(const char *name) const
    {
        return m_form->findChild<T *>(QString::fromLatin1(name));
    }
    CMultiLiveFrame *frame() const { return child<CMultiLiveFrame>("frameMultiLive"); }
    void click(const char *button) { QTest::mouseClick(child(button), Qt::LeftButton); }
    bool recordButtonIsDown() const;
    /// Whether the tile shows that it records.
    bool isMarked(int index) const
    {
        const auto *mark = frame()->tiles().at(index)->findChild<QLabel *>("labelRecording");
        return !mark->styleSheet().isEmpty();
    }
    void show(const QStringList &hostnames);
    void play(int index);
    /// Presses record and chooses the tiles of the dialog with these numbers.
    void record(const QList<int> &chosen);

    std::unique_ptr<LiveFixture> m_live;
    std::unique_ptr<CMultiLiveForm> m_form;
};

void TestMultiLiveForm::init()
{
    m_live = std::make_unique<LiveFixture>();
    m_form = std::make_unique<CMultiLiveForm>(nullptr, m_live->clock());
    m_form->resize(1000, 760);
    m_form->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_form.get()));
}

void TestMultiLiveForm::cleanup()
{
    m_form.reset();
    m_live.reset();
}

bool TestMultiLiveForm::recordButtonIsDown() const
{
    const auto image = [](const QIcon &icon) { return icon.pixmap(32, 32).toImage(); };
    return image(child<QToolButton>("btnRecord")->icon()) ==
           image(QIcon(QStringLiteral(":/images/panelbtn/recordbtn_down.png")));
}

void TestMultiLiveForm::show(const QStringList &hostnames)
{
    m_live->addCameras(hostnames);
    m_form->StartPlay();
    QCoreApplication::processEvents();
}

void TestMultiLiveForm::play(int index)
{
    m_live->connectCamera(index);
    m_live->report(index);
    QVERIFY(m_live->camera(index)->is_playing());
}

void TestMultiLiveForm::record(const QList<int> &chosen)
{
    ModalScript choose([&](CSelectCameraRecordingForm *dialog) {
        for (int index : chosen)
            QTest::mousePress(dialog->findChild<zelvaro::SelectionFrame *>()->tiles().at(index),
                              Qt::LeftButton);
        press(dialog, "btnOK");
    });
    click("btnRecord");
    QVERIFY(choose.done());
}

void TestMultiLiveForm::slotsStandInOrder()
{
    QCOMPARE(declared(CMultiLiveForm::staticMetaObject, QMetaMethod::Slot),
             (QStringList{QStringLiteral("slotSelect()"), QStringLiteral("slotSnapshot()"),
                          QStringLiteral("slotRecord()"), QStringLiteral("slotMuteChanged(bool)"),
                          QStringLiteral("slotVolumeChanged(int)")}));
}

void TestMultiLiveForm::startLoadsAndAppliesThePanelsSound()
{
    QCOMPARE(child<CVolumeSliderForm>("sliderVolume")->value(), 100);
    show({QStringLiteral("A"), QStringLiteral("B")});
    QCOMPARE(frame()->tiles().size(), 2);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume", 0), 0);
    frame()->slotSelectCamera(frame()->tiles().at(0));
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume", 0), 100);
    m_form->StopPlay();
    QVERIFY(frame()->tiles().isEmpty());
}

void TestMultiLiveForm::volumeAndMuteGoToTheSelectedTile()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    QTest::mouseClick(frame()->tiles().at(1), Qt::LeftButton, {}, QPoint(3, 3));
    child<CVolumeSliderForm>("sliderVolume")->setValue(55);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume", 1), 55);
    click("btnMute");
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume", 1), 0);
    click("btnMute");
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume", 1), 55);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume", 0), 0);
}

void TestMultiLiveForm::snapshotOfAllPlayingTilesWithOneSound()
{
    show({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    play(0);
    play(2);
    int writtenBefore = -1;
    m_live->desktop.heard = [&] { writtenBefore = m_live->count("RtspPlayer_Snapshot", 0); };
    click("btnSnapshot");
    QCOMPARE(writtenBefore, 0);
    QCOMPARE(m_live->desktop.sounds, QStringList{QCoreApplication::applicationDirPath() +
                                                 QStringLiteral("/sounds/snapshot.wav")});
    for (int index : {0, 2}) {
        QCOMPARE(m_live->lastText("RtspPlayer_Snapshot", index),
                 m_live->folder(index) + QStringLiteral("/20240305_070809.jpg"));
    }
    QCOMPARE(m_live->count("RtspPlayer_Snapshot", 1), 0);
}

void TestMultiLiveForm::recordAsksWhichCamerasAndRecordsThose()
{
    show({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    for (int i = 0; i < 3; ++i)
        play(i);
    record({0, 2});
    QVERIFY(recordButtonIsDown());
    for (int index : {0, 2}) {
        QCOMPARE(m_live->lastText("RtspPlayer_BeginWriting", index),
                 m_live->folder(index) + QStringLiteral("/20240305_070809"));
        QCOMPARE(m_live->lastNumber("RtspPlayer_BeginWriting", index), 104857600);
        QCOMPARE(m_live->lastText("RtspPlayer_Snapshot", index),
                 m_live->folder(index) + QStringLiteral("/20240305_070809.mp4.jpeg"));
        QVERIFY(isMarked(index));
    }
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting", 1), 0);
    QVERIFY(!isMarked(1));
}

void TestMultiLiveForm::recordCancelledTogglesNothing()
{
    show({QStringLiteral("A")});
    play(0);
    ModalScript cancel([](CSelectCameraRecordingForm *dialog) {
        QTest::mousePress(dialog->findChild<zelvaro::SelectionFrame *>()->tiles().at(0),
                          Qt::LeftButton);
        press(dialog, "btnClose");
    });
    click("btnRecord");
    QVERIFY(cancel.done());
    QVERIFY(!recordButtonIsDown());
    QVERIFY(!CameraSettings::instance().at(0)->recordSelected);
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 0);
}

void TestMultiLiveForm::recordWithoutShownCamerasTurnsOnWithoutAnyTile()
{
    show({});
    record({});
    QVERIFY(recordButtonIsDown());
    click("btnRecord");
    QVERIFY(!recordButtonIsDown());
}

void TestMultiLiveForm::recordAgainStopsAll()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    play(0);
    play(1);
    record({0, 1});
    click("btnRecord");
    QVERIFY(!recordButtonIsDown());
    for (int index : {0, 1}) {
        QCOMPARE(m_live->count("RtspPlayer_EndWriting", index), 1);
        QVERIFY(!isMarked(index));
    }
}

void TestMultiLiveForm::aRecordingTileThatIsNotPlayingYetBeginsWhenItDoes()
{
    show({QStringLiteral("A")});
    record({0});
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 0);
    play(0);
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 1);
}

void TestMultiLiveForm::selectReloadsTheGrid()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    QTest::mouseClick(frame()->tiles().at(0), Qt::LeftButton, {}, QPoint(3, 3));
    ModalScript choose([](CSelectCameraForm *dialog) {
        QTest::mousePress(dialog->findChild<zelvaro::SelectionFrame *>()->tiles().at(0),
                          Qt::LeftButton);
        press(dialog, "btnOK");
    });
    click("btnSelect");
    QVERIFY(choose.done());
    QCOMPARE(frame()->tiles().size(), 1);
    QCOMPARE(frame()->tiles().at(0)->camera(), m_live->camera(1));
    QVERIFY(!CameraSettings::instance().at(0)->multiLive);
    QVERIFY(QFile::exists(CameraSettings::instance().configFile()));
    QVERIFY(!frame()->selectedTile());
    QCOMPARE(m_live->count("RtspPlayer_Stop", 0), 1);
}

void TestMultiLiveForm::selectCancelledLeavesThePage()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    QTest::mouseClick(frame()->tiles().at(0), Qt::LeftButton, {}, QPoint(3, 3));
    const QList<CMultiLiveItemForm *> before = frame()->tiles();
    ModalScript cancel([](CSelectCameraForm *dialog) {
        QTest::mousePress(dialog->findChild<zelvaro::SelectionFrame *>()->tiles().at(0),
                          Qt::LeftButton);
        press(dialog, "btnClose");
    });
    click("btnSelect");
    QVERIFY(cancel.done());
    QCOMPARE(frame()->tiles(), before);
    QCOMPARE(frame()->selectedTile(), before.at(0));
    QVERIFY(CameraSettings::instance().at(0)->multiLive);
    QCOMPARE(m_live->count("RtspPlayer_Stop", 0), 0);
}

void TestMultiLiveForm::changingTheViewWhileRecordingAsks()
{
    show({QStringLiteral("A")});
    play(0);
    record({0});
    ModalScript look([](CMessageBox *box) {
        expectMessage(box, CMessageBox::Warning, QStringLiteral("Warning"),
                      QStringLiteral("By changing view your recording will be stop."), true);
        press(box, "btnCancel");
    });
    click("btnSelect");
    QVERIFY(look.done());
}

void TestMultiLiveForm::cancelInTheWarningLeavesRecordingsAndGridUnchanged()
{
    show({QStringLiteral("A"), QStringLiteral("B")});
    play(0);
    play(1);
    record({0, 1});
    const QList<CMultiLiveItemForm *> before = frame()->tiles();
    ModalScript cancel([](CMessageBox *box) { box->reject(); });
    click("btnSelect");
    QVERIFY(cancel.done());
    QVERIFY(recordButtonIsDown());
    QCOMPARE(frame()->tiles(), before);
    for (int index : {0, 1}) {
        QVERIFY(m_live->camera(index)->is_writing());
        QCOMPARE(m_live->count("RtspPlayer_EndWriting", index), 0);
    }
}

void TestMultiLiveForm::okInTheWarningStopsTheRecordings()
{
    show({QStringLiteral("A")});
    play(0);
    record({0});
    QVERIFY(isMarked(0));
    ModalScript script;
    script.then([](CMessageBox *box) { press(box, "btnOk"); }).then([](CSelectCameraForm *dialog) {
        dialog->reject();
    });
    click("btnSelect");
    QVERIFY(script.done());
    QVERIFY(!recordButtonIsDown());
    QVERIFY(!isMarked(0));
    QCOMPARE(m_live->count("RtspPlayer_EndWriting"), 1);
    QVERIFY(m_live->camera()->is_playing());
}

void TestMultiLiveForm::mayLeaveAsksOnlyWhileRecording()
{
    show({QStringLiteral("A")});
    play(0);
    QVERIFY(m_form->MayLeave());
    record({0});
    {
        ModalScript cancel([](CMessageBox *box) { box->reject(); });
        QVERIFY(!m_form->MayLeave());
        QVERIFY(cancel.done());
    }
    ModalScript ok([](CMessageBox *box) { box->accept(); });
    QVERIFY(m_form->MayLeave());
    QVERIFY(ok.done());
    QVERIFY(m_form->MayLeave());
    QVERIFY(!m_live->camera()->is_writing());
}

void TestMultiLiveForm::leavingResetsTheRecordButton()
{
    show({QStringLiteral("A")});
    play(0);
    record({0});
    m_form->StopPlay();
    QVERIFY(!recordButtonIsDown());
    QVERIFY(m_form->MayLeave());
    m_form->StartPlay();
    play(0);
    QVERIFY(!isMarked(0));
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 1);
}

void TestMultiLiveForm::theDialogStandsOverTheMainWindow()
{
    QWidget mainWindow;
    m_live->host.parent = &mainWindow;
    QWidget *parent = nullptr;
    ModalScript script;
    script
        .then([&](CSelectCameraForm *dialog) {
            parent = dialog->parentWidget();
            dialog->reject();
        })
        .then([&](CSelectCameraRecordingForm *dialog) {
            parent = dialog->parentWidget();
            dialog->reject();
        });
    click("btnSelect");
    QCOMPARE(parent, &mainWindow);
    click("btnRecord");
    QCOMPARE(parent, frame());
    QVERIFY(script.done());
}

void TestMultiLiveForm::theKeyboardReachesEveryControl()
{
    show({QStringLiteral("A")});
    QSet<QString> reached;
    m_form->activateWindow();
    child("btnSelect")->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(child("btnSelect")->hasFocus(), deadline);
    for (int i = 0; i < 12; ++i) {
        reached.insert(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    for (const char *name :
         {"btnSelect", "btnSnapshot", "btnRecord", "slider", "btnMute", "frameVideoFrame"})
        QVERIFY2(reached.contains(QString::fromLatin1(name)), name);
    QTest::keyClick(frame()->tiles().at(0)->findChild<QWidget *>(QStringLiteral("frameVideoFrame")),
                    Qt::Key_Space);
    QCOMPARE(frame()->selectedTile(), frame()->tiles().at(0));
}

void TestMultiLiveForm::theEmptyGridSaysSoInTheDarkWell()
{
    show({});
    const QImage well = child("frameMultiLiveArea")->grab().toImage();
    QVERIFY(well.pixelColor(20, 20).lightness() < 60);
    int lightest = 0;
    for (int y = 0; y < well.height(); ++y)
        for (int x = well.width() / 4; x < well.width() * 3 / 4; ++x)
            lightest = qMax(lightest, well.pixelColor(x, y).lightness());
    QVERIFY(lightest > 180);
}

void TestMultiLiveForm::noTileLeavesTheWell_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("cameras");
    QTest::newRow("one, as wide as the page") << QSize(320, 900) << 1;
    QTest::newRow("one, as high as the page") << QSize(1600, 400) << 1;
    QTest::newRow("one column") << QSize(320, 1100) << 3;
    QTest::newRow("one row") << QSize(1600, 300) << 4;
    QTest::newRow("many") << QSize(800, 600) << 16;
}

void TestMultiLiveForm::noTileLeavesTheWell()
{
    QFETCH(QSize, size);
    QFETCH(int, cameras);
    m_form->resize(size);
    QStringList hostnames;
    for (int i = 0; i < cameras; ++i)
        hostnames << QString::number(i);
    show(hostnames);
    const auto *well = child<QFrame>("frameMultiLiveArea");
    QTRY_COMPARE_WITH_TIMEOUT(frame()->size(), well->contentsRect().size(), deadline);
    for (const CMultiLiveItemForm *tile : frame()->tiles())
        QVERIFY(frame()->rect().contains(tile->geometry()));
}

QTEST_MAIN(TestMultiLiveForm)
#include "tst_multi_live_form.moc"
