#include "camera/developer_check.h"

#include <QProcess>
#include <QtTest>

/// A broken condition is reported to developers only.
class TestDeveloperCheck : public QObject
{
    Q_OBJECT

private slots:
    void keptConditionSaysNothing();
    void brokenConditionNamesItselfAndItsSource();
    void abortsWhenTheEnvironmentAsks();
};

void TestDeveloperCheck::keptConditionSaysNothing()
{
    static int messages = 0;
    const auto before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &) { ++messages; });
    const bool ok = ZELVARO_CHECK(messages == 0, "Camera");
    qInstallMessageHandler(before);
    QVERIFY(ok);
    QCOMPARE(messages, 0);
}

void TestDeveloperCheck::brokenConditionNamesItselfAndItsSource()
{
    QTest::ignoreMessage(QtWarningMsg, "\"!cam_to_stop\" in Camera");
    const bool cam_to_stop = true; // NOLINT(readability-identifier-naming): as it is logged
    QVERIFY(!ZELVARO_CHECK(!cam_to_stop, "Camera"));
}

void TestDeveloperCheck::abortsWhenTheEnvironmentAsks()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ZELVARO_ABORT_ON_CHECK"), QStringLiteral("1"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("brokenConditionNamesItselfAndItsSource")});
    QVERIFY(process.waitForFinished(30000));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
}

QTEST_GUILESS_MAIN(TestDeveloperCheck)
#include "tst_developer_check.moc"
