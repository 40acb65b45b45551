#include "tests/fakes/fake_ndcp.h"
#include "tests/support/modal_script.h"
#include "ui/common/busy_dialog.h"
#include "ui/common/message_box.h"
#include "ui/discovery/address_edit.h"
#include "ui/discovery/camera_set_up.h"
#include "ui/discovery/search_camera_list_form.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <cstring>

using zelvaro::BusyDialog;

class TestCameraSetUp : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void textsStandAsWritten_data();
    void textsStandAsWritten();
    void showsTheRecord();
    void checkBoxesGovernTheirEditsIndependently();
    void octetAndPortEditsHaveLimits();
    void queryAsksWithTypedCredentials();
    void applyWritesAndTellsThePage();
    void applyReadsFirstWhatNobodyRead();
    void applyWritesNothingThatNobodyRead_data();
    void applyWritesNothingThatNobodyRead();
    void applyAfterAQueryDoesNotReadAgain();
    void enterWritesNothing();
    void aNameThatCannotBeTypedStays();
    void refusedRequestsAreTold();
    void eventsAreHandledOnTheGuiThread();
    void aDialogThatGoesWhileItWaits();
    void maskIsWidenedAndShown();
    void longNameIsShownAsStored();
    void portOutOfRangeIsRefused();
    void validationKeepsInput();
    void automaticAddressIsTheOneThatAnswered();
    void automaticAddressIsTheOneThatAnsweredAlsoWhenRead();
    void onlyTheMatchingEventEndsTheWait();
    void errorsByCode_data();
    void errorsByCode();
    void unknownErrorIsADeveloperCheck();
    void unknownEventIsADeveloperCheck();
    void exitCloses();

private:
    template <typename T>
    T *child(const char *name) const
    {
        return m_dialog->findChild<T *>(QLatin1String(name));
    }
    void click(const char *name) { QTest::mouseClick(child<QPushButton>(name), Qt::LeftButton); }
    void open(const ndcp_device &record,
              CCameraSetUp::Configuration configuration = CCameraSetUp::Configuration::Read)
    {
        m_record = record;
        m_dialog = std::make_unique<CCameraSetUp>(m_page.get(), &m_record, configuration);
        m_dialog->open();
    }
    /// As a search finds it: no configuration, no login.
    void openUnread()
    {
        open(fake_ndcp::device("uid-1", "Door", 0xC0A80114), CCameraSetUp::Configuration::Unread);
    }
    QString messageOf(const std::function<void()> &act)
    {
        QString text;
        ModalScript box([&](CMessageBox *shown) {
            text = shown->findChild<QLabel *>("labelTitle")->text() + ": " +
                   shown->findChild<QLabel *>("labelMessage")->text();
            shown->accept();
        });
        act();
        return text;
    }
    static ndcp_device manualDevice();

    std::unique_ptr<CSearchCameraListForm> m_page;
    std::unique_ptr<CCameraSetUp> m_dialog;
    ndcp_device m_record{};
};

ndcp_device TestCameraSetUp::manualDevice()
{
    ndcp_device device = fake_ndcp::device("uid-1", "Door", 0xC0A80114, 8080);
    std::strcpy(device.location, "House");
    device.manual_ip = 1;
    device.mask = 0xFFFFFF00;
    device.gateway = 0xC0A80101;
    device.manual_dns = 0;
    device.dns1 = 0x08080808;
    device.dns2 = 0x08080404;
    std::strcpy(device.username, "admin");
    std::strcpy(device.password, "secret");
    return device;
}

void TestCameraSetUp::init()
{
    fake_ndcp::reset();
    m_page = std::make_unique<CSearchCameraListForm>();
    m_page->show();
}

void TestCameraSetUp::cleanup()
{
    m_dialog.reset();
    m_page.reset();
    QCOMPARE(fake_ndcp::clients(), 0);
    QVERIFY(fake_ndcp::contractViolations().empty());
}

