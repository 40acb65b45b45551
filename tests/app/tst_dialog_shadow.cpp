#include "app/dialog_shadow.h"
#include "ui/common/message_box.h"

#include <QTest>

class TestDialogShadow : public QObject
{
    Q_OBJECT

private slots:
    void theShapeIsTheDialogWithoutItsShadow();
    void aDialogSmallerThanItsShadowHasNoShape();
    void dialogsAreLeftWholeWhereTheDesktopBlends();
};

void TestDialogShadow::theShapeIsTheDialogWithoutItsShadow()
{
    const QRegion shape = zelvaro::DialogShadow::withoutShadow(QSize(200, 100));
    QCOMPARE(shape.boundingRect(), QRect(10, 10, 180, 76));
    QVERIFY(shape.contains(QPoint(100, 10)));
    QVERIFY(shape.contains(QPoint(10, 50)));
    QVERIFY(shape.contains(QPoint(189, 50)));
    QVERIFY(shape.contains(QPoint(100, 85)));
    for (const QPoint &corner : {QPoint(10, 10), QPoint(189, 10), QPoint(10, 85), QPoint(189, 85)})
        QVERIFY(!shape.contains(corner));
}

void TestDialogShadow::aDialogSmallerThanItsShadowHasNoShape()
{
    QVERIFY(zelvaro::DialogShadow::withoutShadow(QSize(20, 20)).isEmpty());
    QVERIFY(zelvaro::DialogShadow::withoutShadow(QSize(0, 0)).isEmpty());
}

// The offscreen platform blends.
void TestDialogShadow::dialogsAreLeftWholeWhereTheDesktopBlends()
{
    zelvaro::DialogShadow shadow;
    CMessageBox box(2, "Warning", "Text", QMessageBox::Ok);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QVERIFY(box.mask().isEmpty());
}

QTEST_MAIN(TestDialogShadow)
#include "tst_dialog_shadow.moc"
