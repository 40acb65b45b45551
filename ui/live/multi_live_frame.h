#pragma once

#include "ui/common/album_files.h"
#include "ui/live/multi_live_grid.h"

#include <QList>
#include <QWidget>

#include <memory>

class CCamera;
class CMultiLiveItemForm;
class QGridLayout;

/// The grid of live pictures. Only the selected tile is heard. GUI thread only.
class CMultiLiveFrame : public QWidget
{
    Q_OBJECT

public:
    explicit CMultiLiveFrame(QWidget *parent = nullptr);
    ~CMultiLiveFrame() override;

    /// Names photos and recordings of the tiles made from now on.
    void setClock(zelvaro::Clock clock);

    /// Makes and starts a tile for each camera that is to be shown here.
    void load();
    /// Stops and deletes all tiles.
    void clear();

    /// The panel's sound, given to the selected tile. volume 0 to 200.
    void setSound(bool muted, int volume);

    /// In the order of the camera list; owned by the frame.
    const QList<CMultiLiveItemForm *> &tiles() const { return m_tiles; }
    /// The cameras shown at the moment, in the order of the tiles; empty while the grid is not
    /// shown.
    QList<CCamera *> shownCameras() const;
    CMultiLiveItemForm *selectedTile() const { return m_selectedItem; }
    /// The tile with the keyboard focus, else the selected one; null for none.
    CMultiLiveItemForm *currentTile() const;
    const zelvaro::GridShape &shape() const { return m_shape; }

signals:
    /// Another tile is heard, or none, or the stream of the one that is has begun or ended.
    void heardChanged();

public slots:
    void slotSelectCamera(CMultiLiveItemForm *tile);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    CMultiLiveItemForm *focusedTile() const;
    /// From the tile at an index to the one that an arrow key leads to; null beyond the edges.
    CMultiLiveItemForm *neighbour(int index, int key) const;
    void layOutGrid();
    void deselect();
    void applySound();

    zelvaro::Clock m_clock = zelvaro::localTime;
    std::unique_ptr<QGridLayout> m_layout; // null while nothing is laid out
    QList<CMultiLiveItemForm *> m_tiles;
    CMultiLiveItemForm *m_selectedItem = nullptr;
    bool m_clickedItem = false; // a tile reported a press during this click
    bool m_muted = false;
    qint32 m_volume = 0;
    zelvaro::GridShape m_shape;
};
