#pragma once

#include "ui/common/tile_grid.h"
#include "ui/manager/still_fetcher.h"

#include <QList>
#include <QWidget>

class CAddButtonForm;
class CAddCameraForm;
class CCamera;
class CCameraMgrItemForm;

/// The grid of the camera page: one tile for each session, in the order of the camera list, and
/// the tile that adds one. Registers, changes and removes cameras and saves after each of them.
/// GUI thread only.
class CCameraMgrFrame : public QWidget
{
    Q_OBJECT

public:
    explicit CCameraMgrFrame(QWidget *parent = nullptr);

    /// Makes a tile for each session that there is. Call once.
    void fill();

    /// Flows the tiles into as many columns as fit into that width (pixels). A width under one
    /// tile leaves the arrangement as it is.
    void layoutTiles(int visibleWidth);
    /// Tells which rows can be seen (pixels from the top of this frame): only their tiles, and the
    /// rows next to them, are windows of the window system and hold pictures.
    void setVisibleRows(int top, int bottom);

    /// Whether the page is on the screen: then the pictures of the tiles in sight are kept fresh.
    void setShown(bool shown) { m_stills.setShown(shown); }

    const QList<CCameraMgrItemForm *> &tiles() const { return m_tiles; }

public slots:
    void slotAddButtonClicked();
    void slotDeleteCamera(CCameraMgrItemForm *item);
    void slotPlayCamera(CCameraMgrItemForm *item);
    void slotModifyCamera(CCameraMgrItemForm *item);
    void slotMotionCamera(CCameraMgrItemForm *item);
    void slotRebootCamera(CCameraMgrItemForm *item);

private:
    void addTile(CCamera *camera);
    void removeTile(CCameraMgrItemForm *item);
    /// Registers what the dialog holds and starts its session. Does nothing when the UID is taken.
    void registerCamera(const CAddCameraForm &dialog);
    /// Ends the session and forgets tile, session and record. The file is not saved.
    void takeDown(CCameraMgrItemForm *item);
    void layoutAgain();
    void showNearTiles();
    bool isNear(int index) const;

    zelvaro::TileGrid m_grid;
    QList<CCameraMgrItemForm *> m_tiles;
    CAddButtonForm *m_addButton;
    zelvaro::StillFetcher m_stills;
    int m_visibleWidth = 0;
    int m_columns = 1;
    int m_visibleTop = 0;
    int m_visibleBottom = -1; // nothing has been shown yet
};
