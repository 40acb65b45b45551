#include "app/message_box.h"
#include "camera/camera.h"
#include "camera/motion_dialog.h"
#include "tests/support/modal_script.h"
#include "tests/ui/manager/manager_fixture.h"
#include "ui/common/busy_dialog.h"
#include "ui/manager/add_button_form.h"
#include "ui/manager/add_camera_form.h"
#include "ui/manager/camera_mgr_form.h"
#include "ui/manager/camera_mgr_frame.h"
#include "ui/manager/camera_mgr_item_form.h"

#include <QDir>
#include <QFile>
#include <QGridLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

namespace {

constexpr int kDeadline = 20000; // milliseconds

struct Cell
{
    int row = -1;
    int column = -1;
    bool operator==(const Cell &) const = default;
};

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

void expectBox(QWidget *box, const QString &title, const QString &text, bool withCancel)
{
    QVERIFY2(qobject_cast<CMessageBox *>(box), box->metaObject()->className());
    QCOMPARE(box->findChild<QLabel *>("labelTitle")->text(), title);
    QCOMPARE(box->findChild<QLabel *>("labelMessage")->text(), text);
    QCOMPARE(box->findChild<QWidget *>("btnCancel")->isVisible(), withCancel);
    QVERIFY(box->findChild<QLabel *>("labelIcon")->text().isEmpty());
}

} // namespace

class CameraMgrFrameTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void oneTileForEachSessionInOrder();
    void withNoCamerasTheAddTileIsFirst();
    void columnsFollowTheWidth();
    void stretchPacksTheTilesTopLeft();
    void aPageNarrowerThanOneTileKeepsItsArrangement();
    void resizingThePageLaysOutAgain();
    void onlyTilesThatAreSeenHoldPictures();
    void theTabKeyReachesEveryTile();
    void scrollingAwayFromTheFocusDoesNotScrollBack();

    void addingACameraRegistersSavesAndStarts();
    void cancellingTheAddDialogChangesNothing();
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

    void playingAsksTheMainWindow();
    void motionOpensTheDialog();
    void rebootIsAskedForFirst();
    void rebootSucceeds();
    void rebootFails_data();
    void rebootFails();

private:
    void build(int cameras)
    {
        m_registry->addMany(cameras);
        m_registry->start();
        m_frame = std::make_unique<CCameraMgrFrame>();
        m_frame->fill();
    }
    Cell cellOf(QWidget *widget) const
    {
        auto *grid = qobject_cast<QGridLayout *>(m_frame->layout());
        Cell cell;
        int rows = 0;
        int columns = 0;
        if (const int index = grid->indexOf(widget); index >= 0)
            grid->getItemPosition(index, &cell.row, &cell.column, &rows, &columns);
        return cell;
    }
    QWidget *addTile() const { return m_frame->findChild<CAddButtonForm *>(); }
    void clickAdd() { press(m_frame.get(), "btnAdd"); }
    QStringList tileUids() const
    {
        QStringList uids;
        for (CCameraMgrItemForm *tile : m_frame->tiles())
            uids += tile->camera()->hostname();
        return uids;
    }
    static QStringList sessionUids()
    {
        QStringList uids;
        for (int i = 0; i < Registry::cameras().count(); ++i)
            uids += Registry::cameras().at(i)->hostname();
        return uids;
    }

    std::unique_ptr<Registry> m_registry;
    std::unique_ptr<HostRecorder> m_host;
    std::unique_ptr<CCameraMgrFrame> m_frame;
};

void CameraMgrFrameTest::init()
{
    m_registry = std::make_unique<Registry>();
    m_host = std::make_unique<HostRecorder>();
}

void CameraMgrFrameTest::cleanup()
{
    m_frame.reset();
    m_host.reset();
    m_registry.reset();
}

void CameraMgrFrameTest::oneTileForEachSessionInOrder()
{
    build(3);
    QCOMPARE(tileUids(), QStringList({"UID-000", "UID-001", "UID-002"}));
    for (CCameraMgrItemForm *tile : m_frame->tiles())
        QVERIFY(cellOf(tile) != Cell());
}

