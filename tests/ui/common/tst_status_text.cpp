#include "ui/common/status_text.h"

#include <QtTest>

#include <limits>

class TestStatusText : public QObject
{
    Q_OBJECT

private slots:
    void rates_data();
    void rates();
    void sizes();
    void theScaleIsWhatIsShownAndNotRounded();
    void aPictureWithoutWidthHasNoScale();
};

void TestStatusText::rates_data()
{
    QTest::addColumn<int>("bitRate");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0 << "25FPS 0bps";
    QTest::newRow("last plain") << 999 << "25FPS 999bps";
    QTest::newRow("first Kbps") << 1000 << "25FPS 1.00Kbps";
    QTest::newRow("Kbps with one zero") << 1059 << "25FPS 1.05Kbps";
    QTest::newRow("Kbps cut off") << 12345 << "25FPS 12.34Kbps";
    QTest::newRow("last Kbps") << 999999 << "25FPS 999.99Kbps";
    QTest::newRow("first Mbps") << 1000000 << "25FPS 1.00Mbps";
    QTest::newRow("Mbps cut off") << 1234567 << "25FPS 1.23Mbps";
    QTest::newRow("largest") << std::numeric_limits<int>::max() << "25FPS 2147.48Mbps";
    QTest::newRow("nonsense") << -5 << "25FPS -5bps";
}

void TestStatusText::rates()
{
    QFETCH(int, bitRate);
    QFETCH(QString, text);
    QCOMPARE(zelvaro::rateText(25, bitRate), text);
}

void TestStatusText::sizes()
{
    QCOMPARE(zelvaro::sizeText({640, 360}), QStringLiteral("640x360"));
    QCOMPARE(zelvaro::scaledSizeText({1280, 720}, 1280), QStringLiteral("1280x720(100%)"));
}

void TestStatusText::theScaleIsWhatIsShownAndNotRounded()
{
    QCOMPARE(zelvaro::scaledSizeText({1920, 1080}, 970), QStringLiteral("1920x1080(50%)"));
    QCOMPARE(zelvaro::scaledSizeText({3, 3}, 2), QStringLiteral("3x3(66%)"));
    QCOMPARE(zelvaro::scaledSizeText({100, 100}, 50000000), QStringLiteral("100x100(50000000%)"));
}

void TestStatusText::aPictureWithoutWidthHasNoScale()
{
    QCOMPARE(zelvaro::scaledSizeText({0, 0}, 970), QStringLiteral("0x0(0%)"));
    QCOMPARE(zelvaro::scaledSizeText({-1, -1}, 970), QStringLiteral("-1x-1(0%)"));
}

QTEST_GUILESS_MAIN(TestStatusText)
#include "tst_status_text.moc"
