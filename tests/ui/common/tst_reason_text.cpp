#include "ui/common/reason_text.h"

#include "ui/common/duration_text.h"
#include "ui/common/time_text.h"

#include <QLocale>
#include <QtTest>

using namespace zelvaro;

class TestReasonText : public QObject
{
    Q_OBJECT

private slots:
    void words_data();
    void words();
    void everyReasonHasWords();
    void durations_data();
    void durations();
    void timesOfTodayHaveNoDate();
};

void TestReasonText::words_data()
{
    QTest::addColumn<int>("reason");
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << int(CAMMGR_REASON_NONE) << "x"
                          << "";
    QTest::newRow("no answer") << int(CAMMGR_REASON_NO_ANSWER) << "192.168.1.20:554"
                               << "No answer from 192.168.1.20:554. Is the camera on?";
    QTest::newRow("login") << int(CAMMGR_REASON_LOGIN_REFUSED) << "192.168.1.20:554"
                           << "The camera refuses this user name or password. Correct them with "
                              "\"Modify\".";
    QTest::newRow("login paused")
        << int(CAMMGR_REASON_LOGIN_PAUSED) << "1740"
        << "The camera refuses this user name or password. The next try is in 29 min, so that the "
           "camera does not lock the account. Correct them with \"Modify\".";
    QTest::newRow("codec")
        << int(CAMMGR_REASON_CODEC_UNKNOWN) << "VP8"
        << "The camera sends VP8, which cannot be shown. Set it to H.264, H.265 or MJPEG.";
    QTest::newRow("a placeholder in the detail") << int(CAMMGR_REASON_NO_ANSWER) << "%1.lan"
                                                 << "No answer from %1.lan. Is the camera on?";
    QTest::newRow("of a later library") << 4711 << "x"
                                        << "The camera does not answer. Is it on?";
}

void TestReasonText::words()
{
    QFETCH(int, reason);
    QFETCH(QString, detail);
    QFETCH(QString, text);
    QCOMPARE(reasonText(CameraReason{reason, detail}), text);
}

void TestReasonText::everyReasonHasWords()
{
    const QString unknown = reasonText(CameraReason{4711, {}});
    for (int reason = CAMMGR_REASON_HOST_NOT_FOUND; reason <= CAMMGR_REASON_TLS_FAILED; ++reason) {
        const QString text = reasonText(CameraReason{reason, QStringLiteral("9")});
        QVERIFY(text != unknown);
        QVERIFY(!text.contains(QLatin1String("%1")));
    }
}

void TestReasonText::durations_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << qint64(0) << "less than 1 min";
    QTest::newRow("59") << qint64(59) << "less than 1 min";
    QTest::newRow("60") << qint64(60) << "1 min";
    QTest::newRow("3599") << qint64(3599) << "59 min";
    QTest::newRow("3600") << qint64(3600) << "1 h 0 min";
    QTest::newRow("100 hours") << qint64(360'000) << "100 h 0 min";
}

void TestReasonText::durations()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, text);
    QCOMPARE(durationText(seconds), text);
}

void TestReasonText::timesOfTodayHaveNoDate()
{
    const QDateTime time(QDate(2024, 3, 5), QTime(7, 8, 9));
    QCOMPARE(timeText(time, time.addSecs(60)), QStringLiteral("07:08:09"));
    QCOMPARE(timeText(time, time.addDays(1)),
             QLocale().toString(time.date(), QLocale::ShortFormat) + QStringLiteral(" 07:08:09"));
}

QTEST_GUILESS_MAIN(TestReasonText)
#include "tst_reason_text.moc"
