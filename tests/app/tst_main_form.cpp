#include "app/main_form.h"
#include "camera/camera.h"
#include "resources/resources.h"
#include "tests/support/modal_script.h"
#include "tests/support/registry.h"
#include "ui/album/photo_mgr_form.h"
#include "ui/album/photo_mgr_item_form.h"
#include "ui/common/desktop.h"
#include "ui/common/message_box.h"
#include "ui/common/title_widget.h"
#include "ui/discovery/search_camera_form.h"
#include "ui/live/multi_live_form.h"
#include "ui/live/play_camera_form.h"
#include "ui/manager/add_camera_form.h"
#include "ui/manager/camera_mgr_item_form.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTest>
#include <QToolButton>
#include <qdrawutil.h>

#include <cctype>
#include <cstdlib>
#include <map>

namespace {

constexpr int deadline = 20000; // milliseconds

/// Answers the folder chooser and records its arguments.
class FolderDesktop : public Desktop
{
public:
    FolderDesktop() { setDesktop(this); }
    ~FolderDesktop() override { setDesktop(nullptr); }

    bool openUrl(const QUrl &) override { return false; }
    void playSound(const QString &) override {}
    QString chooseFolder(QWidget *over, const QString &text, const QString &from) override
    {
        parent = over;
        title = text;
        start = from;
        return answer;
    }

    QString answer;
    QWidget *parent = nullptr;
    QString title;
    QString start;
};

const QStringList pages = {"pageCameraMgr", "pagePlayCamera",      "pageMultiLive",
                           "pagePhotoMgr",  "pagePlayPhoto",       "pageVideoMgr",
                           "pagePlayVideo", "pageSearchCameraList"};

struct ToolButton
{
    const char *name;
    const char *text;
    const char *normal;
    const char *pressed;
    int page;
};

const ToolButton toolButtons[] = {
    {"btnCameraMgr", "Camera", "cameramgrbtn.png", "cameramgrbtn_pressed.png", 0},
    {"btnMultiLive", "MultiLive", "multilivebtn.png", "multilivebtn_pressed.png", 2},
    {"btnVideoMgr", "Video", "videobtn.png", "videobtn_pressed.png", 5},
    {"btnPhotoMgr", "Album", "albumbtn.png", "albumbtn_pressed.png", 3},
    {"btnSetUp", "Setup", "SetUp.png", "Setupbtn_pressed.png", 7},
};

/// What leaving the pages does, in the order in which it is done.
class LeaveLog : public QObject
{
public:
    /// views: names of the live views by the UID of the camera that they show.
    LeaveLog(CMainForm *form, std::map<std::string, QString> views)
        : m_form(form)
        , m_views(std::move(views))
    {
        qApp->installEventFilter(this);
    }

    QStringList take()
    {
        noteStops();
        return m_log;
    }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto inside = [&](const char *page) {
            const auto *const widget = qobject_cast<QWidget *>(watched);
            return widget && m_form->findChild<QWidget *>(page)->isAncestorOf(widget);
        };
        if (event->type() == QEvent::ToolTipChange && inside("pagePlayVideo"))
            note("video player");
        if (event->type() == QEvent::HideToParent && qobject_cast<CPhotoMgrItemForm *>(watched))
            note(inside("pageVideoMgr") ? "video album" : "photo album");
        return false;
    }

private:
    void note(const QString &what)
    {
        noteStops();
        append(what);
    }
    void noteStops()
    {
        for (const fake_cammgr::Call &call : fake_cammgr::calls()) {
            for (const auto &[uid, view] : m_views)
                if (call.name == "RtspPlayer_Stop" &&
                    fake_cammgr::player(uid)->handle() == call.player)
                    append(view);
        }
    }
    void append(const QString &what)
    {
        if (!m_log.contains(what))
            m_log << what;
    }

    CMainForm *m_form;
    std::map<std::string, QString> m_views;
    QStringList m_log;
};

/// Of the colours of two pictures of one size, 0 to 255.
double meanDifference(const QImage &one, const QImage &other)
{
    double sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QColor a = one.pixelColor(x, y);
            const QColor b = other.pixelColor(x, y);
            sum += std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
                   std::abs(a.blue() - b.blue());
        }
    }
    return sum / (3.0 * one.width() * one.height());
}

} // namespace

class TestMainForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void startingWithNoSettingsFileShowsTheCameraPageWithNoCameras();
    void theFormHasItsNamesAndTexts();
    void theLogoAndTheFrameAreDrawn();
    void theWindowIsFramelessAndCentred();
    void theHostPointerEndsWithTheWindow();
    void theStatusRowShowsWhatAPageTells();

    void toolButtonsSwitchPagesAndIcons();
    void toolButtonsHaveShortcuts();
    void otherSwitchesLeaveTheIcons();
    void leavingStopsThePagesInOrder();
    void aCameraPlaysBeforeItsPageIsShown();
    void theGridStartsOnItsPage();
    void playingACameraStartsItsStream();
    void leavingStopsTheSingleView();
    void multiLiveStartsAndStopsItsTiles();
    void backAndShowOperationsOnlySwitchThePage();
    void videoWhileTheGridRecordsAsksForConfirmation();
    void albumShowsThePhotosOfTheFirstCamera();
    void photoViewerOpensFromTheAlbumAndGoesBack();
    void recordingOpensFromTheAlbumAndGoesBack();
    void anAlbumThatIsOpenedAgainShowsNewCameras();
    void anotherPageLeavesTheAlbum();

    void savePathIsTheOnlyMenuEntry();
    void savePathTakesTheChosenFolder();
    void aCancelledChooserChangesNothing();
    void aFolderThatIsNotThereYetIsTaken_data();
    void aFolderThatIsNotThereYetIsTaken();
    void aFolderThatCannotBeUsedIsRefused_data();
    void aFolderThatCannotBeUsedIsRefused();
    void pagesFollowTheAlbumPath();
    void troublesWithTheSettingsFileAreInTheStatusRow();

    void aLowWindowLeavesItsHeightToThePage();
    void maximizeTogglesGeometryAndButton();
    void theWindowTakesThePlaceOfAnEarlierRun();
    void aDoubleClickOnTheTitleMaximizes_data();
    void aDoubleClickOnTheTitleMaximizes();
    void whileMaximizedEdgesAndTitleBarDoNothing();
    void titleBarMovesTheWindow();
    void draggingEdgesResizes_data();
    void draggingEdgesResizes();
    void draggingTheLeftEdgeStopsAtWidth400();
    void hoveringChangesOnlyTheCursor();
    void releaseOfAnotherButtonIsIgnored();
    void releaseRestoresTheArrow();
    void aDragThatStartsInsideResizesOnceItReachesAnEdge();

    void closeEndsTheEventLoop();
    void closingTheWindowEndsTheEventLoop();
    void minimizeMinimizes();
    void discoverOpensThePicker();

