#include "app/main_form.h"
#include "tests/e2e/program_run.h"
#include "tests/support/tool_tip_text.h"
#include "ui/live/play_camera_form.h"
#include "ui/manager/camera_mgr_item_form.h"

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QStackedWidget>
#include <QTest>
#include <QToolTip>

#include <X11/keysym.h>

using zelvaro::test::CamsimProcess;

namespace {

constexpr int patience = 30'000; // milliseconds for anything that needs a camera

/// Whether a text lies over the middle of a picture: its ground is of a colour of its own.
bool hasNotice(const QImage &picture)
{
    const QColor ground(11, 16, 22);
    const QRect middle(picture.width() / 4, picture.height() / 3, picture.width() / 2,
                       picture.height() / 3);
    int pixels = 0;
    for (int y = middle.top(); y <= middle.bottom(); ++y)
        for (int x = middle.left(); x <= middle.right(); ++x)
            pixels += picture.pixelColor(x, y) == ground;
    return pixels > 500;
}

/// Whether every second line is black and the others are not: the look of an old picture.
bool isDimmed(const QImage &picture)
{
    const int column = picture.width() / 8; // beside the texts
    int lit = 0;
    for (int y = 0; y < picture.height(); ++y) {
        const bool black = qGray(picture.pixel(column, y)) == 0;
        if (y % 2 == 0 && !black)
            return false;
        lit += y % 2 == 1 && !black;
    }
    return lit > picture.height() / 4;
}

} // namespace

/// What the pages show of cameras that are in trouble, read from the screen, and the keys as a
/// person presses them.
class TestStates : public QObject
{
    Q_OBJECT

private slots:
    void troublesAreToldAndPass();

private:
    void steps(CMainForm &window, CamsimProcess &cameras);
    void aRefusedLoginIsTold(CamsimProcess &cameras);
    void anUnpluggedCameraIsToldAndComesBack(CamsimProcess &cameras);
    void aCameraWithAnotherAddressIsFoundAgain(CamsimProcess &cameras);
    void aFrozenPictureIsTold(CamsimProcess &cameras);
    void theFullScreenTellsTheTime(CamsimProcess &cameras);
    void theMenuKeyOpensTheMenu();

    CCameraMgrItemForm *tile(int index) const
    {
        return m_window->findChildren<CCameraMgrItemForm *>().value(index);
    }
    /// Rests the pointer on a tile's picture and reads what comes up.
    QString hovered(int index);
    QWidget *picture() const { return live()->findChild<QWidget *>("frameVideoFrame"); }
    CPlayCameraForm *live() const { return m_window->findChild<CPlayCameraForm *>(); }
    int page() const
    {
        return m_window->findChild<QStackedWidget *>("stackedWidget")->currentIndex();
    }
    bool isConnected(int index) const
    {
        return tile(index)->findChild<QWidget *>("labelStatusImage")->toolTip() == "Connected";
    }

    RealInput *m_input = nullptr;
    CMainForm *m_window = nullptr;
};

void TestStates::troublesAreToldAndPass()
{
    RealInput input;
    if (!input.isValid())
        QSKIP("The display has no XTEST extension.");
    CamsimProcess cameras({"--count", "3", "--user", "admin", "--password", "secret", "--name",
                           "Front door", "--name", "Garage", "--name", "Garden", "--main-size",
                           "640x360", "--main-bitrate", "800000"});
    ProgramRun run;
    run.registerCameras(cameras);
    m_input = &input;
    bool finished = false;
    const int code = run.run([&](CMainForm &window) {
        m_window = &window;
        steps(window, cameras);
        finished = !QTest::currentTestFailed();
    });
    QVERIFY(finished);
    QCOMPARE(code, 0);
}

void TestStates::steps(CMainForm &window, CamsimProcess &cameras)
{
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY_WITH_TIMEOUT(isConnected(0) && isConnected(1) && isConnected(2), patience);
    const auto failed = [] { return QTest::currentTestFailed(); };
    aRefusedLoginIsTold(cameras);
    if (!failed())
        anUnpluggedCameraIsToldAndComesBack(cameras);
    if (!failed())
        aFrozenPictureIsTold(cameras);
    if (!failed())
        theFullScreenTellsTheTime(cameras);
    if (!failed())
        theMenuKeyOpensTheMenu();
    if (!failed())
        aCameraWithAnotherAddressIsFoundAgain(cameras);
}

QString TestStates::hovered(int index)
{
    auto *picture = tile(index)->findChild<QWidget *>("frameCameraItem");
    // A tip comes up once for each time that the pointer comes to rest.
    m_input->moveTo(m_window->findChild<QWidget *>("frameTitle"));
    if (!QTest::qWaitFor([] { return !QToolTip::isVisible(); }, patience))
        return QStringLiteral("a tip that stays");
    m_input->moveTo(picture);
    m_input->moveTo(picture, picture->rect().center() + QPoint(3, 3));
    if (!QTest::qWaitFor([] { return QToolTip::isVisible(); }, patience))
        return QStringLiteral("no tip");
    return shownByToolTip(QToolTip::text());
}

