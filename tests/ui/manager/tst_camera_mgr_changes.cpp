#include "tests/support/declared.h"
#include "tests/support/message_check.h"
#include "tests/support/modal_script.h"
#include "tests/ui/manager/frame_test.h"
#include "ui/manager/add_camera_form.h"
#include "ui/manager/motion_dialog.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

/// What a user enters in the add dialog before OK.
struct Entry
{
    QString uid;
    QString username = "admin";
    QString password = "secret";
    QString name = {};
};

void enter(QWidget *dialog, const Entry &entry)
{
    const auto fill = [dialog](const char *name, const QString &text) {
        auto *edit = dialog->findChild<QLineEdit *>(QLatin1String(name));
        edit->clear();
        QTest::keyClicks(edit, text);
    };
    fill("editUid", entry.uid);
    fill("editUserName", entry.username);
    fill("editPassword", entry.password);
    fill("editCameraName", entry.name);
    press(dialog, "btnOk");
}

} // namespace

/// What the page does with cameras: adding, deleting, modifying, motion windows, reboot.
class CameraMgrChangesTest : public FrameTest
{
    Q_OBJECT

private slots:
    void addingACameraRegistersSavesAndStarts();
    void cancellingTheAddDialogChangesNothing();
    void slotsStandInOrder();
    void withAHundredCamerasTheAddTileShowsTheError();
    void withNinetyNineCamerasTheDialogOpens();
    void aUidThatExistsEndsSilently();
    void aSessionThatCannotStartHasNoTile();
    void aUidWithSlashesIsTakenAsItIs();
    void addingWithAnAlbumThatIsAFile();
    void addingWithSettingsThatCannotBeWritten();
    void deletingAsksFirst();
    void deletingEndsSessionTileAndRecord();
    void deletingWaitsForAnOutstandingProbe();
    void modifyingNothingChangesNothing();
    void cancellingModifyChangesNothing();
    void modifyingOnlyThePasswordMovesTheCameraToTheEnd();
    void modifyingTheUidToThatOfAnotherLosesTheCamera();
    void modifyingAnIpCameraMakesItP2P();
    void motionOpensTheDialog();
    void rebootIsAskedForFirst();
    void rebootSucceeds();
    void rebootFails_data();
    void rebootFails();

private:
    /// Does what shows one window, and answers that.
    template <typename Act>
    static void answering(const std::function<void(QWidget *)> &answer, Act act)
    {
        ModalScript script(answer);
        act();
        QVERIFY(script.done());
    }
    void clickAdd() { press(m_frame.get(), "btnAdd"); }
    void add(const Entry &entry)
    {
        answering([&](QWidget *dialog) { enter(dialog, entry); }, [this] { clickAdd(); });
    }
    void modify(int index, const Entry &entry)
    {
        answering([&](QWidget *dialog) { enter(dialog, entry); },
                  [&] { tile(index)->slotModify(); });
    }
    static QStringList sessionUids()
    {
        QStringList uids;
        for (int i = 0; i < Registry::cameras().count(); ++i)
            uids += Registry::cameras().at(i)->hostname();
        return uids;
    }
};

void CameraMgrChangesTest::addingACameraRegistersSavesAndStarts()
{
    build(1);
    answering(
        [](QWidget *dialog) {
            QCOMPARE(dialog->findChild<QLabel *>("labelTitle")->text(), QString("Add Camera"));
            enter(dialog, {"NEW-1", "user", "pass word", "Front door"});
        },
        [this] { clickAdd(); });

    QCOMPARE(tileUids(), QStringList({"UID-000", "NEW-1"}));
    QCOMPARE(sessionUids(), tileUids());
    const CameraRecord *record = Registry::settings().at(1);
    QCOMPARE(record->type, int(CAMERA_TYPE_P2P));
    QCOMPARE(record->hostname, QString("NEW-1"));
    QCOMPARE(record->username, QString("user"));
    QCOMPARE(record->password, QString("pass word"));
    QCOMPARE(record->name, QString("Front door"));
    QCOMPARE(record->multiLive, false);
    QVERIFY(m_registry->file().contains("HOSTNAME=NEW-1\n"));
    QVERIFY(m_registry->file().contains("PASSWORD=\"pass word\"\n"));
    QVERIFY(fake_cammgr::player("NEW-1")->probeOutstanding());
    QVERIFY(cellOf(tile(1)) != Cell());
}

void CameraMgrChangesTest::cancellingTheAddDialogChangesNothing()
{
    build(1);
    const QByteArray before = m_registry->file();
    answering([](QWidget *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); },
              [this] { clickAdd(); });
    QCOMPARE(tileUids(), QStringList({"UID-000"}));
    QCOMPARE(m_registry->file(), before);
}

