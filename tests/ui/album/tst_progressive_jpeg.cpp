#include "ui/common/progressive_jpeg.h"

#include <QImage>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QtTest>

class TestProgressiveJpeg : public QObject
{
    Q_OBJECT

private slots:
    void jpegsOfBothKinds_data();
    void jpegsOfBothKinds();
    void whatIsNoJpeg_data();
    void whatIsNoJpeg();
    void everyBeginningOfAJpegIsRead();

private:
    QString write(const QByteArray &bytes) const
    {
        const QString file = m_folder.filePath("picture.jpg");
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(file));
        return file;
    }
    static QByteArray jpeg(bool progressive)
    {
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(Qt::green);
        QBuffer bytes;
        bytes.open(QIODevice::WriteOnly);
        QImageWriter writer(&bytes, "JPG");
        writer.setProgressiveScanWrite(progressive);
        writer.setText("Comment", "a segment of its own");
        if (!writer.write(image))
            qFatal("cannot encode a JPEG");
        return bytes.data();
    }

    QTemporaryDir m_folder;
};

void TestProgressiveJpeg::jpegsOfBothKinds_data()
{
    QTest::addColumn<bool>("progressive");
    QTest::newRow("one scan") << false;
    QTest::newRow("several scans") << true;
}

void TestProgressiveJpeg::jpegsOfBothKinds()
{
    QFETCH(bool, progressive);
    QCOMPARE(zelvaro::isProgressiveJpeg(write(jpeg(progressive))), progressive);
}

void TestProgressiveJpeg::whatIsNoJpeg_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("no picture");
    QTest::newRow("only the first marker") << QByteArray("\xff\xd8");
    QTest::newRow("only fill bytes") << "\xff\xd8" + QByteArray(5000, '\xff');
    QTest::newRow("only markers") << "\xff\xd8" + QByteArray("\xff\xe0\x00\x02", 4).repeated(5000);
    QTest::newRow("a length below its own") << QByteArray("\xff\xd8\xff\xe0\x00\x01\xff\xc2", 8);
    QTest::newRow("a length beyond the end") << QByteArray("\xff\xd8\xff\xe0\xff\xff\xff\xc2", 8);
    QTest::newRow("a scan without a frame") << QByteArray("\xff\xd8\xff\xda\x00\x02\xff\xc2", 8);
    QTest::newRow("only tables") << QByteArray("\xff\xd8\xff\xc4\x00\x02\xff\xcc\x00\x02", 10);
}

void TestProgressiveJpeg::whatIsNoJpeg()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!zelvaro::isProgressiveJpeg(write(bytes)));
    QVERIFY(!zelvaro::isProgressiveJpeg(m_folder.filePath("missing.jpg")));
    QVERIFY(!zelvaro::isProgressiveJpeg(m_folder.path()));
}

void TestProgressiveJpeg::everyBeginningOfAJpegIsRead()
{
    const QByteArray whole = jpeg(true);
    int told = 0;
    for (int size = 0; size < whole.size(); ++size)
        told += zelvaro::isProgressiveJpeg(write(whole.left(size)));
    // From the frame header on.
    QVERIFY(told > 0 && told < whole.size());
}

QTEST_MAIN(TestProgressiveJpeg)
#include "tst_progressive_jpeg.moc"
