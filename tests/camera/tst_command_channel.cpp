#include "camera/command_channel.h"

#include "tests/camera/session_test.h"

#include <QSignalSpy>

/// Requests and replies to the byte, and a batch through the session.
class TestCommandChannel : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void requestTexts_data();
    void requestTexts();
    void requestWithoutParametersHasNoQuestionMark();
    void credentialsAreUtf8();
    void valuesGoUnescaped();
    void motionWindowIsChecked();
    void parametersWithoutValuesAreChecked();
    void replies_data();
    void replies();
    void batchGoesToTheLibraryInOrder();
    void resultsAreReplacedByEveryBatch();
    void batchThatTheLibraryRefusesFails();
    void finishedComesThroughTheEventLoop();
    void repliesWithOtherBytesAreTaken();
    void hugeReplyIsTaken();

private:
    std::unique_ptr<CheckLog> m_checks;
};

void TestCommandChannel::init()
{
    fake_cammgr::reset();
    m_checks = std::make_unique<CheckLog>();
}

void TestCommandChannel::cleanup()
{
    QCOMPARE(m_checks->take(), QStringList());
    m_checks.reset();
    QVERIFY(fake_cammgr::contractViolations().empty());
    fake_cammgr::reset();
}

void TestCommandChannel::requestTexts_data()
{
    QTest::addColumn<QString>("request");
    QTest::addColumn<QString>("target");
    const QString user = "admin";
    const QString password = "secret";
    QTest::newRow("reboot") << zelvaro::sys_reboot_request(user, password) << "sysReboot";
    QTest::newRow("auto reboot") << zelvaro::get_auto_reboot_request(user, password)
                                 << "getAutoReboot";
    QTest::newRow("alarm record") << zelvaro::get_storage_alarm_record_request(user, password)
                                  << "getStorageAlarmRecord";
    QTest::newRow("alarm snapshot")
        << zelvaro::get_storage_alarm_snapshot_request(user, password) << "getStorageAlarmSnapshot";
    QTest::newRow("alarm e-mail") << zelvaro::get_email_alarm_sending_request(user, password)
                                  << "getEmailAlarmSending";
    QTest::newRow("get motion 1") << zelvaro::get_motion_request(user, password, 1)
                                  << "getMotion?WINDOW=1";
    QTest::newRow("get motion 4") << zelvaro::get_motion_request(user, password, 4)
                                  << "getMotion?WINDOW=4";
    QTest::newRow("set motion")
        << zelvaro::set_motion_request(user, password,
                                       {"2", "1", "0", "10", "639", "479", "60", "70"})
        << "setMotion?WINDOW=2&ENABLE=1&LEFT=0&TOP=10&RIGHT=639&BOTTOM=479&THRESHOLD=60&"
           "SENSITIVITY=70";
    QTest::newRow("empty value") << zelvaro::set_motion_request(user, password,
                                                                {"2", "0", "", "", "", "", "", ""})
                                 << "setMotion?WINDOW=2&ENABLE=0&LEFT=&TOP=&RIGHT=&BOTTOM=&"
                                    "THRESHOLD=&SENSITIVITY=";
}

void TestCommandChannel::requestTexts()
{
    QFETCH(QString, request);
    QFETCH(QString, target);
    QCOMPARE(request,
             "GET /form/" + target + " HTTP/1.1\r\nAuthorization: Basic YWRtaW46c2VjcmV0\r\n\r\n");
}

void TestCommandChannel::requestWithoutParametersHasNoQuestionMark()
{
    QCOMPARE(zelvaro::sys_reboot_request("", ""),
             QString("GET /form/sysReboot HTTP/1.1\r\nAuthorization: Basic Og==\r\n\r\n"));
}

void TestCommandChannel::credentialsAreUtf8()
{
    const QString request =
        zelvaro::sys_reboot_request(QStringLiteral("Jos\u00e9"), QStringLiteral("\u043f:\u20ac"));
    const QByteArray encoded = request.section("Basic ", 1).section("\r\n", 0, 0).toLatin1();
    QCOMPARE(QByteArray::fromBase64(encoded), QByteArray("Jos\xc3\xa9:\xd0\xbf:\xe2\x82\xac"));
}

void TestCommandChannel::valuesGoUnescaped()
{
    const QString request =
        zelvaro::build_request("u", "p", "cmd", {"A", "B c"}, {"1&2=3", "%/ ?"});
    QVERIFY(request.startsWith("GET /form/cmd?A=1&2=3&B c=%/ ? HTTP/1.1\r\n"));
}

void TestCommandChannel::motionWindowIsChecked()
{
    for (const int window : {0, 5, -1}) {
        zelvaro::get_motion_request("u", "p", window);
        QCOMPARE(m_checks->take(), CheckLog::camera({"(window > 0) && (window < 5)"}));
    }
    for (const int window : {1, 4})
        zelvaro::get_motion_request("u", "p", window);
}

void TestCommandChannel::parametersWithoutValuesAreChecked()
{
    const QString request = zelvaro::build_request("u", "p", "cmd", {"A", "B"}, {"1"});
    QCOMPARE(m_checks->take(), CheckLog::camera({"params.length() == values.length()"}));
    QVERIFY(request.startsWith("GET /form/cmd?A=1 HTTP/1.1\r\n"));
}

