#include "ui/common/page_actions.h"

#include "tests/ui/common/shown_tip.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtTest>

using zelvaro::PageActions;

class TestPageActions : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_window.reset(); }

    void aKeyClicksTheButton();
    void aDisabledButtonIsNotClicked();
    void aTextFieldKeepsWhatIsTyped();
    void aHiddenPageHearsNothing();
    void onlyRepeatingActionsRepeat();
    void theTipNamesTheKeyAndThePropertyDoesNot();
    void theMenuOffersTheActions_data();
    void theMenuOffersTheActions();
    void theMenuHasTheNamesOfTheMoment();
    void inFullScreenTheKeysGoOnAndTheMenuLacksWhatMeansNothing();

private:
    QMenu *menu() const { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); }
    QStringList entries() const;
    void ask(QContextMenuEvent::Reason reason)
    {
        QContextMenuEvent event(reason, QPoint(5, 5), m_picture->mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(m_picture, &event);
    }
    void key(int key, QWidget *widget = nullptr)
    {
        QTest::keyClick(widget ? widget : m_window.get(), static_cast<Qt::Key>(key));
    }

    std::unique_ptr<QWidget> m_window;
    QWidget *m_page = nullptr;
    QWidget *m_picture = nullptr;
    QToolButton *m_button = nullptr;
    QLineEdit *m_edit = nullptr;
    PageActions *m_actions = nullptr;
    int m_clicks = 0;
};

void TestPageActions::init()
{
    m_clicks = 0;
    m_window = std::make_unique<QWidget>();
    m_page = new QWidget(m_window.get());
    auto *windowLayout = new QVBoxLayout(m_window.get());
    windowLayout->addWidget(m_page);
    auto *layout = new QVBoxLayout(m_page);
    m_picture = new QWidget;
    m_picture->setFocusPolicy(Qt::StrongFocus);
    m_picture->setMinimumSize(100, 100);
    m_button = new QToolButton;
    m_button->setToolTip(QStringLiteral("Record"));
    m_button->setAccessibleName(QStringLiteral("Record it"));
    m_edit = new QLineEdit;
    for (QWidget *widget : std::initializer_list<QWidget *>{m_picture, m_button, m_edit})
        layout->addWidget(widget);
    connect(m_button, &QToolButton::clicked, this, [this] { ++m_clicks; });
    m_actions = new PageActions(m_page);
    m_actions->add(m_button, {Qt::Key_R, Qt::Key_Plus});
    m_actions->offerOn(m_picture);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_picture->setFocus();
}

QStringList TestPageActions::entries() const
{
    QStringList texts;
    for (const QAction *action : menu() ? menu()->actions() : QList<QAction *>())
        texts << action->text();
    return texts;
}

void TestPageActions::aKeyClicksTheButton()
{
    key(Qt::Key_R, m_picture);
    key(Qt::Key_Plus, m_button);
    QCOMPARE(m_clicks, 2);
    QTest::keyClick(m_picture, Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(m_clicks, 2);
}

void TestPageActions::aDisabledButtonIsNotClicked()
{
    m_button->setEnabled(false);
    key(Qt::Key_R, m_picture);
    QCOMPARE(m_clicks, 0);
}

void TestPageActions::aTextFieldKeepsWhatIsTyped()
{
    m_edit->setFocus();
    QTest::keyClicks(m_edit, QStringLiteral("r+R"));
    QCOMPARE(m_clicks, 0);
    QCOMPARE(m_edit->text(), QStringLiteral("r+R"));
}

void TestPageActions::aHiddenPageHearsNothing()
{
    m_page->hide();
    key(Qt::Key_R);
    QCOMPARE(m_clicks, 0);
    m_page->show();
    key(Qt::Key_R);
    QCOMPARE(m_clicks, 1);
}

void TestPageActions::onlyRepeatingActionsRepeat()
{
    QVERIFY(!m_page->actions().first()->autoRepeat());
    QVERIFY(m_actions->add(m_button, {Qt::Key_Z}, PageActions::Held::Repeats)->autoRepeat());
}

void TestPageActions::theTipNamesTheKeyAndThePropertyDoesNot()
{
    QCOMPARE(ShownTip(m_button).text(), QStringLiteral("Record (R)"));
    QCOMPARE(m_button->toolTip(), QStringLiteral("Record"));
}

void TestPageActions::theMenuOffersTheActions_data()
{
    QTest::addColumn<int>("reason");
    QTest::newRow("right click") << int(QContextMenuEvent::Mouse);
    QTest::newRow("menu key") << int(QContextMenuEvent::Keyboard);
}

void TestPageActions::theMenuOffersTheActions()
{
    QFETCH(int, reason);
    m_actions->addHandled(m_button, Qt::Key_Left);
    m_actions->setExtras([](QMenu &menu, QWidget *) { menu.addAction(QStringLiteral("Copy")); });
    ask(static_cast<QContextMenuEvent::Reason>(reason));
    QCOMPARE(entries(), (QStringList{QStringLiteral("Record it"), QStringLiteral("Record it\tLeft"),
                                     QStringLiteral("Copy")}));
    key(Qt::Key_Down, menu());
    key(Qt::Key_Return, menu());
    QTRY_COMPARE_WITH_TIMEOUT(m_clicks, 1, 20000);
    QVERIFY(!menu());
}

void TestPageActions::theMenuHasTheNamesOfTheMoment()
{
    bool on = false;
    m_actions->tickWhile(m_page->actions().first(), [&on] { return on; });
    for (const bool state : {true, false}) {
        on = state;
        m_button->setAccessibleName(state ? QStringLiteral("Pause") : QStringLiteral("Play"));
        ask(QContextMenuEvent::Mouse);
        QVERIFY(menu());
        QCOMPARE(entries(), QStringList{m_button->accessibleName()});
        QCOMPARE(menu()->actions().first()->isChecked(), state);
        key(Qt::Key_Escape, menu());
    }
}

void TestPageActions::inFullScreenTheKeysGoOnAndTheMenuLacksWhatMeansNothing()
{
    m_actions->leaveOutInFullScreen(
        m_actions->add(QStringLiteral("Full screen"), {Qt::Key_F}, [] {}));
    m_picture->setWindowFlags(Qt::Window);
    m_picture->show();
    m_picture->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_picture));
    key(Qt::Key_R, m_picture);
    QCOMPARE(m_clicks, 1);
    ask(QContextMenuEvent::Mouse);
    QCOMPARE(entries(), QStringList{QStringLiteral("Record it")});
}

QTEST_MAIN(TestPageActions)
#include "tst_page_actions.moc"