void CameraMgrChangesTest::slotsStandInOrder()
{
    QCOMPARE(
        declared(CCameraMgrFrame::staticMetaObject, QMetaMethod::Slot),
        QStringList({"slotAddButtonClicked()", "slotDeleteCamera(CCameraMgrItemForm*)",
                     "slotPlayCamera(CCameraMgrItemForm*)", "slotModifyCamera(CCameraMgrItemForm*)",
                     "slotMotionCamera(CCameraMgrItemForm*)",
                     "slotRebootCamera(CCameraMgrItemForm*)"}));
}

void CameraMgrChangesTest::withAHundredCamerasTheAddTileShowsTheError()
{
    build(100);
    answering(
        [](QWidget *box) {
            expectMessage(box, CMessageBox::Error, "Error", "Cannot add camera, 100 is maxnum.",
                          false);
            press(box, "btnOk");
        },
        [this] { clickAdd(); });
    QCOMPARE(m_frame->tiles().size(), 100);
}

void CameraMgrChangesTest::withNinetyNineCamerasTheDialogOpens()
{
    build(99);
    answering(
        [](QWidget *dialog) {
            QVERIFY(qobject_cast<CAddCameraForm *>(dialog));
            enter(dialog, {"NEW-1"});
        },
        [this] { clickAdd(); });
    QCOMPARE(m_frame->tiles().size(), 100);
}

void CameraMgrChangesTest::aUidThatExistsEndsSilently()
{
    build(2);
    const QByteArray before = m_registry->file();
    add({"UID-001"});
    QCOMPARE(tileUids(), QStringList({"UID-000", "UID-001"}));
    QCOMPARE(m_registry->file(), before);
    QCOMPARE(fake_cammgr::players().size(), 2u);
}

void CameraMgrChangesTest::aSessionThatCannotStartHasNoTile()
{
    build(1);
    fake_cammgr::failCreate();
    add({"NEW-1"});
    QCOMPARE(tileUids(), QStringList({"UID-000"}));
    QCOMPARE(sessionUids(), QStringList({"UID-000"}));
    QCOMPARE(Registry::uids(), QStringList({"UID-000", "NEW-1"}));
    QVERIFY(m_registry->file().contains("HOSTNAME=NEW-1\n"));
}

void CameraMgrChangesTest::aUidWithSlashesIsTakenAsItIs()
{
    build(0);
    const QString uid = "rtsp://127.0.0.1:554/a/../b?x=1";
    add({uid});
    QCOMPARE(tileUids(), QStringList({uid}));
    QCOMPARE(tile(0)->findChild<QLabel *>("labelUid")->text(), uid);
    QVERIFY(fake_cammgr::player(uid.toStdString()));
}

