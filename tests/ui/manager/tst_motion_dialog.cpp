#include "ui/manager/motion_dialog.h"

#include "resources/resources.h"
#include "tests/camera/session_test.h"
#include "tests/support/modal_script.h"
#include "ui/common/busy_dialog.h"
#include "ui/common/message_box.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

namespace {

const char *const fields[] = {"left", "top", "right", "bottom", "thres", "sens"};

/// What one detection window shows: "1 0 0 639 479 60 70".
QString shown(const Motion_Dialog &dialog, int window)
{
    const QString number = QString::number(window);
    QStringList texts{dialog.findChild<QGroupBox *>("window" + number)->isChecked() ? "1" : "0"};
    for (const char *field : fields)
        texts << dialog.findChild<QLineEdit *>(field + number)->text();
    return texts.join(' ');
}

QStringList shown(const Motion_Dialog &dialog)
{
    return {shown(dialog, 1), shown(dialog, 2), shown(dialog, 3), shown(dialog, 4)};
}

const QStringList defaults{"1 0 0 639 479 60 70", "0 320 0 639 240 60 70", "0 0 240 320 479 60 70",
                           "0 320 240 639 479 60 70"};

std::string reply(const QStringList &values)
{
    static const QStringList keys{"WINDOW", "ENABLE", "LEFT",      "TOP",
                                  "RIGHT",  "BOTTOM", "THRESHOLD", "SENSITIVITY"};
    QString text = "000 Success\n";
    for (int i = 0; i < values.length(); ++i)
        text += QString("%1=%2\n").arg(keys[i], values[i]);
    return text.toStdString();
}

/// The text of a request between "GET " and " HTTP".
QStringList targets(const std::vector<std::string> &requests)
{
    QStringList list;
    for (const std::string &request : requests)
        list << QString::fromStdString(request).section(' ', 1, 1);
    return list;
}

} // namespace

/// The four detection windows of a camera, read and written over the scripted library.
class TestMotionDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        zelvaro::initResources();
        zelvaro::applyLook();
    }
    void init();
    void cleanup();

    void queriesFourWindowsBeforeItIsShown();
    void waitsBehindTheBusyDialog();
    void cameraThatDoesNotAnswerKeepsTheDefaults();
    void answersFillTheControlsByPosition();
    void failedWindowKeepsWhatItShowed();
    void enabledOnlyByExactlyOne();
    void shortAnswerKeepsTheForm_data();
    void shortAnswerKeepsTheForm();
    void queryButtonReadsAgain();
    void applySendsAllWindowsAsTyped();
    void emptyEditIsSentAsAnEmptyValue();
    void typingOutsideTheRangeIsRefused();
    void failedApplyTellsOnce();
    void applyThatWorksSaysNothingAndStaysOpen();
    void exitAcceptsAndSendsNothing();
    void everyReceiverOfTheEndIsDisconnected();
    void refusedBatchEndsTheWait();
    void sessionThatGoesDoesNotHarm();
    void enterWritesNothing_data();
    void enterWritesNothing();
    void valuesOutsideTheRangeAreShownAndTakeNoMoreKeys();
    void theFormHasItsNamesAndTexts();
    void nothingIsCutOff();

private:
    void answer(const std::function<std::vector<std::string>(const std::vector<std::string> &)> &a);
    /// Answers the next batch when its wait dialog is on the screen.
    void answerWhileWaiting(ModalScript &script, const std::vector<std::string> &replies,
                            const QString &text = {});
    /// Opens the dialog on the screen; its first query is answered by the script.
    std::unique_ptr<Motion_Dialog> open();
    QStringList sent() const { return targets(m_session->player()->requests()); }

    std::unique_ptr<CheckLog> m_checks;
    std::unique_ptr<Session> m_session;
};

void TestMotionDialog::init()
{
    fake_cammgr::reset();
    m_checks = std::make_unique<CheckLog>();
    m_session = std::make_unique<Session>();
    m_session->startConnected();
    answer([](const auto &requests) {
        return std::vector<std::string>(requests.size(), "cannot connect");
    });
}

void TestMotionDialog::cleanup()
{
    m_session.reset();
    QCOMPARE(m_checks->take(), QStringList());
    m_checks.reset();
    QVERIFY(fake_cammgr::contractViolations().empty());
    fake_cammgr::reset();
}

void TestMotionDialog::answer(
    const std::function<std::vector<std::string>(const std::vector<std::string> &)> &a)
{
    m_session->player()->change([&](fake_cammgr::Script &s) { s.replies = a; });
}

