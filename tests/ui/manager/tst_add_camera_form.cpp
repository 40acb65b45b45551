#include "app/message_box.h"
#include "settings/camera_record.h"
#include "tests/support/modal_script.h"
#include "ui/manager/add_button_form.h"
#include "ui/manager/add_camera_form.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

class AddCameraFormTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { CAddCameraForm::setUidPicker({}); }

    void addingStartsEmpty();
    void modifyingIsFilledFromTheRecord();
    void thePasswordIsNotShown();
    void typedTextsAreReadBackAsTheyAre();
    void emptyUidAndUserNameReportOnlyTheUid();
    void emptyUserNameIsReported();
    void aUidOfBlanksIsAccepted();
    void passwordAndNameMayBeEmpty();
    void cancelAndEscapeReject();
    void discoverTakesTheChosenUid();
    void cancellingTheSearchLeavesTheUid();
    void anEmptyChoiceLeavesTheUid();
    void discoverIsDisabledWithoutPicker();
    void enterInAFieldIsOkAndNotDiscover();
    void tabsGoThroughTheFieldsInOrder();
    void theAddTilePassesItsClickOn();

private:
    static QLineEdit *edit(CAddCameraForm &form, const char *name)
    {
        return form.findChild<QLineEdit *>(QLatin1String(name));
    }
    static void type(CAddCameraForm &form, const char *name, const QString &text)
    {
        edit(form, name)->clear();
        QTest::keyClicks(edit(form, name), text);
    }
    static void expectRefusal(QWidget *box, const QString &text)
    {
        QVERIFY(qobject_cast<CMessageBox *>(box));
        QCOMPARE(box->findChild<QLabel *>("labelTitle")->text(), QString("Error"));
        QCOMPARE(box->findChild<QLabel *>("labelMessage")->text(), text);
        QVERIFY(box->findChild<QPushButton *>("btnCancel")->isHidden());
        press(box, "btnOk");
    }
};

void AddCameraFormTest::addingStartsEmpty()
{
    CAddCameraForm form(nullptr, nullptr);
    QCOMPARE(form.findChild<QLabel *>("labelTitle")->text(), QString("Add Camera"));
    QCOMPARE(form.findChild<QLabel *>("labelUid")->text(), QString("UID or address"));
    for (const char *name : {"editUid", "editUserName", "editPassword", "editCameraName"})
        QVERIFY(edit(form, name)->text().isEmpty());
    QVERIFY(form.testAttribute(Qt::WA_TranslucentBackground));
    QVERIFY(form.windowFlags() & Qt::FramelessWindowHint);
}

void AddCameraFormTest::modifyingIsFilledFromTheRecord()
{
    CameraRecord record;
    record.hostname = "UID/1 & <2>";
    record.username = "admin";
    record.password = "p\"ss";
    record.name = "Garage";
    CAddCameraForm form(nullptr, &record);
    QCOMPARE(form.findChild<QLabel *>("labelTitle")->text(), QString("Modify Camera"));
    QCOMPARE(edit(form, "editUid")->text(), record.hostname);
    QCOMPARE(edit(form, "editUserName")->text(), record.username);
    QCOMPARE(edit(form, "editPassword")->text(), record.password);
    QCOMPARE(edit(form, "editCameraName")->text(), record.name);
    ModalScript script;
    script.then([](QWidget *dialog) { press(dialog, "btnOk"); });
    QCOMPARE(form.exec(), 1);
    QVERIFY(form.holds(record));
    record.multiLive = true;
    QVERIFY(form.holds(record));
    record.name = "garage";
    QVERIFY(!form.holds(record));
}

void AddCameraFormTest::thePasswordIsNotShown()
{
    CAddCameraForm form(nullptr, nullptr);
    QCOMPARE(edit(form, "editPassword")->echoMode(), QLineEdit::Password);
    type(form, "editPassword", "secret");
    QVERIFY(!edit(form, "editPassword")->displayText().contains("secret"));
}

void AddCameraFormTest::typedTextsAreReadBackAsTheyAre()
{
    CAddCameraForm form(nullptr, nullptr);
    type(form, "editUid", " UID-7 ");
    type(form, "editUserName", "ad min");
    type(form, "editPassword", " x=\"y\" ");
    type(form, "editCameraName", "Door #1");
    ModalScript script;
    script.then([](QWidget *dialog) { press(dialog, "btnOk"); });
    QCOMPARE(form.exec(), 1);
    QCOMPARE(form.uid(), QString(" UID-7 "));
    QCOMPARE(form.username(), QString("ad min"));
    QCOMPARE(form.password(), QString(" x=\"y\" "));
    QCOMPARE(form.cameraName(), QString("Door #1"));
}

void AddCameraFormTest::emptyUidAndUserNameReportOnlyTheUid()
{
    CAddCameraForm form(nullptr, nullptr);
    ModalScript script;
    script
        .then([](QWidget *dialog) {
            QTimer::singleShot(0, dialog, [dialog] { press(dialog, "btnOk"); });
        })
        .then([&](QWidget *box) {
            expectRefusal(box, "Please input UID.");
            QTimer::singleShot(0, &form, [&] { press(&form, "btnCancel"); });
        });
    QCOMPARE(form.exec(), 0);
    QVERIFY(script.done());
}

