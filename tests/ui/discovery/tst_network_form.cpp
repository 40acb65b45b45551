#include "tests/fakes/fake_ndcp.h"
#include "ui/discovery/device_records.h"
#include "ui/discovery/device_text.h"
#include "ui/discovery/network_form.h"

#include <QTest>

#include <cstring>

using zelvaro::NetworkForm;
using zelvaro::NetworkFormCheck;

class TestNetworkForm : public QObject
{
    Q_OBJECT

private slots:
    void init() { fake_ndcp::reset(); }
    void checksInOrder_data();
    void checksInOrder();
    void failedCheckLeavesRecord();
    void nameOf50CharactersPassesAnd51Fails();
    void longNameDoesNotSpillIntoLocation();
    void maskIsMadeContiguous_data();
    void maskIsMadeContiguous();
    void portOf16BitsIsStored();
    void overlongTextsAreCutToTheirFields();
    void aTextThatStandsAsShownIsLeftAlone();
    void editsAreKeptOverFreshValues();
    void textsGoInTheEncodingOfTheLibrary_data();
    void textsGoInTheEncodingOfTheLibrary();
    void aCutLeavesNoHalfCharacter();
    void whatTheLibraryCannotTakeIsRefused();

private:
    static NetworkForm good();
};

NetworkForm TestNetworkForm::good()
{
    NetworkForm input;
    input.deviceName = QStringLiteral("Door");
    input.location = QStringLiteral("House");
    input.httpPort = QStringLiteral("80");
    input.manualIp = true;
    input.ip = 0xC0A80114;
    input.mask = 0xFFFFFF00;
    input.gateway = 0xC0A80101;
    input.manualDns = true;
    input.dns1 = 0x08080808;
    input.dns2 = 0x08080404;
    input.userName = QStringLiteral("admin");
    input.password = QStringLiteral("secret");
    return input;
}

void TestNetworkForm::checksInOrder_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("location");
    QTest::addColumn<QString>("port");
    QTest::addColumn<quint32>("ip");
    QTest::addColumn<quint32>("mask");
    QTest::addColumn<bool>("manual");
    QTest::addColumn<QString>("message");

    const QString tooLong(51, QLatin1Char('a'));
    const QString bad = QStringLiteral("a\tb");
    QTest::newRow("all good") << "n"
                              << "l"
                              << "80" << 1U << 0xFF000000U << true << QString();
    QTest::newRow("name before all")
        << bad << bad << "x" << 0U << 0U << true << "Device Name input invalid!";
    QTest::newRow("long name") << tooLong << bad << "x" << 0U << 0U << true
                               << "Device Name is too long!";
    QTest::newRow("location") << "n" << bad << "x" << 0U << 0U << true << "Location input invalid!";
    QTest::newRow("long location")
        << "n" << tooLong << "x" << 0U << 0U << true << "Location is too long!";
    QTest::newRow("Latin-1 letter") << QStringLiteral("Tür") << "l"
                                    << "80" << 1U << 1U << true << "Device Name input invalid!";
    QTest::newRow("port text") << "n"
                               << "l"
                               << "x" << 0U << 0U << true << "Http Port input invalid!";
    QTest::newRow("port sign") << "n"
                               << "l"
                               << "-1" << 0U << 0U << true << "Http Port input invalid!";
    QTest::newRow("port plus") << "n"
                               << "l"
                               << "+1" << 0U << 0U << true << "Http Port input invalid!";
    QTest::newRow("port blank") << "n"
                                << "l"
                                << "80 " << 0U << 0U << true << "Http Port input invalid!";
    QTest::newRow("port 0") << "n"
                            << "l"
                            << "0" << 0U << 0U << true << "Http Port out of range!";
    QTest::newRow("port empty") << "n"
                                << "l"
                                << "" << 0U << 0U << true << "Http Port out of range!";
    QTest::newRow("port 65536") << "n"
                                << "l"
                                << "65536" << 0U << 0U << true << "Http Port out of range!";
    QTest::newRow("port of 40 digits")
        << "n"
        << "l" << QString(40, QLatin1Char('9')) << 0U << 0U << true << "Http Port out of range!";
    QTest::newRow("manual without IP") << "n"
                                       << "l"
                                       << "80" << 0U << 1U << true << "invalid IP or Mask!";
    QTest::newRow("manual without mask") << "n"
                                         << "l"
                                         << "80" << 1U << 0U << true << "invalid IP or Mask!";
    QTest::newRow("automatic takes any") << "n"
                                         << "l"
                                         << "80" << 0U << 0U << false << QString();
}

