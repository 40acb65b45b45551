#include "app/main_form.h"
#include "camera/camera.h"
#include "resources/resources.h"
#include "tests/support/modal_script.h"
#include "tests/support/registry.h"
#include "ui/common/desktop.h"
#include "ui/live/select_camera_recording_form.h"
#include "ui/live/video_frame.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QStackedWidget>
#include <QTest>
#include <QToolButton>

namespace {

constexpr int deadline = 20000; // milliseconds

/// Chooses folders in a dialog.
class DialogDesktop : public Desktop
{
public:
    DialogDesktop() { setDesktop(this); }
    ~DialogDesktop() override { setDesktop(nullptr); }

    bool openUrl(const QUrl &) override { return false; }
    void playSound(const QString &) override {}
    QString chooseFolder(QWidget *parent, const QString &, const QString &start) override
    {
        ++asked;
        return QDialog(parent).exec() == QDialog::Accepted ? start : QString();
    }

    int asked = 0;
};

} // namespace

/// Escape closes what covers a picture when it is pressed, and is released over the picture.
class TestEscape : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init();
    void cleanup();

    void inTheQuestionBeforeTheViewChanges();
    void inTheMainMenu_data() { pages(); }
    void inTheMainMenu();
    void inTheFolderChooser_data() { pages(); }
    void inTheFolderChooser();

private:
    static void pages()
    {
        QTest::addColumn<QString>("page");
        QTest::newRow("one camera") << "pagePlayCamera";
        QTest::newRow("grid") << "pageMultiLive";
    }
    QWidget *child(const char *name) const
    {
        return m_form->findChild<QWidget *>(QLatin1String(name));
    }
    CVideoFrame *picture(const QString &page) const
    {
        return m_form->findChild<QWidget *>(page)->findChild<CVideoFrame *>();
    }
    void click(QWidget *widget) const { QTest::mouseClick(widget, Qt::LeftButton); }
    /// Shows the camera on that page, and gives its picture the focus.
    void open(const QString &page);
    /// The key comes to what has the focus now; the picture stays on its page.
    void releaseOver(const QString &page);

    std::unique_ptr<Registry> m_registry;
    std::unique_ptr<DialogDesktop> m_desktop;
    std::unique_ptr<CMainForm> m_form;
};

void TestEscape::init()
{
    fake_cammgr::reset();
    m_registry = std::make_unique<Registry>();
    m_registry->add("UID-1", "Door", true);
    fake_cammgr::Script script;
    script.probe = fake_cammgr::Probe::Ok;
    fake_cammgr::setDefaults(script);
    m_registry->start();
    m_desktop = std::make_unique<DialogDesktop>();
    m_form = std::make_unique<CMainForm>();
    setPageHost(m_form.get());
    m_form->show();
    m_form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
}

void TestEscape::cleanup()
{
    m_form.reset();
    m_desktop.reset();
    m_registry.reset();
}

void TestEscape::open(const QString &page)
{
    if (page == QLatin1String("pageMultiLive"))
        m_form->showMultiLive();
    else
        m_form->playCamera(Registry::cameras().at(0));
    // After the layout, which shows native windows: the offscreen platform activates each of them.
    auto *status = m_form->findChild<QWidget *>(page)->findChild<QLabel *>("labelStatus");
    QTRY_VERIFY_WITH_TIMEOUT(status->text().startsWith("640x360"), deadline);
    m_form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    click(picture(page));
    QTRY_COMPARE_WITH_TIMEOUT(QApplication::focusWidget(), picture(page), deadline);
}

void TestEscape::releaseOver(const QString &page)
{
    m_form->activateWindow(); // as a window manager does when a dialog has closed
    QTRY_COMPARE_WITH_TIMEOUT(QApplication::focusWidget(), picture(page), deadline);
    QTest::keyRelease(m_form->windowHandle(), Qt::Key_Escape);
    QVERIFY(!picture(page)->isWindow());
    // It is that press which is missing.
    QTest::keyClick(m_form->windowHandle(), Qt::Key_Escape);
    QVERIFY(picture(page)->isWindow());
}

void TestEscape::inTheQuestionBeforeTheViewChanges()
{
    open("pageMultiLive");
    {
        ModalScript script([](CSelectCameraRecordingForm *dialog) { press(dialog, "btnOK"); });
        click(child("pageMultiLive")->findChild<QToolButton *>("btnRecord"));
        QVERIFY(script.done());
    }
    click(picture("pageMultiLive"));
    ModalScript escape([](QWidget *box) { QTest::keyPress(box, Qt::Key_Escape); });
    click(child("btnVideoMgr"));
    QVERIFY(escape.done());
    QCOMPARE(m_form->findChild<QStackedWidget *>()->currentIndex(), int(CMainForm::PageMultiLive));
    releaseOver("pageMultiLive");
}

void TestEscape::inTheMainMenu()
{
    QFETCH(QString, page);
    open(page);
    auto *menu = m_form->findChild<QToolButton *>("btnMenu")->menu();
    bool shown = false;
    connect(menu, &QMenu::aboutToShow, this, [&, menu] {
        QTimer::singleShot(0, menu, [&, menu] {
            shown = menu->isVisible();
            QTest::keyPress(menu, Qt::Key_Escape);
        });
    });
    click(child("btnMenu")); // returns when the menu is closed
    QVERIFY(shown);
    QVERIFY(!menu->isVisible());
    releaseOver(page);
}

void TestEscape::inTheFolderChooser()
{
    QFETCH(QString, page);
    open(page);
    ModalScript escape([](QDialog *dialog) { QTest::keyPress(dialog, Qt::Key_Escape); });
    m_form->findChild<QToolButton *>("btnMenu")->menu()->actions().first()->trigger();
    QVERIFY(escape.done());
    QCOMPARE(m_desktop->asked, 1);
    releaseOver(page);
}

QTEST_MAIN(TestEscape)
#include "tst_escape.moc"
