#include "ui/album/clip_size.h"

#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

namespace {

QByteArray bytes32(quint32 value)
{
    QByteArray raw(4, 0);
    qToBigEndian(value, raw.data());
    return raw;
}

QByteArray box(const char *type, const QByteArray &content)
{
    return bytes32(static_cast<quint32>(content.size()) + 8) + type + content;
}

/// A box whose size has 64 bits.
QByteArray longBox(const char *type, const QByteArray &content)
{
    return bytes32(1) + type + bytes32(0) + bytes32(static_cast<quint32>(content.size()) + 16) +
           content;
}

QByteArray videoTrack(int width, int height)
{
    QByteArray size(4, 0);
    qToBigEndian(static_cast<quint16>(width), size.data());
    qToBigEndian(static_cast<quint16>(height), size.data() + 2);
    const QByteArray entry = box("avc1", QByteArray(24, 0) + size + QByteArray(50, 0));
    const QByteArray stsd = box("stsd", bytes32(0) + bytes32(1) + entry);
    return box("trak",
               box("tkhd", QByteArray(84, 0)) +
                   box("mdia", box("minf", box("vmhd", QByteArray(12, 0)) + box("stbl", stsd))));
}

QByteArray soundTrack()
{
    const QByteArray entry = box("mp4a", QByteArray(28, 1));
    return box(
        "trak",
        box("mdia", box("minf", box("smhd", QByteArray(8, 0)) +
                                    box("stbl", box("stsd", bytes32(0) + bytes32(1) + entry)))));
}

} // namespace

class TestClipSize : public QObject
{
    Q_OBJECT

private slots:
    void files_data();
    void files();
    void everyCutAndEveryWrongByteIsSurvived();
    void aMissingFileHasNoSize();

private:
    QSize sizeOf(const QByteArray &bytes)
    {
        QFile file(m_folder.filePath("clip.mp4"));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write the clip");
        file.close();
        return zelvaro::clipSize(file.fileName());
    }

    QTemporaryDir m_folder;
};

void TestClipSize::files_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QSize>("size");
    const QByteArray type = box("ftyp", "isom");
    const QByteArray media = box("mdat", QByteArray(1000, 7));
    const QByteArray movie = box("moov", box("mvhd", QByteArray(100, 0)) + videoTrack(1280, 720));
    QTest::newRow("moov first") << type + movie + media << QSize(1280, 720);
    QTest::newRow("moov last") << type + media + movie << QSize(1280, 720);
    QTest::newRow("sound first") << type + box("moov", soundTrack() + videoTrack(640, 360))
                                 << QSize(640, 360);
    QTest::newRow("long sizes") << type + longBox("mdat", QByteArray(99, 1)) + movie
                                << QSize(1280, 720);
    QTest::newRow("sound only") << type + box("moov", soundTrack()) << QSize();
    QTest::newRow("no moov") << type + media << QSize();
    QTest::newRow("zero bytes") << QByteArray() << QSize();
    QTest::newRow("text") << QByteArray("this is no recording at all") << QSize();
    QTest::newRow("boxes of no size") << QByteArray(4000, 0) << QSize();
    QTest::newRow("box larger than the file") << bytes32(0x7fffffff) + "moov" << QSize();
    QTest::newRow("largest 64-bit size") << bytes32(1) + "moov" + QByteArray(8, '\xff') << QSize();
    QByteArray many;
    for (int i = 0; i < 5000; ++i)
        many += box("free", {});
    QTest::newRow("thousands of boxes") << many + movie << QSize();
}

void TestClipSize::files()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QSize, size);
    const QSize found = sizeOf(bytes);
    if (size.isEmpty())
        QVERIFY(found.isEmpty());
    else
        QCOMPARE(found, size);
}

void TestClipSize::everyCutAndEveryWrongByteIsSurvived()
{
    const QByteArray whole = box("ftyp", "isom") + box("moov", soundTrack() + videoTrack(640, 360));
    QCOMPARE(sizeOf(whole), QSize(640, 360));
    for (int cut = 0; cut < whole.size(); cut += 3)
        QVERIFY(sizeOf(whole.left(cut)).width() <= 640);
    for (int i = 0; i < whole.size(); ++i) {
        QByteArray wrong = whole;
        wrong[i] = static_cast<char>(wrong[i] ^ 0xff);
        const QSize size = sizeOf(wrong);
        QVERIFY(size.width() <= 0xffff && size.height() <= 0xffff);
    }
}

void TestClipSize::aMissingFileHasNoSize()
{
    QVERIFY(zelvaro::clipSize(m_folder.filePath("missing.mp4")).isEmpty());
    QVERIFY(zelvaro::clipSize(m_folder.path()).isEmpty());
    QVERIFY(zelvaro::clipSize({}).isEmpty());
}

QTEST_APPLESS_MAIN(TestClipSize)
#include "tst_clip_size.moc"
