#include "ui/live/volume_slider_form.h"

#include "resources/resources.h"
#include "tests/support/declared.h"

#include <QSlider>
#include <QToolButton>
#include <QtTest>

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

private:
    static QString muteStyle(const QString &image);

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

QString TestVolumeSliderForm::muteStyle(const QString &image)
{
    return QStringLiteral("QToolButton{border-image: url(:/images/panelbtn/") + image +
           QStringLiteral(".png);border:none;}\nQToolButton:hover{border-image: "
                          "url(:/images/panelbtn/") +
           image +
           QStringLiteral("hover.png);border:none;}\nQToolButton:pressed{border-image: "
                          "url(:/images/panelbtn/") +
           image + QStringLiteral(".png);border:none;}\n");
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
    QCOMPARE(m_mute->styleSheet(), muteStyle(QStringLiteral("volumebtn_unchecked")));

    QTest::mouseClick(m_mute, Qt::LeftButton);
    QCOMPARE(muted.count(), 2);
    QCOMPARE(muted.at(1).at(0).toBool(), false);
    QVERIFY(!m_form->isMuted());
    QCOMPARE(m_mute->styleSheet(), muteStyle(QStringLiteral("volumebtn_checked")));
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
    QCOMPARE(m_mute->styleSheet(), muteStyle(QStringLiteral("volumebtn_checked")));
    for (const char *name : {"volumebtn_checked", "volumebtn_checkedhover", "volumebtn_unchecked",
                             "volumebtn_uncheckedhover"})
        QVERIFY2(QFile::exists(QStringLiteral(":/images/panelbtn/%1.png").arg(name)), name);
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

void TestVolumeSliderForm::signalsAndSlotsStandInOrder()
{
    QCOMPARE(declared(CVolumeSliderForm::staticMetaObject, QMetaMethod::Signal),
             QStringList({"valueChanged(int)", "muteChanged(bool)"}));
    QCOMPARE(declared(CVolumeSliderForm::staticMetaObject, QMetaMethod::Slot),
             QStringList({"slotValueChanged(int)", "slotMuteClicked()"}));
}

QTEST_MAIN(TestVolumeSliderForm)
#include "tst_volume_slider_form.moc"
