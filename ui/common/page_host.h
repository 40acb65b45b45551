#pragma once

#include <QList>
#include <QString>

#include <optional>

class CCamera;
class CPhotoMgrItemForm;
class QWidget;

/// What a page needs of its window: to show another page, to show a text in its status row, and to
/// be the parent of its dialogs. The main window implements it; tests put a recorder in its place.
/// GUI thread only.
class PageHost
{
public:
    using TileList = QList<CPhotoMgrItemForm *>;

    virtual ~PageHost() = default;

    /// The window that dialogs are parented to; null in tests that have none.
    virtual QWidget *dialogParent() = 0;

    /// Lets the user pick a camera that was found on the network, in a dialog over parent.
    /// @return its UID; nullopt when the user cancelled
    virtual std::optional<QString> findCamera(QWidget *parent) = 0;
    /// The text in the status row, until another takes its place; empty for none.
    virtual void showStatus(const QString &text) = 0;

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
/// The window that a page parents its dialogs to: the host's, or the page's own without one.
QWidget *dialogParent(QWidget *page);
void setPageHost(PageHost *host);
