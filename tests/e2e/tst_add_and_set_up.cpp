#include "app/main_form.h"
#include "tests/e2e/program_run.h"
#include "tests/support/modal_script.h"
#include "ui/common/message_box.h"
#include "ui/discovery/address_edit.h"
#include "ui/discovery/camera_set_up.h"
#include "ui/discovery/search_camera_form.h"
#include "ui/discovery/search_camera_list_form.h"
#include "ui/live/play_camera_form.h"
#include "ui/manager/add_button_form.h"
#include "ui/manager/add_camera_form.h"
#include "ui/manager/camera_mgr_item_form.h"
#include "ui/manager/motion_dialog.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTableView>
#include <QTest>
#include <QToolButton>

using zelvaro::test::CamsimProcess;

namespace {

constexpr int patience = 40'000; // milliseconds for anything that needs a camera

QString className(const QObject *object)
{
    return object ? object->metaObject()->className() : "none";
}

} // namespace

/// A camera that the network answers with is added, watched, renamed, moved to another address,
/// found again there, and deleted; the settings file is compared after each step.
class TestAddAndSetUp : public QObject
{
    Q_OBJECT

private slots:
    void cameraIsFoundAddedChangedMovedAndDeleted();

private:
    void add();
    void watch();
    void rename();
    void changeMotionWindows();
    void reboot();
    void moveToOtherAddress();
    void remove();

    QList<CCameraMgrItemForm *> tiles() const
    {
        return m_window->findChildren<CCameraMgrItemForm *>();
    }
    bool isConnected() const
    {
        return tiles().size() == 1 &&
               tiles().first()->findChild<QWidget *>("labelStatusImage")->toolTip() == "Connected";
    }
    int page() const
    {
        return m_window->findChild<QStackedWidget *>("stackedWidget")->currentIndex();
    }
    template <typename Page>
    void clickOn(Page *parent, const char *name)
    {
        m_input->click(parent->template findChild<QWidget *>(QLatin1String(name)));
    }
    void enter(QWidget *parent, const char *name, const QString &text)
    {
        auto *edit = parent->findChild<QLineEdit *>(QLatin1String(name));
        m_input->click(edit);
        QVERIFY2(QTest::qWaitFor([edit] { return edit->hasFocus(); }, patience),
                 qPrintable(QString("%1 has no focus; active: %2, with focus: %3")
                                .arg(name, className(QApplication::activeWindow()),
                                     className(QApplication::focusWidget()))));
        m_input->selectAll();
        m_input->type(text);
        QTRY_COMPARE_WITH_TIMEOUT(edit->text(), text, patience);
    }
    void chooseFromMenu(const QString &text);
    void playAndGoBack();
    QByteArray settingsWith(const QByteArray &name) const
    {
        return "ALBUMPATH=" + m_run->albumFolder().toUtf8() +
               "\n[0]\nTYPE=P2P\nHOSTNAME=" + QByteArray::fromStdString(m_uid) +
               "\nUSERNAME=admin\nPASSWORD=secret\nNAME=" + name + "\nMULTILIVE=0\n";
    }

    ProgramRun *m_run = nullptr;
    RealInput *m_input = nullptr;
    CamsimProcess *m_cameras = nullptr;
    CMainForm *m_window = nullptr;
    std::string m_uid;
};

void TestAddAndSetUp::cameraIsFoundAddedChangedMovedAndDeleted()
{
    RealInput input;
    if (!input.isValid())
        QSKIP("The display has no XTEST extension.");
    CamsimProcess cameras({"--count", "1", "--user", "admin", "--password", "secret", "--name",
                           "Tür vorn", "--main-size", "640x360", "--main-bitrate", "800000"});
    ProgramRun run;
    ProgramRun::makeFindable(cameras);
    m_run = &run;
    m_input = &input;
    m_cameras = &cameras;
    m_uid = cameras.camera().uid;
    bool finished = false;
    const int code = run.run([&](CMainForm &window) {
        m_window = &window;
        for (const auto step :
             {&TestAddAndSetUp::add, &TestAddAndSetUp::watch, &TestAddAndSetUp::rename,
              &TestAddAndSetUp::changeMotionWindows, &TestAddAndSetUp::reboot,
              &TestAddAndSetUp::moveToOtherAddress, &TestAddAndSetUp::remove}) {
            (this->*step)();
            if (QTest::currentTestFailed())
                return;
        }
        finished = true;
    });
    QVERIFY(finished);
    QCOMPARE(code, 0);
}

