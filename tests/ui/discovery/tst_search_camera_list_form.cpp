#include "tests/fakes/fake_ndcp.h"
#include "tests/support/modal_script.h"
#include "tests/support/tool_tip_text.h"
#include "ui/common/busy_dialog.h"
#include "ui/common/desktop.h"
#include "ui/common/message_box.h"
#include "ui/discovery/camera_set_up.h"
#include "ui/discovery/search_camera_list_form.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include <cstring>

using zelvaro::BusyDialog;

namespace {

class RecordingDesktop : public Desktop
{
public:
    bool openUrl(const QUrl &url) override
    {
        opened.append(url.toString());
        return true;
    }
    void playSound(const QString &) override {}
    QString chooseFolder(QWidget *, const QString &, const QString &) override { return {}; }

    QStringList opened;
};

} // namespace

class TestSearchCameraListForm : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void looksAsDescribed();
    void tableHasSevenColumns();
    void searchWaitsForTheEventOnly();
    void rowShowsTheRecord();
    void deviceAnsweringTwiceAppearsOnce();
    void uidsAreComparedByteByByte();
    void wrongCountsEndTheWalk();
    void portAbove32767IsShownNegative();
    void researchKeepsUserNameAndPassword();
    void devicesNotFoundAgainStay();
    void recordsWithoutUidNeverAppear();
    void noSelectionTellsTheUser_data();
    void noSelectionTellsTheUser();
    void selectedRowStaysSelectedAfterASearch();
    void browserOpensTheWebPage();
    void setupReadsThenOpensTheDialog();
    void setupOpensAfterFailedRead();
    void theTableFollowsTheSetUp();
    void aPageThatGoesWhileItWaits_data();
    void aPageThatGoesWhileItWaits();
    void clearForgetsEverything();
    void unknownEventIsADeveloperCheck();
    void refusedSearchIsTold();
    void missingLibraryIsTold();
    void emptyTableTellsHowItIsFilled();

private:
    QTableView *table() const { return m_form->findChild<QTableView *>("tableView"); }
    QPushButton *button(const char *name) const
    {
        return m_form->findChild<QPushButton *>(QLatin1String(name));
    }
    QString cell(int row, int column) const
    {
        return table()->model()->index(row, column).data().toString();
    }
    void search(const std::vector<ndcp_device> &devices)
    {
        fake_ndcp::setDevices(devices);
        fake_ndcp::answerDiscover(0);
        QTest::mouseClick(button("btnSearch"), Qt::LeftButton);
        fake_ndcp::answerDiscover(std::nullopt);
    }
    /// Presses a button and reads the message that comes.
    QString messageOf(const char *name)
    {
        QString text;
        ModalScript box([&](CMessageBox *shown) {
            text = shown->findChild<QLabel *>("labelTitle")->text() + ": " +
                   shown->findChild<QLabel *>("labelMessage")->text();
            shown->accept();
        });
        QTest::mouseClick(button(name), Qt::LeftButton);
        return box.done() ? text : QString();
    }
    void clickRow(int row)
    {
        const QRect rect = table()->visualRect(table()->model()->index(row, 0));
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, rect.center());
    }

    std::unique_ptr<CSearchCameraListForm> m_form;
    RecordingDesktop m_desktop;
};

void TestSearchCameraListForm::init()
{
    fake_ndcp::reset();
    m_desktop.opened.clear();
    setDesktop(&m_desktop);
    m_form = std::make_unique<CSearchCameraListForm>();
    m_form->resize(900, 500);
    m_form->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_form.get()));
}

void TestSearchCameraListForm::cleanup()
{
    m_form.reset();
    setDesktop(nullptr);
    QCOMPARE(fake_ndcp::clients(), 0);
    QVERIFY(fake_ndcp::contractViolations().empty());
}

void TestSearchCameraListForm::looksAsDescribed()
{
    QCOMPARE(m_form->objectName(), QStringLiteral("SearchCameraListForm"));
    QCOMPARE(button("btnSearch")->text(), QStringLiteral("Search"));
    QCOMPARE(button("btnBrowser")->text(), QStringLiteral("Browser"));
    QCOMPARE(button("btnClean")->text(), QStringLiteral("Clear"));
    QCOMPARE(button("btnOk")->text(), QStringLiteral("Setup"));
}

