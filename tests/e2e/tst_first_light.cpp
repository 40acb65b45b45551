#include "app/main_form.h"
#include "tests/e2e/clip_check.h"
#include "tests/e2e/program_run.h"
#include "tests/support/modal_script.h"
#include "ui/common/message_box.h"
#include "ui/live/play_camera_form.h"
#include "ui/manager/camera_mgr_item_form.h"

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTest>
#include <QToolButton>
#include <QWindow>

#include <X11/keysym.h>

using zelvaro::test::CamsimProcess;

namespace {

constexpr int patience = 40'000; // milliseconds for anything that needs a camera

} // namespace

/// A registered camera connects and plays: from the settings file through session, library and
/// simulated camera to a moving picture, and everything that the single view does with it.
class TestFirstLight : public QObject
{
    Q_OBJECT

private slots:
    void camerasConnectPlayAndGo();

private:
    void steps(CMainForm &window, CamsimProcess &cameras);
    void watch();
    void takePhoto();
    void record();
    void zoomAndFullScreen();
    void surviveDrop(CamsimProcess &cameras);
    void refuseAndAcceptPassword(CamsimProcess &cameras);
    void deleteSecondCamera();
    void quit();

    CCameraMgrItemForm *tile(int index) const
    {
        return m_window->findChildren<CCameraMgrItemForm *>().value(index);
    }
    bool isConnected(int index) const
    {
        return tile(index)->findChild<QWidget *>("labelStatusImage")->toolTip() == "Connected";
    }
    QString statusLine() const { return live()->findChild<QLabel *>("labelStatus")->text(); }
    CPlayCameraForm *live() const { return m_window->findChild<CPlayCameraForm *>(); }
    QWidget *videoFrame() const { return m_videoFrame; }
    int page() const
    {
        return m_window->findChild<QStackedWidget *>("stackedWidget")->currentIndex();
    }
    void clickLive(const char *button)
    {
        m_input->click(live()->findChild<QToolButton *>(QLatin1String(button)));
    }

    ProgramRun *m_run = nullptr;
    RealInput *m_input = nullptr;
    CMainForm *m_window = nullptr;
    QWidget *m_videoFrame = nullptr;
    std::string m_uid;
};

void TestFirstLight::camerasConnectPlayAndGo()
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
        steps(window, cameras);
        finished = !QTest::currentTestFailed();
    });
    QVERIFY(finished);
    QCOMPARE(code, 0);
}

void TestFirstLight::steps(CMainForm &window, CamsimProcess &cameras)
{
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_COMPARE_WITH_TIMEOUT(window.findChildren<CCameraMgrItemForm *>().size(), 2, patience);
    QTRY_VERIFY_WITH_TIMEOUT(isConnected(0) && isConnected(1), patience);
    m_videoFrame = live()->findChild<QWidget *>("frameVideoFrame");

    const auto failed = [] { return QTest::currentTestFailed(); };
    watch();
    if (!failed())
        takePhoto();
    if (!failed())
        record();
    if (!failed())
        zoomAndFullScreen();
    if (!failed())
        surviveDrop(cameras);
    if (!failed())
        refuseAndAcceptPassword(cameras);
    if (!failed())
        deleteSecondCamera();
    if (!failed())
        quit();
}

void TestFirstLight::watch()
{
    m_input->doubleClick(tile(0)->findChild<QWidget *>("frameCameraItem"));
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PagePlayCamera), patience);
    QTRY_VERIFY_WITH_TIMEOUT(QRegularExpression("^640x360\\(\\d+%\\)  \\d+FPS \\d+\\.\\d\\dKbps$")
                                 .match(statusLine())
                                 .hasMatch(),
                             patience);
    PictureWatch picture(*videoFrame());
    QTRY_VERIFY_WITH_TIMEOUT(picture.hasMoved(), patience);
}

void TestFirstLight::takePhoto()
{
    clickLive("btnSnapshot");
    const auto photos = [this] { return m_run->albumFiles(m_uid, "\\d{8}_\\d{6}\\.jpg"); };
    QTRY_COMPARE_WITH_TIMEOUT(photos().size(), 1, patience);
    QCOMPARE(QImage(photos().first()).size(), QSize(640, 360));
}