void TestCameraSetUp::textsStandAsWritten_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("text");
    const QStringList rows = {"labelEditDeviceName",
                              "DeviceName",
                              "labelEditLocation",
                              "Device Location",
                              "labelEditHttpPort",
                              "HttpPort",
                              "checkAssignIp",
                              "Assigned IP Address Manually",
                              "labelAddressIp",
                              "IP",
                              "labelAddressMask",
                              "Mask",
                              "labelAddressGateway",
                              "Default Getway",
                              "checkAssignDns",
                              "Assigned DNS Manually",
                              "labelAddressDns1",
                              "Primary DNS",
                              "labelAddressDns2",
                              "Sencondary DNS",
                              "labelEditUserName",
                              "User Name",
                              "labelEditPassword",
                              "Password",
                              "btnQuery",
                              "Query",
                              "btnApply",
                              "Apply",
                              "btnExit",
                              "Exit"};
    for (int i = 0; i < rows.size(); i += 2)
        QTest::newRow(qPrintable(rows[i])) << rows[i] << rows[i + 1];
}

void TestCameraSetUp::textsStandAsWritten()
{
    QFETCH(QString, object);
    open(manualDevice());
    QCOMPARE(m_dialog->objectName(), QStringLiteral("CameraSetUp"));
    const auto *widget = m_dialog->findChild<QWidget *>(object);
    QVERIFY(widget);
    QTEST(widget->property("text").toString(), "text");
}

void TestCameraSetUp::showsTheRecord()
{
    open(manualDevice());
    QCOMPARE(m_dialog->windowTitle(), QStringLiteral("Camera Setup"));
    QCOMPARE(child<QGroupBox>("groupSettings")->title(), QStringLiteral("Camera Settings"));
    QCOMPARE(child<QLineEdit>("editDeviceName")->text(), QStringLiteral("Door"));
    QCOMPARE(child<QLineEdit>("editLocation")->text(), QStringLiteral("House"));
    QCOMPARE(child<QLineEdit>("editHttpPort")->text(), QStringLiteral("8080"));
    QCOMPARE(child<QLineEdit>("editUserName")->text(), QStringLiteral("admin"));
    QCOMPARE(child<QLineEdit>("editPassword")->text(), QStringLiteral("secret"));
    QCOMPARE(child<QLineEdit>("editPassword")->echoMode(), QLineEdit::Password);
    QCOMPARE(child<CAddressEdit>("addressIp")->address(), 0xC0A80114U);
    QCOMPARE(child<CAddressEdit>("addressMask")->address(), 0xFFFFFF00U);
    QCOMPARE(child<CAddressEdit>("addressGateway")->address(), 0xC0A80101U);
    QCOMPARE(child<CAddressEdit>("addressDns1")->address(), 0x08080808U);
    QCOMPARE(child<CAddressEdit>("addressDns2")->address(), 0x08080404U);
    QVERIFY(child<QCheckBox>("checkAssignIp")->isChecked());
    QVERIFY(!child<QCheckBox>("checkAssignDns")->isChecked());
    QVERIFY(!child<CAddressEdit>("addressIp")->isReadOnly());
    QVERIFY(child<CAddressEdit>("addressDns1")->isReadOnly());
}

void TestCameraSetUp::checkBoxesGovernTheirEditsIndependently()
{
    open(manualDevice());
    QTest::mouseClick(child<QCheckBox>("checkAssignIp"), Qt::LeftButton, {}, QPoint(10, 10));
    for (const char *name : {"addressIp", "addressMask", "addressGateway"})
        QVERIFY(child<CAddressEdit>(name)->isReadOnly());
    QVERIFY(child<CAddressEdit>("addressDns1")->isReadOnly());
    QTest::mouseClick(child<QCheckBox>("checkAssignDns"), Qt::LeftButton, {}, QPoint(10, 10));
    for (const char *name : {"addressDns1", "addressDns2"})
        QVERIFY(!child<CAddressEdit>(name)->isReadOnly());
    QVERIFY(child<CAddressEdit>("addressIp")->isReadOnly());
}