void TestNetworkForm::checksInOrder()
{
    QFETCH(QString, name);
    QFETCH(QString, location);
    QFETCH(QString, port);
    QFETCH(quint32, ip);
    QFETCH(quint32, mask);
    QFETCH(bool, manual);
    QFETCH(QString, message);

    NetworkForm input = good();
    input.deviceName = name;
    input.location = location;
    input.httpPort = port;
    input.ip = ip;
    input.mask = mask;
    input.manualIp = manual;
    ndcp_device record{};
    QCOMPARE(NetworkFormCheck::store(input, {}, record).value_or(QString()), message);
}

void TestNetworkForm::failedCheckLeavesRecord()
{
    ndcp_device record{};
    QVERIFY(!NetworkFormCheck::store(good(), {}, record));
    const ndcp_device before = record;
    NetworkForm input = good();
    input.manualDns = false;
    input.gateway = 0;
    input.mask = 0;
    QVERIFY(NetworkFormCheck::store(input, {}, record).has_value());
    QCOMPARE(std::memcmp(&before, &record, sizeof record), 0);
}

void TestNetworkForm::nameOf50CharactersPassesAnd51Fails()
{
    NetworkForm input = good();
    ndcp_device record{};
    input.deviceName = QString(50, QLatin1Char('n'));
    input.location = QString(50, QLatin1Char('l'));
    QVERIFY(!NetworkFormCheck::store(input, {}, record));
    input.deviceName += QLatin1Char('n');
    QCOMPARE(*NetworkFormCheck::store(input, {}, record),
             QStringLiteral("Device Name is too long!"));
}

void TestNetworkForm::longNameDoesNotSpillIntoLocation()
{
    NetworkForm input = good();
    input.deviceName = QString(50, QLatin1Char('n'));
    input.location = QStringLiteral("here");
    ndcp_device record;
    std::memset(&record, 0x55, sizeof record);
    QVERIFY(!NetworkFormCheck::store(input, {}, record));
    QCOMPARE(zelvaro::fieldBytes(record.name), QByteArray(31, 'n'));
    QCOMPARE(record.name[31], '\0');
    QCOMPARE(zelvaro::fieldBytes(record.location), QByteArray("here"));
}

void TestNetworkForm::maskIsMadeContiguous_data()
{
    QTest::addColumn<quint32>("mask");
    QTest::addColumn<quint32>("stored");
    QTest::newRow("255.0.255.0") << 0xFF00FF00U << 0xFFFFFF00U;
    QTest::newRow("255.255.255.0") << 0xFFFFFF00U << 0xFFFFFF00U;
    QTest::newRow("0.0.0.1") << 1U << 0xFFFFFFFFU;
    QTest::newRow("128.0.0.0") << 0x80000000U << 0x80000000U;
    QTest::newRow("0") << 0U << 0U;
    QTest::newRow("0.0.0.2") << 2U << 0xFFFFFFFEU;
}

void TestNetworkForm::maskIsMadeContiguous()
{
    QFETCH(quint32, mask);
    QFETCH(quint32, stored);
    QCOMPARE(zelvaro::contiguousMask(mask), stored);
}

void TestNetworkForm::portOf16BitsIsStored()
{
    NetworkForm input = good();
    input.httpPort = QStringLiteral("65535");
    ndcp_device record{};
    QVERIFY(!NetworkFormCheck::store(input, {}, record));
    QCOMPARE(record.http_port, int16_t(-1));
    QCOMPARE(zelvaro::httpPort(record), 65535);
}

void TestNetworkForm::overlongTextsAreCutToTheirFields()
{
    NetworkForm input = good();
    input.userName = QString(200, QLatin1Char('u'));
    input.password = QString(200, QLatin1Char('p'));
    ndcp_device record{};
    QVERIFY(!NetworkFormCheck::store(input, {}, record));
    QCOMPARE(zelvaro::fieldBytes(record.username), QByteArray(63, 'u'));
    QCOMPARE(zelvaro::fieldBytes(record.password), QByteArray(63, 'p'));
}

