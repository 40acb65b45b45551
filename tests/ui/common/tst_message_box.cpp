#include "resources/resources.h"
#include "ui/common/message_box.h"
#include "ui/common/title_widget.h"

#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>

namespace {

template <typename Widget>
Widget *child(const QWidget &window, const char *name)
{
    auto *found = window.findChild<Widget *>(QLatin1String(name));
    if (!found)
        qFatal("no child %s", name);
    return found;
}

/// Runs the box and does `act` to it once it is on the screen.
template <typename Act>
int runWith(CMessageBox &box, Act act)
{
    QTimer timer;
    timer.setInterval(10);
    QObject::connect(&timer, &QTimer::timeout, &box, [&] {
        if (!box.isVisible())
            return;
        timer.stop();
        act();
    });
    timer.start();
    return box.exec();
}

} // namespace

class TestMessageBox : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void okAndCancelShowsBothButtons();
    void okAloneShowsOnlyTheOkButton();
    void cancelAloneShowsOnlyTheCancelButton();
    void kindTwoShowsNoIcon();
    void iconByKind_data();
    void iconByKind();
    void resultByButton();
    void enterIsOkAndEscapeIsCancel();
    void escapeIsCancelWithOkAlone();
    void textsArePlain();
    void longTextsWrap();
    void aLongWordWidensTheBox();
    void onlyTheFrameIsDrawn();
    void theFormHasItsNamesAndTheTitleItsColour();
    void theTitleStripDragsTheBox();
};

void TestMessageBox::initTestCase()
{
    zelvaro::initResources();
    zelvaro::applyLook();
}

void TestMessageBox::okAndCancelShowsBothButtons()
{
    CMessageBox box(2, "Warning", "Delete camera?", QMessageBox::Ok | QMessageBox::Cancel);
    QVERIFY(!child<QPushButton>(box, "btnOk")->isHidden());
    QVERIFY(!child<QPushButton>(box, "btnCancel")->isHidden());
    QCOMPARE(child<QPushButton>(box, "btnCancel")->text(), QString("Cancel"));
    QCOMPARE(child<QLabel>(box, "labelTitle")->text(), QString("Warning"));
    QCOMPARE(child<QLabel>(box, "labelMessage")->text(), QString("Delete camera?"));
}

void TestMessageBox::okAloneShowsOnlyTheOkButton()
{
    CMessageBox box(3, "Error", "Please input UID.", QMessageBox::Ok);
    QVERIFY(!child<QPushButton>(box, "btnOk")->isHidden());
    QVERIFY(child<QPushButton>(box, "btnCancel")->isHidden());
}

void TestMessageBox::cancelAloneShowsOnlyTheCancelButton()
{
    CMessageBox box(3, "Error", "Please input UID.", QMessageBox::Cancel);
    QVERIFY(child<QPushButton>(box, "btnOk")->isHidden());
    QVERIFY(!child<QPushButton>(box, "btnCancel")->isHidden());
}

void TestMessageBox::kindTwoShowsNoIcon()
{
    CMessageBox box(2, "Warning", "Delete camera?", QMessageBox::Ok);
    QVERIFY(child<QLabel>(box, "labelIcon")->pixmap(Qt::ReturnByValue).isNull());
    QVERIFY(child<QLabel>(box, "labelIcon")->text().isEmpty());
}

void TestMessageBox::iconByKind_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("image");
    QTest::newRow("0") << 0 << QString();
    QTest::newRow("information") << 1 << QString();
    QTest::newRow("warning") << 2 << QString();
    QTest::newRow("error") << 3 << ":/images/icon/error.png";
    QTest::newRow("question") << 4 << ":/images/icon/question.png";
    QTest::newRow("5") << 5 << QString();
    QTest::newRow("negative") << -1 << QString();
}

void TestMessageBox::iconByKind()
{
    QFETCH(int, kind);
    QFETCH(QString, image);
    CMessageBox box(kind, "Title", "Text", QMessageBox::Ok);
    auto *icon = child<QLabel>(box, "labelIcon");
    QVERIFY(icon->text().isEmpty());
    const QImage shown = icon->pixmap(Qt::ReturnByValue).toImage();
    if (image.isEmpty()) {
        QVERIFY(shown.isNull());
        return;
    }
    const QImage wanted = QIcon(image).pixmap(48, 48).toImage();
    QVERIFY2(!wanted.isNull(), qPrintable(image));
    QCOMPARE(shown, wanted);
}