private:
    template <typename Widget>
    Widget *find(const char *name)
    {
        return m_form->findChild<Widget *>(QLatin1String(name));
    }
    int page() { return find<QStackedWidget>("stackedWidget")->currentIndex(); }
    void click(const char *button) { press(m_form.get(), button); }
    void expectIcons(const char *pressedButton);
    QImage iconOf(const char *button)
    {
        return find<QToolButton>(button)->icon().pixmap(40, 40).toImage();
    }
    void build();
    void showForm();
    std::shared_ptr<fake_cammgr::Player> player(const char *uid)
    {
        return fake_cammgr::player(uid);
    }
    bool send(QEvent::Type type, QPoint global, Qt::MouseButton button, Qt::MouseButtons held)
    {
        QMouseEvent event(type, m_form->mapFromGlobal(global), global, button, held,
                          Qt::NoModifier);
        QApplication::sendEvent(m_form.get(), &event);
        return event.isAccepted();
    }
    // Those of a former fill live until the event loop runs.
    QList<CPhotoMgrItemForm *> albumTiles(const char *album)
    {
        return find<QWidget>(album)->findChildren<CPhotoMgrItemForm *>();
    }
    void writeFile(const QString &name)
    {
        const QString path = Registry::settings().albumPath() + "/" + name;
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    void pressAt(QPoint global)
    {
        send(QEvent::MouseButtonPress, global, Qt::LeftButton, Qt::LeftButton);
    }
    void dragTo(QPoint global) { send(QEvent::MouseMove, global, Qt::NoButton, Qt::LeftButton); }
    void hoverAt(QPoint global) { send(QEvent::MouseMove, global, Qt::NoButton, Qt::NoButton); }
    void releaseAt(QPoint global)
    {
        send(QEvent::MouseButtonRelease, global, Qt::LeftButton, Qt::NoButton);
    }

    std::unique_ptr<Registry> m_registry;
    std::unique_ptr<CMainForm> m_form;
};

void TestMainForm::initTestCase()
{
    zelvaro::initResources();
    zelvaro::applyLook();
}

void TestMainForm::init()
{
    m_registry = std::make_unique<Registry>();
}

void TestMainForm::cleanup()
{
    m_form.reset();
    m_registry.reset();
}

void TestMainForm::build()
{
    m_registry->start();
    m_form = std::make_unique<CMainForm>();
    setPageHost(m_form.get());
}

void TestMainForm::showForm()
{
    build();
    m_form->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_form.get()));
    m_form->setGeometry(100, 60, 500, 400);
    QTRY_COMPARE_WITH_TIMEOUT(m_form->geometry(), QRect(100, 60, 500, 400), deadline);
}

void TestMainForm::expectIcons(const char *pressedButton)
{
    for (const ToolButton &button : toolButtons) {
        const bool pressed = qstrcmp(button.name, pressedButton) == 0;
        const QString file =
            QString(":/images/toolbarbtn/") + (pressed ? button.pressed : button.normal);
        const QImage wanted = QIcon(file).pixmap(40, 40).toImage();
        QVERIFY2(!wanted.isNull(), qPrintable(file));
        QVERIFY2(iconOf(button.name) == wanted, button.name);
    }
}

void TestMainForm::startingWithNoSettingsFileShowsTheCameraPageWithNoCameras()
{
    build();
    QCOMPARE(page(), 0);
    QCOMPARE(find<QWidget>("pageCameraMgr")->findChildren<CCameraMgrItemForm *>().size(), 0);
    QVERIFY(find<QWidget>("btnAdd"));
    expectIcons("btnCameraMgr");
}

