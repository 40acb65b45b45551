#include "ui/live/video_frame.h"

#include "tests/support/declared.h"

#include <QPointer>
#include <QtTest>

namespace {

/// Counts what happens to a surface.
class EventCount : public QObject
{
public:
    explicit EventCount(QObject *watched) { watched->installEventFilter(this); }
    int hidden = 0;
    int moved = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        hidden += event->type() == QEvent::Hide;
        moved += event->type() == QEvent::Resize;
        return false;
    }
};

} // namespace

class TestVideoFrame : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void signalsStandInOrder();
    void hasNoSurfaceUntilAsked();
    void aFreshSurfaceFillsTheFrame();
    void theOverlayHasNoShape();
    void theOldPairIsDeletedLaterAndNeverAtOnce();
    void surfacesFollowTheFrameWhileTheSizeIsUnknown();
    void aResizeToTheSameSizeWithAKnownVideoSizeDoesNothing();
    void withAnUnknownVideoSizeTheSurfacesAreSetEveryTime();
    void aKnownSizeHidesMovesAndShows();
    void aSecondSurfaceIsVisibleToo();
    void sizeZeroIsAKnownSize();
    void clicksAndDoubleClicksOnThePictureArriveAtTheFrame();
    void aDoubleClickWithAnotherButtonIsAPress();
    void escapeReleasedIsADoubleClick();
    void otherKeysAndTheRepeatOfEscapeAreNot();
    void aReleaseOfEscapeThatWasPressedElsewhereIsPassedOver();
    void theFrameTakesKeyboardFocus();
    void theFrameIsBlack();

private:
    QWidget *overlay() const { return m_frame->renderSurface()->findChild<QWidget *>(); }

    std::unique_ptr<CVideoFrame> m_frame;
};

void TestVideoFrame::init()
{
    m_frame = std::make_unique<CVideoFrame>();
    m_frame->resize(400, 300);
    m_frame->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_frame.get()));
}

void TestVideoFrame::hasNoSurfaceUntilAsked()
{
    QVERIFY(!m_frame->renderSurface());
    QVERIFY(m_frame->findChildren<QWidget *>().isEmpty());
    m_frame->SetVideoSize(640, 360);
    m_frame->resize(500, 300);
    QCOMPARE(m_frame->styleSheet(), QStringLiteral("background-color:rgb(0,0,0);"));
}

void TestVideoFrame::aFreshSurfaceFillsTheFrame()
{
    QWidget *surface = m_frame->CreateRenderSurface();
    QCOMPARE(surface, m_frame->renderSurface());
    QCOMPARE(surface->parentWidget(), m_frame.get());
    QCOMPARE(surface->geometry(), QRect(0, 0, 400, 300));
    QCOMPARE(surface->styleSheet(), QStringLiteral("background-color:rgb(0,0,0);"));
    QVERIFY(surface->autoFillBackground());
    QVERIFY(surface->isVisible());
    QVERIFY(overlay());
    QCOMPARE(overlay()->parentWidget(), surface);
    QCOMPARE(overlay()->geometry(), QRect(0, 0, 400, 300));
    QVERIFY(overlay()->testAttribute(Qt::WA_TranslucentBackground));
}

void TestVideoFrame::theOverlayHasNoShape()
{
    m_frame->CreateRenderSurface();
    QVERIFY(!overlay()->mask().intersects(overlay()->rect()));
}

void TestVideoFrame::theOldPairIsDeletedLaterAndNeverAtOnce()
{
    QPointer<QWidget> oldSurface = m_frame->CreateRenderSurface();
    QPointer<QWidget> oldOverlay = overlay();
    QWidget *fresh = m_frame->CreateRenderSurface();
    QVERIFY(oldSurface);
    QVERIFY(oldOverlay);
    QVERIFY(fresh != oldSurface);
    QVERIFY(!oldSurface->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!oldSurface && !oldOverlay, 20000);
    QCOMPARE(m_frame->renderSurface(), fresh);
}

void TestVideoFrame::surfacesFollowTheFrameWhileTheSizeIsUnknown()
{
    QWidget *surface = m_frame->CreateRenderSurface();
    m_frame->resize(320, 200);
    QTRY_COMPARE_WITH_TIMEOUT(surface->geometry(), QRect(0, 0, 320, 200), 20000);
    QCOMPARE(overlay()->geometry(), QRect(0, 0, 320, 200));
}

void TestVideoFrame::aResizeToTheSameSizeWithAKnownVideoSizeDoesNothing()
{
    QWidget *surface = m_frame->CreateRenderSurface();
    m_frame->SetVideoSize(640, 360);
    EventCount events(surface);
    surface->setGeometry(5, 5, 10, 10);
    QResizeEvent same(m_frame->size(), m_frame->size());
    QCoreApplication::sendEvent(m_frame.get(), &same);
    m_frame->SetVideoSize(1280, 720);
    QCOMPARE(events.hidden, 0);
    QCOMPARE(surface->geometry(), QRect(5, 5, 10, 10));
}

void TestVideoFrame::withAnUnknownVideoSizeTheSurfacesAreSetEveryTime()
{
    QWidget *surface = m_frame->CreateRenderSurface();
    EventCount events(surface);
    for (int i = 0; i < 2; ++i) {
        surface->setGeometry(5, 5, 10, 10);
        overlay()->setGeometry(1, 1, 2, 2);
        QResizeEvent same(m_frame->size(), m_frame->size());
        QCoreApplication::sendEvent(m_frame.get(), &same);
        QCOMPARE(surface->geometry(), QRect(0, 0, 400, 300));
        QCOMPARE(overlay()->geometry(), QRect(0, 0, 400, 300));
    }
    QCOMPARE(events.hidden, 0);
}

