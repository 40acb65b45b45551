#include "app/video_platform.h"

#include <QTest>

#include <vector>

using zelvaro::canShowOnWayland;
using zelvaro::VideoPlatform;
using zelvaro::videoPlatform;
using zelvaro::whyNoVideo;

namespace {

VideoPlatform platformFor(std::vector<const char *> arguments = {})
{
    arguments.insert(arguments.begin(), "zelvaro");
    return videoPlatform(static_cast<int>(arguments.size()), arguments.data());
}

} // namespace

/// Needs the display that DISPLAY names.
class TestVideoPlatform : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_display = qgetenv("DISPLAY"); }

    void init()
    {
        qputenv("DISPLAY", m_display);
        qunsetenv("QT_QPA_PLATFORM");
        qunsetenv("WAYLAND_DISPLAY");
    }

    void displayThatAnswersIsUsed() { QCOMPARE(platformFor(), VideoPlatform::X11); }

    void displayIsUsedInWaylandSessionToo()
    {
        qputenv("WAYLAND_DISPLAY", "wayland-0");
        QCOMPARE(platformFor({"--screenshot", "picture.png"}), VideoPlatform::X11);
    }

    void usersChoiceStays_data()
    {
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<QByteArray>("argument");
        QTest::newRow("environment") << QByteArray("wayland") << QByteArray();
        QTest::newRow("option") << QByteArray() << QByteArray("-platform");
        QTest::newRow("option with two hyphens") << QByteArray() << QByteArray("--platform");
        QTest::newRow("display") << QByteArray() << QByteArray("-display");
    }
    void usersChoiceStays()
    {
        QFETCH(QByteArray, variable);
        QFETCH(QByteArray, argument);
        qputenv("QT_QPA_PLATFORM", variable);
        qputenv("DISPLAY", "");
        if (argument.isEmpty())
            QCOMPARE(platformFor(), VideoPlatform::Chosen);
        else
            QCOMPARE(platformFor({argument.constData(), "value"}), VideoPlatform::Chosen);
    }

    void missingDisplayIsNamed()
    {
        qunsetenv("DISPLAY");
        QCOMPARE(platformFor(), VideoPlatform::None);
        QVERIFY(whyNoVideo().contains("DISPLAY is not set"));
    }

    void displayThatDoesNotAnswerIsNamed()
    {
        qputenv("DISPLAY", "unix:nowhere");
        QCOMPARE(platformFor(), VideoPlatform::None);
        QVERIFY(whyNoVideo().contains("\"unix:nowhere\" does not answer"));
    }

    void nothingIsShownWithoutWaylandSession() { QVERIFY(!canShowOnWayland()); }

private:
    QByteArray m_display;
};

QTEST_APPLESS_MAIN(TestVideoPlatform)
#include "tst_video_platform.moc"