void CameraMgrFrameTest::withNoCamerasTheAddTileIsFirst()
{
    build(0);
    m_frame->layoutTiles(1000);
    QVERIFY(m_frame->tiles().isEmpty());
    QCOMPARE(cellOf(addTile()), (Cell{0, 0}));
}

void CameraMgrFrameTest::columnsFollowTheWidth()
{
    build(7);
    const int tile = addTile()->width();
    for (int width = tile; width <= 2000; ++width) {
        m_frame->layoutTiles(width);
        const int columns = std::max(1, (width + 1) / (tile + 21));
        for (int i = 0; i < 7; ++i)
            QCOMPARE(cellOf(m_frame->tiles().at(i)), (Cell{i / columns, i % columns}));
        QCOMPARE(cellOf(addTile()), (Cell{7 / columns, 7 % columns}));
    }
}

void CameraMgrFrameTest::stretchPacksTheTilesTopLeft()
{
    build(5);
    auto *grid = qobject_cast<QGridLayout *>(m_frame->layout());
    const int step = addTile()->width() + 21;
    m_frame->layoutTiles(3 * step);
    QCOMPARE(grid->columnStretch(3), 10);
    QCOMPARE(grid->rowStretch(2), 10); // the add tile is in row 1
    m_frame->layoutTiles(6 * step);
    QCOMPARE(grid->columnStretch(3), 0);
    QCOMPARE(grid->columnStretch(6), 10);
    QCOMPARE(grid->rowStretch(1), 10); // the add tile is in row 0
    QCOMPARE(grid->rowStretch(2), 0);
    QCOMPARE(grid->itemAtPosition(0, 0)->alignment(), Qt::AlignLeft | Qt::AlignTop);
}

void CameraMgrFrameTest::aPageNarrowerThanOneTileKeepsItsArrangement()
{
    build(5);
    const int tile = addTile()->width();
    m_frame->layoutTiles(3 * (tile + 21));
    m_frame->layoutTiles(tile - 1);
    QCOMPARE(cellOf(m_frame->tiles().at(4)), (Cell{1, 1}));
    m_frame->layoutTiles(0);
    m_frame->layoutTiles(-5);
    QCOMPARE(cellOf(m_frame->tiles().at(4)), (Cell{1, 1}));
    m_frame->layoutTiles(tile);
    QCOMPARE(cellOf(m_frame->tiles().at(4)), (Cell{4, 0}));
}

void CameraMgrFrameTest::resizingThePageLaysOutAgain()
{
    m_registry->addMany(6);
    m_registry->start();
    CCameraMgrForm page;
    page.fill();
    page.resize(1000, 600);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    auto *frame = page.findChild<CCameraMgrFrame *>("frameCameraMgr");
    auto *scroll = page.findChild<QScrollArea *>("scrollCameraMgr");
    QVERIFY(frame && scroll);
    for (const int width : {1000, 700, 480, 300, 1300}) {
        page.resize(width, 600);
        QTRY_VERIFY_WITH_TIMEOUT(page.width() == width, kDeadline);
        const int columns = std::max(1, (scroll->viewport()->width() + 1) / (199 + 21));
        auto *grid = qobject_cast<QGridLayout *>(frame->layout());
        int row = 0;
        int column = 0;
        int rows = 0;
        int spanned = 0;
        grid->getItemPosition(grid->indexOf(frame->tiles().at(5)), &row, &column, &rows, &spanned);
        QCOMPARE(row, 5 / columns);
        QCOMPARE(column, 5 % columns);
    }
}