void TestMotionDialog::answerWhileWaiting(ModalScript &script,
                                          const std::vector<std::string> &replies,
                                          const QString &text)
{
    answer(nullptr);
    script.then([this, replies, text](QWidget *window) {
        const auto *const busy = qobject_cast<QProgressDialog *>(window);
        if (!busy)
            qFatal("no wait dialog");
        if (!text.isEmpty())
            QCOMPARE(busy->labelText(), text);
        m_session->player()->reply(replies);
    });
}

std::unique_ptr<Motion_Dialog> TestMotionDialog::open()
{
    auto dialog = std::make_unique<Motion_Dialog>(nullptr, m_session->camera.get());
    dialog->show();
    if (!QTest::qWaitForWindowExposed(dialog.get(), deadline))
        qFatal("the dialog does not come up");
    return dialog;
}

void TestMotionDialog::queriesFourWindowsBeforeItIsShown()
{
    const Motion_Dialog dialog(nullptr, m_session->camera.get());
    QVERIFY(!dialog.isVisible());
    QCOMPARE(m_session->player()->count("RtspPlayer_Issue_P2PConf_URLCMDs"), 1);
    QCOMPARE(sent(), QStringList({"/form/getMotion?WINDOW=1", "/form/getMotion?WINDOW=2",
                                  "/form/getMotion?WINDOW=3", "/form/getMotion?WINDOW=4"}));
    QVERIFY(QString::fromStdString(m_session->player()->requests().front())
                .endsWith("Basic YWRtaW46c2VjcmV0\r\n\r\n"));
}

void TestMotionDialog::waitsBehindTheBusyDialog()
{
    answer(nullptr);
    bool seen = false;
    ModalScript script;
    script.then([&](QWidget *window) {
        seen = true;
        auto *const busy = qobject_cast<QProgressDialog *>(window);
        QVERIFY(busy);
        QVERIFY(busy->isModal());
        QVERIFY(busy->windowFlags() & Qt::FramelessWindowHint);
        QCOMPARE(busy->labelText(), QString("Please wait for query motion information..."));
        QCOMPARE(busy->minimum(), 0);
        QCOMPARE(busy->maximum(), 0);
        QVERIFY(!busy->findChild<QPushButton *>());
        // Neither key nor button of the window ends the wait.
        QTest::keyClick(busy, Qt::Key_Escape);
        busy->close();
        QVERIFY(busy->isVisible());
        m_session->player()->reply({"", "", "", ""});
    });
    const Motion_Dialog dialog(nullptr, m_session->camera.get());
    QVERIFY(seen);
    QVERIFY(script.done());
}

void TestMotionDialog::cameraThatDoesNotAnswerKeepsTheDefaults()
{
    ModalScript script; // no message may come
    answerWhileWaiting(script, {"cannot connect", "cannot connect", "", ""});
    const auto dialog = open();
    QVERIFY(script.done());
    QCOMPARE(shown(*dialog), defaults);
}

void TestMotionDialog::answersFillTheControlsByPosition()
{
    answer([](const auto &) {
        return std::vector<std::string>{
            reply({"1", "0", "1", "2", "3", "4", "5", "6"}),
            // The names are not looked at, and the echoed number neither.
            "000 Success\nA=9\nB=1\nC=11\nD=12\nE=13\nF=14\nG=15\nH=16\n",
            reply({"3", "1", "21", "22", "23", "24", "25", "26"}).append("more=1\n"),
            reply({"4", "0", "639", "479", "639", "479", "100", "1"})};
    });
    const auto dialog = open();
    QCOMPARE(shown(*dialog), QStringList({"0 1 2 3 4 5 6", "1 11 12 13 14 15 16",
                                          "1 21 22 23 24 25 26", "0 639 479 639 479 100 1"}));
}

void TestMotionDialog::failedWindowKeepsWhatItShowed()
{
    answer([](const auto &) {
        return std::vector<std::string>{reply({"1", "0", "1", "2", "3", "4", "5", "6"}),
                                        "403 Forbidden\nWINDOW=2\nENABLE=1\n", "",
                                        reply({"4", "1", "1", "2", "3", "4", "5", "6"})};
    });
    const auto dialog = open();
    QCOMPARE(shown(*dialog),
             QStringList({"0 1 2 3 4 5 6", defaults[1], defaults[2], "1 1 2 3 4 5 6"}));
}

void TestMotionDialog::enabledOnlyByExactlyOne()
{
    answer([](const auto &) {
        return std::vector<std::string>{reply({"1", "2", "0", "0", "0", "0", "1", "1"}),
                                        reply({"2", "1", "0", "0", "0", "0", "1", "1"}),
                                        reply({"3", "01", "0", "0", "0", "0", "1", "1"}),
                                        reply({"4", "", "0", "0", "0", "0", "1", "1"})};
    });
    const auto dialog = open();
    QCOMPARE(shown(*dialog),
             QStringList({"0 0 0 0 0 1 1", "1 0 0 0 0 1 1", "0 0 0 0 0 1 1", "0 0 0 0 0 1 1"}));
}