void TestMainForm::theFormHasItsNamesAndTexts()
{
    build();
    QCOMPARE(m_form->objectName(), QString("MainForm"));
    QCOMPARE(m_form->windowTitle(), QString("Zelvaro"));
    for (const char *name : {"frameMain", "frameTitle", "frameLogo", "frameButtons", "frameStatus"})
        QVERIFY2(find<QWidget>(name), name);
    QCOMPARE(find<QLabel>("labelVersion")->text(), QString("Version 1.4 (Build 20180813)"));
    QVERIFY(find<QLabel>("labelStatus"));
    QCOMPARE(find<QToolButton>("btnMin")->text(), QString("Minimize"));
    QCOMPARE(find<QToolButton>("btnMax")->text(), QString("Maximize"));
    QCOMPARE(find<QToolButton>("btnClose")->text(), QString("Close"));
    for (const ToolButton &button : toolButtons)
        QCOMPARE(find<QToolButton>(button.name)->text(), QString(button.text));
    for (const char *name : {"btnMenu", "btnMin", "btnMax", "btnClose"}) {
        QVERIFY2(!find<QToolButton>(name)->toolTip().isEmpty(), name);
        QVERIFY2(!find<QToolButton>(name)->accessibleName().isEmpty(), name);
    }
    for (const char *family : {"menu", "min", "max", "close"}) {
        const QByteArray button = QByteArray("btn") + char(std::toupper(*family)) + (family + 1);
        for (const char *state : {"default", "hover", "down"}) {
            const QString image = QString(":/images/sysbtn/%1btn_%2.png").arg(family, state);
            QVERIFY2(find<QToolButton>(button)->styleSheet().contains(image), qPrintable(image));
            QVERIFY2(QFile::exists(image), qPrintable(image));
        }
    }
    auto *stack = find<QStackedWidget>("stackedWidget");
    QCOMPARE(stack->count(), pages.size());
    for (int i = 0; i < pages.size(); ++i)
        QCOMPARE(stack->widget(i)->objectName(), pages.at(i));
}

void TestMainForm::theLogoAndTheFrameAreDrawn()
{
    showForm();
    auto *logo = find<QWidget>("frameLogo");
    const QRect logoRect(logo->mapTo(m_form.get(), QPoint()), logo->size());
    const QPixmap frame(":/images/mainframe.png");
    QImage wanted(m_form->size(), QImage::Format_RGB32);
    wanted.fill(Qt::magenta);
    QPainter painter(&wanted);
    qDrawBorderPixmap(&painter, wanted.rect(), QMargins(4, 4, 4, 4), frame, frame.rect(),
                      QMargins(8, 8, 8, 8));
    painter.drawPixmap(logoRect, QPixmap(":/images/title.png"));
    painter.end();

    const QImage shown = m_form->grab().toImage().convertToFormat(QImage::Format_RGB32);
    QVERIFY(meanDifference(shown.copy(logoRect), wanted.copy(logoRect)) < 4);
    for (const QRect &edge :
         {QRect(0, 0, 500, 4), QRect(0, 0, 4, 400), QRect(496, 0, 4, 400), QRect(0, 396, 500, 4)})
        QVERIFY(meanDifference(shown.copy(edge), wanted.copy(edge)) < 4);
}

void TestMainForm::theWindowIsFramelessAndCentred()
{
    build();
    QVERIFY(m_form->windowFlags() & Qt::FramelessWindowHint);
    const QSize desktop = QGuiApplication::primaryScreen()->size();
    QCOMPARE(m_form->pos(), QPoint((desktop.width() - m_form->width()) / 2,
                                   (desktop.height() - m_form->height()) / 2));
    const QSize available = QGuiApplication::primaryScreen()->availableSize();
    QVERIFY(m_form->width() <= available.width() && m_form->height() <= available.height());
    QCOMPARE(m_form->minimumSize(), QSize(400, 300));
}

void TestMainForm::theHostPointerEndsWithTheWindow()
{
    build();
    QCOMPARE(pageHost(), m_form.get());
    QCOMPARE(pageHost()->dialogParent(), m_form.get());
    m_form.reset();
    QVERIFY(!pageHost());
}

void TestMainForm::theStatusRowShowsWhatAPageTells()
{
    showForm();
    auto *status = find<QFrame>("frameStatus")->findChild<QLabel *>("labelStatus");
    QCOMPARE(status->text(), QString());
    m_form->showStatus("<b>Door</b>: nothing is being written");
    QCOMPARE(status->text(), QString("<b>Door</b>: nothing is being written"));
    QCOMPARE(status->textFormat(), Qt::PlainText);
    const QSize smallest = m_form->minimumSizeHint();
    m_form->showStatus(QString("long ").repeated(200));
    QCOMPARE(m_form->minimumSizeHint(), smallest);
    m_form->showStatus({});
    QCOMPARE(status->text(), QString());
}

void TestMainForm::toolButtonsSwitchPagesAndIcons()
{
    showForm();
    for (const ToolButton &button : toolButtons) {
        click(button.name);
        QCOMPARE(page(), button.page);
        expectIcons(button.name);
    }
    click("btnCameraMgr");
    QCOMPARE(page(), 0);
    expectIcons("btnCameraMgr");
}

void TestMainForm::toolButtonsHaveShortcuts()
{
    showForm();
    m_form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    QTest::keyClick(m_form.get(), Qt::Key_A, Qt::AltModifier);
    QTRY_COMPARE_WITH_TIMEOUT(page(), 3, deadline);
    QTest::keyClick(m_form.get(), Qt::Key_C, Qt::AltModifier);
    QTRY_COMPARE_WITH_TIMEOUT(page(), 0, deadline);
}

void TestMainForm::otherSwitchesLeaveTheIcons()
{
    m_registry->add("UID-1", "Door");
    showForm();
    click("btnPhotoMgr");
    m_form->showCameraMgr();
    QCOMPARE(page(), 0);
    expectIcons("btnPhotoMgr");
    m_form->playCamera(Registry::cameras().at(0));
    expectIcons("btnPhotoMgr");
    m_form->showSearchCameraList();
    QCOMPARE(page(), 7);
    expectIcons("btnPhotoMgr");
}