void CameraMgrFrameTest::onlyTilesThatAreSeenHoldPictures()
{
    m_registry->addMany(100);
    m_registry->start();
    for (int i = 0; i < 100; ++i) {
        const QString file = m_registry->cameras().at(i)->thumb_path();
        QVERIFY(QDir().mkpath(QFileInfo(file).path()));
        QImage image(16, 12, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(file, "JPEG"));
    }
    CCameraMgrForm page;
    page.fill();
    page.resize(1000, 600);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    auto *frame = page.findChild<CCameraMgrFrame *>("frameCameraMgr");
    const auto holds = [&](int i) {
        return frame->tiles()
            .at(i)
            ->findChild<QFrame *>("frameCameraItem")
            ->styleSheet()
            .contains("thumb.jpeg");
    };
    QTRY_VERIFY_WITH_TIMEOUT(!holds(99), kDeadline);
    QVERIFY(holds(0));
    auto *bar = page.findChild<QScrollArea *>("scrollCameraMgr")->verticalScrollBar();
    QTRY_VERIFY_WITH_TIMEOUT(bar->maximum() > 0, kDeadline);
    bar->setValue(bar->maximum());
    QVERIFY(holds(99));
    QVERIFY(!holds(0));
}

void CameraMgrFrameTest::theTabKeyReachesEveryTile()
{
    m_registry->addMany(30);
    m_registry->start();
    CCameraMgrForm page;
    page.fill();
    page.resize(500, 400);
    page.show();
    QVERIFY(QTest::qWaitForWindowActive(&page));
    auto *frame = page.findChild<CCameraMgrFrame *>("frameCameraMgr");
    frame->tiles().at(0)->setFocus();
    for (CCameraMgrItemForm *tile : frame->tiles()) {
        QCOMPARE(page.focusWidget(), tile);
        QVERIFY(!tile->visibleRegion().isEmpty());
        QTest::keyClick(page.focusWidget(), Qt::Key_Tab);
        QCOMPARE(page.focusWidget()->objectName(), QString("btnMenu"));
        QTest::keyClick(page.focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(page.focusWidget()->objectName(), QString("btnAdd"));
}

void CameraMgrFrameTest::scrollingAwayFromTheFocusDoesNotScrollBack()
{
    m_registry->addMany(60);
    m_registry->start();
    CCameraMgrForm page;
    page.fill();
    page.resize(500, 400);
    page.show();
    QVERIFY(QTest::qWaitForWindowActive(&page));
    auto *frame = page.findChild<CCameraMgrFrame *>("frameCameraMgr");
    auto *bar = page.findChild<QScrollArea *>("scrollCameraMgr")->verticalScrollBar();
    frame->tiles().at(0)->setFocus();
    const int end = bar->maximum();
    QVERIFY(end > 1000);
    bar->setValue(end);
    QCOMPARE(bar->maximum(), end);
    QCOMPARE(bar->value(), end);
    QCOMPARE(page.focusWidget(), frame->tiles().at(0));
    QVERIFY(frame->tiles().at(1)->isHidden());
    QVERIFY(frame->tiles().at(59)->isVisible());
}

void CameraMgrFrameTest::addingACameraRegistersSavesAndStarts()
{
    build(1);
    ModalScript script;
    script.then([](QWidget *dialog) {
        QCOMPARE(dialog->findChild<QLabel *>("labelTitle")->text(), QString("Add Camera"));
        enter(dialog, {"NEW-1", "user", "pass word", "Front door"});
    });
    clickAdd();
    QVERIFY(script.done());

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
    QVERIFY(cellOf(m_frame->tiles().at(1)) != Cell());
}

void CameraMgrFrameTest::cancellingTheAddDialogChangesNothing()
{
    build(1);
    const QByteArray before = m_registry->file();
    ModalScript script;
    script.then([](QWidget *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    clickAdd();
    QVERIFY(script.done());
    QCOMPARE(tileUids(), QStringList({"UID-000"}));
    QCOMPARE(m_registry->file(), before);
}

void CameraMgrFrameTest::withAHundredCamerasTheAddTileShowsTheError()
{
    build(100);
    ModalScript script;
    script.then([](QWidget *box) {
        expectBox(box, "Error", "Cannot add camera, 100 is maxnum.", false);
        press(box, "btnOk");
    });
    clickAdd();
    QVERIFY(script.done());
    QCOMPARE(m_frame->tiles().size(), 100);
}

void CameraMgrFrameTest::withNinetyNineCamerasTheDialogOpens()
{
    build(99);
    ModalScript script;
    script.then([](QWidget *dialog) {
        QVERIFY(qobject_cast<CAddCameraForm *>(dialog));
        enter(dialog, {"NEW-1"});
    });
    clickAdd();
    QVERIFY(script.done());
    QCOMPARE(m_frame->tiles().size(), 100);
}

void CameraMgrFrameTest::aUidThatExistsEndsSilently()
{
    build(2);
    const QByteArray before = m_registry->file();
    ModalScript script;
    script.then([](QWidget *dialog) { enter(dialog, {"UID-001"}); });
    clickAdd();
    QVERIFY(script.done());
    QCOMPARE(tileUids(), QStringList({"UID-000", "UID-001"}));
    QCOMPARE(m_registry->file(), before);
    QCOMPARE(fake_cammgr::players().size(), 2u);
}

void CameraMgrFrameTest::aSessionThatCannotStartHasNoTile()
{
    build(1);
    fake_cammgr::failCreate();
    ModalScript script;
    script.then([](QWidget *dialog) { enter(dialog, {"NEW-1"}); });
    clickAdd();
    QVERIFY(script.done());
    QCOMPARE(tileUids(), QStringList({"UID-000"}));
    QCOMPARE(sessionUids(), QStringList({"UID-000"}));
    QCOMPARE(Registry::uids(), QStringList({"UID-000", "NEW-1"}));
    QVERIFY(m_registry->file().contains("HOSTNAME=NEW-1\n"));
}

void CameraMgrFrameTest::aUidWithSlashesIsTakenAsItIs()
{
    build(0);
    const QString uid = "rtsp://127.0.0.1:554/a/../b?x=1";
    ModalScript script;
    script.then([&](QWidget *dialog) { enter(dialog, {uid}); });
    clickAdd();
    QVERIFY(script.done());
    QCOMPARE(tileUids(), QStringList({uid}));
    QCOMPARE(m_frame->tiles().at(0)->findChild<QLabel *>("labelUid")->text(), uid);
    QVERIFY(fake_cammgr::player(uid.toStdString()));
}

void CameraMgrFrameTest::addingWithAnAlbumThatIsAFile()
{
    QFile file(m_registry->path("album"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    build(1);
    ModalScript script;
    script.then([](QWidget *dialog) { enter(dialog, {"NEW-1"}); });
    clickAdd();
    QVERIFY(script.done());
    QCOMPARE(tileUids(), QStringList({"UID-000", "NEW-1"}));
    Registry::cameras().at(1)->take_thumb();
    QVERIFY(QFileInfo(file.fileName()).isFile());
}

void CameraMgrFrameTest::addingWithSettingsThatCannotBeWritten()
{
    build(1);
    const QString file = Registry::settings().configFile();
    QVERIFY(QFile::remove(file));
    QVERIFY(QDir().mkpath(file)); // a folder stands where the file has to go
    ModalScript script;
    script.then([](QWidget *dialog) { enter(dialog, {"NEW-1"}); });
    clickAdd();
    QVERIFY(script.done());
    QCOMPARE(tileUids(), QStringList({"UID-000", "NEW-1"}));
}

void CameraMgrFrameTest::deletingAsksFirst()
{
    build(2);
    const QByteArray before = m_registry->file();
    ModalScript script;
    script.then([](QWidget *box) {
        expectBox(box, "Warning", "Delete camera?", true);
        press(box, "btnCancel");
    });
    m_frame->tiles().at(0)->slotDelete();
    QVERIFY(script.done());
    QCOMPARE(m_frame->tiles().size(), 2);
    QCOMPARE(m_registry->file(), before);
    QCOMPARE(fake_cammgr::player("UID-000")->count("RtspPlayer_Stop"), 0);
}

void CameraMgrFrameTest::deletingEndsSessionTileAndRecord()
{
    build(3);
    m_frame->layoutTiles(1000);
    QPointer<CCameraMgrItemForm> tile = m_frame->tiles().at(1);
    ModalScript script;
    script.then([](QWidget *box) { press(box, "btnOk"); });
    tile->slotDelete();
    QVERIFY(script.done());

    QCOMPARE(tileUids(), QStringList({"UID-000", "UID-002"}));
    QCOMPARE(sessionUids(), tileUids());
    QCOMPARE(Registry::uids(), tileUids());
    QVERIFY(!m_registry->file().contains("UID-001"));
    QVERIFY(fake_cammgr::player("UID-001")->deleted());
    QCOMPARE(cellOf(m_frame->tiles().at(1)), (Cell{0, 1}));
    QCOMPARE(cellOf(addTile()), (Cell{0, 2}));
    QTRY_VERIFY_WITH_TIMEOUT(tile.isNull(), kDeadline);
    QVERIFY(fake_cammgr::breaches().empty());
}

void CameraMgrFrameTest::deletingWaitsForAnOutstandingProbe()
{
    fake_cammgr::Script stubborn;
    stubborn.stopEndsProbe = false;
    fake_cammgr::setDefaults(stubborn);
    build(1);
    auto player = fake_cammgr::player("UID-000");
    QVERIFY(player->probeOutstanding());
    ModalScript script;
    script.then([&](QWidget *box) {
        press(box, "btnOk");
        QTimer::singleShot(300, m_frame.get(), [player] { player->probeFailed(); });
    });
    m_frame->tiles().at(0)->slotDelete();
    QVERIFY(script.done());
    QVERIFY(player->deleted());
    QVERIFY(m_frame->tiles().isEmpty());
    QVERIFY(fake_cammgr::breaches().empty());
}

void CameraMgrFrameTest::modifyingNothingChangesNothing()
{
    build(2);
    const QByteArray before = m_registry->file();
    const CCamera *session = Registry::cameras().at(0);
    ModalScript script;
    script.then([](QWidget *dialog) {
        QCOMPARE(dialog->findChild<QLabel *>("labelTitle")->text(), QString("Modify Camera"));
        press(dialog, "btnOk");
    });
    m_frame->tiles().at(0)->slotModify();
    QVERIFY(script.done());
    QCOMPARE(tileUids(), QStringList({"UID-000", "UID-001"}));
    QCOMPARE(Registry::cameras().at(0), session);
    QCOMPARE(m_registry->file(), before);
    QCOMPARE(fake_cammgr::players().size(), 2u);
}

void CameraMgrFrameTest::cancellingModifyChangesNothing()
{
    build(1);
    ModalScript script;
    script.then([](QWidget *dialog) {
        QTest::keyClicks(dialog->findChild<QLineEdit *>("editCameraName"), "new");
        press(dialog, "btnCancel");
    });
    m_frame->tiles().at(0)->slotModify();
    QVERIFY(script.done());
    QCOMPARE(Registry::settings().at(0)->name, QString("Camera 0"));
    QCOMPARE(fake_cammgr::players().size(), 1u);
}

void CameraMgrFrameTest::modifyingOnlyThePasswordMovesTheCameraToTheEnd()
{
    m_registry->add("A", "a", true);
    m_registry->add("B", "b", true);
    m_registry->start();
    m_frame = std::make_unique<CCameraMgrFrame>();
    m_frame->fill();
    ModalScript script;
    script.then([](QWidget *dialog) { enter(dialog, {"A", "admin", "other", "a"}); });
    m_frame->tiles().at(0)->slotModify();
    QVERIFY(script.done());

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

void CameraMgrFrameTest::modifyingTheUidToThatOfAnotherLosesTheCamera()
{
    build(3);
    m_frame->layoutTiles(1000);
    const QByteArray before = m_registry->file();
    ModalScript script;
    script.then([](QWidget *dialog) { enter(dialog, {"UID-002"}); });
    m_frame->tiles().at(0)->slotModify();
    QVERIFY(script.done());

    QCOMPARE(tileUids(), QStringList({"UID-001", "UID-002"}));
    QCOMPARE(sessionUids(), tileUids());
    QCOMPARE(Registry::uids(), tileUids());
    QCOMPARE(m_registry->file(), before);
    QVERIFY(m_registry->file().contains("HOSTNAME=UID-000\n"));
    QCOMPARE(cellOf(m_frame->tiles().at(0)), (Cell{0, 0}));
    QCOMPARE(cellOf(addTile()), (Cell{0, 2}));

    Registry::settings().save();
    QVERIFY(!m_registry->file().contains("UID-000"));
}

void CameraMgrFrameTest::modifyingAnIpCameraMakesItP2P()
{
    Registry::settings().addRecord(CAMERA_TYPE_IP, "10.0.0.9", "admin", "x", "Old", true);
    m_registry->start();
    m_frame = std::make_unique<CCameraMgrFrame>();
    m_frame->fill();
    ModalScript script;
    script.then([](QWidget *dialog) { enter(dialog, {"10.0.0.9", "admin", "x", "New"}); });
    m_frame->tiles().at(0)->slotModify();
    QVERIFY(script.done());
    QCOMPARE(Registry::settings().at(0)->type, int(CAMERA_TYPE_P2P));
    QCOMPARE(Registry::settings().at(0)->name, QString("New"));
}

void CameraMgrFrameTest::playingAsksTheMainWindow()
{
    build(2);
    QTest::mouseDClick(m_frame->tiles().at(1), Qt::LeftButton);
    QCOMPARE(m_host->calls, QStringList({"playCamera"}));
    QCOMPARE(m_host->played, Registry::cameras().at(1));
}

void CameraMgrFrameTest::motionOpensTheDialog()
{
    fake_cammgr::Script script;
    script.replies = [](const std::vector<std::string> &requests) {
        return std::vector<std::string>(requests.size(), "nothing");
    };
    fake_cammgr::setDefaults(script);
    build(1);
    bool opened = false;
    QTimer look;
    connect(&look, &QTimer::timeout, this, [&] {
        auto *dialog = qobject_cast<Motion_Dialog *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        opened = true;
        press(dialog, "btnExit");
    });
    look.start(5);
    m_frame->tiles().at(0)->slotMotion();
    QVERIFY(opened);
    QCOMPARE(fake_cammgr::player("UID-000")->requests().size(), 4u);
}

void CameraMgrFrameTest::rebootIsAskedForFirst()
{
    build(1);
    ModalScript script;
    script.then([](QWidget *box) {
        expectBox(box, "Warning", "Reboot camera?", true);
        press(box, "btnCancel");
    });
    m_frame->tiles().at(0)->slotReboot();
    QVERIFY(script.done());
    QVERIFY(fake_cammgr::player("UID-000")->requests().empty());
}

void CameraMgrFrameTest::rebootSucceeds()
{
    build(1);
    auto player = fake_cammgr::player("UID-000");
    ModalScript script;
    script.then([](QWidget *box) { press(box, "btnOk"); })
        .then([player](QWidget *busy) {
            auto *dialog = qobject_cast<QProgressDialog *>(busy);
            QVERIFY(dialog);
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
            expectBox(box, "info", "Reboot success. Please wait a few minutes and re-connect.",
                      false);
            press(box, "btnOk");
        });
    m_frame->tiles().at(0)->slotReboot();
    QVERIFY(script.done());
    player->reply({"000 Success\n"}); // a late answer reaches nobody
    QVERIFY(fake_cammgr::waitDelivered());
}

void CameraMgrFrameTest::rebootFails_data()
{
    QTest::addColumn<QString>("reply");
    QTest::newRow("refused") << "401 Unauthorized\n";
    QTest::newRow("empty") << "";
    QTest::newRow("carriage return") << "000 Success\r\n";
}

void CameraMgrFrameTest::rebootFails()
{
    QFETCH(QString, reply);
    build(1);
    auto player = fake_cammgr::player("UID-000");
    ModalScript script;
    script.then([](QWidget *box) { press(box, "btnOk"); })
        .then([&](QWidget *) { player->reply({reply.toStdString()}); })
        .then([](QWidget *box) {
            expectBox(box, "info", "Reboot failed. Please wait a few minutes and re-try.", false);
            press(box, "btnOk");
        });
    m_frame->tiles().at(0)->slotReboot();
    QVERIFY(script.done());
}

QTEST_MAIN(CameraMgrFrameTest)
#include "tst_camera_mgr_frame.moc"