void TestAddAndSetUp::add()
{
    QVERIFY(QTest::qWaitForWindowActive(m_window, patience));
    ModalScript modals;
    modals
        .then([this](CAddCameraForm *dialog) {
            QCOMPARE(dialog->findChild<QLabel *>("labelTitle")->text(),
                     QStringLiteral("Add Camera"));
            clickOn(dialog, "btnDiscovery");
        })
        .then([this](CSearchCameraForm *picker) {
            auto *list = picker->findChild<QListView *>("listCameraList");
            QTRY_COMPARE_WITH_TIMEOUT(list->model()->rowCount(), 1, patience);
            const QModelIndex row = list->model()->index(0, 0);
            QVERIFY(row.data().toString().endsWith(
                QStringLiteral("  (%1)").arg(QString::fromStdString(m_uid))));
            m_input->click(list->viewport(), list->visualRect(row).center());
            QTRY_COMPARE_WITH_TIMEOUT(list->currentIndex(), row, patience);
            clickOn(picker, "btnOk");
        })
        .then([this](CAddCameraForm *dialog) {
            QCOMPARE(dialog->findChild<QLineEdit *>("editUid")->text(),
                     QString::fromStdString(m_uid));
            enter(dialog, "editUserName", "admin");
            enter(dialog, "editPassword", "secret");
            enter(dialog, "editCameraName", "Porch");
            clickOn(dialog, "btnOk");
        });
    clickOn(m_window->findChild<CAddButtonForm *>(), "btnAdd");
    QTRY_VERIFY_WITH_TIMEOUT(modals.done(), patience);
    QTRY_VERIFY_WITH_TIMEOUT(isConnected(), patience);
    QCOMPARE(m_run->settings(), settingsWith("Porch"));
}

void TestAddAndSetUp::watch()
{
    playAndGoBack();
    QCOMPARE(m_run->settings(), settingsWith("Porch"));
}

void TestAddAndSetUp::playAndGoBack()
{
    m_input->doubleClick(tiles().first()->findChild<QWidget *>("frameCameraItem"));
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PagePlayCamera), patience);
    auto *live = m_window->findChild<CPlayCameraForm *>();
    QTRY_VERIFY_WITH_TIMEOUT(
        live->findChild<QLabel *>("labelStatus")->text().startsWith("640x360("), 2 * patience);
    clickOn(live, "btnBack");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PageCameraMgr), patience);
}

void TestAddAndSetUp::chooseFromMenu(const QString &text)
{
    auto *button = tiles().first()->findChild<QToolButton *>("btnMenu");
    m_input->click(button);
    QTRY_VERIFY_WITH_TIMEOUT(button->menu()->isVisible(), patience);
    for (QAction *action : button->menu()->actions()) {
        if (action->text() == text) {
            m_input->click(button->menu(), button->menu()->actionGeometry(action).center());
            return;
        }
    }
    QFAIL("no such action");
}