void AddCameraFormTest::emptyUserNameIsReported()
{
    CAddCameraForm form(nullptr, nullptr);
    ModalScript script;
    script
        .then([](QWidget *dialog) {
            type(*qobject_cast<CAddCameraForm *>(dialog), "editUid", "U");
            QTimer::singleShot(0, dialog, [dialog] { press(dialog, "btnOk"); });
        })
        .then([&](QWidget *box) {
            expectRefusal(box, "Please input user name.");
            QTimer::singleShot(0, &form, [&] {
                QVERIFY(form.isVisible());
                press(&form, "btnCancel");
            });
        });
    QCOMPARE(form.exec(), 0);
    QVERIFY(script.done());
}

void AddCameraFormTest::aUidOfBlanksIsAccepted()
{
    CAddCameraForm form(nullptr, nullptr);
    type(form, "editUid", "   ");
    type(form, "editUserName", "admin");
    ModalScript script;
    script.then([](QWidget *dialog) { press(dialog, "btnOk"); });
    QCOMPARE(form.exec(), 1);
    QCOMPARE(form.uid(), QString("   "));
    QVERIFY(script.done());
}

void AddCameraFormTest::passwordAndNameMayBeEmpty()
{
    CAddCameraForm form(nullptr, nullptr);
    type(form, "editUid", "U");
    type(form, "editUserName", "admin");
    ModalScript script;
    script.then([](QWidget *dialog) { press(dialog, "btnOk"); });
    QCOMPARE(form.exec(), 1);
    QCOMPARE(form.password(), QString());
    QCOMPARE(form.cameraName(), QString());
}

void AddCameraFormTest::cancelAndEscapeReject()
{
    CAddCameraForm form(nullptr, nullptr);
    {
        ModalScript script;
        script.then([](QWidget *dialog) { press(dialog, "btnCancel"); });
        QCOMPARE(form.exec(), 0);
    }
    ModalScript script;
    script.then([](QWidget *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    QCOMPARE(form.exec(), 0);
}

void AddCameraFormTest::discoverTakesTheChosenUid()
{
    QWidget *parent = nullptr;
    CAddCameraForm::setUidPicker([&](QWidget *over) {
        parent = over;
        return std::optional<QString>("FOUND-1");
    });
    CAddCameraForm form(nullptr, nullptr);
    type(form, "editUid", "old");
    type(form, "editUserName", "admin");
    form.show();
    press(&form, "btnDiscovery");
    QCOMPARE(parent, &form);
    QCOMPARE(edit(form, "editUid")->text(), QString("FOUND-1"));
    QCOMPARE(edit(form, "editUserName")->text(), QString("admin"));
}

void AddCameraFormTest::cancellingTheSearchLeavesTheUid()
{
    int asked = 0;
    CAddCameraForm::setUidPicker([&](QWidget *) {
        ++asked;
        return std::optional<QString>();
    });
    CAddCameraForm form(nullptr, nullptr);
    type(form, "editUid", "old");
    form.show();
    press(&form, "btnDiscovery");
    QCOMPARE(asked, 1);
    QCOMPARE(edit(form, "editUid")->text(), QString("old"));
}

void AddCameraFormTest::anEmptyChoiceLeavesTheUid()
{
    CAddCameraForm::setUidPicker([](QWidget *) { return std::optional<QString>(""); });
    CAddCameraForm form(nullptr, nullptr);
    type(form, "editUid", "old");
    form.show();
    press(&form, "btnDiscovery");
    QCOMPARE(edit(form, "editUid")->text(), QString("old"));
}

void AddCameraFormTest::discoverIsDisabledWithoutPicker()
{
    CAddCameraForm form(nullptr, nullptr);
    form.show();
    QVERIFY(!form.findChild<QPushButton *>("btnDiscovery")->isEnabled());
    press(&form, "btnDiscovery");
    QCOMPARE(form.findChild<QPushButton *>("btnDiscovery")->text(), QString("Discover"));
}

void AddCameraFormTest::enterInAFieldIsOkAndNotDiscover()
{
    int asked = 0;
    CAddCameraForm::setUidPicker([&](QWidget *) {
        ++asked;
        return std::optional<QString>("FOUND-1");
    });
    CAddCameraForm form(nullptr, nullptr);
    type(form, "editUid", "U");
    type(form, "editUserName", "admin");
    ModalScript script;
    script.then([&](QWidget *) { QTest::keyClick(edit(form, "editUid"), Qt::Key_Return); });
    QCOMPARE(form.exec(), 1);
    QCOMPARE(asked, 0);
}

void AddCameraFormTest::tabsGoThroughTheFieldsInOrder()
{
    CAddCameraForm::setUidPicker([](QWidget *) { return std::optional<QString>(); });
    CAddCameraForm form(nullptr, nullptr);
    form.show();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    edit(form, "editUid")->setFocus();
    QStringList order;
    for (int i = 0; i < 7; ++i) {
        order += form.focusWidget()->objectName();
        QTest::keyClick(form.focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(order, QStringList({"editUid", "btnDiscovery", "editUserName", "editPassword",
                                 "editCameraName", "btnOk", "btnCancel"}));
}

void AddCameraFormTest::theAddTilePassesItsClickOn()
{
    CAddButtonForm tile;
    QSignalSpy clicked(&tile, &CAddButtonForm::clicked);
    tile.show();
    press(&tile, "btnAdd");
    QCOMPARE(clicked.count(), 1);
    QTest::keyClick(tile.findChild<QWidget *>("btnAdd"), Qt::Key_Space);
    QCOMPARE(clicked.count(), 2);
}

QTEST_MAIN(AddCameraFormTest)
#include "tst_add_camera_form.moc"
