#pragma once

#include <QList>

class CCamera;
class CPhotoMgrItemForm;
class QWidget;

/// What a page asks of the window it stands in: to show another page, and to be the parent of its
/// dialogs. The main window implements it; tests put a recorder in its place. GUI thread only.
class PageHost
{
public:
    using TileList = QList<CPhotoMgrItemForm *>;

    virtual ~PageHost() = default;

    /// The window that dialogs are parented to; null in tests that have none.
    virtual QWidget *dialogParent() = 0;

    virtual void leavePages() = 0;
    virtual void showCameraMgr() = 0;
    virtual void showSearchCameraList() = 0;
    virtual void playCamera(CCamera *camera) = 0;
    virtual void showMultiLive() = 0;
    virtual void showPhotoMgr() = 0;
    virtual void backToPhotoMgr() = 0;
    virtual void showPhoto(TileList *list, CPhotoMgrItemForm *current) = 0;
    virtual void showVideoMgr() = 0;
    virtual void backToVideoMgr() = 0;
    virtual void playVideo(TileList *list, CPhotoMgrItemForm *current) = 0;
};

/// The process-wide host: null until the main window is built and after it is destroyed.
PageHost *pageHost();
void setPageHost(PageHost *host);
