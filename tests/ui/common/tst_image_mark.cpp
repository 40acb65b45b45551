#include "ui/common/image_mark.h"

#include "tests/ui/common/shown_tip.h"

#include <QTemporaryDir>
#include <QtTest>

using zelvaro::ImageMark;

class TestImageMark : public QObject
{
    Q_OBJECT

private slots:
    void theToolTipIsNotDrawnOnTheImage();
    void withoutToolTipNoneComesUp();
};

void TestImageMark::theToolTipIsNotDrawnOnTheImage()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("mark.png"));
    QImage red(8, 8, QImage::Format_RGB32);
    red.fill(Qt::red);
    QVERIFY(red.save(file));
    const QString style = QStringLiteral("border-image:url(%1);").arg(file);
    const QString text = QStringLiteral("The disk is full.");

    QWidget window;
    QLabel plain(&window);
    ImageMark mark(&window);
    plain.setGeometry(0, 0, 20, 20);
    mark.setGeometry(40, 0, 20, 20);
    for (QLabel *label : {&plain, static_cast<QLabel *>(&mark)}) {
        label->setStyleSheet(style);
        label->setToolTip(text);
    }
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QCOMPARE(mark.grab().toImage().pixelColor(10, 10), QColor(Qt::red));

    const QImage usual = ShownTip(&window, text).picture();
    QVERIFY(!usual.isNull());
    QVERIFY2(ShownTip(&plain).picture() != usual, "a usual label passes its image on");
    const ShownTip tip(&mark);
    QCOMPARE(tip.text(), text);
    QCOMPARE(tip.picture(), usual);
}

void TestImageMark::withoutToolTipNoneComesUp()
{
    QWidget window;
    ImageMark mark(&window);
    mark.resize(20, 20);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QVERIFY(ShownTip(&mark).picture().isNull());
}

QTEST_MAIN(TestImageMark)
#include "tst_image_mark.moc"