void TestMainForm::leavingStopsThePagesInOrder()
{
    m_registry->add("UID-1", "Door");
    m_registry->add("UID-2", "Yard", true);
    showForm();
    writeFile("UID-1/20240305_070809.mp4");
    writeFile("UID-1/20240305_070809.jpg");
    click("btnPhotoMgr");
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pagePhotoMgr").size(), 1, deadline);
    m_form->backToVideoMgr(); // which leaves no page
    find<CPhotoMgrForm>("pageVideoMgr")->open(true);
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pageVideoMgr").size(), 1, deadline);
    QTest::mouseDClick(albumTiles("pageVideoMgr").at(0), Qt::LeftButton);
    QCOMPARE(page(), 6);
    find<CPlayCameraForm>("pagePlayCamera")->SetCamera(Registry::cameras().at(0));
    find<CPlayCameraForm>("pagePlayCamera")->StartPlay();
    find<CMultiLiveForm>("pageMultiLive")->StartPlay();
    QCOMPARE(player("UID-1")->count("RtspPlayer_Stop"), 0);
    QCOMPARE(player("UID-2")->count("RtspPlayer_Stop"), 0);

    LeaveLog log(m_form.get(), {{"UID-1", "single view"}, {"UID-2", "grid"}});
    m_form->leavePages();
    QCOMPARE(log.take(),
             QStringList({"single view", "grid", "video player", "video album", "photo album"}));
}

void TestMainForm::aCameraPlaysBeforeItsPageIsShown()
{
    m_registry->add("UID-1", "Door");
    m_registry->add("UID-2", "Yard", true);
    showForm();
    click("btnMultiLive");
    int stopped = -1;
    int started = -1;
    connect(find<QStackedWidget>("stackedWidget"), &QStackedWidget::currentChanged, this, [&] {
        stopped = player("UID-2")->count("RtspPlayer_Stop");
        started = player("UID-1")->count("RtspPlayer_SetupP2PliveStream");
    });
    m_form->playCamera(Registry::cameras().at(0));
    QCOMPARE(page(), 1);
    QCOMPARE(stopped, 1);
    QCOMPARE(started, 1);
    const std::vector<fake_cammgr::Call> calls = fake_cammgr::calls();
    const auto first = [&](const char *name, const char *uid) {
        const auto same = [&](const fake_cammgr::Call &call) {
            return call.name == name && call.player == player(uid)->handle();
        };
        return std::find_if(calls.begin(), calls.end(), same) - calls.begin();
    };
    QVERIFY(first("RtspPlayer_Stop", "UID-2") < first("RtspPlayer_SetupP2PliveStream", "UID-1"));
}

void TestMainForm::theGridStartsOnItsPage()
{
    m_registry->add("UID-1", "Door");
    m_registry->add("UID-2", "Yard", true);
    showForm();
    m_form->playCamera(Registry::cameras().at(0));
    int stopped = -1;
    int started = -1;
    connect(find<QStackedWidget>("stackedWidget"), &QStackedWidget::currentChanged, this, [&] {
        stopped = player("UID-1")->count("RtspPlayer_Stop");
        started = player("UID-2")->count("RtspPlayer_SetupP2PliveStream");
    });
    m_form->showMultiLive();
    QCOMPARE(page(), 2);
    QCOMPARE(stopped, 1);
    QCOMPARE(started, 0);
    QCOMPARE(player("UID-2")->count("RtspPlayer_SetupP2PliveStream"), 1);
}

void TestMainForm::playingACameraStartsItsStream()
{
    m_registry->add("UID-1", "Door");
    showForm();
    auto *tile = find<CCameraMgrItemForm>("CameraMgrItemForm");
    QVERIFY(tile);
    QTest::mouseDClick(tile, Qt::LeftButton);
    QCOMPARE(page(), 1);
    QCOMPARE(player("UID-1")->count("RtspPlayer_SetupP2PliveStream"), 1);
    QVERIFY(player("UID-1")->window() != 0);
}

void TestMainForm::leavingStopsTheSingleView()
{
    m_registry->add("UID-1", "Door");
    showForm();
    m_form->playCamera(Registry::cameras().at(0));
    player("UID-1")->probeOk();
    QTRY_VERIFY_WITH_TIMEOUT(Registry::cameras().at(0)->is_playing(), deadline);
    click("btnPhotoMgr");
    QVERIFY(!Registry::cameras().at(0)->is_playing());
    QCOMPARE(page(), 3);
}

void TestMainForm::multiLiveStartsAndStopsItsTiles()
{
    m_registry->add("UID-1", "Door", true);
    m_registry->add("UID-2", "Yard", false);
    showForm();
    click("btnMultiLive");
    QCOMPARE(page(), 2);
    QCOMPARE(player("UID-1")->path(), std::string("/live/1/h264.sdp"));
    QCOMPARE(player("UID-2")->count("RtspPlayer_SetupP2PliveStream"), 0);
    player("UID-1")->probeOk();
    QTRY_VERIFY_WITH_TIMEOUT(Registry::cameras().at(0)->is_playing(), deadline);
    click("btnCameraMgr");
    QVERIFY(!Registry::cameras().at(0)->is_playing());
}

void TestMainForm::backAndShowOperationsOnlySwitchThePage()
{
    m_registry->add("UID-1", "Door");
    showForm();
    m_form->playCamera(Registry::cameras().at(0));
    const int stops = player("UID-1")->count("RtspPlayer_Stop");
    m_form->backToPhotoMgr();
    QCOMPARE(page(), 3);
    m_form->backToVideoMgr();
    QCOMPARE(page(), 5);
    QCOMPARE(player("UID-1")->count("RtspPlayer_Stop"), stops);
}

