#include "app/window_place.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace zelvaro;

class TestWindowPlace : public QObject
{
    Q_OBJECT

private slots:
    void whatIsWrittenIsRead();
    void withoutAFileThereIsNone();
    void aBrokenFileIsNone();
    void aFolderThatIsNotThereIsPassedOver();
    void aPlaceThatCanBeReachedStays_data();
    void aPlaceThatCanBeReachedStays();
    void aPlaceOffTheScreensMoves_data();
    void aPlaceOffTheScreensMoves();

private:
    QString file() const { return m_folder.filePath(QStringLiteral("Window.ini")); }

    QTemporaryDir m_folder;
    const QList<QRect> m_screens{QRect(0, 0, 1920, 1040), QRect(1920, 0, 1280, 1024)};
};

void TestWindowPlace::whatIsWrittenIsRead()
{
    for (const bool maximized : {true, false}) {
        writeWindowPlace(file(), {QRect(-20, 30, 900, 700), maximized});
        const auto read = readWindowPlace(file());
        QVERIFY(read);
        QCOMPARE(read->normal, QRect(-20, 30, 900, 700));
        QCOMPARE(read->maximized, maximized);
    }
}

void TestWindowPlace::withoutAFileThereIsNone()
{
    QVERIFY(!readWindowPlace(m_folder.filePath(QStringLiteral("none.ini"))));
}

void TestWindowPlace::aBrokenFileIsNone()
{
    QFile broken(file());
    for (const QByteArray &bytes :
         {QByteArray("[window]\nplace=@Rect(1 2\n"), QByteArray(1000, '\xff'),
          QByteArray("[window]\nplace=@Rect(10 10 0 -5)\n")}) {
        QVERIFY(broken.open(QIODevice::WriteOnly | QIODevice::Truncate));
        broken.write(bytes);
        broken.close();
        QVERIFY(!readWindowPlace(file()));
    }
}

void TestWindowPlace::aFolderThatIsNotThereIsPassedOver()
{
    const QString lost = QStringLiteral("/proc/none/Window.ini");
    writeWindowPlace(lost, {QRect(0, 0, 500, 400), false});
    QVERIFY(!readWindowPlace(lost));
}

void TestWindowPlace::aPlaceThatCanBeReachedStays_data()
{
    QTest::addColumn<QRect>("place");
    QTest::newRow("inside") << QRect(100, 50, 1024, 720);
    QTest::newRow("left of the screen with its title in reach") << QRect(-900, 50, 1024, 720);
    QTest::newRow("below the screen with its title in reach") << QRect(0, 1000, 1024, 720);
    QTest::newRow("second screen") << QRect(2000, 10, 1024, 720);
}

void TestWindowPlace::aPlaceThatCanBeReachedStays()
{
    QFETCH(QRect, place);
    QCOMPARE(reachablePlace(place, m_screens), place);
}

void TestWindowPlace::aPlaceOffTheScreensMoves_data()
{
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QRect>("moved");
    QTest::newRow("a screen that is gone")
        << QRect(5000, 50, 1024, 720) << QRect(1920 - 1024, 50, 1024, 720);
    QTest::newRow("title above the screens")
        << QRect(100, -400, 1024, 720) << QRect(100, 0, 1024, 720);
    QTest::newRow("title below the screens")
        << QRect(100, 1030, 1024, 720) << QRect(100, 1040 - 720, 1024, 720);
    QTest::newRow("larger than its screen") << QRect(0, 0, 4000, 3000) << QRect(0, 0, 1920, 1040);
    QTest::newRow("larger than any screen, off all of them")
        << QRect(-9000, -9000, 4000, 3000) << QRect(0, 0, 1920, 1040);
}

void TestWindowPlace::aPlaceOffTheScreensMoves()
{
    QFETCH(QRect, place);
    QFETCH(QRect, moved);
    QCOMPARE(reachablePlace(place, m_screens), moved);
}

QTEST_GUILESS_MAIN(TestWindowPlace)
#include "tst_window_place.moc"