void TestMotionDialog::shortAnswerKeepsTheForm_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("no values") << "000 Success";
    QTest::newRow("one") << "000 Success\nWINDOW=1";
    QTest::newRow("seven") << "000 Success\nA=1\nB=0\nC=1\nD=1\nE=1\nF=1\nG=1";
    QTest::newRow("eight lines, one no pair")
        << "000 Success\nA=1\nB=0\nC=1\nD=1\nE=1\nF=1\nG=1\nH";
}

void TestMotionDialog::shortAnswerKeepsTheForm()
{
    QFETCH(QString, text);
    answer([&](const auto &) { return std::vector<std::string>(4, text.toStdString()); });
    QCOMPARE(shown(*open()), defaults);
    // Fewer replies than windows.
    answer([&](const auto &) { return std::vector<std::string>(2, text.toStdString()); });
    QCOMPARE(shown(*open()), defaults);
    m_checks->take();
}

void TestMotionDialog::queryButtonReadsAgain()
{
    const auto dialog = open();
    answer([](const auto &) {
        return std::vector<std::string>(4, reply({"1", "1", "1", "2", "3", "4", "5", "6"}));
    });
    press(dialog.get(), "btnQuery");
    QCOMPARE(shown(*dialog),
             QStringList({"1 1 2 3 4 5 6", "1 1 2 3 4 5 6", "1 1 2 3 4 5 6", "1 1 2 3 4 5 6"}));
    QVERIFY(dialog->isVisible());
}

void TestMotionDialog::applySendsAllWindowsAsTyped()
{
    const auto dialog = open();
    answer([](const auto &requests) {
        return std::vector<std::string>(requests.size(), "000 Success");
    });
    auto *const left = dialog->findChild<QLineEdit *>("left1");
    QTest::mouseDClick(left, Qt::LeftButton);
    QTest::keyClicks(left, "007");
    auto *const second = dialog->findChild<QGroupBox *>("window2");
    second->setFocus();
    QTest::keyClick(second, Qt::Key_Space);
    QVERIFY(second->isChecked());
    auto *const sensitivity = dialog->findChild<QLineEdit *>("sens2");
    sensitivity->selectAll();
    QTest::keyClicks(sensitivity, "100");
    press(dialog.get(), "btnApply");
    QCOMPARE(sent(),
             QStringList({"/form/setMotion?WINDOW=1&ENABLE=1&LEFT=007&TOP=0&RIGHT=639&BOTTOM=479&"
                          "THRESHOLD=60&SENSITIVITY=70",
                          "/form/setMotion?WINDOW=2&ENABLE=1&LEFT=320&TOP=0&RIGHT=639&BOTTOM=240&"
                          "THRESHOLD=60&SENSITIVITY=100",
                          "/form/setMotion?WINDOW=3&ENABLE=0&LEFT=0&TOP=240&RIGHT=320&BOTTOM=479&"
                          "THRESHOLD=60&SENSITIVITY=70",
                          "/form/setMotion?WINDOW=4&ENABLE=0&LEFT=320&TOP=240&RIGHT=639&BOTTOM=479&"
                          "THRESHOLD=60&SENSITIVITY=70"}));
}

void TestMotionDialog::emptyEditIsSentAsAnEmptyValue()
{
    const auto dialog = open();
    answer([](const auto &requests) {
        return std::vector<std::string>(requests.size(), "000 Success");
    });
    auto *const top = dialog->findChild<QLineEdit *>("top1");
    top->selectAll();
    QTest::keyClick(top, Qt::Key_Delete);
    press(dialog.get(), "btnApply");
    QVERIFY(sent().first().contains("&LEFT=0&TOP=&RIGHT=639&"));
}