void TestNetworkForm::aTextThatStandsAsShownIsLeftAlone()
{
    ndcp_device record{};
    std::strcpy(record.name, "T\xc3\xbcr");
    std::strcpy(record.location, "a\tb");
    NetworkForm input = good();
    NetworkForm shown = good();
    input.deviceName = shown.deviceName = zelvaro::fieldEditText(record.name);
    input.location = shown.location = QString(60, QLatin1Char('l'));
    QCOMPARE(NetworkFormCheck::store(input, shown, record).value_or(QString()), QString());
    QCOMPARE(zelvaro::fieldBytes(record.name), QByteArray("T\xc3\xbcr"));
    QCOMPARE(zelvaro::fieldBytes(record.location), QByteArray("a\tb"));
    input.deviceName += QLatin1Char('2');
    QCOMPARE(*NetworkFormCheck::store(input, shown, record),
             QStringLiteral("Device Name input invalid!"));
}

void TestNetworkForm::editsAreKeptOverFreshValues()
{
    NetworkForm shown;
    NetworkForm edited = shown;
    edited.deviceName = QStringLiteral("Gate");
    edited.manualDns = true;
    edited.dns1 = 5;
    const NetworkForm merged = zelvaro::withEdits(good(), shown, edited);
    NetworkForm expected = good();
    expected.deviceName = QStringLiteral("Gate");
    expected.dns1 = 5;
    ndcp_device a{}, b{};
    QVERIFY(!NetworkFormCheck::store(merged, {}, a));
    QVERIFY(!NetworkFormCheck::store(expected, {}, b));
    QCOMPARE(std::memcmp(&a, &b, sizeof a), 0);
    edited = good();
    edited.manualIp = false;
    QVERIFY(!zelvaro::withEdits(good(), good(), edited).manualIp);
}

void TestNetworkForm::textsGoInTheEncodingOfTheLibrary_data()
{
    QTest::addColumn<bool>("utf8");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("another maker's") << false << QByteArray("Jos\xe9");
    QTest::newRow("ours") << true << QByteArray("Jos\xc3\xa9");
}

void TestNetworkForm::textsGoInTheEncodingOfTheLibrary()
{
    QFETCH(bool, utf8);
    fake_ndcp::setTakesUtf8(utf8);
    NetworkForm input = good();
    input.userName = input.password = QStringLiteral("José");
    ndcp_device record{};
    QVERIFY(!NetworkFormCheck::store(input, {}, record));
    QTEST(zelvaro::fieldBytes(record.username), "stored");
    QTEST(zelvaro::fieldBytes(record.password), "stored");
    QCOMPARE(zelvaro::networkForm(record).userName, QStringLiteral("José"));
    if (utf8)
        QCOMPARE(zelvaro::fieldText(record.username), QStringLiteral("José"));
}

void TestNetworkForm::aCutLeavesNoHalfCharacter()
{
    char field[8];
    zelvaro::storeField(field, QStringLiteral("abcdef\u043f"));
    QCOMPARE(zelvaro::fieldBytes(field), QByteArray("abcdef"));
    zelvaro::storeField(field, QStringLiteral("abcde\u043f"));
    QCOMPARE(zelvaro::fieldBytes(field), QByteArray("abcde\xd0\xbf"));
    zelvaro::storeField(field, QStringLiteral("abcd\u4e2d\u4e2d"));
    QCOMPARE(zelvaro::fieldBytes(field), QByteArray("abcd\xe4\xb8\xad"));
    zelvaro::storeField(field, QString());
    QCOMPARE(zelvaro::fieldBytes(field), QByteArray());
}

// It would reach the camera as question marks.
void TestNetworkForm::whatTheLibraryCannotTakeIsRefused()
{
    NetworkForm input = good();
    input.deviceName = QStringLiteral("\u043f\u043f");
    ndcp_device record{};
    fake_ndcp::setTakesUtf8(0);
    QCOMPARE(NetworkFormCheck::store(input, {}, record).value_or(QString()),
             QStringLiteral("Device Name input invalid!"));
    fake_ndcp::setTakesUtf8(1);
    QCOMPARE(NetworkFormCheck::store(input, {}, record).value_or(QString()), QString());
    QCOMPARE(zelvaro::fieldBytes(record.name), QByteArray("\xd0\xbf\xd0\xbf"));
}

QTEST_MAIN(TestNetworkForm)
#include "tst_network_form.moc"
