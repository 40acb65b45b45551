#pragma once

#include "app/edge_resize.h"
#include "app/status_row.h"
#include "app/tool_bar.h"
#include "app/window_place.h"
#include "ui/common/page_host.h"

#include <QWidget>

#include <memory>
#include <optional>

namespace Ui {
class CMainForm;
}

/// The program's one top-level window: frameless, with a title bar, a tool bar and the stack of
/// pages. Every page switch of the program goes through it. Built after the camera sessions and
/// destroyed before them. GUI thread only.
class CMainForm : public QWidget, public PageHost
{
    Q_OBJECT

public:
    /// The order of the pages in the stack.
    enum Page
    {
        PageCameraMgr,
        PagePlayCamera,
        PageMultiLive,
        PagePhotoMgr,
        PagePlayPhoto,
        PageVideoMgr,
        PagePlayVideo,
        PageSearchCameraList
    };

    explicit CMainForm(QWidget *parent = nullptr);
    ~CMainForm() override;

    /// Where the window is, or was before it was maximized.
    zelvaro::WindowPlace place() const;
    /// Takes a place of an earlier run, as far as the screens of today have it.
    void setPlace(const zelvaro::WindowPlace &place);

    QWidget *dialogParent() override { return this; }
    std::optional<QString> findCamera(QWidget *parent) override;
    void showStatus(const QString &text) override;
    void leavePages() override;
    void showCameraMgr() override;
    void showSearchCameraList() override;
    void playCamera(CCamera *camera) override;
    void showMultiLive() override;
    void showPhotoMgr() override;
    void backToPhotoMgr() override;
    void showPhoto(TileList *list, CPhotoMgrItemForm *current) override;
    void showVideoMgr() override;
    void backToVideoMgr() override;
    void playVideo(TileList *list, CPhotoMgrItemForm *current) override;

public slots:
    void slotMinimized();
    void slotMaximized();
    void slotClose();
    void slotCameraMgr();
    void slotMultiLive();
    void slotVideoMgr();
    void slotPhotoMgr();
    void slotSetUp();
    void slotSavePath();

protected:
    void closeEvent(QCloseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void buildSystemButtons();
    void buildToolBar();
    void trackEdges(QSize largest);
    void centreOnDesktop();

    void showPage(Page page);
    bool mayLeaveMultiLive();
    /// Why this folder cannot be the album; empty when it can.
    QString whyNotTheAlbum(const QString &folder) const;

    void showCompact(bool compact);

    std::unique_ptr<Ui::CMainForm> m_ui;
    std::optional<zelvaro::ToolBar> m_toolBar; // made when there are buttons
    zelvaro::StatusRow *m_statusRow;           // child of its label
    bool m_maximized = false;
    QRect m_normalGeometry;
    std::optional<zelvaro::EdgeResize> m_edges; // made when there are frames for the edges
};