void CameraMgrChangesTest::addingWithAnAlbumThatIsAFile()
{
    QFile file(m_registry->path("album"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    build(1);
    add({"NEW-1"});
    QCOMPARE(tileUids(), QStringList({"UID-000", "NEW-1"}));
    Registry::cameras().at(1)->take_thumb();
    QVERIFY(QFileInfo(file.fileName()).isFile());
}

void CameraMgrChangesTest::addingWithSettingsThatCannotBeWritten()
{
    build(1);
    const QString file = Registry::settings().configFile();
    QVERIFY(QFile::remove(file));
    QVERIFY(QDir().mkpath(file)); // a folder is in the place of the file
    add({"NEW-1"});
    QCOMPARE(tileUids(), QStringList({"UID-000", "NEW-1"}));
}

void CameraMgrChangesTest::deletingAsksFirst()
{
    build(2);
    const QByteArray before = m_registry->file();
    answering(
        [](QWidget *box) {
            expectMessage(box, CMessageBox::Warning, "Warning", "Delete camera?", true);
            press(box, "btnCancel");
        },
        [this] { tile(0)->slotDelete(); });
    QCOMPARE(m_frame->tiles().size(), 2);
    QCOMPARE(m_registry->file(), before);
    QCOMPARE(fake_cammgr::player("UID-000")->count("RtspPlayer_Stop"), 0);
}

void CameraMgrChangesTest::deletingEndsSessionTileAndRecord()
{
    build(3);
    m_frame->layoutTiles(1000);
    const QPointer<CCameraMgrItemForm> deleted(tile(1));
    auto player = fake_cammgr::player("UID-001");
    player->forgetCalls();
    bool sessionGone = false;
    connect(
        Registry::cameras().at(1), &QObject::destroyed, this,
        [&] {
            sessionGone = true;
            // Stopped and waited for before, without its tile, and with its record still there.
            QStringList ends;
            for (const fake_cammgr::Call &call : player->calls()) {
                const QString name = QString::fromStdString(call.name);
                if (name.startsWith("RtspPlayer_Stop") || name.startsWith("RtspPlayer_Delete"))
                    ends += name;
            }
            QVERIFY(ends.size() >= 3);
            QCOMPARE(ends.first(), QString("RtspPlayer_Stop_Connecting"));
            QCOMPARE(ends.at(1), QString("RtspPlayer_Stop"));
            QVERIFY(ends.last().startsWith("RtspPlayer_Delete"));
            QCOMPARE(m_frame->tiles().size(), 2);
            QVERIFY(deleted && !deleted->camera() && deleted->isHidden());
            QVERIFY(Registry::uids().contains("UID-001"));
            QVERIFY(m_registry->file().contains("UID-001"));
        });
    answering([](QWidget *box) { press(box, "btnOk"); }, [&] { deleted->slotDelete(); });

    QVERIFY(sessionGone);
    QCOMPARE(tileUids(), QStringList({"UID-000", "UID-002"}));
    QCOMPARE(sessionUids(), tileUids());
    QCOMPARE(Registry::uids(), tileUids());
    QVERIFY(!m_registry->file().contains("UID-001"));
    QVERIFY(fake_cammgr::player("UID-001")->deleted());
    QCOMPARE(cellOf(tile(1)), (Cell{0, 1}));
    QCOMPARE(cellOf(addTile()), (Cell{0, 2}));
    QTRY_VERIFY_WITH_TIMEOUT(deleted.isNull(), deadline);
    QVERIFY(fake_cammgr::contractViolations().empty());
}

void CameraMgrChangesTest::deletingWaitsForAnOutstandingProbe()
{
    fake_cammgr::Script stubborn;
    stubborn.stopEndsProbe = false;
    fake_cammgr::setDefaults(stubborn);
    build(1);
    auto player = fake_cammgr::player("UID-000");
    QVERIFY(player->probeOutstanding());
    answering(
        [&](QWidget *box) {
            press(box, "btnOk");
            QTimer::singleShot(300, m_frame.get(), [player] { player->probeFailed(); });
        },
        [this] { tile(0)->slotDelete(); });
    QVERIFY(player->deleted());
    QVERIFY(m_frame->tiles().isEmpty());
    QVERIFY(fake_cammgr::contractViolations().empty());
}

void CameraMgrChangesTest::modifyingNothingChangesNothing()
{
    build(2);
    const QByteArray before = m_registry->file();
    const CCamera *session = Registry::cameras().at(0);
    answering(
        [](QWidget *dialog) {
            QCOMPARE(dialog->findChild<QLabel *>("labelTitle")->text(), QString("Modify Camera"));
            press(dialog, "btnOk");
        },
        [this] { tile(0)->slotModify(); });
    QCOMPARE(tileUids(), QStringList({"UID-000", "UID-001"}));
    QCOMPARE(Registry::cameras().at(0), session);
    QCOMPARE(m_registry->file(), before);
    QCOMPARE(fake_cammgr::players().size(), 2u);
}

void CameraMgrChangesTest::cancellingModifyChangesNothing()
{
    build(1);
    answering(
        [](QWidget *dialog) {
            QTest::keyClicks(dialog->findChild<QLineEdit *>("editCameraName"), "new");
            press(dialog, "btnCancel");
        },
        [this] { tile(0)->slotModify(); });
    QCOMPARE(Registry::settings().at(0)->name, QString("Camera 0"));
    QCOMPARE(fake_cammgr::players().size(), 1u);
}

void CameraMgrChangesTest::modifyingOnlyThePasswordMovesTheCameraToTheEnd()
{
    m_registry->add("A", "a", true);
    m_registry->add("B", "b", true);
    build();
    modify(0, {"A", "admin", "other", "a"});

    QCOMPARE(tileUids(), QStringList({"B", "A"}));
    QCOMPARE(sessionUids(), tileUids());
    QCOMPARE(Registry::uids(), tileUids());
    QCOMPARE(Registry::settings().at(1)->password, QString("other"));
    QCOMPARE(Registry::settings().at(1)->multiLive, false);
    QCOMPARE(Registry::settings().at(0)->multiLive, true);
    QVERIFY(m_registry->file().endsWith("HOSTNAME=A\nUSERNAME=admin\nPASSWORD=other\nNAME=a\n"
                                        "MULTILIVE=0\n"));
    QCOMPARE(fake_cammgr::players().size(), 3u);
    QVERIFY(fake_cammgr::players().at(0)->deleted());
    QCOMPARE(fake_cammgr::lastPlayer()->password(), std::string("other"));
}

void CameraMgrChangesTest::modifyingTheUidToThatOfAnotherLosesTheCamera()
{
    build(3);
    m_frame->layoutTiles(1000);
    const QByteArray before = m_registry->file();
    modify(0, {"UID-002"});

    QCOMPARE(tileUids(), QStringList({"UID-001", "UID-002"}));
    QCOMPARE(sessionUids(), tileUids());
    QCOMPARE(Registry::uids(), tileUids());
    QCOMPARE(m_registry->file(), before);
    QVERIFY(m_registry->file().contains("HOSTNAME=UID-000\n"));
    QCOMPARE(cellOf(tile(0)), (Cell{0, 0}));
    QCOMPARE(cellOf(addTile()), (Cell{0, 2}));

    Registry::settings().save();
    QVERIFY(!m_registry->file().contains("UID-000"));
}

void CameraMgrChangesTest::modifyingAnIpCameraMakesItP2P()
{
    Registry::settings().addRecord(CAMERA_TYPE_IP, "10.0.0.9", "admin", "x", "Old", true);
    build();
    modify(0, {"10.0.0.9", "admin", "x", "New"});
    QCOMPARE(Registry::settings().at(0)->type, int(CAMERA_TYPE_P2P));
    QCOMPARE(Registry::settings().at(0)->name, QString("New"));
}

void CameraMgrChangesTest::motionOpensTheDialog()
{
    fake_cammgr::Script script;
    script.replies = [](const std::vector<std::string> &requests) {
        return std::vector<std::string>(requests.size(), "nothing");
    };
    fake_cammgr::setDefaults(script);
    build(1);
    ModalScript dialog([](Motion_Dialog *shown) { press(shown, "btnExit"); });
    tile(0)->slotMotion();
    QVERIFY(dialog.done());
    QCOMPARE(fake_cammgr::player("UID-000")->requests().size(), 4u);
}

void CameraMgrChangesTest::rebootIsAskedForFirst()
{
    build(1);
    answering(
        [](QWidget *box) {
            expectMessage(box, CMessageBox::Warning, "Warning", "Reboot camera?", true);
            press(box, "btnCancel");
        },
        [this] { tile(0)->slotReboot(); });
    QVERIFY(fake_cammgr::player("UID-000")->requests().empty());
}

void CameraMgrChangesTest::rebootSucceeds()
{
    build(1);
    auto player = fake_cammgr::player("UID-000");
    ModalScript script;
    script.then([](QWidget *box) { press(box, "btnOk"); })
        .then([player](QWidget *busy) {
            auto *dialog = qobject_cast<QProgressDialog *>(busy);
            QVERIFY(dialog);
            QVERIFY(dialog->isModal());
            QVERIFY(dialog->windowFlags() & Qt::FramelessWindowHint);
            QCOMPARE(dialog->labelText(), QString("Please wait for reboot..."));
            QCOMPARE(dialog->minimum(), 0);
            QCOMPARE(dialog->maximum(), 0);
            QVERIFY(dialog->findChildren<QPushButton *>().isEmpty());
            QCOMPARE(player->requests().size(), 1u);
            QCOMPARE(player->requests().at(0),
                     std::string("GET /form/sysReboot HTTP/1.1\r\n"
                                 "Authorization: Basic YWRtaW46c2VjcmV0\r\n\r\n"));
            player->reply({"000 Success\n"});
        })
        .then([](QWidget *box) {
            expectMessage(box, CMessageBox::Information, "info",
                          "Reboot success. Please wait a few minutes and re-connect.", false);
            press(box, "btnOk");
        });
    tile(0)->slotReboot();
    QVERIFY(script.done());
    // A late answer reaches nobody on this page.
    CCamera *camera = Registry::cameras().at(0);
    QVERIFY(!disconnect(camera, &CCameraCore::signalP2PConfFinished, nullptr, nullptr));
    QSignalSpy finished(camera, &CCameraCore::signalP2PConfFinished);
    player->reply({"401 Unauthorized\n"});
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, deadline);
    QVERIFY(!QApplication::activeModalWidget());
}

void CameraMgrChangesTest::rebootFails_data()
{
    QTest::addColumn<QString>("reply");
    QTest::newRow("refused") << "401 Unauthorized\n";
    QTest::newRow("empty") << "";
    QTest::newRow("carriage return") << "000 Success\r\n";
}

void CameraMgrChangesTest::rebootFails()
{
    QFETCH(QString, reply);
    build(1);
    auto player = fake_cammgr::player("UID-000");
    ModalScript script;
    script.then([](QWidget *box) { press(box, "btnOk"); })
        .then([&](QWidget *) { player->reply({reply.toStdString()}); })
        .then([](QWidget *box) {
            expectMessage(box, CMessageBox::Information, "info",
                          "Reboot failed. Please wait a few minutes and re-try.", false);
            press(box, "btnOk");
        });
    tile(0)->slotReboot();
    QVERIFY(script.done());
}

QTEST_MAIN(CameraMgrChangesTest)
#include "tst_camera_mgr_changes.moc"