void TestVideoFrame::aKnownSizeHidesMovesAndShows()
{
    QWidget *surface = m_frame->CreateRenderSurface();
    EventCount surfaceEvents(surface);
    EventCount overlayEvents(overlay());
    m_frame->SetVideoSize(640, 360);
    QCOMPARE(surfaceEvents.hidden, 1);
    m_frame->resize(200, 100);
    QTRY_COMPARE_WITH_TIMEOUT(surfaceEvents.hidden, 2, 20000);
    QVERIFY(overlayEvents.hidden >= 2);
    QCOMPARE(surface->geometry(), QRect(0, 0, 200, 100));
    QCOMPARE(overlay()->geometry(), QRect(0, 0, 200, 100));
    QVERIFY(surface->isVisible());
    QVERIFY(overlay()->isVisible());
}

void TestVideoFrame::aSecondSurfaceIsVisibleToo()
{
    m_frame->CreateRenderSurface();
    m_frame->SetVideoSize(640, 360);
    QWidget *surface = m_frame->CreateRenderSurface();
    m_frame->SetVideoSize(640, 360);
    QVERIFY(surface->isVisible());
    QVERIFY(overlay()->isVisible());
    QCOMPARE(surface->geometry(), QRect(0, 0, 400, 300));
    QCOMPARE(overlay()->geometry(), QRect(0, 0, 400, 300));
}

void TestVideoFrame::sizeZeroIsAKnownSize()
{
    QWidget *surface = m_frame->CreateRenderSurface();
    m_frame->SetVideoSize(0, 0);
    EventCount events(surface);
    m_frame->resize(100, 100);
    QTRY_COMPARE_WITH_TIMEOUT(events.hidden, 1, 20000);
    QCOMPARE(surface->geometry(), QRect(0, 0, 100, 100));
}

void TestVideoFrame::clicksAndDoubleClicksOnThePictureArriveAtTheFrame()
{
    QWidget *surface = m_frame->CreateRenderSurface();
    QSignalSpy clicked(m_frame.get(), &CVideoFrame::clicked);
    QSignalSpy doubled(m_frame.get(), &CVideoFrame::doubleClicked);
    QTest::mouseClick(surface, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
    QTest::mouseClick(surface, Qt::RightButton);
    QCOMPARE(clicked.count(), 2);
    QCOMPARE(doubled.count(), 0);
    QTest::mouseDClick(surface, Qt::LeftButton);
    QCOMPARE(doubled.count(), 1);
    QCOMPARE(clicked.count(), 2);
}

void TestVideoFrame::aDoubleClickWithAnotherButtonIsAPress()
{
    QSignalSpy clicked(m_frame.get(), &CVideoFrame::clicked);
    QSignalSpy doubled(m_frame.get(), &CVideoFrame::doubleClicked);
    QTest::mouseDClick(m_frame.get(), Qt::RightButton);
    QCOMPARE(doubled.count(), 0);
    QCOMPARE(clicked.count(), 1);
}

void TestVideoFrame::escapeReleasedIsADoubleClick()
{
    QSignalSpy doubled(m_frame.get(), &CVideoFrame::doubleClicked);
    QTest::keyPress(m_frame.get(), Qt::Key_Escape);
    QCOMPARE(doubled.count(), 0);
    QTest::keyRelease(m_frame.get(), Qt::Key_Escape);
    QCOMPARE(doubled.count(), 1);
    m_frame->showFullScreen();
    QVERIFY(QTest::qWaitForWindowExposed(m_frame.get()));
    QTest::keyClick(m_frame.get(), Qt::Key_Escape);
    QCOMPARE(doubled.count(), 2);
}

void TestVideoFrame::otherKeysAndTheRepeatOfEscapeAreNot()
{
    QSignalSpy doubled(m_frame.get(), &CVideoFrame::doubleClicked);
    for (int key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_F11, Qt::Key_A})
        QTest::keyClick(m_frame.get(), static_cast<Qt::Key>(key));
    QKeyEvent repeat(QEvent::KeyRelease, Qt::Key_Escape, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(m_frame.get(), &repeat);
    QCOMPARE(doubled.count(), 0);
}

void TestVideoFrame::aReleaseOfEscapeThatWasPressedElsewhereIsPassedOver()
{
    QSignalSpy doubled(m_frame.get(), &CVideoFrame::doubleClicked);
    QTest::keyRelease(m_frame.get(), Qt::Key_Escape);
    QCOMPARE(doubled.count(), 0);
    // Each release has its own press.
    QTest::keyClick(m_frame.get(), Qt::Key_Escape);
    QTest::keyRelease(m_frame.get(), Qt::Key_Escape);
    QCOMPARE(doubled.count(), 1);
    // The focus has moved between the two.
    QTest::keyPress(m_frame.get(), Qt::Key_Escape);
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(m_frame.get(), &out);
    QTest::keyRelease(m_frame.get(), Qt::Key_Escape);
    QCOMPARE(doubled.count(), 1);
}

void TestVideoFrame::theFrameTakesKeyboardFocus()
{
    m_frame->activateWindow();
    m_frame->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(m_frame->hasFocus(), 20000);
}

void TestVideoFrame::theFrameIsBlack()
{
    QCOMPARE(m_frame->grab().toImage().pixelColor(200, 150), QColor(Qt::black));
    m_frame->CreateRenderSurface();
    QCOMPARE(m_frame->grab().toImage().pixelColor(200, 150), QColor(Qt::black));
}

void TestVideoFrame::signalsStandInOrder()
{
    QCOMPARE(declared(CVideoFrame::staticMetaObject, QMetaMethod::Signal),
             QStringList({"clicked()", "doubleClicked()"}));
}

QTEST_MAIN(TestVideoFrame)
#include "tst_video_frame.moc"
