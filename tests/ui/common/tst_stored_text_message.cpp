#include "ui/common/stored_text_message.h"

#include <QTextCodec>
#include <QtTest>

using zelvaro::SettingsText;
using zelvaro::storedTextMessage;

class TestStoredTextMessage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1")); }
    void aTextThatFitsHasNone()
    {
        QCOMPARE(storedTextMessage(SettingsText::Name, QString(250, 'x'), "Camera Name"),
                 QString());
    }
    void aLongTextIsCalledTooLong()
    {
        QCOMPARE(storedTextMessage(SettingsText::Name, QString(251, 'x'), "Camera Name"),
                 QString("Camera Name: too long to be saved. Please enter a shorter text."));
    }
    void aTextOfOtherLettersIsCalledSo()
    {
        QCOMPARE(storedTextMessage(SettingsText::Password, QStringLiteral("門"), "Password"),
                 QString("Password: has characters that cannot be saved on this system."));
    }
};

QTEST_GUILESS_MAIN(TestStoredTextMessage)
#include "tst_stored_text_message.moc"
