#pragma once

#include "ui/common/page_host.h"
#include "ui/common/tile_grid.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

class CCamera;

/// The grid of an album page: one tile for each photo, or each recording, of one camera, in the
/// order of the files. Stands in the viewport of a scroll area. Only the tiles near what can be
/// seen have child widgets and pictures, so that a folder of thousands costs little more than a
/// small one. GUI thread only.
class CPhotoMgrFrame : public QWidget
{
    Q_OBJECT

public:
    explicit CPhotoMgrFrame(QWidget *parent = nullptr);

    /// Session whose folder refill() reads, not owned; null for none.
    void setCamera(CCamera *camera) { m_camera = camera; }
    /// True for recordings, false for photos.
    void setMode(bool videoMode) { m_videoMode = videoMode; }
    /// Rebuilds the grid from the files in the folder. Safe in a slot of a tile's signal.
    void refill();

    /// The model of the page; the viewers step through it and take out what they delete.
    PageHost::TileList *tiles() { return &m_tiles; }
    const zelvaro::TileGrid &grid() const { return m_grid; }

public slots:
    void slotTimer();
    void slotDeletePhoto(CPhotoMgrItemForm *item);
    void slotPlayPhoto(CPhotoMgrItemForm *item);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void dropTiles();
    void addTile(const QString &fileName, const QString &folder);
    void layoutTiles();
    void followViewport();
    void showNearTiles();
    void continueThumbnails();
    void loadDueThumbnail();
    void focusTile(int index);
    int columns() const;

    zelvaro::TileGrid m_grid;
    PageHost::TileList m_tiles;
    CCamera *m_camera = nullptr;
    bool m_videoMode = false;
    QTimer m_timer;     // gives the tiles their pictures, one at a time
    QTimer m_loadTimer; // brings back the pictures of tiles that scrolled into sight
    qint32 m_thumbIndex = 0;
    QPointer<QWidget> m_viewport;
    int m_placedColumns = 0;
};
