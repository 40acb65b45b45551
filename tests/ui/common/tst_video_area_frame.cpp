#include "ui/common/video_area_frame.h"

#include <QtTest>

class TestVideoAreaFrame : public QObject
{
    Q_OBJECT

private slots:
    void everyResizeIsReported();
};

void TestVideoAreaFrame::everyResizeIsReported()
{
    CVideoAreaFrame area;
    area.resize(300, 200);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));
    QSignalSpy resized(&area, &CVideoAreaFrame::signalResize);
    area.resize(400, 200);
    QTRY_COMPARE_WITH_TIMEOUT(resized.count(), 1, 20000);
    area.resize(400, 300);
    QTRY_COMPARE_WITH_TIMEOUT(resized.count(), 2, 20000);
    area.resize(400, 300);
    area.move(20, 20);
    QCoreApplication::processEvents();
    QCOMPARE(resized.count(), 2);
}

QTEST_MAIN(TestVideoAreaFrame)
#include "tst_video_area_frame.moc"