void TestMainForm::videoWhileTheGridRecordsAsksForConfirmation()
{
    m_registry->add("UID-1", "Door", true);
    showForm();
    click("btnMultiLive");
    QVERIFY(player("UID-1"));
    player("UID-1")->probeOk();
    QTRY_VERIFY_WITH_TIMEOUT(Registry::cameras().at(0)->is_playing(), deadline);
    {
        ModalScript script;
        script.then([](QWidget *dialog) { press(dialog, "btnOK"); });
        press(find<QWidget>("pageMultiLive"), "btnRecord");
        QVERIFY(script.done());
    }
    ModalScript script;
    script
        .then([](QWidget *box) {
            QCOMPARE(box->findChild<QLabel *>("labelMessage")->text(),
                     QString("By changing view your recording will be stop."));
            press(box, "btnCancel");
        })
        .then([](QWidget *box) { press(box, "btnOk"); });
    click("btnVideoMgr");
    QCOMPARE(page(), 2);
    expectIcons("btnMultiLive");
    click("btnVideoMgr");
    QCOMPARE(page(), 5);
    expectIcons("btnVideoMgr");
    QVERIFY(script.done());
}

void TestMainForm::albumShowsThePhotosOfTheFirstCamera()
{
    m_registry->add("UID-1", "Door");
    showForm();
    writeFile("UID-1/20240305_070809.jpg");
    writeFile("UID-1/20240305_070810.jpg");
    writeFile("UID-1/20240305_070811.mp4");
    click("btnPhotoMgr");
    QCOMPARE(page(), 3);
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pagePhotoMgr").size(), 2, deadline);
    click("btnVideoMgr");
    QCOMPARE(page(), 5);
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pageVideoMgr").size(), 1, deadline);
}

void TestMainForm::photoViewerOpensFromTheAlbumAndGoesBack()
{
    m_registry->add("UID-1", "Door");
    showForm();
    writeFile("UID-1/20240305_070809.jpg");
    click("btnPhotoMgr");
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pagePhotoMgr").size(), 1, deadline);
    QTest::mouseDClick(albumTiles("pagePhotoMgr").at(0), Qt::LeftButton);
    QCOMPARE(page(), 4);
    expectIcons("btnPhotoMgr");
    press(find<QWidget>("pagePlayPhoto"), "btnBack");
    QCOMPARE(page(), 3);
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pagePhotoMgr").size(), 1, deadline);
}

void TestMainForm::recordingOpensFromTheAlbumAndGoesBack()
{
    m_registry->add("UID-1", "Door");
    showForm();
    writeFile("UID-1/20240305_070809.mp4");
    click("btnVideoMgr");
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pageVideoMgr").size(), 1, deadline);
    QTest::mouseDClick(albumTiles("pageVideoMgr").at(0), Qt::LeftButton);
    QCOMPARE(page(), 6);
    press(find<QWidget>("pagePlayVideo"), "btnBack");
    QCOMPARE(page(), 5);
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pageVideoMgr").size(), 1, deadline);
}

void TestMainForm::anAlbumThatIsOpenedAgainShowsNewCameras()
{
    m_registry->add("UID-1", "Door");
    showForm();
    const auto rows = [this] {
        return find<QWidget>("pagePhotoMgr")->findChild<QListView *>()->model()->rowCount();
    };
    click("btnPhotoMgr");
    QCOMPARE(rows(), 1);
    Registry::cameras().create()->set_info(
        Registry::settings().addRecord(CAMERA_TYPE_P2P, "UID-2", "admin", "", "Yard", false));
    click("btnPhotoMgr");
    QCOMPARE(rows(), 2);
    Registry::cameras().remove(Registry::cameras().at(1));
}

void TestMainForm::anotherPageLeavesTheAlbum()
{
    m_registry->add("UID-1", "Door");
    showForm();
    writeFile("UID-1/20240305_070809.jpg");
    click("btnPhotoMgr");
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pagePhotoMgr").size(), 1, deadline);
    click("btnCameraMgr");
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pagePhotoMgr").size(), 0, deadline);
}

void TestMainForm::savePathIsTheOnlyMenuEntry()
{
    build();
    auto *button = find<QToolButton>("btnMenu");
    QCOMPARE(button->menu()->actions().size(), 1);
    QCOMPARE(button->menu()->actions().at(0)->text(), QString("Save Path..."));
    QVERIFY(button->styleSheet().endsWith("QToolButton:menu-indicator{image:url(none.jpg);}"));
}

void TestMainForm::savePathTakesTheChosenFolder()
{
    build();
    FolderDesktop chooser;
    chooser.answer = "C:\\Users\\owner\\My Album";
    const QString before = Registry::settings().albumPath();
    find<QToolButton>("btnMenu")->menu()->actions().at(0)->trigger();
    QCOMPARE(chooser.title, QString("Selecte Path"));
    QCOMPARE(chooser.start, before);
    QCOMPARE(chooser.parent, m_form.get());
    QCOMPARE(Registry::settings().albumPath(), QString("C:/Users/owner/My Album"));
    QCOMPARE(m_registry->file(), QByteArray("ALBUMPATH=\"C:/Users/owner/My Album\"\n"));
}

void TestMainForm::aCancelledChooserChangesNothing()
{
    build();
    FolderDesktop chooser;
    const QString before = Registry::settings().albumPath();
    const QByteArray file = m_registry->file();
    m_form->slotSavePath();
    QCOMPARE(Registry::settings().albumPath(), before);
    QCOMPARE(m_registry->file(), file);
}

void TestMainForm::aFolderThatIsNotThereYetIsTaken_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("missing") << "no/such/folder";
    QTest::newRow("odd characters") << QString::fromUtf8("a;b#c=[d] 'e' Ä");
}

void TestMainForm::aFolderThatIsNotThereYetIsTaken()
{
    QFETCH(QString, folder);
    m_registry->add("UID-1", "Door");
    build();
    FolderDesktop chooser;
    chooser.answer = m_registry->path(folder);
    m_form->slotSavePath();
    QCOMPARE(Registry::settings().albumPath(), chooser.answer);
    // Made by the first writer, and at the next start.
    QVERIFY(!QFileInfo::exists(chooser.answer));
    Registry::cameras().at(0)->take_thumb();
    QVERIFY(QFileInfo::exists(chooser.answer + "/UID-1/thumb.jpeg"));
    const QString wanted = chooser.answer;
    m_form.reset();
    Registry::cameras().closing();
    Registry::cameras().destroyAll();
    Registry::settings().load();
    QCOMPARE(Registry::settings().albumPath(), wanted);
}