void TestCameraSetUp::octetAndPortEditsHaveLimits()
{
    open(manualDevice());
    auto *port = child<QLineEdit>("editHttpPort");
    port->clear();
    QTest::keyClicks(port, QStringLiteral("65x5-351"));
    QCOMPARE(port->text(), QStringLiteral("65535"));
    auto *octet = child<CAddressEdit>("addressIp")->findChild<QLineEdit *>("octet1");
    octet->clear();
    QTest::keyClicks(octet, QStringLiteral("2-551"));
    QCOMPARE(octet->text(), QStringLiteral("255"));
    QCOMPARE(octet->maxLength(), 3);
}

void TestCameraSetUp::queryAsksWithTypedCredentials()
{
    open(manualDevice());
    child<QLineEdit>("editUserName")->clear();
    QTest::keyClicks(child<QLineEdit>("editUserName"), QStringLiteral("root"));
    child<QLineEdit>("editPassword")->clear();
    QTest::keyClicks(child<QLineEdit>("editPassword"), QString(70, QLatin1Char('p')));
    ndcp_device conf = manualDevice();
    std::strcpy(conf.name, "Renamed");
    fake_ndcp::setConf(conf);
    QString waitText;
    ModalScript wait([&](BusyDialog *dialog) {
        waitText = dialog->labelText();
        fake_ndcp::finish(NDCP_EVENT_GET_CONF);
    });
    click("btnQuery");
    QVERIFY(wait.done());
    QCOMPARE(waitText, QStringLiteral("Please wait for get configuration..."));
    QCOMPARE(fake_ndcp::asked().back().username, "root");
    QCOMPARE(std::strlen(fake_ndcp::asked().back().password), std::size_t(63));
    QCOMPARE(child<QLineEdit>("editDeviceName")->text(), QStringLiteral("Renamed"));
    QCOMPARE(m_record.name, "Renamed");
    QCOMPARE(m_record.username, "root");
}

void TestCameraSetUp::applyWritesAndTellsThePage()
{
    open(manualDevice());
    QSignalSpy changed(m_dialog.get(), &CCameraSetUp::recordChanged);
    child<QLineEdit>("editDeviceName")->setText(QStringLiteral("Gate"));
    child<CAddressEdit>("addressIp")->setAddress(0xC0A80163);
    QString waitText;
    ModalScript wait([&](BusyDialog *dialog) {
        waitText = dialog->labelText();
        QCOMPARE(changed.size(), 0);
        QCOMPARE(m_record.name, "Door");
        fake_ndcp::finish(NDCP_EVENT_SET_CONF);
    });
    click("btnApply");
    QVERIFY(wait.done());
    QCOMPARE(waitText, QStringLiteral("Please wait for set configuration..."));
    QCOMPARE(fake_ndcp::written().back().name, "Gate");
    QCOMPARE(fake_ndcp::written().back().ip, 0xC0A80163U);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(m_record.name, "Gate");
    QCOMPARE(m_record.ip, 0xC0A80163U);
}

void TestCameraSetUp::applyReadsFirstWhatNobodyRead()
{
    openUnread();
    ndcp_device conf = manualDevice();
    std::strcpy(conf.name, "As the camera has it");
    conf.manual_dns = 1;
    fake_ndcp::setConf(conf);
    fake_ndcp::answerGetConf(0);
    fake_ndcp::answerSetConf(0);
    child<QLineEdit>("editUserName")->setText(QStringLiteral("root"));
    child<QLineEdit>("editLocation")->setText(QStringLiteral("Yard"));
    click("btnApply");
    QCOMPARE(fake_ndcp::asked().size(), std::size_t(1));
    QCOMPARE(fake_ndcp::asked().back().username, "root");
    QCOMPARE(fake_ndcp::written().size(), std::size_t(1));
    const ndcp_device written = fake_ndcp::written().back();
    QCOMPARE(written.name, "As the camera has it");
    QCOMPARE(written.location, "Yard");
    QCOMPARE(written.manual_ip, 1U);
    QCOMPARE(written.manual_dns, 1U);
    QCOMPARE(written.ip, conf.ip);
    QCOMPARE(written.mask, conf.mask);
    QCOMPARE(written.gateway, conf.gateway);
    QCOMPARE(written.dns1, conf.dns1);
    QCOMPARE(written.dns2, conf.dns2);
    QCOMPARE(written.http_port, conf.http_port);
    QCOMPARE(written.username, "root");
}

