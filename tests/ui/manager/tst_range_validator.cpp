#include "ui/manager/range_validator.h"

#include <QLineEdit>
#include <QtTest>

/// Whole numbers within a range, typed with real keys.
class TestRangeValidator : public QObject
{
    Q_OBJECT

private slots:
    void typedText_data();
    void typedText();
    void emptyIsOnTheWay();
    void pastedTextOutsideTheRangeIsRefused();
    void everyNumberOfTheRangeIsTaken();
    void aTextFromElsewhereTakesNoKeysThatLeaveItOutside();
};

void TestRangeValidator::typedText_data()
{
    QTest::addColumn<int>("bottom");
    QTest::addColumn<int>("top");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("text");
    QTest::newRow("largest left edge") << 0 << 639 << "639"
                                       << "639";
    QTest::newRow("640 into a left edge") << 0 << 639 << "640"
                                          << "64";
    QTest::newRow("480 into a top edge") << 0 << 479 << "480"
                                         << "48";
    QTest::newRow("479 into a top edge") << 0 << 479 << "479"
                                         << "479";
    QTest::newRow("four digits") << 0 << 639 << "1000"
                                 << "100";
    QTest::newRow("0 into an edge") << 0 << 639 << "0"
                                    << "0";
    QTest::newRow("0 into a threshold") << 1 << 100 << "0"
                                        << "";
    QTest::newRow("1 into a threshold") << 1 << 100 << "1"
                                        << "1";
    QTest::newRow("100 into a threshold") << 1 << 100 << "100"
                                          << "100";
    QTest::newRow("101 into a threshold") << 1 << 100 << "101"
                                          << "10";
    QTest::newRow("sign") << 0 << 639 << "-5"
                          << "5";
    QTest::newRow("letters and blanks") << 0 << 639 << "a 1b2"
                                        << "12";
    QTest::newRow("group separator") << 0 << 639 << "1,2"
                                     << "12";
}

void TestRangeValidator::typedText()
{
    QFETCH(int, bottom);
    QFETCH(int, top);
    QFETCH(QString, keys);
    QLineEdit edit;
    zelvaro::RangeValidator validator(bottom, top);
    edit.setValidator(&validator);
    QTest::keyClicks(&edit, keys);
    QTEST(edit.text(), "text");
}

void TestRangeValidator::emptyIsOnTheWay()
{
    const zelvaro::RangeValidator validator(1, 100);
    QString text;
    int position = 0;
    QCOMPARE(validator.validate(text, position), QValidator::Intermediate);
}

void TestRangeValidator::pastedTextOutsideTheRangeIsRefused()
{
    const zelvaro::RangeValidator validator(0, 639);
    int position = 0;
    for (QString text : {QStringLiteral("640"), QStringLiteral("99999999999"), QStringLiteral("-1"),
                         QStringLiteral("+1"), QStringLiteral("1.5"), QStringLiteral("\u0663")})
        QCOMPARE(validator.validate(text, position), QValidator::Invalid);
}

void TestRangeValidator::everyNumberOfTheRangeIsTaken()
{
    const zelvaro::RangeValidator validator(1, 100);
    int position = 0;
    for (int number = -5; number <= 205; ++number) {
        QString text = QString::number(number);
        const bool taken = validator.validate(text, position) == QValidator::Acceptable;
        QCOMPARE(taken, number >= 1 && number <= 100);
    }
}

void TestRangeValidator::aTextFromElsewhereTakesNoKeysThatLeaveItOutside()
{
    QLineEdit edit;
    edit.setValidator(new zelvaro::RangeValidator(0, 639, &edit));
    new zelvaro::RangeGuard(&edit);
    edit.setText("1704");
    QTest::keyClicks(&edit, "9x-");
    QCOMPARE(edit.text(), QString("1704"));
    QTest::keyClick(&edit, Qt::Key_Backspace);
    QCOMPARE(edit.text(), QString("170"));
    QTest::keyClicks(&edit, "0");
    QCOMPARE(edit.text(), QString("170"));
    edit.setText("far");
    edit.selectAll();
    QTest::keyClicks(&edit, "64");
    QCOMPARE(edit.text(), QString("64"));
    edit.setText("70400");
    QTest::keyClick(&edit, Qt::Key_Backspace);
    QCOMPARE(edit.text(), QString("7040"));
    QTest::keyClicks(&edit, "1");
    QCOMPARE(edit.text(), QString("7040"));
}

QTEST_MAIN(TestRangeValidator)
#include "tst_range_validator.moc"
