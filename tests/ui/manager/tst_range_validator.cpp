#include "ui/manager/range_validator.h"

#include <QLineEdit>
#include <QtTest>

/// Whole numbers within a range, typed with real keys.
class TstRangeValidator : public QObject
{
    Q_OBJECT

private slots:
    void typedText_data();
    void typedText();
    void emptyIsOnTheWay();
    void pastedTextOutsideTheRangeIsRefused();
    void everyNumberOfTheRangeIsTaken();
};

void TstRangeValidator::typedText_data()
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

void TstRangeValidator::typedText()
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

void TstRangeValidator::emptyIsOnTheWay()
{
    const zelvaro::RangeValidator validator(1, 100);
    QString text;
    int position = 0;
    QCOMPARE(validator.validate(text, position), QValidator::Intermediate);
}

void TstRangeValidator::pastedTextOutsideTheRangeIsRefused()
{
    const zelvaro::RangeValidator validator(0, 639);
    int position = 0;
    for (QString text : {QStringLiteral("640"), QStringLiteral("99999999999"), QStringLiteral("-1"),
                         QStringLiteral("+1"), QStringLiteral("1.5"), QStringLiteral("\u0663")})
        QCOMPARE(validator.validate(text, position), QValidator::Invalid);
}

void TstRangeValidator::everyNumberOfTheRangeIsTaken()
{
    const zelvaro::RangeValidator validator(1, 100);
    int position = 0;
    for (int number = -5; number <= 205; ++number) {
        QString text = QString::number(number);
        const bool taken = validator.validate(text, position) == QValidator::Acceptable;
        QCOMPARE(taken, number >= 1 && number <= 100);
    }
}

QTEST_MAIN(TstRangeValidator)
#include "tst_range_validator.moc"