void TestFirstLight::record()
{
    clickLive("btnRecord");
    const auto clips = [this] { return m_run->albumFiles(m_uid, "\\d{8}_\\d{6}\\.mp4"); };
    QTRY_COMPARE_WITH_TIMEOUT(clips().size(), 1, patience);
    const QString clip = clips().first();
    QVERIFY(live()->findChild<QLabel *>("labelRecording")->styleSheet().contains("recordbtn_down"));
    QCOMPARE(m_run->albumFiles(m_uid, "\\d{8}_\\d{6}\\.mp4\\.jpeg").size(), 1);
    // Every second is safe on disk, so another program can count it while it is written.
    QTRY_VERIFY_WITH_TIMEOUT(decodedFrames(clip) > 30, patience);
    clickLive("btnRecord");
    QTRY_VERIFY(live()->findChild<QLabel *>("labelRecording")->styleSheet().isEmpty());
    // The file is finished behind the button.
    QTRY_VERIFY_WITH_TIMEOUT(decodedFrames(clip) >= 35, patience);
}

void TestFirstLight::zoomAndFullScreen()
{
    clickLive("btnZoomOut");
    QTRY_VERIFY_WITH_TIMEOUT(statusLine().startsWith("640x360(75%)") ||
                                 live()->findChild<QWidget *>("frameVideoClient")->width() ==
                                     480 + 13,
                             patience);
    clickLive("btnFullScreen");
    QTRY_VERIFY_WITH_TIMEOUT(videoFrame()->isFullScreen() && videoFrame()->isActiveWindow(),
                             patience);
    QTRY_COMPARE_WITH_TIMEOUT(videoFrame()->size(), videoFrame()->screen()->size(), patience);
    PictureWatch picture(*videoFrame());
    QTRY_VERIFY_WITH_TIMEOUT(picture.hasMoved(), patience);
    m_input->key(XK_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(!videoFrame()->isFullScreen() && !videoFrame()->isWindow(), patience);
    PictureWatch onPage(*videoFrame());
    QTRY_VERIFY_WITH_TIMEOUT(onPage.hasMoved(), patience);
}

void TestFirstLight::surviveDrop(CamsimProcess &cameras)
{
    QVERIFY(cameras.tell(0, "refuse"));
    QVERIFY(cameras.tell(0, "drop"));
    QTRY_COMPARE_WITH_TIMEOUT(statusLine(), QStringLiteral("Front door is connecting..."),
                              patience);
    QVERIFY(cameras.tell(0, "listen"));
    QTRY_VERIFY_WITH_TIMEOUT(statusLine().startsWith("640x360"), 2 * patience);
    PictureWatch picture(*videoFrame());
    QTRY_VERIFY_WITH_TIMEOUT(picture.hasMoved(), patience);
    clickLive("btnBack");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PageCameraMgr), patience);
}

void TestFirstLight::refuseAndAcceptPassword(CamsimProcess &cameras)
{
    auto *status = tile(1)->findChild<QLabel *>("labelStatusText");
    QVERIFY(cameras.tell(1, "password other"));
    QVERIFY(cameras.tell(1, "drop"));
    QTRY_COMPARE_WITH_TIMEOUT(status->text(), QStringLiteral("Invalid Password!"), patience);
    QVERIFY(cameras.tell(1, "password secret"));
    QTRY_VERIFY_WITH_TIMEOUT(status->text().isEmpty() && isConnected(1), 2 * patience);
}

void TestFirstLight::deleteSecondCamera()
{
    m_input->click(tile(1)->findChild<QToolButton *>("btnMenu"));
    auto *menu = tile(1)->findChild<QToolButton *>("btnMenu")->menu();
    QTRY_VERIFY_WITH_TIMEOUT(menu->isVisible(), patience);
    QAction *remove = nullptr;
    for (QAction *action : menu->actions())
        if (action->text() == "Delete")
            remove = action;
    QVERIFY(remove);
    ModalScript modals([this](CMessageBox *box) {
        QCOMPARE(box->findChild<QLabel *>("labelMessage")->text(),
                 QStringLiteral("Delete camera?"));
        m_input->click(box->findChild<QPushButton *>("btnOk"));
    });
    m_input->click(menu, menu->actionGeometry(remove).center());
    QTRY_COMPARE_WITH_TIMEOUT(m_window->findChildren<CCameraMgrItemForm *>().size(), 1, patience);
    const QByteArray expected = "ALBUMPATH=" + m_run->albumFolder().toUtf8() +
                                "\n[0]\nTYPE=P2P\nHOSTNAME=" + QByteArray::fromStdString(m_uid) +
                                "\nUSERNAME=admin\nPASSWORD=secret\nNAME=\"Front door\"\n"
                                "MULTILIVE=1\n";
    QTRY_COMPARE_WITH_TIMEOUT(m_run->settings(), expected, patience);
}

void TestFirstLight::quit()
{
    auto *close = m_window->findChild<QToolButton *>("btnClose");
    QSignalSpy clicked(close, &QToolButton::clicked);
    m_input->click(close);
    QTRY_COMPARE_WITH_TIMEOUT(clicked.count(), 1, patience);
}

QTEST_APPLESS_MAIN(TestFirstLight)
#include "tst_first_light.moc"
