#include "app/main_form.h"
#include "settings/camera_record.h"
#include "settings/camera_settings.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/gallery/motif.h"
#include "tests/gallery/stage.h"
#include "tests/support/modal_script.h"
#include "ui/live/multi_live_frame.h"
#include "ui/live/select_camera_form.h"
#include "ui/live/select_camera_item_form.h"
#include "ui/live/select_camera_recording_form.h"
#include "ui/live/video_frame.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QToolButton>
#include <QtTest>

namespace gallery {

namespace {

Scene page(const QString &name, std::function<void(Stage &)> fill)
{
    return {QStringLiteral("live"), name, Scene::Kind::Page,
            [fill](Stage &stage) {
                fill(stage);
                // The status lines follow the size of their pictures with the next report.
                return Subject{&stage.form(),
                               [&stage] {
                                   stage.report();
                                   return true;
                               }};
            }};
}

void playOne(Stage &stage, const fake_cammgr::Script &script = {})
{
    fake_cammgr::setDefaults(script);
    stage.addCameras(1);
    stage.open();
    stage.connectAll();
    stage.form().playCamera(stage.camera(0));
    stage.runStreams();
}

void playGrid(Stage &stage, int cameras)
{
    stage.addCameras(cameras);
    stage.open();
    stage.connectAll();
    stage.click("frameButtons", "btnMultiLive");
    stage.runStreams();
}

void recordGrid(Stage &stage)
{
    ModalScript choice;
    choice.then([](QWidget *dialog) {
        int number = 0;
        for (auto *tile : dialog->findChildren<CSelectCameraItemForm *>())
            tile->setChecked(number++ % 3 != 1);
        press(dialog, "btnOK");
    });
    stage.click("pageMultiLive", "btnRecord");
}

fake_cammgr::Script failing(const std::string &call, int result)
{
    fake_cammgr::Script script;
    script.results[call] = result;
    return script;
}

Scene toolTip(const QString &name, const char *widget, const std::function<void(Stage &)> &fill)
{
    return {QStringLiteral("live"), name, Scene::Kind::Other,
            [=](Stage &stage) {
                fill(stage);
                return stage.tipOf(*stage.find<QWidget>("pagePlayCamera")
                                        ->findChild<QWidget *>(QLatin1String(widget)));
            }};
}

void failToRecord(Stage &stage)
{
    playOne(stage, failing("RtspPlayer_BeginWriting", -1));
    stage.click("pagePlayCamera", "btnRecord");
}

/// The picture of that many milliseconds ago is the last one.
void freeze(Stage &stage, int age)
{
    RtspPlayerFigures figures = {};
    figures.picture_age = age;
    for (const auto &player : fake_cammgr::players())
        player->change([&figures](auto &script) { script.figures = figures; });
    stage.report();
}

RtspPlayerFigures someFigures()
{
    RtspPlayerFigures figures = {};
    figures.width = 1920;
    figures.height = 1080;
    figures.jitter = 2300;
    figures.delay = 4100;
    figures.frames_received = 183'204;
    figures.frames_drawn = 183'190;
    figures.frames_dropped = 14;
    figures.packets_received = 2'104'332;
    figures.packets_lost = 87;
    qstrcpy(figures.codec, "H264");
    qstrcpy(figures.sound_codec, "PCMU");
    qstrcpy(figures.decoder, "h264");
    qstrcpy(figures.transport, "TCP");
    return figures;
}

/// One camera in full screen, after whatever is done to it there.
Scene fullScreen(const QString &name, const std::function<void(Stage &)> &act)
{
    return {QStringLiteral("live"), name, Scene::Kind::Other,
            [act](Stage &stage) {
                playOne(stage);
                auto *surface = stage.find<CVideoFrame>("frameVideoFrame");
                stage.click("pagePlayCamera", "btnFullScreen");
                stage.runStreams();
                act(stage);
                Stage::paintOver(surface->renderSurface(), motif(0, {640, 360}));
                return Subject{surface, {}};
            }};
}

/// The menu that a right click on a live picture opens.
Subject contextMenu(Stage &stage, const char *page)
{
    auto *picture = stage.find<QWidget>(page)->findChild<CVideoFrame *>();
    QContextMenuEvent request(QContextMenuEvent::Keyboard, QPoint(3, 3));
    QCoreApplication::sendEvent(picture, &request);
    return {QApplication::activePopupWidget(), {}};
}

fake_cammgr::Script fullHd()
{
    fake_cammgr::Script script;
    script.mode = 0;
    script.width = 1920;
    script.height = 1080;
    script.frameRate = 25;
    script.bitRate = 4000000;
    return script;
}

template <typename Dialog>
Dialog *showSelection(Stage &stage)
{
    if constexpr (std::is_same_v<Dialog, CSelectCameraRecordingForm>) {
        auto *grid = stage.find<CMultiLiveFrame>("frameMultiLive");
        return stage.show<Dialog>(grid->shownCameras(), &stage.form());
    } else {
        return stage.show<Dialog>(&stage.form());
    }
}

template <typename Dialog>
Scene selection(const QString &name, int cameras, const QString &longName = {})
{
    return {QStringLiteral("dialogs"), name, Scene::Kind::Dialog,
            [=](Stage &stage) {
                stage.addCameras(cameras);
                if (!longName.isEmpty())
                    stage.addCamera(longName);
                for (int i = 0; i < cameras; i += 2)
                    stage.addThumbnail(i);
                stage.open();
                stage.click("frameButtons", "btnMultiLive"); // what the grid shows may record
                auto *dialog = showSelection<Dialog>(stage);
                int number = 0;
                for (auto *tile : dialog->template findChildren<CSelectCameraItemForm *>())
                    tile->setChecked(number++ % 3 != 1);
                return Subject{dialog, {}};
            }};
}

} // namespace

QVector<Scene> liveScenes()
{
    const QString longName =
        QStringLiteral("The camera above the door between the kitchen garden and the stables");
    return {
        page(QStringLiteral("single-connecting"),
             [](Stage &stage) {
                 stage.addCameras(1);
                 stage.open();
                 stage.form().playCamera(stage.camera(0));
             }),
        page(QStringLiteral("single-playing"), [](Stage &stage) { playOne(stage); }),
        page(QStringLiteral("single-full-hd"), [](Stage &stage) { playOne(stage, fullHd()); }),
        page(QStringLiteral("single-recording"),
             [](Stage &stage) {
                 playOne(stage);
                 stage.click("pagePlayCamera", "btnRecord");
             }),
        page(QStringLiteral("single-recording-failed"), failToRecord),
        toolTip(QStringLiteral("tip-recording-failed"), "labelRecording", failToRecord),
        page(QStringLiteral("single-no-picture"),
             [](Stage &stage) {
                 playOne(stage);
                 freeze(stage, 75'000);
             }),
        page(QStringLiteral("single-recording-waits"),
             [](Stage &stage) {
                 playOne(stage);
                 stage.click("pagePlayCamera", "btnRecord");
                 fake_cammgr::lastPlayer()->change(
                     [](auto &script) { script.writing = CAMMGR_WRITING_WAITS; });
                 stage.report();
             }),
        page(QStringLiteral("single-no-sound"),
             [](Stage &stage) {
                 fake_cammgr::Script script;
                 script.hasAudio = 0;
                 playOne(stage, script);
             }),
        toolTip(QStringLiteral("tip-figures"), "labelStatus",
                [](Stage &stage) {
                    playOne(stage, fullHd());
                    fake_cammgr::lastPlayer()->change(
                        [](auto &script) { script.figures = someFigures(); });
                    stage.report();
                }),
        toolTip(QStringLiteral("tip-reason"), "labelStatus",
                [](Stage &stage) {
                    fake_cammgr::Script script;
                    script.playPlays = false;
                    script.reason = CAMMGR_REASON_LOGIN_PAUSED;
                    script.reasonDetail = "1740";
                    playOne(stage, script);
                }),
        {QStringLiteral("dialogs"), QStringLiteral("single-menu"), Scene::Kind::Other,
         [](Stage &stage) {
             playOne(stage);
             return contextMenu(stage, "pagePlayCamera");
         }},
        {QStringLiteral("dialogs"), QStringLiteral("grid-menu"), Scene::Kind::Other,
         [](Stage &stage) {
             playGrid(stage, 1);
             return contextMenu(stage, "pageMultiLive");
         }},
        fullScreen(QStringLiteral("single-full-screen-recording"),
                   [](Stage &stage) { stage.click("pagePlayCamera", "btnRecord"); }),
        fullScreen(QStringLiteral("single-full-screen-late"),
                   [](Stage &stage) { freeze(stage, 3000); }),
        fullScreen(QStringLiteral("single-full-screen-no-picture"),
                   [](Stage &stage) {
                       stage.click("pagePlayCamera", "btnRecord");
                       freeze(stage, 75'000);
                   }),
        toolTip(QStringLiteral("tip-talk-failed"), "btnOutVolume",
                [](Stage &stage) {
                    playOne(stage, failing("AudioUpload_Play", CAMMGR_TALK_NO_MICROPHONE));
                    stage.click("pagePlayCamera", "btnOutVolume");
                }),
        page(QStringLiteral("single-muted-talking"),
             [](Stage &stage) {
                 playOne(stage);
                 stage.click("pagePlayCamera", "btnMute");
                 stage.click("pagePlayCamera", "btnOutVolume");
             }),
        page(QStringLiteral("single-zoomed"),
             [](Stage &stage) {
                 playOne(stage);
                 for (int i = 0; i < 3; ++i)
                     stage.click("pagePlayCamera", "btnZoomIn");
             }),
        {QStringLiteral("live"), QStringLiteral("single-full-screen"), Scene::Kind::Other,
         [](Stage &stage) {
             playOne(stage);
             auto *surface = stage.find<CVideoFrame>("frameVideoFrame");
             stage.click("pagePlayCamera", "btnFullScreen");
             stage.runStreams();
             Stage::paintOver(surface->renderSurface(), motif(0, {640, 360}));
             return Subject{surface, {}};
         }},
        page(QStringLiteral("grid-none"), [](Stage &stage) { playGrid(stage, 0); }),
        page(QStringLiteral("grid-one"), [](Stage &stage) { playGrid(stage, 1); }),
        page(QStringLiteral("grid-four"), [](Stage &stage) { playGrid(stage, 4); }),
        page(QStringLiteral("grid-many"), [](Stage &stage) { playGrid(stage, 36); }),
        page(QStringLiteral("grid-recording"),
             [](Stage &stage) {
                 playGrid(stage, 6);
                 recordGrid(stage);
             }),
        page(QStringLiteral("grid-recording-failed"),
             [](Stage &stage) {
                 fake_cammgr::setDefaults(failing("RtspPlayer_BeginWriting", -1));
                 playGrid(stage, 4);
                 recordGrid(stage);
             }),
        page(QStringLiteral("grid-no-picture"),
             [](Stage &stage) {
                 playGrid(stage, 6);
                 freeze(stage, 75'000);
             }),
        page(QStringLiteral("grid-no-picture-many"),
             [](Stage &stage) {
                 playGrid(stage, 36);
                 freeze(stage, 75'000);
             }),
        page(QStringLiteral("grid-connecting"),
             [](Stage &stage) {
                 stage.addCameras(3);
                 stage.addCamera(QStringLiteral("The camera above the door between the kitchen "
                                                "garden and the stables"));
                 stage.open();
                 stage.click("frameButtons", "btnMultiLive");
                 stage.click("pageMultiLive", "btnMute");
             }),
        selection<CSelectCameraForm>(QStringLiteral("select-none"), 0),
        selection<CSelectCameraForm>(QStringLiteral("select-four"), 3, longName),
        selection<CSelectCameraForm>(QStringLiteral("select-many"), 24),
        selection<CSelectCameraRecordingForm>(QStringLiteral("select-recording"), 5),
    };
}

} // namespace gallery