void TestMotionDialog::typingOutsideTheRangeIsRefused()
{
    const auto dialog = open();
    const auto typed = [&](const QByteArray &name, const char *keys) {
        auto *const edit = dialog->findChild<QLineEdit *>(name);
        edit->clear();
        QTest::keyClicks(edit, keys);
        return edit->text();
    };
    for (int i = 1; i <= 4; ++i) {
        dialog->findChild<QGroupBox *>("window" + QString::number(i))->setChecked(true);
        const auto in = [i](const char *field) {
            return QByteArray(field) + QByteArray::number(i);
        };
        for (const char *field : {"left", "right"}) {
            QCOMPARE(typed(in(field), "640"), QString("64"));
            QCOMPARE(typed(in(field), "639"), QString("639"));
        }
        for (const char *field : {"top", "bottom"}) {
            QCOMPARE(typed(in(field), "480"), QString("48"));
            QCOMPARE(typed(in(field), "479"), QString("479"));
        }
        for (const char *field : {"thres", "sens"}) {
            QCOMPARE(typed(in(field), "0"), QString());
            QCOMPARE(typed(in(field), "101"), QString("10"));
            QCOMPARE(typed(in(field), "100"), QString("100"));
        }
    }
}

void TestMotionDialog::failedApplyTellsOnce()
{
    const auto dialog = open();
    QStringList texts;
    ModalScript script;
    answerWhileWaiting(script, {"000 Success", "500", "000 Success", "500"},
                       "Please wait for apply motion settings...");
    script.then([&](QWidget *box) {
        QVERIFY(qobject_cast<CMessageBox *>(box));
        texts << box->findChild<QLabel *>("labelTitle")->text()
              << box->findChild<QLabel *>("labelMessage")->text();
        QVERIFY(!box->findChild<QPushButton *>("btnCancel")->isVisible());
        press(box, "btnOk");
    });
    press(dialog.get(), "btnApply");
    QVERIFY(script.done());
    QCOMPARE(texts,
             QStringList({"info", "Some error happens. Please wait a few minutes and re-try."}));
    QVERIFY(dialog->isVisible());
}

void TestMotionDialog::applyThatWorksSaysNothingAndStaysOpen()
{
    const auto dialog = open();
    QSignalSpy finished(dialog.get(), &QDialog::finished);
    ModalScript script;
    answerWhileWaiting(script, std::vector<std::string>(4, "000 Success"));
    press(dialog.get(), "btnApply");
    QVERIFY(script.done());
    QVERIFY(dialog->isVisible());
    QCOMPARE(finished.count(), 0);
}

void TestMotionDialog::exitAcceptsAndSendsNothing()
{
    const auto dialog = open();
    m_session->player()->forgetCalls();
    press(dialog.get(), "btnExit");
    QCOMPARE(dialog->result(), 1);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(m_session->player()->count("RtspPlayer_Issue_P2PConf_URLCMDs"), 0);
}

void TestMotionDialog::everyReceiverOfTheEndIsDisconnected()
{
    int ends = 0;
    connect(m_session->camera.get(), &CCameraCore::signalP2PConfFinished, this, [&] { ++ends; });
    const auto dialog = open();
    QCOMPARE(ends, 1);
    press(dialog.get(), "btnQuery");
    QCOMPARE(ends, 1);
}

void TestMotionDialog::refusedBatchEndsTheWait()
{
    m_session->player()->change(
        [](fake_cammgr::Script &s) { s.results["RtspPlayer_Issue_P2PConf_URLCMDs"] = -1; });
    const auto dialog = open();
    QCOMPARE(shown(*dialog), defaults);
}

void TestMotionDialog::sessionThatGoesDoesNotHarm()
{
    const auto dialog = open();
    answer(nullptr);
    ModalScript script;
    script.then([&](QWidget *) { m_session->end(); });
    press(dialog.get(), "btnQuery");
    press(dialog.get(), "btnApply");
    QVERIFY(script.done());
    QCOMPARE(shown(*dialog), defaults);
}

void TestMotionDialog::enterWritesNothing_data()
{
    QTest::addColumn<QString>("focus");
    QTest::addColumn<QString>("request");
    QTest::newRow("in a field") << "left1"
                                << "";
    QTest::newRow("on a window's box") << "window3"
                                       << "";
    QTest::newRow("on Query") << "btnQuery"
                              << "/form/getMotion?WINDOW=1";
    QTest::newRow("on Exit") << "btnExit"
                             << "";
    QTest::newRow("on Apply, which is what it says") << "btnApply"
                                                     << "/form/setMotion?WINDOW=1";
}

void TestMotionDialog::enterWritesNothing()
{
    QFETCH(QString, focus);
    QFETCH(QString, request);
    for (const int key : {Qt::Key_Return, Qt::Key_Enter}) {
        const auto dialog = open();
        dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
        auto *const widget = dialog->findChild<QWidget *>(focus);
        widget->setFocus();
        QTRY_VERIFY_WITH_TIMEOUT(widget->hasFocus(), deadline);
        m_session->player()->forgetCalls();
        ModalScript script;
        if (focus == "btnApply")
            script.then([](QWidget *box) { press(box, "btnOk"); });
        QTest::keyClick(widget, Qt::Key(key));
        // Held down it repeats.
        QKeyEvent held(QEvent::KeyPress, key, Qt::NoModifier, "\r", true);
        QApplication::sendEvent(widget, &held);
        QCOMPARE(m_session->player()->count("RtspPlayer_Issue_P2PConf_URLCMDs"),
                 request.isEmpty() ? 0 : 1);
        if (!request.isEmpty())
            QVERIFY2(sent().first().startsWith(request), qPrintable(sent().first()));
        QCOMPARE(dialog->isVisible(), focus != "btnExit");
        QVERIFY(script.done());
    }
}

