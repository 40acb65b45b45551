#pragma once

#include "ui/common/page_host.h"

#include <QStringList>

/// Replaces the main window and records what the pages request.
class PageRecorder : public PageHost
{
public:
    PageRecorder() { setPageHost(this); }
    ~PageRecorder() override { setPageHost(nullptr); }

    QWidget *dialogParent() override { return parent; }
    std::optional<QString> findCamera(QWidget *over) override
    {
        ++searches;
        searchedOver = over;
        return found;
    }
    void showStatus(const QString &text) override { statuses << text; }
    void leavePages() override { pages << QStringLiteral("leave"); }
    void showCameraMgr() override { pages << QStringLiteral("manager"); }
    void showSearchCameraList() override { pages << QStringLiteral("search"); }
    void playCamera(CCamera *camera) override
    {
        pages << QStringLiteral("play");
        played = camera;
    }
    void showMultiLive() override { pages << QStringLiteral("multi"); }
    void showPhotoMgr() override { pages << QStringLiteral("photos"); }
    void backToPhotoMgr() override { pages << QStringLiteral("back to photos"); }
    void showPhoto(TileList *tiles, CPhotoMgrItemForm *tile) override
    {
        pages << QStringLiteral("photo");
        list = tiles;
        current = tile;
    }
    void showVideoMgr() override { pages << QStringLiteral("videos"); }
    void backToVideoMgr() override { pages << QStringLiteral("back to videos"); }
    void playVideo(TileList *tiles, CPhotoMgrItemForm *tile) override
    {
        pages << QStringLiteral("video");
        list = tiles;
        current = tile;
    }

    QWidget *parent = nullptr;
    std::optional<QString> found; ///< the UID that a search gives
    int searches = 0;
    QWidget *searchedOver = nullptr;      ///< the parent of the last search
    QStringList statuses;                 ///< of the status row, in order
    CCamera *played = nullptr;            ///< the last one
    QStringList pages;                    ///< in the order in which they were requested
    TileList *list = nullptr;             ///< of the last photo or recording
    CPhotoMgrItemForm *current = nullptr; ///< the last photo or recording
};