void TestCameraSetUp::applyWritesNothingThatNobodyRead_data()
{
    errorsByCode_data();
}

void TestCameraSetUp::applyWritesNothingThatNobodyRead()
{
    QFETCH(int, code);
    QFETCH(QString, message);
    openUnread();
    fake_ndcp::answerGetConf(code);
    fake_ndcp::answerSetConf(0);
    child<QLineEdit>("editDeviceName")->setText(QStringLiteral("Gate"));
    for (int i = 0; i < 2; ++i)
        QCOMPARE(messageOf([this] { click("btnApply"); }), "Error: " + message);
    QCOMPARE(fake_ndcp::count("set_conf"), 0);
    QCOMPARE(child<QLineEdit>("editDeviceName")->text(), QStringLiteral("Gate"));
}

void TestCameraSetUp::applyAfterAQueryDoesNotReadAgain()
{
    openUnread();
    fake_ndcp::setConf(manualDevice());
    fake_ndcp::answerGetConf(0);
    fake_ndcp::answerSetConf(0);
    click("btnQuery");
    click("btnApply");
    QCOMPARE(fake_ndcp::count("get_conf"), 1);
    QCOMPARE(fake_ndcp::count("set_conf"), 1);
    QCOMPARE(fake_ndcp::written().back().manual_ip, 1U);
}

void TestCameraSetUp::enterWritesNothing()
{
    open(manualDevice());
    QWidgetList places;
    for (auto *edit : m_dialog->findChildren<QLineEdit *>())
        places << edit;
    for (auto *box : m_dialog->findChildren<QCheckBox *>())
        places << box;
    for (const char *button : {"btnQuery", "btnExit"})
        places << child<QPushButton>(button);
    places << m_dialog.get();
    QVERIFY(places.size() > 25);
    ModalScript nothing;
    for (QWidget *place : places) {
        place->setFocus();
        QTest::keyClick(place, Qt::Key_Return);
        QTest::keyClick(place, Qt::Key_Enter);
    }
    QCOMPARE(fake_ndcp::count("set_conf") + fake_ndcp::count("get_conf"), 0);
    QVERIFY(m_dialog->isVisible());
    QVERIFY(nothing.done());
}

void TestCameraSetUp::aNameThatCannotBeTypedStays()
{
    ndcp_device device = manualDevice();
    std::strcpy(device.name, "T\xc3\xbcr");
    std::strcpy(device.location, "B\xc3\xbcro");
    open(device);
    QCOMPARE(child<QLineEdit>("editDeviceName")->text(), QStringLiteral("Tür"));
    fake_ndcp::answerSetConf(0);
    child<CAddressEdit>("addressGateway")->setAddress(0xC0A801FE);
    click("btnApply");
    QCOMPARE(fake_ndcp::written().size(), std::size_t(1));
    QCOMPARE(fake_ndcp::written().back().name, device.name);
    QCOMPARE(fake_ndcp::written().back().location, device.location);
    QCOMPARE(fake_ndcp::written().back().gateway, 0xC0A801FEU);
}

void TestCameraSetUp::refusedRequestsAreTold()
{
    open(manualDevice());
    fake_ndcp::setResult("get_conf", -1);
    fake_ndcp::setResult("set_conf", -1);
    QVERIFY(messageOf([this] { click("btnQuery"); }).contains("Get configuration failed."));
    QVERIFY(messageOf([this] { click("btnApply"); }).contains("Set configuration failed."));
    QVERIFY(m_dialog->isVisible());
}

