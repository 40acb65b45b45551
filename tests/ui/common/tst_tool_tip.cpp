#include "ui/common/tool_tip.h"

#include "tests/support/tool_tip_text.h"

#include <QLabel>
#include <QPainter>
#include <QTextDocument>
#include <QtTest>

class TestToolTip : public QObject
{
    Q_OBJECT

private slots:
    void showsTheTextItself_data();
    void showsTheTextItself();
    void loadsNoPictures();
    void aShortTextStaysInOneLine();
    void aLongTextIsWrapped();
    void anEmptyTextIsNoTip();
};

namespace {

/// A document that records what it had to load.
class WatchedDocument : public QTextDocument
{
public:
    QStringList loaded;

protected:
    QVariant loadResource(int type, const QUrl &name) override
    {
        loaded << name.toString();
        return QTextDocument::loadResource(type, name);
    }
};

/// The size that the window of a tool tip would take: a label that guesses its format and wraps
/// rich text, as QToolTip has it.
QSize tipSize(const QString &tip)
{
    QLabel label;
    label.setWordWrap(Qt::mightBeRichText(tip));
    label.setText(tip);
    return label.sizeHint();
}

} // namespace

void TestToolTip::showsTheTextItself_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QStringLiteral("Front door");
    QTest::newRow("ampersand") << QStringLiteral("Tom & Jerry");
    QTest::newRow("entity") << QStringLiteral("Tom &amp; Jerry");
    QTest::newRow("query") << QStringLiteral("rtsp://h/a?x=1&y=2");
    QTest::newRow("quotes") << QStringLiteral("say \"hi\" and 'ho'");
    QTest::newRow("tags") << QStringLiteral("<b>x</b>");
    QTest::newRow("picture") << QStringLiteral("<img src=\":/images/none.png\">");
    QTest::newRow("whole page") << QStringLiteral("<html><body>x</body></html>");
    QTest::newRow("blanks") << QStringLiteral("  two  blanks  ");
    QTest::newRow("lines") << QStringLiteral("one\ntwo");
    QTest::newRow("a blank") << QStringLiteral(" ");
    QTest::newRow("other scripts") << QString::fromUtf8("Tür – 玄関");
}

void TestToolTip::showsTheTextItself()
{
    QFETCH(QString, text);
    const QString tip = zelvaro::plainToolTip(text);
    QVERIFY(Qt::mightBeRichText(tip));
    QCOMPARE(shownByToolTip(tip), text);
}

void TestToolTip::loadsNoPictures()
{
    const auto loadedBy = [](const QString &tip) {
        WatchedDocument document;
        document.setHtml(tip);
        QImage page(400, 100, QImage::Format_RGB32);
        QPainter painter(&page);
        document.drawContents(&painter);
        return document.loaded;
    };
    const QString text = QStringLiteral("<img src=\"file:///x.png\">");
    QVERIFY(!loadedBy(text).isEmpty());
    QCOMPARE(loadedBy(zelvaro::plainToolTip(text)), QStringList());
}

void TestToolTip::aShortTextStaysInOneLine()
{
    const QString text = QStringLiteral("1280x720(74%)  25FPS 1.06Mbps");
    QVERIFY(tipSize(zelvaro::plainToolTip(text)).height() < 2 * tipSize(text).height());
}

void TestToolTip::aLongTextIsWrapped()
{
    const QString text = QStringLiteral("a name with blanks ").repeated(20);
    QVERIFY(tipSize(zelvaro::plainToolTip(text)).width() < tipSize(text).width() / 2);
}

void TestToolTip::anEmptyTextIsNoTip()
{
    QCOMPARE(zelvaro::plainToolTip(QString()), QString());
}

QTEST_MAIN(TestToolTip)
#include "tst_tool_tip.moc"
