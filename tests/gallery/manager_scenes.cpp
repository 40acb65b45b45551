#include "app/main_form.h"
#include "app/status_row.h"
#include "settings/camera_settings.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/gallery/stage.h"
#include "ui/manager/add_camera_form.h"
#include "ui/manager/camera_mgr_item_form.h"

#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QThreadPool>
#include <QToolButton>

namespace gallery {

namespace {

const QString longName =
    QStringLiteral("The camera above the door between the kitchen garden and the old stables");
const QString longUid = QStringLiteral("rtsp://camera-17.stables.long-house-name.example.lan:8554");

Scene page(const QString &name, std::function<void(Stage &)> fill)
{
    return {QStringLiteral("manager"), name, Scene::Kind::Page,
            [fill](Stage &stage) {
                fill(stage);
                return Subject{&stage.form(), {}};
            }};
}

Scene addDialog(const QString &name, std::function<void(CAddCameraForm &)> fill)
{
    return {QStringLiteral("dialogs"), name, Scene::Kind::Dialog,
            [fill](Stage &stage) {
                auto *dialog = stage.show<CAddCameraForm>(&stage.open(), nullptr);
                fill(*dialog);
                return Subject{dialog, {}};
            }};
}

void type(CAddCameraForm &dialog, const char *edit, const QString &text)
{
    dialog.findChild<QLineEdit *>(QLatin1String(edit))->setText(text);
}

} // namespace

QVector<Scene> managerScenes()
{
    return {
        page(
            QStringLiteral("manager-empty"), [](Stage &stage) { stage.open(); }),
        page(
            QStringLiteral("manager-one"),
            [](Stage &stage) {
                stage.addCameras(1);
                stage.open();
            }),
        page(
            QStringLiteral("manager-four"),
            [](Stage &stage) {
                stage.addCameras(4);
                for (int i = 0; i < 4; ++i)
                    stage.addThumbnail(i);
                stage.open();
                stage.connectAll();
            }),
        page(
            QStringLiteral("manager-states"),
            [](Stage &stage) {
                stage.addCameras(4);
                stage.addThumbnail(0);
                stage.addThumbnail(3);
                stage.open();
                stage.connectCamera(0);
                stage.refuseCamera(1);
                stage.failCamera(2);
                stage.refuseCamera(3);
            }),
        {QStringLiteral("manager"), QStringLiteral("manager-tip-reason"), Scene::Kind::Other,
         [](Stage &stage) {
             fake_cammgr::Script script;
             script.reason = CAMMGR_REASON_NO_ANSWER;
             script.reasonDetail = "192.168.1.20:554";
             fake_cammgr::setDefaults(script);
             stage.addCameras(1);
             stage.addThumbnail(0);
             stage.open();
             stage.failCamera(0);
             return stage.tipOf(*stage.find<QWidget>("frameCameraItem"));
         }},
        {QStringLiteral("manager"), QStringLiteral("manager-tip-new-key"), Scene::Kind::Other,
         [](Stage &stage) {
             fake_cammgr::Script script;
             script.reason = CAMMGR_REASON_KEY_CHANGED;
             script.reasonDetail = "192.168.1.20:322";
             fake_cammgr::setDefaults(script);
             stage.addCamera(longName);
             stage.open();
             stage.failCamera(0);
             return stage.tipOf(*stage.find<QWidget>("frameCameraItem"));
         }},
        page(
            QStringLiteral("manager-disk"),
            [](Stage &stage) {
                stage.addCameras(2);
                stage.open();
                stage.connectAll();
                auto *disk = stage.form().findChild<zelvaro::StatusRow *>();
                disk->disk().setAsk([](const QString &) { return qint64(612'000'000); });
                for (const auto &player : fake_cammgr::players())
                    player->change([](auto &script) { script.writing = CAMMGR_WRITING; });
                QSignalSpy told(&disk->disk(), &zelvaro::DiskWatch::noticeChanged);
                QThreadPool::globalInstance()->waitForDone();
                QCoreApplication::sendPostedEvents();
                disk->disk().look();
                if (told.isEmpty() && !told.wait())
                    qFatal("the disk did not answer");
            }),
        page(
            QStringLiteral("manager-many"),
            [](Stage &stage) {
                stage.addCameras(60);
                for (int i = 0; i < 60; i += 1 + i % 2)
                    stage.addThumbnail(i);
                stage.open();
                for (int i = 0; i < 60; i += 1 + i % 3)
                    stage.connectCamera(i);
            }),
        page(
            QStringLiteral("manager-settings-trouble"),
            [](Stage &stage) {
                // A folder in the place of the file can be neither read nor written.
                CameraSettings &settings = CameraSettings::instance();
                const QString album = settings.albumPath();
                if (!QDir().mkpath(settings.configFile()))
                    qFatal("cannot make %s", qPrintable(settings.configFile()));
                settings.load();
                settings.setAlbumPath(album);
                stage.addCameras(2);
                settings.save();
                stage.open();
                stage.connectAll();
            }),
        page(
            QStringLiteral("manager-long-names"),
            [](Stage &stage) {
                stage.addCamera(longName, longUid);
                stage.addCamera(longName + QStringLiteral(" <b>&amp;</b>"));
                stage.addCamera(QString(), QStringLiteral("192.168.1.20"));
                stage.open();
                stage.connectCamera(0);
                stage.refuseCamera(1);
            }),
        {QStringLiteral("dialogs"), QStringLiteral("tile-menu"), Scene::Kind::Other,
         [](Stage &stage) {
             stage.addCameras(1);
             stage.open();
             auto *tile = stage.find<CCameraMgrItemForm>("CameraMgrItemForm");
             tile->slotMenu();
             return Subject{tile->findChild<QMenu *>(), {}};
         }},
        {QStringLiteral("dialogs"), QStringLiteral("main-menu"), Scene::Kind::Other,
         [](Stage &stage) {
             stage.open();
             QMenu *menu = stage.find<QToolButton>("btnMenu")->menu();
             menu->popup(QPoint(40, 40));
             return Subject{menu, {}};
         }},
        addDialog(
            QStringLiteral("add-camera"), [](CAddCameraForm &) {}),
        addDialog(
            QStringLiteral("add-camera-filled"),
            [](CAddCameraForm &dialog) {
                type(dialog, "editUid", QStringLiteral("192.168.1.20:8554"));
                type(dialog, "editUserName", QStringLiteral("admin"));
                type(dialog, "editPassword", QStringLiteral("a long password"));
                type(dialog, "editCameraName", QStringLiteral("Front door"));
            }),
        {QStringLiteral("dialogs"), QStringLiteral("modify-camera"), Scene::Kind::Dialog,
         [](Stage &stage) {
             stage.addCamera(longName, longUid);
             stage.open();
             return Subject{
                 stage.show<CAddCameraForm>(&stage.form(), CameraSettings::instance().at(0)), {}};
         }},
    };
}

} // namespace gallery
