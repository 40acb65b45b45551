#include "ui/common/volume_slider_form.h"

#include "resources/resources.h"
#include "tests/support/declared.h"

#include <QMap>
#include <QPainter>
#include <QSlider>
#include <QToolButton>
#include <QtTest>

#include <cstdlib>

class TestVolumeSliderForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init();
    void signalsAndSlotsStandInOrder();
    void rangeAndValuePassThrough();
    void valueIsAProperty();
    void draggingTheSliderReportsItsValue();
    void theKeyboardMovesTheSlider();
    void muteClickedTwiceGivesTrueThenFalseAndTheCheckedImages();
    void mutingLeavesTheValue();
    void soundIsOnAtFirst();
    void theMuteButtonIsReachedByKeyboard();
    void withoutRoomForBothTheButtonStays();

private:
    QString shownImage();

    std::unique_ptr<CVolumeSliderForm> m_form;
    QSlider *m_slider = nullptr;
    QToolButton *m_mute = nullptr;
};

void TestVolumeSliderForm::init()
{
    m_form = std::make_unique<CVolumeSliderForm>();
    m_form->setRange(0, 200);
    m_form->setValue(100);
    m_slider = m_form->findChild<QSlider *>();
    m_mute = m_form->findChild<QToolButton *>();
    QVERIFY(m_slider);
    QVERIFY(m_mute);
    QCOMPARE(m_slider->orientation(), Qt::Horizontal);
    m_form->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_form.get()));
}

// How the mute button looks, beside the images that it may show.
QString TestVolumeSliderForm::shownImage()
{
    const QImage shown = m_mute->grab().toImage().convertToFormat(QImage::Format_RGB32);
    QMap<qint64, QString> byDifference;
    for (const char *name : {"volumebtn_checked", "volumebtn_checkedhover", "volumebtn_unchecked",
                             "volumebtn_uncheckedhover"}) {
        QImage image(shown.size(), QImage::Format_RGB32);
        image.fill(m_mute->palette().window().color());
        QPainter(&image).drawPixmap(image.rect(),
                                    QPixmap(QStringLiteral(":/images/panelbtn/%1.png").arg(name)));
        qint64 difference = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                difference += std::abs(qGray(image.pixel(x, y)) - qGray(shown.pixel(x, y)));
        byDifference.insert(difference, QString::fromLatin1(name));
    }
    return byDifference.size() == 4 ? byDifference.first() : QStringLiteral("two alike");
}

void TestVolumeSliderForm::rangeAndValuePassThrough()
{
    QCOMPARE(m_slider->minimum(), 0);
    QCOMPARE(m_slider->maximum(), 200);
    QCOMPARE(m_form->value(), 100);
    m_form->setValue(37);
    QCOMPARE(m_slider->value(), 37);
    m_form->setValue(500);
    QCOMPARE(m_form->value(), 200);
    m_form->setValue(-1);
    QCOMPARE(m_form->value(), 0);
}

void TestVolumeSliderForm::valueIsAProperty()
{
    QCOMPARE(m_form->property("value").toInt(), 100);
    QVERIFY(m_form->setProperty("value", 60));
    QCOMPARE(m_form->value(), 60);
}

void TestVolumeSliderForm::draggingTheSliderReportsItsValue()
{
    QSignalSpy changed(m_form.get(), &CVolumeSliderForm::valueChanged);
    const QPoint handle(m_slider->width() / 2, m_slider->height() / 2);
    QTest::mousePress(m_slider, Qt::LeftButton, {}, handle);
    QTest::mouseMove(m_slider, handle + QPoint(20, 0));
    QMouseEvent move(QEvent::MouseMove, handle + QPoint(20, 0), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_slider, &move);
    QTest::mouseRelease(m_slider, Qt::LeftButton, {}, handle + QPoint(20, 0));
    QVERIFY(!changed.isEmpty());
    QVERIFY(m_form->value() > 100);
    QCOMPARE(changed.last().at(0).toInt(), m_form->value());
}

