#include "ui/common/style_url.h"

#include <QFrame>
#include <QtTest>

class TestStyleUrl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void plainPathsStayBare_data();
    void plainPathsStayBare();
    void aPictureInAFolderOfAnyNameIsShown_data();
    void aPictureInAFolderOfAnyNameIsShown();

private:
    QTemporaryDir m_root;
};

void TestStyleUrl::initTestCase()
{
    QVERIFY(m_root.isValid());
}

void TestStyleUrl::plainPathsStayBare_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("resource") << ":/images/cameraitem/novideo.png";
    QTest::newRow("Linux") << "/home/owner/Documents/Zelvaro/Album/ABCD-123456-EFGHI/thumb.jpeg";
    QTest::newRow("Windows") << "C:/Users/owner/Documents/Zelvaro/Album/A_1/20240305_070809.jpg";
    QTest::newRow("port") << "/album/192.168.1.20:8554/thumb.jpeg";
    QTest::newRow("empty") << "";
}

void TestStyleUrl::plainPathsStayBare()
{
    QFETCH(QString, path);
    QCOMPARE(zelvaro::styleUrl(path), path);
}

void TestStyleUrl::aPictureInAFolderOfAnyNameIsShown_data()
{
    QTest::addColumn<QString>("name");
    for (int code = 1; code < 256; ++code)
        if (code != '/')
            QTest::addRow("U+%04X", static_cast<unsigned>(code)) << QString(QChar(code));
    QTest::newRow("two blanks") << "a  b";
    QTest::newRow("blanks around") << " a ";
    QTest::newRow("comment") << "/*a";
    QTest::newRow("end of comment") << "a*/";
    QTest::newRow("percent escape") << "%20";
    QTest::newRow("looks like an escape") << "\\41 ";
    QTest::newRow("looks like a long escape") << "\\abcdef1";
    QTest::newRow("two backslashes and an escape") << "\\\\41";
    QTest::newRow("escaped quote") << "\\\"";
    QTest::newRow("both quotes") << "'\"'";
    QTest::newRow("line ends") << "\r\n\f";
    QTest::newRow("end of the address") << ");} QFrame{border:none;";
    QTest::newRow("Chinese") << QString::fromUtf8("相册");
    QTest::newRow("beyond the basic plane") << QString::fromUtf8("📷");
    QTest::newRow("IPv6") << "[fe80::1]";
}

void TestStyleUrl::aPictureInAFolderOfAnyNameIsShown()
{
    QFETCH(QString, name);
    const QString folder = m_root.path() + QLatin1String("/x") + name + QLatin1Char('y');
    QVERIFY(QDir().mkpath(folder));
    const QString file = folder + QLatin1String("/thumb.jpeg");
    QImage red(8, 8, QImage::Format_RGB32);
    red.fill(Qt::red);
    QVERIFY(red.save(file, "PNG"));

    QFrame frame;
    frame.setObjectName(QStringLiteral("frameClient"));
    frame.resize(40, 40);
    frame.setStyleSheet(QStringLiteral("QFrame#frameClient{border-image:url(") +
                        zelvaro::styleUrl(file) + QStringLiteral(");}"));
    QImage shown(frame.size(), QImage::Format_RGB32);
    shown.fill(Qt::blue);
    frame.render(&shown);
    QCOMPARE(shown.pixelColor(20, 20), QColor(Qt::red));
}

QTEST_MAIN(TestStyleUrl)
#include "tst_style_url.moc"