void TestCameraSetUp::eventsAreHandledOnTheGuiThread()
{
    open(manualDevice());
    fake_ndcp::setConf(manualDevice());
    QThread *told = nullptr;
    QThread *handled = nullptr;
    connect(
        m_dialog.get(), &CCameraSetUp::signalNDCPEvent, m_dialog.get(),
        [&] { told = QThread::currentThread(); }, Qt::DirectConnection);
    connect(
        m_dialog.get(), &CCameraSetUp::signalGetConfFinished, m_dialog.get(),
        [&] { handled = QThread::currentThread(); }, Qt::DirectConnection);
    fake_ndcp::answerGetConf(0);
    click("btnQuery");
    QCOMPARE(handled, QThread::currentThread());
    QVERIFY(told && told != handled);
}

void TestCameraSetUp::aDialogThatGoesWhileItWaits()
{
    openUnread();
    ModalScript wait([&](BusyDialog *) { m_dialog.reset(); });
    QMetaObject::invokeMethod(m_dialog.get(), "slotApply", Qt::DirectConnection);
    QVERIFY(wait.done());
    QVERIFY(!m_dialog);
    QCOMPARE(fake_ndcp::count("set_conf"), 0);
}

void TestCameraSetUp::maskIsWidenedAndShown()
{
    open(manualDevice());
    child<CAddressEdit>("addressMask")->setAddress(0xFF00FF00);
    fake_ndcp::answerSetConf(0);
    click("btnApply");
    QCOMPARE(fake_ndcp::written().back().mask, 0xFFFFFF00U);
    QCOMPARE(child<CAddressEdit>("addressMask")->address(), 0xFFFFFF00U);
}

void TestCameraSetUp::longNameIsShownAsStored()
{
    open(manualDevice());
    child<QLineEdit>("editDeviceName")->setText(QString(50, QLatin1Char('n')));
    fake_ndcp::answerSetConf(0);
    click("btnApply");
    QCOMPARE(child<QLineEdit>("editDeviceName")->text(), QString(31, QLatin1Char('n')));
    QCOMPARE(child<QLineEdit>("editLocation")->text(), QStringLiteral("House"));
    QCOMPARE(fake_ndcp::written().back().location, "House");
    QCOMPARE(fake_ndcp::written().back().username, "admin");
    QCOMPARE(fake_ndcp::written().back().password, "secret");
}

void TestCameraSetUp::portOutOfRangeIsRefused()
{
    open(manualDevice());
    child<QLineEdit>("editHttpPort")->setText(QStringLiteral("0"));
    QCOMPARE(messageOf([this] { click("btnApply"); }),
             QStringLiteral("Error: Http Port out of range!"));
    child<QLineEdit>("editHttpPort")->setText(QStringLiteral("65536"));
    QCOMPARE(messageOf([this] { click("btnApply"); }),
             QStringLiteral("Error: Http Port out of range!"));
    child<QLineEdit>("editHttpPort")->setText(QStringLiteral(" 80"));
    QCOMPARE(messageOf([this] { click("btnApply"); }),
             QStringLiteral("Error: Http Port input invalid!"));
    QCOMPARE(fake_ndcp::count("set_conf"), 0);
}

void TestCameraSetUp::validationKeepsInput()
{
    open(manualDevice());
    child<QLineEdit>("editLocation")->setText(QStringLiteral("Elsewhere"));
    child<CAddressEdit>("addressMask")->setAddress(0);
    QCOMPARE(messageOf([this] { click("btnApply"); }),
             QStringLiteral("Error: invalid IP or Mask!"));
    QVERIFY(m_dialog->isVisible());
    QCOMPARE(child<QLineEdit>("editLocation")->text(), QStringLiteral("Elsewhere"));
    QCOMPARE(child<CAddressEdit>("addressMask")->address(), 0U);
    QCOMPARE(m_record.location, "House");
}

void TestCameraSetUp::automaticAddressIsTheOneThatAnswered()
{
    ndcp_device device = manualDevice();
    device.manual_ip = 0;
    open(device);
    child<CAddressEdit>("addressIp")->setAddress(0);
    child<CAddressEdit>("addressMask")->setAddress(0);
    fake_ndcp::answerSetConf(0);
    click("btnApply");
    QCOMPARE(fake_ndcp::written().size(), std::size_t(1));
    QCOMPARE(child<CAddressEdit>("addressIp")->address(), 0xC0A80114U);
    QCOMPARE(m_record.ip, 0xC0A80114U);
}

