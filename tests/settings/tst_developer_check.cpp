#include "settings/developer_check.h"

#include <QProcess>
#include <QtTest>

/// A broken condition is reported to developers only.
class TstDeveloperCheck : public QObject
{
    Q_OBJECT

private slots:
    void keptConditionSaysNothing();
    void brokenConditionNamesItselfAndItsSource();
    void abortsWhenTheEnvironmentAsks();
};

void TstDeveloperCheck::keptConditionSaysNothing()
{
    static int messages = 0;
    const auto before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &) { ++messages; });
    const bool ok = zelvaro::developerCheck(true, "a == b", "Camera");
    qInstallMessageHandler(before);
    QVERIFY(ok);
    QCOMPARE(messages, 0);
}

void TstDeveloperCheck::brokenConditionNamesItselfAndItsSource()
{
    QTest::ignoreMessage(QtWarningMsg, "\"!cam_to_stop\" in Camera");
    QVERIFY(!zelvaro::developerCheck(false, "!cam_to_stop", "Camera"));
}

void TstDeveloperCheck::abortsWhenTheEnvironmentAsks()
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

QTEST_GUILESS_MAIN(TstDeveloperCheck)
#include "tst_developer_check.moc"
