#include "resources/resources.h"
#include "tests/gallery/checks.h"
#include "ui/common/elided_label.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtTest>

using namespace gallery;

namespace {

/// A button that shows nothing of the keyboard focus.
class BlindButton : public QToolButton
{
public:
    using QToolButton::QToolButton;

protected:
    void paintEvent(QPaintEvent *) override {}
};

/// A dialog that keeps Escape and Enter to itself.
class DeafDialog : public QDialog
{
public:
    using QDialog::QDialog;

protected:
    void keyPressEvent(QKeyEvent *) override {}
};

template <typename Widget>
Widget *add(QWidget &window, const QRect &place, const char *name)
{
    auto *widget = new Widget(&window);
    widget->setObjectName(QLatin1String(name));
    widget->setGeometry(place);
    widget->show();
    return widget;
}

} // namespace

/// The checks find faults that were put there, and nothing where there is none.
class GalleryChecks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aSoundWindowHasNoFindings();
    void cutTextsAreFound();
    void aCutLabelThatTellsItselfIsSound();
    void overlapsAreFound();
    void whatSticksOutIsFound();
    void buttonsWithoutNamesAreFound();
    void buttonsForTheMouseOnlyAreFound();
    void focusThatCannotBeSeenIsFound();
    void backwardTabsAreFound();
    void deafDialogsAreFound();
    void missingImagesAreFound();

private:
    std::unique_ptr<QWidget> m_window;
};

void GalleryChecks::initTestCase()
{
    zelvaro::initResources();
    zelvaro::applyLook();
}

void GalleryChecks::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->resize(400, 300);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get(), 30000));
}

void GalleryChecks::cleanup()
{
    m_window.reset();
}

void GalleryChecks::aSoundWindowHasNoFindings()
{
    add<QLabel>(*m_window, {10, 10, 200, 30}, "label")->setText(QStringLiteral("A text"));
    add<QPushButton>(*m_window, {10, 50, 100, 30}, "button")->setText(QStringLiteral("OK"));
    const QStringList found = clippedTexts(*m_window) + misplacedControls(*m_window) +
                              unnamedControls(*m_window) + invisibleFocus(*m_window) +
                              backwardTabs(*m_window) + missingImages(*m_window) +
                              blurredPictures(*m_window);
    QVERIFY2(found.isEmpty(), qPrintable(found.join('\n')));
}

void GalleryChecks::cutTextsAreFound()
{
    const QString text = QStringLiteral("A text that is far too long for its place");
    add<QLabel>(*m_window, {10, 10, 60, 30}, "label")->setText(text);
    add<QPushButton>(*m_window, {10, 50, 60, 30}, "button")->setText(text);
    QCOMPARE(clippedTexts(*m_window).size(), 2);
}

void GalleryChecks::aCutLabelThatTellsItselfIsSound()
{
    auto *label = add<zelvaro::ElidedLabel>(*m_window, {10, 10, 60, 30}, "label");
    label->setText(QStringLiteral("A text that is far too long"));
    QVERIFY(clippedTexts(*m_window).isEmpty());
    label->setToolTip(QStringLiteral("Something else"));
    QCOMPARE(clippedTexts(*m_window).size(), 1);
}

void GalleryChecks::overlapsAreFound()
{
    add<QPushButton>(*m_window, {10, 10, 100, 30}, "first");
    add<QPushButton>(*m_window, {100, 30, 100, 30}, "second");
    add<QPushButton>(*m_window, {10, 100, 100, 30}, "third");
    QCOMPARE(misplacedControls(*m_window).size(), 1);
}

void GalleryChecks::whatSticksOutIsFound()
{
    add<QPushButton>(*m_window, {350, 10, 100, 30}, "button");
    QCOMPARE(misplacedControls(*m_window).size(), 1);
}

void GalleryChecks::buttonsWithoutNamesAreFound()
{
    auto *button = add<QToolButton>(*m_window, {10, 10, 30, 30}, "button");
    button->setFocusPolicy(Qt::TabFocus);
    QCOMPARE(unnamedControls(*m_window).size(), 2);
    button->setToolTip(QStringLiteral("Play"));
    button->setAccessibleName(QStringLiteral("Play"));
    QVERIFY(unnamedControls(*m_window).isEmpty());
}

void GalleryChecks::buttonsForTheMouseOnlyAreFound()
{
    auto *button = add<QPushButton>(*m_window, {10, 10, 100, 30}, "button");
    button->setText(QStringLiteral("OK"));
    button->setFocusPolicy(Qt::ClickFocus);
    QCOMPARE(unnamedControls(*m_window).size(), 1);
}

void GalleryChecks::focusThatCannotBeSeenIsFound()
{
    add<BlindButton>(*m_window, {10, 10, 60, 30}, "blind")->setFocusPolicy(Qt::TabFocus);
    add<QLineEdit>(*m_window, {10, 50, 60, 30}, "edit");
    const QStringList found = invisibleFocus(*m_window);
    QCOMPARE(found.size(), 1);
    QVERIFY(found.first().contains(QLatin1String("blind")));
}

void GalleryChecks::backwardTabsAreFound()
{
    add<QLineEdit>(*m_window, {10, 90, 60, 30}, "below");
    add<QLineEdit>(*m_window, {10, 10, 60, 30}, "above");
    QCOMPARE(backwardTabs(*m_window).size(), 1);
}

void GalleryChecks::deafDialogsAreFound()
{
    QDialog sound;
    QVBoxLayout layout(&sound);
    auto *button = new QPushButton(QStringLiteral("OK"));
    button->setDefault(true);
    layout.addWidget(button);
    sound.show();
    QVERIFY(deafKeys(sound).isEmpty());

    QDialog writing;
    QVBoxLayout writingLayout(&writing);
    auto *apply = new QPushButton(QStringLiteral("Apply"));
    apply->setObjectName(QStringLiteral("btnApply"));
    apply->setDefault(true);
    writingLayout.addWidget(apply);
    writing.show();
    QCOMPARE(deafKeys(writing).size(), 1);
    apply->setDefault(false);
    apply->setAutoDefault(false);
    writing.show();
    QVERIFY(deafKeys(writing).isEmpty());

    DeafDialog deaf;
    deaf.show();
    QCOMPARE(deafKeys(deaf).size(), 2);
}

void GalleryChecks::missingImagesAreFound()
{
    m_window->setStyleSheet(QStringLiteral(
        "QLabel{border-image:url(:/images/nowhere.png);image:url(:/images/title.png)}"
        "QToolButton::menu-indicator{image:url(none.jpg)}"));
    const QStringList found = missingImages(*m_window);
    QCOMPARE(found.size(), 1);
    QVERIFY(found.first().contains(QLatin1String("nowhere")));
}

QTEST_MAIN(GalleryChecks)

#include "tst_gallery_checks.moc"
