#include "ui/discovery/address_edit.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QTest>

class TestAddressEdit : public QObject
{
    Q_OBJECT

private slots:
    void showsAndReadsAddress();
    void emptyOrOutOfRangeIsZero();
    void takesThreeDigitsOnly();
    void leadingZerosStayDecimal();
    void dotMovesToNextOctet();
    void wholeAddressIsPasted();
    void readOnlyTakesNothing();

private:
    static QLineEdit *octet(CAddressEdit &edit, int number)
    {
        return edit.findChild<QLineEdit *>(QStringLiteral("octet%1").arg(number));
    }
};

void TestAddressEdit::showsAndReadsAddress()
{
    CAddressEdit edit;
    edit.setAddress(0xC0A80114);
    QCOMPARE(octet(edit, 1)->text(), QStringLiteral("192"));
    QCOMPARE(octet(edit, 2)->text(), QStringLiteral("168"));
    QCOMPARE(octet(edit, 3)->text(), QStringLiteral("1"));
    QCOMPARE(octet(edit, 4)->text(), QStringLiteral("20"));
    QCOMPARE(edit.address(), 0xC0A80114U);
    edit.setAddress(0xFFFFFFFF);
    QCOMPARE(edit.address(), 0xFFFFFFFFU);
}

void TestAddressEdit::emptyOrOutOfRangeIsZero()
{
    CAddressEdit edit;
    QCOMPARE(edit.address(), 0U);
    edit.setAddress(0x01020304);
    octet(edit, 4)->clear();
    QCOMPARE(edit.address(), 0U);
    octet(edit, 4)->setText(QStringLiteral("256"));
    QCOMPARE(edit.address(), 0U);
}

void TestAddressEdit::takesThreeDigitsOnly()
{
    CAddressEdit edit;
    QLineEdit *first = octet(edit, 1);
    QTest::keyClicks(first, QStringLiteral("2x5-51"));
    QCOMPARE(first->text(), QStringLiteral("255"));
    first->clear();
    QTest::keyClicks(first, QStringLiteral("1000"));
    QCOMPARE(first->text(), QStringLiteral("100"));
}

void TestAddressEdit::leadingZerosStayDecimal()
{
    CAddressEdit edit;
    edit.setAddress(0x0A000001);
    octet(edit, 1)->setText(QStringLiteral("010"));
    QCOMPARE(edit.address(), 0x0A000001U);
}

void TestAddressEdit::dotMovesToNextOctet()
{
    CAddressEdit edit;
    edit.show();
    QVERIFY(QTest::qWaitForWindowActive(&edit));
    octet(edit, 1)->setFocus();
    for (const QString &part :
         {QStringLiteral("10."), QStringLiteral("0."), QStringLiteral("7."), QStringLiteral("9.")})
        QTest::keyClicks(edit.focusWidget(), part);
    QCOMPARE(edit.address(), 0x0A000709U);
    QVERIFY(octet(edit, 4)->hasFocus());
}

void TestAddressEdit::wholeAddressIsPasted()
{
    CAddressEdit edit;
    QGuiApplication::clipboard()->setText(QStringLiteral(" 172.16.0.3\n"));
    QTest::keyClick(octet(edit, 2), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(edit.address(), 0xAC100003U);
}

void TestAddressEdit::readOnlyTakesNothing()
{
    CAddressEdit edit;
    edit.setAddress(0x01020304);
    edit.setReadOnly(true);
    QGuiApplication::clipboard()->setText(QStringLiteral("172.16.0.3"));
    for (int number = 1; number <= 4; ++number) {
        QTest::keyClicks(octet(edit, number), QStringLiteral("9"));
        QTest::keyClick(octet(edit, number), Qt::Key_V, Qt::ControlModifier);
    }
    QCOMPARE(edit.address(), 0x01020304U);
    QVERIFY(edit.isReadOnly());
}

QTEST_MAIN(TestAddressEdit)
#include "tst_address_edit.moc"