void TestCommandChannel::replies_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QStringList>("values");
    const QStringList none;
    QTest::newRow("lines that are pairs and others")
        << "000 Success\n\nA=1\nB=\nC=2=3\nD" << 0 << QStringList({"A", "B"})
        << QStringList({"1", ""});
    QTest::newRow("success alone") << "000 Success" << 0 << none << none;
    QTest::newRow("success after empty lines")
        << "\n\n000 Success\nA=1" << 0 << QStringList("A") << QStringList("1");
    QTest::newRow("another status with pairs") << "403 Forbidden\nA=1\nB=2" << -1 << none << none;
    QTest::newRow("empty") << "" << -1 << none << none;
    QTest::newRow("line ends only") << "\n\n" << -1 << none << none;
    QTest::newRow("carriage return after the status") << "000 Success\r\nA=1\r\n"
                                                      << -1 << none << none;
    QTest::newRow("carriage return in a value") << "000 Success\nA=1\r\n"
                                                << 0 << QStringList("A") << QStringList("1\r");
    QTest::newRow("blank after the status") << "000 Success \nA=1" << -1 << none << none;
    QTest::newRow("lower case") << "000 success" << -1 << none << none;
    QTest::newRow("no key") << "000 Success\n=1" << 0 << QStringList("") << QStringList("1");
    QTest::newRow("equal keys") << "000 Success\nA=1\nA=2" << 0 << QStringList({"A", "A"})
                                << QStringList({"1", "2"});
    QTest::newRow("failure text") << "cannot connect" << -1 << none << none;
}

void TestCommandChannel::replies()
{
    QFETCH(QString, text);
    Session session;
    session.start();
    QSignalSpy finished(session.camera.get(), &CCameraCore::signalP2PConfFinished);
    session->issue_conf_commands({"request"});
    session.player()->reply({text.toStdString()});
    QVERIFY(finished.count() == 1 || finished.wait(deadline));
    QCOMPARE(session->command_codes().length(), 1);
    QTEST(session->command_codes().first(), "code");
    QTEST(session->command_keys().first(), "keys");
    QTEST(session->command_values().first(), "values");
}

void TestCommandChannel::batchGoesToTheLibraryInOrder()
{
    Session session;
    session.start();
    QCOMPARE(session->issue_conf_commands({"one", QStringLiteral("zw\u00f6lf"), ""}), 0);
    QCOMPARE(session.player()->requests(), std::vector<std::string>({"one", "zw\xc3\xb6lf", ""}));
    QSignalSpy finished(session.camera.get(), &CCameraCore::signalP2PConfFinished);
    session.player()->reply({"000 Success\nA=1", "no", "000 Success"});
    QVERIFY(finished.count() == 1 || finished.wait(deadline));
    QCOMPARE(session->command_codes(), QList<int>({0, -1, 0}));
    QCOMPARE(session->command_keys(), QList<QStringList>({{"A"}, {}, {}}));
    QCOMPARE(session->command_values(), QList<QStringList>({{"1"}, {}, {}}));
}

void TestCommandChannel::resultsAreReplacedByEveryBatch()
{
    Session session;
    session.start();
    session.player()->change([](fake_cammgr::Script &s) {
        s.replies = [](const std::vector<std::string> &requests) {
            return std::vector<std::string>(requests.size(), "000 Success\nA=1");
        };
    });
    session->issue_conf_commands({"a", "b", "c"});
    deliverAll();
    QCOMPARE(session->command_codes().length(), 3);
    session->issue_conf_commands({"a"});
    deliverAll();
    QCOMPARE(session->command_codes().length(), 1);
    QCOMPARE(session->command_keys().length(), 1);
    QCOMPARE(session->command_values().length(), 1);
}

void TestCommandChannel::batchThatTheLibraryRefusesFails()
{
    Session session;
    session.start();
    session.player()->change(
        [](fake_cammgr::Script &s) { s.results["RtspPlayer_Issue_P2PConf_URLCMDs"] = -1; });
    QSignalSpy finished(session.camera.get(), &CCameraCore::signalP2PConfFinished);
    QCOMPARE(session->issue_conf_commands({"a", "b"}), -1);
    QCOMPARE(finished.count(), 0);
    QVERIFY(finished.wait(deadline));
    QCOMPARE(session->command_codes(), QList<int>({-1, -1}));
}

void TestCommandChannel::finishedComesThroughTheEventLoop()
{
    Session session;
    session.start();
    session.player()->change([](fake_cammgr::Script &s) {
        s.replies = [](const auto &) { return std::vector<std::string>{"000 Success"}; };
    });
    QSignalSpy finished(session.camera.get(), &CCameraCore::signalP2PConfFinished);
    session->issue_conf_commands({"a"});
    QVERIFY(fake_cammgr::waitDelivered(deadline));
    QCOMPARE(finished.count(), 0);
    QVERIFY(finished.wait(deadline));
}

void TestCommandChannel::repliesWithOtherBytesAreTaken()
{
    Session session;
    session.start();
    session->issue_conf_commands({"a", "b"});
    session.player()->reply({"000 Success\nA=\xff\xfe\xe9", "\x80\x81"});
    deliverAll();
    QCOMPARE(session->command_codes(), QList<int>({0, -1}));
    QCOMPARE(session->command_keys().first(), QStringList("A"));
}

void TestCommandChannel::hugeReplyIsTaken()
{
    Session session;
    session.start();
    std::string text = "000 Success\n";
    for (int i = 0; i < 100000; ++i)
        text += "K" + std::to_string(i) + "=v\n";
    session->issue_conf_commands({"a"});
    session.player()->reply({text});
    deliverAll();
    QCOMPARE(session->command_keys().first().length(), 100000);
}

QTEST_MAIN(TestCommandChannel)
#include "tst_command_channel.moc"