void TestSearchCameraListForm::tableHasSevenColumns()
{
    QStringList headers;
    for (int column = 0; column < table()->model()->columnCount(); ++column)
        headers += table()->model()->headerData(column, Qt::Horizontal).toString();
    QCOMPARE(headers, QStringList({"Model", "Name", "Location", "IP", "Port", "MAC", "P2P UID"}));
    QCOMPARE(table()->horizontalHeader()->sectionResizeMode(3), QHeaderView::Stretch);
    QCOMPARE(table()->selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(table()->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(table()->editTriggers(), QAbstractItemView::NoEditTriggers);
}

void TestSearchCameraListForm::searchWaitsForTheEventOnly()
{
    QString text;
    ModalScript wait([&](BusyDialog *dialog) {
        text = dialog->labelText();
        QTest::keyClick(dialog, Qt::Key_Escape);
        dialog->close();
        QVERIFY(dialog->isVisible());
        QCOMPARE(dialog->minimum(), 0);
        QCOMPARE(dialog->maximum(), 0);
        QVERIFY(!dialog->findChild<QPushButton *>());
        fake_ndcp::finish(NDCP_EVENT_DISCOVERY);
    });
    QTest::mouseClick(button("btnSearch"), Qt::LeftButton);
    QVERIFY(wait.done());
    QCOMPARE(text, QStringLiteral("Please wait for search camera..."));
    QVERIFY(!QApplication::activeModalWidget());
}

void TestSearchCameraListForm::rowShowsTheRecord()
{
    ndcp_device device = fake_ndcp::device("uid-1", "Door", 0xC0A80114, 8080);
    std::strcpy(device.model, "NC-100");
    std::strcpy(device.location, "House & <b>Yard</b>");
    const uint8_t mac[6] = {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E};
    std::memcpy(device.mac, mac, sizeof mac);
    QTest::ignoreMessage(QtDebugMsg, "CSearchCameraListForm::ndcpEvent()\r\n");
    search({device});
    QStringList row;
    for (int column = 0; column < 7; ++column) {
        row += cell(0, column);
        QCOMPARE(table()->model()->index(0, column).data(Qt::TextAlignmentRole).toInt(),
                 int(Qt::AlignCenter));
        const QString tip = table()->model()->index(0, column).data(Qt::ToolTipRole).toString();
        QCOMPARE(shownByToolTip(tip), cell(0, column));
    }
    QCOMPARE(row, QStringList({"NC-100", "Door", "House & <b>Yard</b>", "192.168.1.20", "8080",
                               "00:1A:2B:3C:4D:5E", "uid-1"}));
}

void TestSearchCameraListForm::deviceAnsweringTwiceAppearsOnce()
{
    search({fake_ndcp::device("uid-1", "Old", 0xC0A80114),
            fake_ndcp::device("uid-1", "New", 0xC0A80115)});
    QCOMPARE(table()->model()->rowCount(), 1);
    QCOMPARE(cell(0, 1), QStringLiteral("New"));
    QCOMPARE(cell(0, 3), QStringLiteral("192.168.1.21"));
}

void TestSearchCameraListForm::uidsAreComparedByteByByte()
{
    search({fake_ndcp::device("uid-1", "Door", 0xC0A80114),
            fake_ndcp::device("UID-1", "Yard", 0xC0A80115)});
    QCOMPARE(table()->model()->rowCount(), 2);
}

void TestSearchCameraListForm::wrongCountsEndTheWalk()
{
    fake_ndcp::setCount(-1);
    search({fake_ndcp::device("uid-1", "Door", 0xC0A80114)});
    QCOMPARE(table()->model()->rowCount(), 0);
    fake_ndcp::setCount(1000);
    search({fake_ndcp::device("uid-1", "Door", 0xC0A80114)});
    QCOMPARE(table()->model()->rowCount(), 1);
}

void TestSearchCameraListForm::portAbove32767IsShownNegative()
{
    search({fake_ndcp::device("uid-1", "Door", 0xC0A80114, 65535)});
    QCOMPARE(cell(0, 4), QStringLiteral("-1"));
    clickRow(0);
    QTest::mouseClick(button("btnBrowser"), Qt::LeftButton);
    QCOMPARE(m_desktop.opened, QStringList({"http://192.168.1.20:65535"}));
}

void TestSearchCameraListForm::researchKeepsUserNameAndPassword()
{
    ndcp_device device = fake_ndcp::device("uid-1", "Door", 0xC0A80114);
    std::strcpy(device.username, "admin");
    std::strcpy(device.password, "secret");
    search({device});
    std::strcpy(device.username, "other");
    device.password[0] = 0;
    search({device});
    clickRow(0);
    fake_ndcp::answerGetConf(0);
    ModalScript dialog([](CCameraSetUp *shown) { shown->reject(); });
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QVERIFY(dialog.done());
    QCOMPARE(fake_ndcp::asked().size(), std::size_t(1));
    QCOMPARE(fake_ndcp::asked()[0].username, "admin");
    QCOMPARE(fake_ndcp::asked()[0].password, "secret");
}

void TestSearchCameraListForm::devicesNotFoundAgainStay()
{
    search({fake_ndcp::device("uid-1", "Door", 1)});
    search({fake_ndcp::device("uid-2", "Yard", 2)});
    QCOMPARE(table()->model()->rowCount(), 2);
    search({});
    QCOMPARE(table()->model()->rowCount(), 2);
}

void TestSearchCameraListForm::recordsWithoutUidNeverAppear()
{
    search({fake_ndcp::device("", "Nameless", 1)});
    QCOMPARE(table()->model()->rowCount(), 0);
}

void TestSearchCameraListForm::noSelectionTellsTheUser_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("current");
    QTest::newRow("Browser") << "btnBrowser" << false;
    QTest::newRow("Setup") << "btnOk" << false;
    QTest::newRow("Browser, current but not selected") << "btnBrowser" << true;
    QTest::newRow("Setup, current but not selected") << "btnOk" << true;
}

void TestSearchCameraListForm::noSelectionTellsTheUser()
{
    QFETCH(QString, name);
    QFETCH(bool, current);
    search({fake_ndcp::device("uid-1", "Door", 1)});
    if (current) {
        clickRow(0);
        table()->selectionModel()->clearSelection();
        QVERIFY(table()->currentIndex().isValid());
    }
    QCOMPARE(messageOf(name.toLatin1()), QStringLiteral("Error: Please select a camera."));
    QVERIFY(m_desktop.opened.isEmpty());
    QCOMPARE(fake_ndcp::count("get_conf"), 0);
}

void TestSearchCameraListForm::selectedRowStaysSelectedAfterASearch()
{
    const ndcp_device first = fake_ndcp::device("uid-1", "Door", 0xC0A80114);
    const ndcp_device second = fake_ndcp::device("uid-2", "Yard", 0xC0A80115);
    search({first, second});
    clickRow(1);
    search({second, first, fake_ndcp::device("uid-3", "Gate", 0xC0A80116)});
    QCOMPARE(table()->model()->rowCount(), 3);
    QTest::mouseClick(button("btnBrowser"), Qt::LeftButton);
    QCOMPARE(m_desktop.opened, QStringList({"http://192.168.1.21:80"}));
}

void TestSearchCameraListForm::browserOpensTheWebPage()
{
    search({fake_ndcp::device("uid-1", "Door", 0xC0A80114, 80),
            fake_ndcp::device("uid-2", "Yard", 0xC0A80115, 8081)});
    clickRow(1);
    QTest::mouseClick(button("btnBrowser"), Qt::LeftButton);
    QCOMPARE(m_desktop.opened, QStringList({"http://192.168.1.21:8081"}));
}

void TestSearchCameraListForm::setupReadsThenOpensTheDialog()
{
    const ndcp_device found = fake_ndcp::device("uid-1", "Door", 0xC0A80114);
    search({found});
    ndcp_device conf = found;
    std::strcpy(conf.location, "Read from the device");
    fake_ndcp::setConf(conf);
    clickRow(0);
    QString waitText, location;
    ModalScript script;
    script
        .then([&](BusyDialog *dialog) {
            waitText = dialog->labelText();
            fake_ndcp::finish(NDCP_EVENT_GET_CONF);
        })
        .then([&](CCameraSetUp *shown) {
            location = shown->findChild<QLineEdit *>("editLocation")->text();
            shown->reject();
        });
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QVERIFY(script.done());
    QCOMPARE(waitText, QStringLiteral("Please wait for get onfiguration..."));
    QCOMPARE(location, QStringLiteral("Read from the device"));
    QCOMPARE(fake_ndcp::clients(), 1);
}

void TestSearchCameraListForm::setupOpensAfterFailedRead()
{
    search({fake_ndcp::device("uid-1", "Door", 0xC0A80114)});
    clickRow(0);
    fake_ndcp::answerGetConf(NDCP_ERROR_AUTHORIZATION);
    QString name;
    ModalScript dialog([&](CCameraSetUp *shown) {
        name = shown->findChild<QLineEdit *>("editDeviceName")->text();
        shown->reject();
    });
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QVERIFY(dialog.done());
    QCOMPARE(name, QStringLiteral("Door"));
}

void TestSearchCameraListForm::theTableFollowsTheSetUp()
{
    const ndcp_device found = fake_ndcp::device("uid-1", "Door", 0xC0A80114);
    search({found});
    clickRow(0);
    fake_ndcp::setConf(found);
    fake_ndcp::answerGetConf(0);
    fake_ndcp::answerSetConf(0);
    ModalScript script([&](CCameraSetUp *shown) {
        shown->findChild<QLineEdit *>("editDeviceName")->setText(QStringLiteral("Gate"));
        press(shown, "btnApply");
        QCOMPARE(cell(0, 1), QStringLiteral("Gate"));
        press(shown, "btnExit");
    });
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QVERIFY(script.done());
    // The page has read the configuration, the dialog need not.
    QCOMPARE(fake_ndcp::count("get_conf"), 1);
    QCOMPARE(fake_ndcp::count("set_conf"), 1);
    QCOMPARE(table()->currentIndex().row(), 0);
}

void TestSearchCameraListForm::aPageThatGoesWhileItWaits_data()
{
    QTest::addColumn<QString>("slot");
    QTest::newRow("search") << "slotSearch";
    QTest::newRow("set-up") << "slotOK";
}

void TestSearchCameraListForm::aPageThatGoesWhileItWaits()
{
    QFETCH(QString, slot);
    search({fake_ndcp::device("uid-1", "Door", 0xC0A80114)});
    clickRow(0);
    ModalScript wait([&](BusyDialog *) { m_form.reset(); });
    QMetaObject::invokeMethod(m_form.get(), slot.toLatin1(), Qt::DirectConnection);
    QVERIFY(wait.done());
    QVERIFY(!m_form);
}

void TestSearchCameraListForm::clearForgetsEverything()
{
    ndcp_device device = fake_ndcp::device("uid-1", "Door", 1);
    std::strcpy(device.username, "admin");
    search({device});
    clickRow(0);
    QTest::mouseClick(button("btnClean"), Qt::LeftButton);
    QCOMPARE(table()->model()->rowCount(), 0);
    device.username[0] = 0;
    search({device});
    QCOMPARE(table()->model()->rowCount(), 1);
    clickRow(0);
    fake_ndcp::answerGetConf(0);
    ModalScript dialog([](CCameraSetUp *shown) { shown->reject(); });
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QCOMPARE(fake_ndcp::asked().back().username, "");
}

void TestSearchCameraListForm::unknownEventIsADeveloperCheck()
{
    QTest::ignoreMessage(QtDebugMsg, "CSearchCameraListForm::ndcpEvent()\r\n");
    QTest::ignoreMessage(QtWarningMsg, "\"nMsg == NDCP_EVENT_DISCOVERY\" in SearchCameraFormList");
    QMetaObject::invokeMethod(m_form.get(), "slotNDCPEvent", Qt::DirectConnection, Q_ARG(int, 3),
                              Q_ARG(int, 0));
    QCOMPARE(table()->model()->rowCount(), 0);
}

void TestSearchCameraListForm::refusedSearchIsTold()
{
    fake_ndcp::setResult("discover", -1);
    QVERIFY(messageOf("btnSearch").startsWith("Error: The search cannot be started."));
    QVERIFY(!QApplication::activeModalWidget());
}

void TestSearchCameraListForm::missingLibraryIsTold()
{
    m_form.reset();
    fake_ndcp::failCreate();
    m_form = std::make_unique<CSearchCameraListForm>();
    m_form->show();
    QVERIFY(messageOf("btnSearch").startsWith("Error: The search cannot be started."));
}

void TestSearchCameraListForm::emptyTableTellsHowItIsFilled()
{
    const auto *note = m_form->findChild<QLabel *>("labelEmpty");
    QVERIFY(note && note->isVisible());
    QVERIFY(note->text().contains(button("btnSearch")->text()));
    search({fake_ndcp::device("uid-1", "Door", 0xC0A80114)});
    QCOMPARE(table()->model()->rowCount(), 1);
    QVERIFY(!note->isVisible());
    QTest::mouseClick(button("btnClean"), Qt::LeftButton);
    QVERIFY(note->isVisible());
}

QTEST_MAIN(TestSearchCameraListForm)
#include "tst_search_camera_list_form.moc"