void TestAddAndSetUp::rename()
{
    ModalScript modals;
    modals.then([this](CAddCameraForm *dialog) {
        QCOMPARE(dialog->findChild<QLabel *>("labelTitle")->text(),
                 QStringLiteral("Modify Camera"));
        enter(dialog, "editCameraName", "Back porch");
        clickOn(dialog, "btnOk");
    });
    chooseFromMenu("Modify");
    QTRY_VERIFY_WITH_TIMEOUT(modals.done(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(m_run->settings(), settingsWith("\"Back porch\""), patience);
    QTRY_VERIFY_WITH_TIMEOUT(isConnected(), patience);
    QCOMPARE(tiles().first()->findChild<QLabel *>("labelCameraName")->text(),
             QStringLiteral("Back porch"));
}

// The page keeps the motion and reboot flows behind slots that no control is connected to.
void TestAddAndSetUp::changeMotionWindows()
{
    ModalScript modals;
    modals.then([this](Motion_Dialog *dialog) {
        enter(dialog, "sens1", "42");
        clickOn(dialog, "btnApply");
        QTRY_VERIFY_WITH_TIMEOUT(
            QString::fromStdString(m_cameras->status()["command_log"]).contains("SENSITIVITY=42"),
            patience);
        QTRY_VERIFY_WITH_TIMEOUT(QApplication::activeModalWidget() == dialog, patience);
        dialog->findChild<QLineEdit *>("sens1")->clear();
        clickOn(dialog, "btnQuery");
        QTRY_COMPARE_WITH_TIMEOUT(dialog->findChild<QLineEdit *>("sens1")->text(),
                                  QStringLiteral("42"), patience);
        QTRY_VERIFY_WITH_TIMEOUT(QApplication::activeModalWidget() == dialog, patience);
        clickOn(dialog, "btnExit");
    });
    QMetaObject::invokeMethod(tiles().first(), "slotMotion", Qt::QueuedConnection);
    QTRY_VERIFY_WITH_TIMEOUT(modals.done(), 2 * patience);
}

void TestAddAndSetUp::reboot()
{
    ModalScript modals;
    modals
        .then([this](CMessageBox *question) {
            QCOMPARE(question->findChild<QLabel *>("labelMessage")->text(),
                     QStringLiteral("Reboot camera?"));
            clickOn(question, "btnOk");
        })
        .then([this](CMessageBox *result) {
            QCOMPARE(result->findChild<QLabel *>("labelMessage")->text(),
                     QStringLiteral("Reboot success. Please wait a few minutes and re-connect."));
            clickOn(result, "btnOk");
        });
    QMetaObject::invokeMethod(tiles().first(), "slotReboot", Qt::QueuedConnection);
    QTRY_VERIFY_WITH_TIMEOUT(modals.done(), 2 * patience);
    QTRY_VERIFY_WITH_TIMEOUT(QApplication::activeModalWidget() == nullptr, patience);
    QTRY_COMPARE_WITH_TIMEOUT(m_cameras->statusNumber("rebooting"), 0L, patience);
}

void TestAddAndSetUp::moveToOtherAddress()
{
    clickOn(m_window, "btnSetUp");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PageSearchCameraList), patience);
    auto *search = m_window->findChild<CSearchCameraListForm *>();
    auto *table = search->findChild<QTableView *>("tableView");
    clickOn(search, "btnSearch");
    QTRY_COMPARE_WITH_TIMEOUT(table->model()->rowCount(), 1, patience);
    QTRY_VERIFY_WITH_TIMEOUT(QApplication::activeModalWidget() == nullptr, patience);
    QCOMPARE(table->model()->index(0, 3).data().toString(), QStringLiteral("127.0.0.1"));
    m_input->click(table->viewport(), table->visualRect(table->model()->index(0, 0)).center());
    QTRY_COMPARE_WITH_TIMEOUT(table->currentIndex().row(), 0, patience);

    ModalScript modals;
    modals.then([this](CCameraSetUp *dialog) {
        enter(dialog, "editUserName", "admin");
        enter(dialog, "editPassword", "secret");
        QSignalSpy read(dialog, &CCameraSetUp::signalGetConfFinished);
        clickOn(dialog, "btnQuery");
        QTRY_COMPARE_WITH_TIMEOUT(read.count(), 1, patience);
        QTRY_COMPARE_WITH_TIMEOUT(dialog->findChild<QLineEdit *>("editDeviceName")->text(),
                                  QStringLiteral("Tür vorn"), patience);
        QTRY_VERIFY_WITH_TIMEOUT(QApplication::activeModalWidget() == dialog, patience);
        auto *manual = dialog->findChild<QCheckBox *>("checkAssignIp");
        if (!manual->isChecked())
            m_input->click(manual, QPoint(12, manual->height() / 2));
        QTRY_VERIFY_WITH_TIMEOUT(manual->isChecked(), patience);
        auto *ip = dialog->findChild<CAddressEdit *>("addressIp");
        enter(ip, "octet1", "127");
        enter(ip, "octet2", "0");
        enter(ip, "octet3", "0");
        enter(ip, "octet4", "2");
        auto *mask = dialog->findChild<CAddressEdit *>("addressMask");
        enter(mask, "octet1", "255");
        QSignalSpy written(dialog, &CCameraSetUp::signalSetConfFinished);
        clickOn(dialog, "btnApply");
        QTRY_COMPARE_WITH_TIMEOUT(written.count(), 1, patience);
        QTRY_VERIFY_WITH_TIMEOUT(m_cameras->status()["address"] == "127.0.0.2", patience);
        QTRY_VERIFY_WITH_TIMEOUT(QApplication::activeModalWidget() == dialog, patience);
        clickOn(dialog, "btnExit");
    });
    clickOn(search, "btnOk");
    QTRY_VERIFY_WITH_TIMEOUT(modals.done(), 2 * patience);
    QCOMPARE(table->model()->index(0, 3).data().toString(), QStringLiteral("127.0.0.2"));
    // A name that could not be typed there passes through, and nobody writes it.
    QCOMPARE(table->model()->index(0, 1).data().toString(), QStringLiteral("Tür vorn"));

    // The session was not notified: it finds the camera by its UID.
    clickOn(m_window, "btnCameraMgr");
    QTRY_COMPARE_WITH_TIMEOUT(page(), int(CMainForm::PageCameraMgr), patience);
    playAndGoBack();
    QCOMPARE(m_run->settings(), settingsWith("\"Back porch\""));
}

void TestAddAndSetUp::remove()
{
    ModalScript modals;
    modals.then([this](CMessageBox *box) {
        QCOMPARE(box->findChild<QLabel *>("labelMessage")->text(),
                 QStringLiteral("Delete camera?"));
        clickOn(box, "btnOk");
    });
    chooseFromMenu("Delete");
    QTRY_VERIFY_WITH_TIMEOUT(modals.done() && tiles().isEmpty(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(m_run->settings(),
                              QByteArray("ALBUMPATH=" + m_run->albumFolder().toUtf8() + "\n"),
                              patience);
}

QTEST_APPLESS_MAIN(TestAddAndSetUp)
#include "tst_add_and_set_up.moc"
