#include "app/start_environment.h"

#include <QTest>

using zelvaro::StartEnvironment;

class TestStartEnvironment : public QObject
{
    Q_OBJECT

private slots:
    void init() { qunsetenv(name); }
    void cleanupTestCase() { qunsetenv(name); }

    void variableIsSetUntilRestored()
    {
        StartEnvironment environment;
        environment.set(name, "ours");
        QCOMPARE(qgetenv(name), QByteArray("ours"));
        environment.restore();
        QVERIFY(!qEnvironmentVariableIsSet(name));
    }

    void variableGoesWithTheObject()
    {
        {
            StartEnvironment environment;
            environment.set(name, "ours");
        }
        QVERIFY(!qEnvironmentVariableIsSet(name));
    }

    void usersValueStays()
    {
        qputenv(name, "theirs");
        StartEnvironment environment;
        environment.set(name, "ours");
        QCOMPARE(qgetenv(name), QByteArray("theirs"));
        environment.restore();
        QCOMPARE(qgetenv(name), QByteArray("theirs"));
    }

    void emptyValueComesBackEmpty()
    {
        qputenv(name, "");
        StartEnvironment environment;
        environment.set(name, "ours");
        QCOMPARE(qgetenv(name), QByteArray("ours"));
        environment.restore();
        QVERIFY(qEnvironmentVariableIsSet(name));
        QVERIFY(qEnvironmentVariableIsEmpty(name));
    }

    void whatIsSetAfterRestoringStays()
    {
        StartEnvironment environment;
        environment.set(name, "ours");
        environment.restore();
        qputenv(name, "later");
        environment.restore();
        QCOMPARE(qgetenv(name), QByteArray("later"));
    }

private:
    static constexpr char name[] = "ZELVARO_TEST_VARIABLE";
};

QTEST_GUILESS_MAIN(TestStartEnvironment)
#include "tst_start_environment.moc"
