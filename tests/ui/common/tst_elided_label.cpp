#include "ui/common/elided_label.h"

#include "tests/support/tool_tip_text.h"

#include <QHelpEvent>
#include <QToolTip>
#include <QtTest>

using zelvaro::ElidedLabel;

class TestElidedLabel : public QObject
{
    Q_OBJECT

private slots:
    void theTextStaysWhole();
    void asksForNoRoom();
    void drawsTheWholeTextWhereItFits();
    void drawsAnEllipsisWhereItDoesNot();
    void markupIsText();
    void tellsTheWholeTextWhereItDoesNotFit();
};

namespace {

QImage drawn(QLabel &label, const QString &text, int width)
{
    label.setText(text);
    label.resize(width, 30);
    return label.grab().toImage();
}

} // namespace

void TestElidedLabel::theTextStaysWhole()
{
    ElidedLabel label;
    label.resize(10, 20);
    label.setText(QStringLiteral("1280x720(74%)  25FPS 1.06Mbps"));
    label.grab();
    QCOMPARE(label.text(), QStringLiteral("1280x720(74%)  25FPS 1.06Mbps"));
}

void TestElidedLabel::asksForNoRoom()
{
    ElidedLabel label;
    label.setText(QString(500, QLatin1Char('W')));
    QCOMPARE(label.minimumSizeHint().width(), 0);
    QVERIFY(label.minimumSizeHint().height() > 0);
    QCOMPARE(label.sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
}

void TestElidedLabel::drawsTheWholeTextWhereItFits()
{
    ElidedLabel elided;
    QLabel plain;
    QCOMPARE(drawn(elided, QStringLiteral("Camera 1"), 300),
             drawn(plain, QStringLiteral("Camera 1"), 300));
}

void TestElidedLabel::drawsAnEllipsisWhereItDoesNot()
{
    ElidedLabel elided;
    QLabel plain;
    const QString text = QStringLiteral("A camera with a long name");
    const QString cut = elided.fontMetrics().elidedText(text, Qt::ElideRight, 80);
    QVERIFY(cut != text);
    QCOMPARE(drawn(elided, text, 80), drawn(plain, cut, 80));
}

void TestElidedLabel::markupIsText()
{
    ElidedLabel elided;
    QLabel plain;
    plain.setTextFormat(Qt::PlainText);
    QCOMPARE(drawn(elided, QStringLiteral("<b>x</b>"), 200),
             drawn(plain, QStringLiteral("<b>x</b>"), 200));
}

void TestElidedLabel::tellsTheWholeTextWhereItDoesNotFit()
{
    const auto tipAt = [](ElidedLabel &label) {
        QToolTip::hideText(); // which takes a moment
        if (!QTest::qWaitFor([] { return !QToolTip::isVisible(); }, 20000))
            return QStringLiteral("the former tip stays");
        QHelpEvent event(QEvent::ToolTip, label.rect().center(),
                         label.mapToGlobal(label.rect().center()));
        QApplication::sendEvent(&label, &event);
        return QToolTip::isVisible() ? shownByToolTip(QToolTip::text()) : QString();
    };
    ElidedLabel label;
    label.setText(QStringLiteral("A camera <with> a name & more"));
    label.resize(60, 20);
    label.show();
    QCOMPARE(tipAt(label), QStringLiteral("A camera <with> a name & more"));
    label.resize(400, 20);
    QCOMPARE(tipAt(label), QString());
    label.resize(60, 20);
    label.setToolTip(QStringLiteral("another"));
    QCOMPARE(tipAt(label), QStringLiteral("another"));
}

QTEST_MAIN(TestElidedLabel)
#include "tst_elided_label.moc"
