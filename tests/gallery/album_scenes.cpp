#include "app/main_form.h"
#include "tests/gallery/motif.h"
#include "tests/gallery/stage.h"
#include "ui/album/click_video_player.h"
#include "ui/album/photo_mgr_frame.h"
#include "ui/album/photo_mgr_item_form.h"
#include "ui/album/play_photo_form.h"
#include "ui/album/play_video_form.h"

#include <QLabel>

namespace gallery {

namespace {

Scene page(const QString &name, std::function<Subject(Stage &)> build)
{
    return {QStringLiteral("album"), name, Scene::Kind::Page, std::move(build)};
}

PageHost::TileList &tiles(Stage &stage, const char *album)
{
    return *stage.find<QWidget>(album)->findChild<CPhotoMgrFrame *>()->tiles();
}

/// Every tile in sight has its picture.
bool thumbnailsShown(Stage &stage, const char *album)
{
    for (const CPhotoMgrItemForm *tile : tiles(stage, album))
        if (tile->isNear() && (!tile->hasThumbnail() || tile->isThumbnailDue()))
            return false;
    return true;
}

Subject openAlbum(Stage &stage, const char *button, const char *album)
{
    stage.open();
    stage.connectAll();
    stage.click("frameButtons", button);
    return {&stage.form(), [&stage, album] { return thumbnailsShown(stage, album); }};
}

Subject openPhotos(Stage &stage)
{
    return openAlbum(stage, "btnPhotoMgr", "pagePhotoMgr");
}

Subject openVideos(Stage &stage)
{
    return openAlbum(stage, "btnVideoMgr", "pageVideoMgr");
}

CPlayPhotoForm *openPhoto(Stage &stage)
{
    stage.addCameras(3);
    stage.addPhotos(0, 3);
    openPhotos(stage);
    stage.form().showPhoto(&tiles(stage, "pagePhotoMgr"), tiles(stage, "pagePhotoMgr").at(1));
    return stage.find<CPlayPhotoForm>("pagePlayPhoto");
}

CPlayVideoForm *openVideo(Stage &stage)
{
    stage.addCameras(3);
    stage.addClips(0, 2);
    openVideos(stage);
    stage.form().playVideo(&tiles(stage, "pageVideoMgr"), tiles(stage, "pageVideoMgr").at(0));
    return stage.find<CPlayVideoForm>("pagePlayVideo");
}

/// A picture in the place of what the player would show.
void showStill(Stage &stage, CPlayVideoForm &page, int number)
{
    page.stop(false);
    page.player()->hide();
    Stage::paintOver(stage.find<QWidget>("framePlayer"), motif(number, {640, 480}));
}

} // namespace

QVector<Scene> albumScenes()
{
    return {
        page(
            QStringLiteral("photos-no-camera"), [](Stage &stage) { return openPhotos(stage); }),
        page(
            QStringLiteral("photos-none"),
            [](Stage &stage) {
                stage.addCameras(2);
                return openPhotos(stage);
            }),
        page(
            QStringLiteral("photos-one"),
            [](Stage &stage) {
                stage.addCameras(3);
                stage.addPhotos(0, 1);
                return openPhotos(stage);
            }),
        page(
            QStringLiteral("photos-many"),
            [](Stage &stage) {
                stage.addCamera(QStringLiteral("The camera above the door of the stables"));
                stage.addCameras(30);
                stage.addPhotos(0, 40);
                return openPhotos(stage);
            }),
        page(
            QStringLiteral("videos-many"),
            [](Stage &stage) {
                stage.addCameras(4);
                stage.addClips(0, 7);
                return openVideos(stage);
            }),
        page(
            QStringLiteral("photo"),
            [](Stage &stage) {
                openPhoto(stage);
                return Subject{&stage.form(), {}};
            }),
        page(
            QStringLiteral("photo-zoomed"),
            [](Stage &stage) {
                CPlayPhotoForm *viewer = openPhoto(stage);
                for (int i = 0; i < 4; ++i)
                    viewer->slotZoomIn();
                return Subject{&stage.form(), {}};
            }),
        {QStringLiteral("album"), QStringLiteral("photo-full-screen"), Scene::Kind::Other,
         [](Stage &stage) {
             CPlayPhotoForm *viewer = openPhoto(stage);
             auto *photo = stage.find<QWidget>("framePhoto");
             viewer->slotFullScreen();
             return Subject{photo, {}};
         }},
        page(
            QStringLiteral("video-paused"),
            [](Stage &stage) {
                CPlayVideoForm *player = openVideo(stage);
                showStill(stage, *player, 1);
                return Subject{&stage.form(), {}};
            }),
        page(
            QStringLiteral("video-playing"),
            [](Stage &stage) {
                CPlayVideoForm *player = openVideo(stage);
                showStill(stage, *player, 2);
                player->slotStateChanged(Phonon::PlayingState, Phonon::BufferingState);
                emit player->player()->timeChanged(7000, 83000);
                return Subject{&stage.form(), {}};
            }),
        page(
            QStringLiteral("video-error"),
            [](Stage &stage) {
                CPlayVideoForm *player = openVideo(stage);
                auto *status = player->findChild<QLabel *>(QStringLiteral("labelStatus"));
                return Subject{&stage.form(),
                               [status] {
                                   return status->text().contains(
                                       CPlayVideoForm::tr("This recording cannot be played."));
                               }};
            }),
    };
}

} // namespace gallery