void TestMessageBox::resultByButton()
{
    {
        CMessageBox box(2, "Warning", "Delete?", QMessageBox::Ok | QMessageBox::Cancel);
        QCOMPARE(
            runWith(box,
                    [&] { QTest::mouseClick(child<QPushButton>(box, "btnOk"), Qt::LeftButton); }),
            1);
    }
    CMessageBox box(2, "Warning", "Delete?", QMessageBox::Ok | QMessageBox::Cancel);
    QCOMPARE(
        runWith(box,
                [&] { QTest::mouseClick(child<QPushButton>(box, "btnCancel"), Qt::LeftButton); }),
        0);
}

void TestMessageBox::enterIsOkAndEscapeIsCancel()
{
    CMessageBox box(2, "Warning", "Delete?", QMessageBox::Ok | QMessageBox::Cancel);
    QCOMPARE(runWith(
                 box, [&] { QTest::keyClick(&box, Qt::Key_Return); }),
             1);
    QCOMPARE(runWith(
                 box, [&] { QTest::keyClick(&box, Qt::Key_Enter); }),
             1);
    QCOMPARE(runWith(box, [&] { QTest::keyClick(&box, Qt::Key_Escape); }), 0);
}

void TestMessageBox::escapeIsCancelWithOkAlone()
{
    CMessageBox box(3, "Error", "Please input UID.", QMessageBox::Ok);
    QCOMPARE(runWith(box, [&] { QTest::keyClick(&box, Qt::Key_Escape); }), 0);
}

void TestMessageBox::textsArePlain()
{
    CMessageBox box(2, "<b>T</b>", "<img src=x> & <b>bold</b>", QMessageBox::Ok);
    QCOMPARE(child<QLabel>(box, "labelTitle")->textFormat(), Qt::PlainText);
    QCOMPARE(child<QLabel>(box, "labelMessage")->textFormat(), Qt::PlainText);
}

void TestMessageBox::longTextsWrap()
{
    const QString text = QString("A sentence that goes on and on. ").repeated(20).trimmed();
    CMessageBox box(3, "Error", text, QMessageBox::Ok);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    auto *label = child<QLabel>(box, "labelMessage");
    QVERIFY2(box.width() < 600, qPrintable(QString::number(box.width())));
    QVERIFY2(label->height() >= label->heightForWidth(label->width()),
             qPrintable(QString("%1x%2 needs %3")
                            .arg(label->width())
                            .arg(label->height())
                            .arg(label->heightForWidth(label->width()))));
    QVERIFY(label->height() > 3 * label->fontMetrics().height());
}

void TestMessageBox::aLongWordWidensTheBox()
{
    const QString path = "/" + QString("folder/").repeated(12);
    CMessageBox box(3, "Error", "Cannot write " + path, QMessageBox::Ok);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    auto *label = child<QLabel>(box, "labelMessage");
    const int wanted = qMin(label->fontMetrics().horizontalAdvance(path),
                            box.screen()->availableGeometry().width() / 2);
    QVERIFY(label->width() >= wanted);
}

void TestMessageBox::onlyTheFrameIsDrawn()
{
    QWidget parent;
    CMessageBox box(2, "Warning", "Text", QMessageBox::Ok, &parent);
    QVERIFY(box.testAttribute(Qt::WA_TranslucentBackground));
    QVERIFY(box.windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(box.windowType(), Qt::Dialog);
    QCOMPARE(box.parentWidget(), &parent);
}

void TestMessageBox::theFormHasItsNamesAndTheTitleItsColour()
{
    CMessageBox box(2, "Warning", "Text", QMessageBox::Ok);
    for (const char *name : {"frameMessage", "frameTitle", "labelTitleLine", "frameBody",
                             "labelIcon", "labelMessage", "frameButtons"})
        QVERIFY2(child<QWidget>(box, name), name);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QCOMPARE(child<QLabel>(box, "labelTitle")->palette().color(QPalette::WindowText),
             QColor(39, 69, 93));
}

void TestMessageBox::theTitleStripDragsTheBox()
{
    CMessageBox box(2, "Warning", "Text", QMessageBox::Ok);
    box.move(100, 100);
    auto *strip = child<CTitleWidget>(box, "frameTitle");
    const QPoint start = strip->mapToGlobal(QPoint(5, 5));
    QTest::mousePress(strip, Qt::LeftButton, {}, QPoint(5, 5));
    QMouseEvent move(QEvent::MouseMove, QPoint(25, 35), start + QPoint(20, 30), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(strip, &move);
    QCOMPARE(box.pos(), QPoint(120, 130));
}

QTEST_MAIN(TestMessageBox)
#include "tst_message_box.moc"