void TestMainForm::aFolderThatCannotBeUsedIsRefused_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("message");
    const QString readOnly = "Nothing can be written to this folder. Please choose another one.";
    QTest::newRow("a file") << "file" << readOnly;
    QTest::newRow("below a file") << "file/below" << readOnly;
    QTest::newRow("not writable") << "/proc" << readOnly;
    QTest::newRow("missing in one that is not writable") << "/proc/zelvaro" << readOnly;
    QTest::newRow("too long for the settings file")
        << QString(300, 'x') << "Path: too long to be saved. Please enter a shorter text.";
}

void TestMainForm::aFolderThatCannotBeUsedIsRefused()
{
    QFETCH(QString, folder);
    QFETCH(QString, message);
    build();
    QFile file(m_registry->path("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    const QString before = Registry::settings().albumPath();
    const QByteArray saved = m_registry->file();
    FolderDesktop chooser;
    chooser.answer = folder.startsWith("/") ? folder : m_registry->path(folder);
    QStringList texts;
    ModalScript script;
    script.then([&](CMessageBox *box) {
        texts << box->findChild<QLabel *>("labelTitle")->text()
              << box->findChild<QLabel *>("labelMessage")->text();
        press(box, "btnOk");
    });
    m_form->slotSavePath();
    QVERIFY(script.done());
    QCOMPARE(texts, QStringList({"Error", message}));
    QCOMPARE(Registry::settings().albumPath(), before);
    QCOMPARE(m_registry->file(), saved);
}

void TestMainForm::pagesFollowTheAlbumPath()
{
    m_registry->add("UID-1", "Door");
    showForm();
    FolderDesktop chooser;
    chooser.answer = m_registry->path("second");
    writeFile("UID-1/20240305_070809.jpg");
    QVERIFY(QDir().mkpath(chooser.answer + "/UID-1"));
    for (const char *name : {"thumb.jpeg", "20240305_070810.jpg", "20240305_070811.jpg"})
        QVERIFY(
            QImage(16, 12, QImage::Format_RGB32).save(chooser.answer + "/UID-1/" + name, "JPG"));
    const auto *const tile = find<QWidget>("frameCameraItem");
    QVERIFY(!tile->styleSheet().contains(chooser.answer));
    m_form->slotSavePath();
    QTRY_VERIFY_WITH_TIMEOUT(tile->styleSheet().contains(chooser.answer), deadline);

    Registry::settings().setAlbumPath(m_registry->path("album"));
    click("btnPhotoMgr");
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pagePhotoMgr").size(), 1, deadline);
    m_form->slotSavePath();
    QTRY_COMPARE_WITH_TIMEOUT(albumTiles("pagePhotoMgr").size(), 2, deadline);
    QCOMPARE(page(), 3);
}

void TestMainForm::troublesWithTheSettingsFileAreInTheStatusRow()
{
    QVERIFY(QDir().mkpath(Registry::settings().configFile())); // a folder in its place
    Registry::settings().load();
    m_form = std::make_unique<CMainForm>();
    const auto *const status = find<QFrame>("frameStatus")->findChild<QLabel *>("labelStatus");
    const QString file = Registry::settings().configFile();
    QVERIFY(file.startsWith(QDir::homePath() + "/"));
    const QString shown = "~" + file.mid(QDir::homePath().size());
    const QString missing = shown + " cannot be read: its cameras are missing here.";
    QCOMPARE(status->text(), missing);
    m_form->showStatus("Door: nothing is being written");
    QCOMPARE(status->text(), QString("Door: nothing is being written"));
    Registry::settings().save();
    QCOMPARE(status->text(), QString("Door: nothing is being written"));
    m_form->showStatus({});
    QCOMPARE(status->text(), missing + " Changes cannot be saved in " + shown + ".");
    QVERIFY(QDir().rmdir(file));
    Registry::settings().save();
    QCOMPARE(status->text(), missing);
    Registry::settings().load();
    QCOMPARE(status->text(), QString());
}

void TestMainForm::aLowWindowLeavesItsHeightToThePage()
{
    showForm();
    const auto pageHeight = [this] { return find<QStackedWidget>("stackedWidget")->height(); };
    m_form->resize(500, 420);
    QTRY_VERIFY_WITH_TIMEOUT(find<QWidget>("frameStatus")->isVisible(), deadline);
    QCOMPARE(find<QToolButton>("btnSetUp")->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    const int inUsualWindow = pageHeight();
    m_form->resize(500, 419);
    QTRY_VERIFY_WITH_TIMEOUT(!find<QWidget>("frameStatus")->isVisible(), deadline);
    QCOMPARE(find<QToolButton>("btnSetUp")->toolButtonStyle(), Qt::ToolButtonIconOnly);
    QTRY_VERIFY_WITH_TIMEOUT(pageHeight() > inUsualWindow, deadline);
    click("btnPhotoMgr");
    QCOMPARE(page(), 3);
}

void TestMainForm::theWindowTakesThePlaceOfAnEarlierRun()
{
    showForm();
    const QRect screen = m_form->screen()->availableGeometry();
    const QRect place(screen.topLeft() + QPoint(31, 17), QSize(640, 480));
    m_form->setPlace({place, false});
    QTRY_COMPARE_WITH_TIMEOUT(m_form->geometry(), place, deadline);
    QCOMPARE(m_form->place().normal, place);
    QVERIFY(!m_form->place().maximized);
    m_form->setPlace({place, true});
    QTRY_COMPARE_WITH_TIMEOUT(m_form->geometry(), screen, deadline);
    QCOMPARE(m_form->place().normal, place);
    QVERIFY(m_form->place().maximized);
    click("btnMax");
    QTRY_COMPARE_WITH_TIMEOUT(m_form->geometry(), place, deadline);
    m_form->setPlace({QRect(90000, 90000, 640, 480), false});
    QVERIFY(screen.contains(m_form->geometry()));
}

void TestMainForm::maximizeTogglesGeometryAndButton()
{
    showForm();
    const QRect normal = m_form->geometry();
    auto *button = find<QToolButton>("btnMax");
    QVERIFY(button->styleSheet().contains(":/images/sysbtn/maxbtn_default.png"));
    click("btnMax");
    QTRY_COMPARE_WITH_TIMEOUT(m_form->geometry(), m_form->screen()->availableGeometry(), deadline);
    QVERIFY(button->styleSheet().contains(":/images/sysbtn/restorebtn_default.png"));
    const auto says = [button] {
        return QStringList({button->text(), button->toolTip(), button->accessibleName()});
    };
    QCOMPARE(says(), QStringList({"Restore", "Restore", "Restore"}));
    click("btnMax");
    QTRY_COMPARE_WITH_TIMEOUT(m_form->geometry(), normal, deadline);
    QVERIFY(button->styleSheet().contains(":/images/sysbtn/maxbtn_default.png"));
    QCOMPARE(says(), QStringList({"Maximize", "Maximize", "Maximize"}));
}

void TestMainForm::aDoubleClickOnTheTitleMaximizes_data()
{
    QTest::addColumn<QString>("place");
    QTest::newRow("strip") << "frameTitle";
    QTest::newRow("logo") << "frameLogo";
}

void TestMainForm::aDoubleClickOnTheTitleMaximizes()
{
    QFETCH(QString, place);
    showForm();
    const QRect normal = m_form->geometry();
    auto *title = m_form->findChild<QWidget *>(place);
    QTest::mouseDClick(title, Qt::RightButton);
    QCOMPARE(m_form->geometry(), normal);
    QTest::mouseDClick(title, Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(m_form->geometry(), m_form->screen()->availableGeometry(), deadline);
    QCOMPARE(find<QToolButton>("btnMax")->text(), QString("Restore"));
    QTest::mouseDClick(title, Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(m_form->geometry(), normal, deadline);
}

void TestMainForm::whileMaximizedEdgesAndTitleBarDoNothing()
{
    showForm();
    for (const char *frame : {"frameLeft", "frameRight"})
        QCOMPARE(find<QWidget>(frame)->cursor().shape(), Qt::SizeHorCursor);
    for (const char *frame : {"frameTop", "frameBottom"})
        QCOMPARE(find<QWidget>(frame)->cursor().shape(), Qt::SizeVerCursor);

    m_form->slotMaximized();
    const QRect full = m_form->geometry();
    for (const char *frame : {"frameLeft", "frameRight", "frameTop", "frameBottom"})
        QCOMPARE(find<QWidget>(frame)->cursor().shape(), Qt::ArrowCursor);
    for (const QPoint &edge : {full.topLeft(), full.bottomRight(), QPoint(full.left(), 200),
                               QPoint(200, full.bottom())}) {
        hoverAt(edge);
        QCOMPARE(m_form->cursor().shape(), Qt::ArrowCursor);
        QCOMPARE(find<QWidget>("frameBottom")->cursor().shape(), Qt::ArrowCursor);
        pressAt(edge);
        dragTo(edge - QPoint(30, 30));
        releaseAt(edge);
        QCOMPARE(m_form->geometry(), full);
    }
    auto *strip = find<CTitleWidget>("frameTitle");
    const QPoint start = strip->mapToGlobal(QPoint(200, 10));
    QTest::mousePress(strip, Qt::LeftButton, {}, QPoint(200, 10));
    QMouseEvent move(QEvent::MouseMove, QPoint(250, 60), start + QPoint(50, 50), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(strip, &move);
    QCOMPARE(m_form->geometry(), full);

    m_form->slotMaximized();
    QCOMPARE(find<QWidget>("frameLeft")->cursor().shape(), Qt::SizeHorCursor);
    QCOMPARE(find<QWidget>("frameTop")->cursor().shape(), Qt::SizeVerCursor);
}

void TestMainForm::titleBarMovesTheWindow()
{
    showForm();
    auto *strip = find<CTitleWidget>("frameTitle");
    const QPoint start = strip->mapToGlobal(QPoint(200, 10));
    QTest::mousePress(strip, Qt::LeftButton, {}, QPoint(200, 10));
    QMouseEvent move(QEvent::MouseMove, QPoint(220, 40), start + QPoint(20, 30), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(strip, &move);
    QTRY_COMPARE_WITH_TIMEOUT(m_form->pos(), QPoint(120, 90), deadline);
}

void TestMainForm::draggingEdgesResizes_data()
{
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<QPoint>("by");
    QTest::addColumn<QRect>("result");
    // The window is left 100, top 60, right 599, bottom 459.
    QTest::newRow("left") << QPoint(100, 250) << QPoint(-30, 5) << QRect(70, 60, 530, 400);
    QTest::newRow("right") << QPoint(599, 250) << QPoint(40, 5) << QRect(100, 60, 540, 400);
    QTest::newRow("top") << QPoint(300, 60) << QPoint(5, -20) << QRect(100, 40, 500, 420);
    QTest::newRow("bottom") << QPoint(300, 459) << QPoint(5, 30) << QRect(100, 60, 500, 430);
    QTest::newRow("corner") << QPoint(599, 459) << QPoint(60, 50) << QRect(100, 60, 560, 450);
}

void TestMainForm::draggingEdgesResizes()
{
    QFETCH(QPoint, from);
    QFETCH(QPoint, by);
    QFETCH(QRect, result);
    showForm();
    pressAt(from);
    dragTo(from + by / 2);
    dragTo(from + by);
    QTRY_COMPARE_WITH_TIMEOUT(m_form->geometry(), result, deadline);
    releaseAt(from + by);
    dragTo(from);
    QCOMPARE(m_form->geometry(), result);
}

void TestMainForm::draggingTheLeftEdgeStopsAtWidth400()
{
    showForm();
    pressAt(QPoint(100, 250));
    for (const int x : {150, 300, 500, 599, 700, 2000}) {
        dragTo(QPoint(x, 250));
        QVERIFY2(m_form->width() >= 400, qPrintable(QString::number(m_form->width())));
        QCOMPARE(m_form->geometry().right(), 599);
    }
    QCOMPARE(m_form->geometry(), QRect(200, 60, 400, 400));
}

void TestMainForm::hoveringChangesOnlyTheCursor()
{
    showForm();
    const QRect before = m_form->geometry();
    const std::pair<QPoint, Qt::CursorShape> steps[] = {
        {{300, 62}, Qt::SizeVerCursor},  {{300, 250}, Qt::ArrowCursor},
        {{101, 250}, Qt::SizeHorCursor}, {{598, 250}, Qt::SizeHorCursor},
        {{300, 455}, Qt::SizeVerCursor}, {{580, 440}, Qt::SizeFDiagCursor},
        {{300, 250}, Qt::ArrowCursor},
    };
    for (const auto &[pointer, cursor] : steps) {
        hoverAt(pointer);
        QCOMPARE(m_form->cursor().shape(), cursor);
        QCOMPARE(m_form->geometry(), before);
        const bool corner = cursor == Qt::SizeFDiagCursor;
        QCOMPARE(find<QWidget>("frameBottom")->cursor().shape(),
                 corner ? Qt::SizeFDiagCursor : Qt::SizeVerCursor);
        QCOMPARE(find<QWidget>("frameRight")->cursor().shape(),
                 corner ? Qt::SizeFDiagCursor : Qt::SizeHorCursor);
        // The pages never take over a resize cursor.
        QCOMPARE(find<QWidget>("stackedWidget")->cursor().shape(), Qt::ArrowCursor);
    }
}

void TestMainForm::releaseOfAnotherButtonIsIgnored()
{
    showForm();
    pressAt(QPoint(100, 250));
    dragTo(QPoint(90, 250));
    QVERIFY(!send(QEvent::MouseButtonRelease, QPoint(90, 250), Qt::RightButton, Qt::LeftButton));
    dragTo(QPoint(80, 250));
    QCOMPARE(m_form->geometry(), QRect(80, 60, 520, 400));
    QVERIFY(send(QEvent::MouseButtonRelease, QPoint(80, 250), Qt::LeftButton, Qt::NoButton));
}

void TestMainForm::releaseRestoresTheArrow()
{
    showForm();
    pressAt(QPoint(599, 459));
    dragTo(QPoint(610, 470));
    QCOMPARE(m_form->cursor().shape(), Qt::SizeFDiagCursor);
    releaseAt(QPoint(610, 470));
    QCOMPARE(m_form->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(find<QWidget>("frameBottom")->cursor().shape(), Qt::SizeVerCursor);
}

void TestMainForm::aDragThatStartsInsideResizesOnceItReachesAnEdge()
{
    showForm();
    pressAt(QPoint(300, 250));
    dragTo(QPoint(300, 300));
    QCOMPARE(m_form->geometry(), QRect(100, 60, 500, 400));
    dragTo(QPoint(300, 456));
    dragTo(QPoint(300, 480));
    QCOMPARE(m_form->geometry(), QRect(100, 60, 500, 421));
}

void TestMainForm::closeEndsTheEventLoop()
{
    showForm();
    QSignalSpy quitting(qApp, &QCoreApplication::aboutToQuit);
    QTimer::singleShot(0, m_form.get(), [this] { click("btnClose"); });
    QCOMPARE(QApplication::exec(), 0);
    QCOMPARE(quitting.count(), 1);
}

void TestMainForm::closingTheWindowEndsTheEventLoop()
{
    showForm();
    QSignalSpy quitting(qApp, &QCoreApplication::aboutToQuit);
    // As the window manager's menu does.
    QTimer::singleShot(0, m_form.get(), [this] { m_form->close(); });
    QCOMPARE(QApplication::exec(), 0);
    QCOMPARE(quitting.count(), 1);
}

void TestMainForm::minimizeMinimizes()
{
    showForm();
    click("btnMin");
    QTRY_VERIFY_WITH_TIMEOUT(m_form->isMinimized(), deadline);
}

void TestMainForm::discoverOpensThePicker()
{
    showForm();
    bool opened = false;
    QTimer look;
    connect(&look, &QTimer::timeout, this, [&] {
        QWidget *modal = QApplication::activeModalWidget();
        if (auto *picker = qobject_cast<CSearchCameraForm *>(modal)) {
            opened = true;
            picker->reject();
        } else if (auto *dialog = qobject_cast<CAddCameraForm *>(modal)) {
            if (opened)
                dialog->reject();
            else
                QTimer::singleShot(0, dialog, [dialog] { press(dialog, "btnDiscovery"); });
        }
    });
    look.start(5);
    click("btnAdd");
    QVERIFY(opened);
}

QTEST_MAIN(TestMainForm)
#include "tst_main_form.moc"