void TestStates::aRefusedLoginIsTold(CamsimProcess &cameras)
{
    QVERIFY(cameras.tell(1, "password other"));
    QVERIFY(cameras.tell(1, "drop"));
    auto *strip = tile(1)->findChild<QLabel *>("labelStatusText");
    QTRY_VERIFY_WITH_TIMEOUT(strip->isVisible(), patience);
    QCOMPARE(strip->text(), QStringLiteral("Invalid Password!"));
    const QString tip = hovered(1);
    QVERIFY2(tip.startsWith("Not connected since ") &&
                 tip.contains("The camera refuses this user name or password."),
             qPrintable(tip));
    QVERIFY(cameras.tell(1, "password secret"));
    QTRY_VERIFY_WITH_TIMEOUT(!strip->isVisible() && isConnected(1), 2 * patience);
}

void TestStates::anUnpluggedCameraIsToldAndComesBack(CamsimProcess &cameras)
{
    QVERIFY(cameras.tell(2, "power off"));
    QTRY_VERIFY_WITH_TIMEOUT(!isConnected(2), patience);
    const QString tip = hovered(2);
    QVERIFY2(tip.startsWith("Not connected since ") && tip.contains("Is the "), qPrintable(tip));
    QVERIFY(cameras.tell(2, "power on"));
    QTRY_VERIFY_WITH_TIMEOUT(isConnected(2), 2 * patience);
}

void TestStates::aFrozenPictureIsTold(CamsimProcess &cameras)
{
    m_input->doubleClick(tile(0)->findChild<QWidget *>("frameCameraItem"));
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PagePlayCamera), patience);
    const auto *status = live()->findChild<QLabel *>("labelStatus");
    QTRY_VERIFY_WITH_TIMEOUT(status->text().startsWith("640x360"), patience);
    PictureWatch playing(*picture());
    QTRY_VERIFY_WITH_TIMEOUT(playing.hasMoved(), patience);
    QVERIFY(!hasNotice(pictureOnScreen(*picture())));
    QVERIFY(cameras.tell(0, "freeze"));
    QTRY_VERIFY_WITH_TIMEOUT(isDimmed(pictureOnScreen(*picture())), patience);
    QTRY_VERIFY_WITH_TIMEOUT(hasNotice(pictureOnScreen(*picture())), patience);
    QVERIFY(cameras.tell(0, "thaw"));
    QTRY_VERIFY_WITH_TIMEOUT(!hasNotice(pictureOnScreen(*picture())), 2 * patience);
    PictureWatch again(*picture());
    QTRY_VERIFY_WITH_TIMEOUT(again.hasMoved(), patience);
}

void TestStates::theFullScreenTellsTheTime(CamsimProcess &cameras)
{
    m_input->key(XK_f);
    QTRY_VERIFY_WITH_TIMEOUT(picture()->isFullScreen() && picture()->isActiveWindow(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(picture()->size(), picture()->screen()->size(), patience);
    PictureWatch playing(*picture());
    QTRY_VERIFY_WITH_TIMEOUT(playing.hasMoved(), patience);
    // The ground of a text at the top right, where the picture shows the sky.
    const auto hasClock = [this] {
        const QImage seen = pictureOnScreen(*picture());
        return seen.pixelColor(seen.width() - 10, 10) == QColor(11, 16, 22);
    };
    QVERIFY(!hasClock());
    QVERIFY(cameras.tell(0, "freeze"));
    QTRY_VERIFY_WITH_TIMEOUT(hasClock(), patience);
    // What is drawn over the picture takes nothing else of it away.
    const QImage seen = pictureOnScreen(*picture());
    QVERIFY(qGray(seen.pixel(seen.width() / 2, seen.height() / 4)) > 60);
    QTRY_VERIFY_WITH_TIMEOUT(hasNotice(pictureOnScreen(*picture())), patience);
    QVERIFY(cameras.tell(0, "thaw"));
    QTRY_VERIFY_WITH_TIMEOUT(!hasClock(), 2 * patience);
    m_input->key(XK_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(!picture()->isWindow(), patience);
}

void TestStates::theMenuKeyOpensTheMenu()
{
    QTRY_VERIFY_WITH_TIMEOUT(picture()->hasFocus(), patience);
    m_input->key(XK_Menu);
    QTRY_VERIFY_WITH_TIMEOUT(qobject_cast<QMenu *>(QApplication::activePopupWidget()), patience);
    m_input->key(XK_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(!QApplication::activePopupWidget(), patience);
    QVERIFY(!picture()->isWindow()); // the release of the key is the menu's
    m_input->key(XK_BackSpace);
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PageCameraMgr), patience);
}

void TestStates::aCameraWithAnotherAddressIsFoundAgain(CamsimProcess &cameras)
{
    QVERIFY(cameras.tell(2, "address 127.0.0.2"));
    // It may be found before the page has seen it go.
    m_input->doubleClick(tile(2)->findChild<QWidget *>("frameCameraItem"));
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PagePlayCamera), patience);
    PictureWatch playing(*picture());
    QTRY_VERIFY_WITH_TIMEOUT(playing.hasMoved(), 2 * patience);
    m_input->key(XK_BackSpace);
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PageCameraMgr), patience);
    QTRY_VERIFY_WITH_TIMEOUT(isConnected(2), 2 * patience);
}

QTEST_APPLESS_MAIN(TestStates)
#include "tst_states.moc"
