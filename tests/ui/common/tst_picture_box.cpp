#include "ui/common/picture_box.h"

#include <QScreen>
#include <QVBoxLayout>
#include <QtTest>

using zelvaro::PictureBox;

namespace {
constexpr int deadline = 20000;
}

class TestPictureBox : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void theBoxStandsWhereThePictureWasLaidOut();
    void fullScreenTakesTheSurfaceOutOfThePageAndBack();
    void enteringTwiceIsEnteringOnce();
    void movingTheBoxKeepsTheKeyboardFocusOfTheSurface();
    void closingTheFullScreenWindowBringsThePictureBack();
    void zoomStepsUseTheFittedZoom();

private:
    std::unique_ptr<QWidget> m_area;
    QWidget *m_frame = nullptr;
    QWidget *m_surface = nullptr;
    std::unique_ptr<PictureBox> m_box;
};

void TestPictureBox::init()
{
    m_box.reset();
    m_area = std::make_unique<QWidget>();
    m_area->resize(1000, 700);
    m_frame = new QWidget(m_area.get());
    auto *layout = new QVBoxLayout(m_frame);
    layout->setContentsMargins(6, 5, 7, 26);
    m_surface = new QWidget;
    m_surface->setFocusPolicy(Qt::StrongFocus);
    layout->addWidget(m_surface);
    m_box = std::make_unique<PictureBox>(m_area.get(), m_frame, m_surface);
    m_area->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_area.get()));
}

void TestPictureBox::theBoxStandsWhereThePictureWasLaidOut()
{
    m_box->calculate({640, 360});
    m_box->position();
    QCOMPARE(m_frame->geometry(), QRect(QPoint(174, 156), QPoint(826, 546)));
    QVERIFY(m_frame->isVisible());
    QCOMPARE(m_surface->size(), QSize(640, 360));
}

void TestPictureBox::fullScreenTakesTheSurfaceOutOfThePageAndBack()
{
    m_box->calculate({640, 360});
    m_box->position();
    m_box->toggleFullScreen();
    QVERIFY(m_box->isFullScreen());
    QVERIFY(m_surface->isWindow());
    QVERIFY(m_surface->isFullScreen());
    QVERIFY(m_surface->isVisible());
    QTRY_COMPARE_WITH_TIMEOUT(m_surface->size(), m_area->screen()->size(), deadline);
    QTRY_VERIFY_WITH_TIMEOUT(m_surface->hasFocus(), deadline);

    m_box->toggleFullScreen();
    QVERIFY(!m_box->isFullScreen());
    QVERIFY(!m_surface->isWindow());
    QVERIFY(m_surface->isVisible());
    QCOMPARE(m_surface->parentWidget(), m_frame);
    QTRY_COMPARE_WITH_TIMEOUT(m_surface->geometry(), QRect(6, 5, 640, 360), deadline);
}

void TestPictureBox::enteringTwiceIsEnteringOnce()
{
    m_box->calculate({640, 360});
    m_box->enterFullScreen();
    QVERIFY(QTest::qWaitForWindowExposed(m_surface));
    QSignalSpy hidden(m_surface->windowHandle(), &QWindow::visibleChanged);
    m_box->enterFullScreen();
    m_box->position();
    QCOMPARE(hidden.count(), 0);
    QVERIFY(m_surface->isFullScreen());
    m_box->leaveFullScreen();
    m_box->leaveFullScreen();
    QVERIFY(!m_surface->isWindow());
}

void TestPictureBox::movingTheBoxKeepsTheKeyboardFocusOfTheSurface()
{
    auto *other = new QWidget(m_area.get());
    other->setFocusPolicy(Qt::StrongFocus);
    other->show();
    m_box->calculate({640, 360});
    m_box->position();
    m_area->activateWindow();
    m_surface->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(m_surface->hasFocus(), deadline);
    m_box->calculate({320, 180});
    m_box->position();
    QVERIFY(m_surface->hasFocus());

    other->setFocus();
    m_box->position();
    QVERIFY(other->hasFocus());
}

void TestPictureBox::closingTheFullScreenWindowBringsThePictureBack()
{
    m_box->calculate({640, 360});
    m_box->position();
    m_box->enterFullScreen();
    QVERIFY(QTest::qWaitForWindowExposed(m_surface));
    m_surface->close();
    QVERIFY(!m_box->isFullScreen());
    QVERIFY(!m_surface->isWindow());
    QVERIFY(m_surface->isVisible());
}

void TestPictureBox::zoomStepsUseTheFittedZoom()
{
    m_box->calculate({1920, 1080});
    QCOMPARE(m_box->zoom(), 50);
    m_box->zoomOut();
    QCOMPARE(m_box->zoom(), 40);
    m_box->calculate({1920, 1080});
    QCOMPARE(m_box->layout().videoRect.size(), QSize(768, 432));
    m_box->zoomIn();
    m_box->zoomIn();
    QCOMPARE(m_box->zoom(), 60);
    m_box->calculate({1920, 1080});
    QCOMPARE(m_box->zoom(), 50);
    m_box->resetZoom();
    QCOMPARE(m_box->zoom(), 100);
}

QTEST_MAIN(TestPictureBox)
#include "tst_picture_box.moc"
