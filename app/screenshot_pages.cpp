#include "app/screenshot_pages.h"

#include "app/main_form.h"
#include "camera/camera.h"
#include "camera/camera_list.h"
#include "settings/camera_settings.h"
#include "ui/album/photo_mgr_item_form.h"
#include "ui/common/album_files.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>

#include <memory>

namespace zelvaro {

namespace {

constexpr int photos = 6;
constexpr int recordings = 3;
constexpr qint64 betweenPhotos = 1100; // milliseconds: their names tell seconds
constexpr qint64 recordingTime = 3000; // milliseconds
constexpr qint64 settled = 4000;       // milliseconds until a status line tells a whole second

using Steps = std::vector<ScreenshotStep>;

bool always()
{
    return true;
}

QWidget *pageOf(CMainForm &window, const char *name)
{
    return window.findChild<QWidget *>(QLatin1String(name));
}

std::function<void()> click(CMainForm &window, const char *page, const char *button)
{
    return [&window, page, button] {
        if (auto *found = pageOf(window, page)->findChild<QAbstractButton *>(QLatin1String(button)))
            found->click();
    };
}

std::function<bool()> after(qint64 milliseconds)
{
    return [milliseconds, timer = std::make_shared<QElapsedTimer>()] {
        if (!timer->isValid())
            timer->start();
        return timer->hasExpired(milliseconds);
    };
}

bool haveStills()
{
    if (!CCamera::canFetchStill())
        return true;
    const CCameraList &cameras = CCameraList::instance();
    for (int i = 0; i < cameras.count(); ++i)
        if (!cameras.at(i)->has_thumb())
            return false;
    return true;
}

/// Whether each status line below a picture tells its frame rate.
std::function<bool()> allPlay(CMainForm &window, const char *page)
{
    return [&window, page] {
        bool any = false;
        for (const auto *status :
             pageOf(window, page)->findChildren<QLabel *>(QStringLiteral("labelStatus"))) {
            const QString text = status->text();
            if (!text.contains(QLatin1String("FPS")) || text.contains(QLatin1String("  0FPS")))
                return false;
            any = true;
        }
        return any;
    };
}

/// Whether each tile of the album that is in sight has its picture.
std::function<bool()> albumIsShown(CMainForm &window, const char *page)
{
    return [&window, page] {
        bool any = false;
        for (const auto *tile : pageOf(window, page)->findChildren<CPhotoMgrItemForm *>()) {
            if (tile->isNear() && (!tile->hasThumbnail() || tile->isThumbnailDue()))
                return false;
            any = true;
        }
        return any;
    };
}

std::function<bool()> clipsAreWritten(int count)
{
    return [count] {
        const CameraSettings &settings = CameraSettings::instance();
        const QDir folder(settings.cameraFolder(settings.at(0)->hostname));
        return folder.entryList({QLatin1String(clipFilter)}, QDir::Files).size() >= count;
    };
}

Steps playFirst(CMainForm &window)
{
    return {{[&window] { window.playCamera(CCameraList::instance().at(0)); },
             allPlay(window, "pagePlayCamera")}};
}

Steps photoSteps(CMainForm &window)
{
    Steps steps = playFirst(window);
    for (int i = 0; i < photos; ++i)
        steps.push_back({click(window, "pagePlayCamera", "btnSnapshot"), after(betweenPhotos)});
    steps.push_back(
        {click(window, "frameButtons", "btnPhotoMgr"), albumIsShown(window, "pagePhotoMgr")});
    return steps;
}

Steps recordingSteps(CMainForm &window)
{
    Steps steps = playFirst(window);
    for (int i = 0; i < recordings; ++i) {
        steps.push_back({click(window, "pagePlayCamera", "btnRecord"), after(recordingTime)});
        steps.push_back({click(window, "pagePlayCamera", "btnRecord"), clipsAreWritten(i + 1)});
    }
    steps.push_back(
        {click(window, "frameButtons", "btnVideoMgr"), albumIsShown(window, "pageVideoMgr")});
    return steps;
}

Steps setUpSteps(CMainForm &window)
{
    return {{click(window, "frameButtons", "btnSetUp"), always},
            {click(window, "pageSearchCameraList", "btnSearch"),
             [&window] {
                 const auto *table =
                     pageOf(window, "pageSearchCameraList")->findChild<QAbstractItemView *>();
                 return table && table->model()->rowCount() > 0 &&
                        !QApplication::activeModalWidget();
             }}};
}

} // namespace

QStringList screenshotPages()
{
    return {QStringLiteral("manager"), QStringLiteral("single"), QStringLiteral("grid"),
            QStringLiteral("photos"),  QStringLiteral("videos"), QStringLiteral("setup")};
}

Steps screenshotSteps(CMainForm &window, const QString &page)
{
    Steps steps;
    switch (screenshotPages().indexOf(page)) {
    case 0:
        return {{[] {}, haveStills}};
    case 1:
        steps = playFirst(window);
        steps.push_back({[] {}, after(settled)});
        return steps;
    case 2:
        return {{click(window, "frameButtons", "btnMultiLive"), allPlay(window, "pageMultiLive")},
                {[] {}, after(settled)}};
    case 3:
        return photoSteps(window);
    case 4:
        return recordingSteps(window);
    case 5:
        return setUpSteps(window);
    default:
        return steps;
    }
}

} // namespace zelvaro