void TestCameraSetUp::automaticAddressIsTheOneThatAnsweredAlsoWhenRead()
{
    open(manualDevice());
    ndcp_device conf = manualDevice();
    conf.manual_ip = 0;
    conf.ip = 0;
    fake_ndcp::setConf(conf);
    fake_ndcp::answerGetConf(0);
    click("btnQuery");
    QCOMPARE(child<CAddressEdit>("addressIp")->address(), 0xC0A80114U);
    QVERIFY(child<CAddressEdit>("addressIp")->isReadOnly());
    QCOMPARE(m_record.ip, 0xC0A80114U);
    QCOMPARE(m_record.manual_ip, 0U);
}

void TestCameraSetUp::onlyTheMatchingEventEndsTheWait()
{
    open(manualDevice());
    fake_ndcp::setConf(manualDevice());
    QSignalSpy written(m_dialog.get(), &CCameraSetUp::signalSetConfFinished);
    QSignalSpy read(m_dialog.get(), &CCameraSetUp::signalGetConfFinished);
    ModalScript wait([&](BusyDialog *dialog) {
        fake_ndcp::finish(NDCP_EVENT_SET_CONF);
        QTRY_COMPARE_WITH_TIMEOUT(written.size(), 1, 20000);
        QVERIFY(dialog->isVisible());
        fake_ndcp::finish(NDCP_EVENT_GET_CONF);
    });
    click("btnQuery");
    QVERIFY(wait.done());
    QCOMPARE(read.size(), 1);
}

void TestCameraSetUp::errorsByCode_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");
    QTest::newRow("network") << -1 << "Network error. Please wait a while and try again.";
    QTest::newRow("login") << -2 << "Authenticate failed. Please check your user name or password.";
    QTest::newRow("get") << -3 << "Get configuration failed. Please wait a while and try again.";
    QTest::newRow("set") << -4
                         << "Set configuration failed. Please check your configuration and try "
                            "again.";
}

void TestCameraSetUp::errorsByCode()
{
    QFETCH(int, code);
    QFETCH(QString, message);
    open(manualDevice());
    const ndcp_device before = m_record;
    child<QLineEdit>("editDeviceName")->setText(QStringLiteral("Gate"));
    fake_ndcp::answerSetConf(code);
    fake_ndcp::answerGetConf(code);
    QCOMPARE(messageOf([this] { click("btnApply"); }), "Error: " + message);
    QCOMPARE(messageOf([this] { click("btnQuery"); }), "Error: " + message);
    QVERIFY(m_dialog->isVisible());
    QCOMPARE(std::memcmp(&before, &m_record, sizeof before), 0);
}

void TestCameraSetUp::unknownErrorIsADeveloperCheck()
{
    open(manualDevice());
    fake_ndcp::answerGetConf(-7);
    QTest::ignoreMessage(QtWarningMsg, "\"nErrorCode == 0\" in CameraSetUp");
    click("btnQuery");
    QVERIFY(!qobject_cast<CMessageBox *>(QApplication::activeModalWidget()));
}

void TestCameraSetUp::unknownEventIsADeveloperCheck()
{
    open(manualDevice());
    QTest::ignoreMessage(QtWarningMsg, "\"nMsg == NDCP_EVENT_GET_CONF || nMsg == "
                                       "NDCP_EVENT_SET_CONF\" in CameraSetUp");
    QMetaObject::invokeMethod(m_dialog.get(), "slotNDCPEvent", Qt::DirectConnection, Q_ARG(int, 1),
                              Q_ARG(int, 0));
    QVERIFY(m_dialog->isVisible());
}

void TestCameraSetUp::exitCloses()
{
    open(manualDevice());
    click("btnExit");
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(fake_ndcp::count("get_conf") + fake_ndcp::count("set_conf"), 0);
}

QTEST_MAIN(TestCameraSetUp)
#include "tst_camera_set_up.moc"
