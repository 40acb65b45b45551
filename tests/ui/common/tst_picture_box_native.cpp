#include "ui/common/picture_box.h"

#include <QScreen>
#include <QVBoxLayout>
#include <QtTest>

using zelvaro::PictureBox;

namespace {
constexpr int deadline = 30000;
}

/// With a native window for each widget on a real display, as the program runs.
class TestPictureBoxNative : public QObject
{
    Q_OBJECT

private slots:
    void thePictureComesBackToThePageInItsOwnWindow();
    void aHiddenChildStaysHidden();
};

namespace {

/// Colour on the screen in the middle of a widget.
QColor shownColor(QWidget *widget)
{
    const QPoint middle = widget->mapToGlobal(widget->rect().center());
    const QPixmap pixel = widget->screen()->grabWindow(0, middle.x(), middle.y(), 1, 1);
    return pixel.toImage().pixelColor(0, 0);
}

struct Page
{
    Page()
    {
        area.setGeometry(100, 100, 700, 500);
        auto *layout = new QVBoxLayout(frame);
        layout->setContentsMargins(6, 5, 7, 26);
        surface->setFocusPolicy(Qt::StrongFocus);
        layout->addWidget(surface);
        picture->setStyleSheet(QStringLiteral("background-color:rgb(255,0,0);"));
        picture->setGeometry(0, 0, 2000, 2000);
    }

    QWidget area;
    QWidget *frame = new QWidget(&area);
    QWidget *surface = new QWidget;
    QWidget *picture = new QWidget(surface);
    PictureBox box{&area, frame, surface};
};

} // namespace

void TestPictureBoxNative::thePictureComesBackToThePageInItsOwnWindow()
{
    Page page;
    page.area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page.area, deadline));
    page.box.calculate({640, 360});
    page.box.position();
    QTRY_COMPARE_WITH_TIMEOUT(shownColor(page.surface), QColor(Qt::red), deadline);

    const WId window = page.picture->winId();
    for (int i = 0; i < 5; ++i) {
        page.box.enterFullScreen();
        QVERIFY(QTest::qWaitForWindowExposed(page.surface, deadline));
        QTRY_COMPARE_WITH_TIMEOUT(page.surface->size(), page.area.screen()->size(), deadline);
        QTRY_COMPARE_WITH_TIMEOUT(shownColor(page.surface), QColor(Qt::red), deadline);
        QCOMPARE(page.picture->winId(), window);

        page.box.leaveFullScreen();
        QTRY_COMPARE_WITH_TIMEOUT(page.surface->geometry(), QRect(6, 5, 640, 360), deadline);
        QTRY_COMPARE_WITH_TIMEOUT(shownColor(page.surface), QColor(Qt::red), deadline);
        QCOMPARE(page.picture->winId(), window);
        QCOMPARE(page.picture->parentWidget(), page.surface);
        QVERIFY(page.picture->isVisible());
    }
}

void TestPictureBoxNative::aHiddenChildStaysHidden()
{
    Page page;
    page.picture->hide();
    page.area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page.area, deadline));
    page.box.calculate({640, 360});
    page.box.position();
    page.box.enterFullScreen();
    QVERIFY(QTest::qWaitForWindowExposed(page.surface, deadline));
    page.box.leaveFullScreen();
    QVERIFY(page.picture->isHidden());
    QVERIFY(page.surface->isVisible());
}

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_NativeWindows);
    QApplication app(argc, argv);
    TestPictureBoxNative test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_picture_box_native.moc"