void TestMotionDialog::valuesOutsideTheRangeAreShownAndTakeNoMoreKeys()
{
    answer([](const auto &) {
        return std::vector<std::string>(4, reply({"1", "1", "704", "576", "x", "", "0", "101"}));
    });
    const auto dialog = open();
    QCOMPARE(shown(*dialog, 2), QString("1 704 576 x  0 101"));
    const auto typed = [&](const char *name, const char *keys) {
        auto *const edit = dialog->findChild<QLineEdit *>(name);
        QTest::keyClicks(edit, keys);
        return edit->text();
    };
    QCOMPARE(typed("left2", "1"), QString("704"));
    QCOMPARE(typed("right2", "y"), QString("x"));
    QCOMPARE(typed("sens2", "9"), QString("101"));
    auto *const top = dialog->findChild<QLineEdit *>("top2");
    top->selectAll();
    QTest::keyClicks(top, "479");
    QCOMPARE(top->text(), QString("479"));
}

void TestMotionDialog::theFormHasItsNamesAndTexts()
{
    const auto dialog = open();
    QVERIFY(dialog->windowFlags() & Qt::FramelessWindowHint);
    QVERIFY(dialog->testAttribute(Qt::WA_TranslucentBackground));
    QVERIFY(dialog->findChild<QFrame *>("frameCameraMotion"));
    QVERIFY(dialog->findChild<QLabel *>("labelTitleLine"));
    QCOMPARE(dialog->findChild<QLabel *>("labelTitle")->text(), QString("Motion Settings"));
    for (int i = 1; i <= 4; ++i) {
        const auto *const box = dialog->findChild<QGroupBox *>(QString("window%1").arg(i));
        QCOMPARE(box->title(), QString("Detection Window: %1").arg(i));
        QVERIFY(box->isCheckable());
        QStringList labels;
        for (const QLabel *label : box->findChildren<QLabel *>())
            labels << label->text();
        for (const QLabel *label : box->findChildren<QLabel *>())
            QCOMPARE(label->buddy()->objectName().left(3), label->text().left(3).toLower());
        labels.sort();
        QCOMPARE(labels,
                 QStringList({"Bottom", "Left", "Right", "Sensitivity", "Threshold", "Top"}));
    }
    // Three validators serve the edits of all windows.
    const auto validator = [&dialog](const QString &edit) {
        return dialog->findChild<QLineEdit *>(edit)->validator();
    };
    for (int i = 1; i <= 4; ++i) {
        for (const auto &[edit, like] : {std::pair{"left%1", "right1"},
                                         {"right%1", "right1"},
                                         {"top%1", "bottom1"},
                                         {"bottom%1", "bottom1"},
                                         {"thres%1", "sens1"},
                                         {"sens%1", "sens1"}}) {
            QVERIFY2(validator(QString(edit).arg(i)), edit);
            QCOMPARE(validator(QString(edit).arg(i)), validator(like));
        }
    }
    QCOMPARE(dialog->findChild<QPushButton *>("btnQuery")->text(), QString("Query"));
    QCOMPARE(dialog->findChild<QPushButton *>("btnApply")->text(), QString("Apply"));
    QCOMPARE(dialog->findChild<QPushButton *>("btnExit")->text(), QString("Exit"));
}

void TestMotionDialog::nothingIsCutOff()
{
    const auto dialog = open();
    for (const QWidget *child : dialog->findChildren<QWidget *>()) {
        if (qobject_cast<const QLabel *>(child) || qobject_cast<const QLineEdit *>(child)) {
            QVERIFY2(child->height() >= child->minimumSizeHint().height() ||
                         child->objectName() == "labelTitleLine",
                     qPrintable(child->objectName()));
        }
    }
    if (qEnvironmentVariableIsSet("ZELVARO_SCREENSHOTS"))
        dialog->grab().save(qEnvironmentVariable("ZELVARO_SCREENSHOTS") + "/motion_dialog.png");
}

QTEST_MAIN(TestMotionDialog)
#include "tst_motion_dialog.moc"