void TestVolumeSliderForm::theKeyboardMovesTheSlider()
{
    QSignalSpy changed(m_form.get(), &CVolumeSliderForm::valueChanged);
    QTest::keyClick(m_slider, Qt::Key_Right);
    QCOMPARE(changed.count(), 1);
    QVERIFY(m_form->value() > 100);
    QTest::keyClick(m_slider, Qt::Key_Home);
    QCOMPARE(m_form->value(), 0);
}

void TestVolumeSliderForm::muteClickedTwiceGivesTrueThenFalseAndTheCheckedImages()
{
    QSignalSpy muted(m_form.get(), &CVolumeSliderForm::muteChanged);
    QTest::mouseClick(m_mute, Qt::LeftButton);
    QCOMPARE(muted.count(), 1);
    QCOMPARE(muted.at(0).at(0).toBool(), true);
    QVERIFY(m_form->isMuted());
    QCOMPARE(shownImage(), QStringLiteral("volumebtn_unchecked"));
    m_mute->setAttribute(Qt::WA_UnderMouse);
    QCOMPARE(shownImage(), QStringLiteral("volumebtn_uncheckedhover"));
    m_mute->setAttribute(Qt::WA_UnderMouse, false);

    QTest::mouseClick(m_mute, Qt::LeftButton);
    QCOMPARE(muted.count(), 2);
    QCOMPARE(muted.at(1).at(0).toBool(), false);
    QVERIFY(!m_form->isMuted());
    QCOMPARE(shownImage(), QStringLiteral("volumebtn_checked"));
    m_mute->setAttribute(Qt::WA_UnderMouse);
    QCOMPARE(shownImage(), QStringLiteral("volumebtn_checkedhover"));
}

void TestVolumeSliderForm::mutingLeavesTheValue()
{
    QSignalSpy changed(m_form.get(), &CVolumeSliderForm::valueChanged);
    QTest::mouseClick(m_mute, Qt::LeftButton);
    QCOMPARE(m_form->value(), 100);
    QCOMPARE(changed.count(), 0);
}

void TestVolumeSliderForm::soundIsOnAtFirst()
{
    QVERIFY(!m_form->isMuted());
    QCOMPARE(shownImage(), QStringLiteral("volumebtn_checked"));
}

void TestVolumeSliderForm::theMuteButtonIsReachedByKeyboard()
{
    QSignalSpy muted(m_form.get(), &CVolumeSliderForm::muteChanged);
    m_mute->setFocus();
    QTest::keyClick(m_mute, Qt::Key_Space);
    QCOMPARE(muted.count(), 1);
    QVERIFY(!m_mute->accessibleName().isEmpty());
    QVERIFY(!m_slider->accessibleName().isEmpty());
}

void TestVolumeSliderForm::withoutRoomForBothTheButtonStays()
{
    const QSize wanted = m_form->sizeHint();
    m_form->setMinimumWidth(32);
    m_form->resize(50, 40);
    QTRY_VERIFY(!m_slider->isVisible());
    QVERIFY(m_mute->isVisible());
    QCOMPARE(m_form->sizeHint(), wanted);
    m_form->resize(80, 40);
    QTRY_VERIFY(m_slider->isVisible());
}

void TestVolumeSliderForm::signalsAndSlotsStandInOrder()
{
    QCOMPARE(declared(CVolumeSliderForm::staticMetaObject, QMetaMethod::Signal),
             QStringList({"valueChanged(int)", "muteChanged(bool)"}));
    QCOMPARE(declared(CVolumeSliderForm::staticMetaObject, QMetaMethod::Slot),
             QStringList({"slotValueChanged(int)", "slotMuteClicked()"}));
}

QTEST_MAIN(TestVolumeSliderForm)
#include "tst_volume_slider_form.moc"
