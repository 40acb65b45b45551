#include <QFile>
#include <QtEndian>
#include <QtTest>

namespace {

quint32 number(const QByteArray &bytes, int at, int count)
{
    quint32 value = 0;
    for (int i = 0; i < count; ++i)
        value |= quint32(quint8(bytes[at + i])) << (8 * i);
    return value;
}

} // namespace

class TestSounds : public QObject
{
    Q_OBJECT

private slots:
    void shutterIsAShortCleanSound();
};

void TestSounds::shutterIsAShortCleanSound()
{
    QFile file(QStringLiteral(ZELVARO_SOUNDS_DIR "/snapshot.wav"));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
    const QByteArray bytes = file.readAll();
    QVERIFY(bytes.size() > 44);
    QCOMPARE(bytes.left(4), QByteArray("RIFF"));
    QCOMPARE(number(bytes, 4, 4), quint32(bytes.size() - 8));
    QCOMPARE(bytes.mid(8, 8), QByteArray("WAVEfmt "));
    QCOMPARE(number(bytes, 20, 2), 1U);  // PCM
    QCOMPARE(number(bytes, 22, 2), 1U);  // mono
    QCOMPARE(number(bytes, 34, 2), 16U); // bits
    QCOMPARE(bytes.mid(36, 4), QByteArray("data"));
    QCOMPARE(number(bytes, 40, 4), quint32(bytes.size() - 44));

    const double seconds = double(bytes.size() - 44) / number(bytes, 28, 4);
    QVERIFY2(seconds > 0.1 && seconds < 1, qPrintable(QString::number(seconds)));

    int peak = 0;
    double sum = 0;
    for (int at = 44; at + 1 < bytes.size(); at += 2) {
        const int sample = qint16(number(bytes, at, 2));
        peak = qMax(peak, qAbs(sample));
        sum += sample;
    }
    QVERIFY2(peak > 8000 && peak < 32000, qPrintable(QString::number(peak)));
    QVERIFY2(qAbs(sum / (bytes.size() / 2)) < 100, "a constant part would click at the end");
    const int last = qint16(number(bytes, bytes.size() - 2, 2));
    QVERIFY(qAbs(last) < 100);
}

QTEST_GUILESS_MAIN(TestSounds)

#include "tst_sounds.moc"
