#pragma once

#include "ui/common/tile_grid.h"

#include <QList>
#include <QWidget>

class CCamera;
class CSelectCameraItemForm;

namespace zelvaro {

/// The grid of a dialog that chooses cameras: four tiles in a row. GUI thread only.
class SelectionFrame : public QWidget
{
    Q_OBJECT

public:
    /// recordingMode: of the tiles.
    SelectionFrame(bool recordingMode, QWidget *parent);

    /// Makes a tile for each camera, in that order. Once.
    void fill(const QList<CCamera *> &cameras);
    /// The visible part of this frame, in pixels from its top: only tiles in it and next to it hold
    /// pictures.
    void setVisibleRows(int top, int bottom);
    /// Puts all marks into the records.
    void applyMarks() const;

    const QList<CSelectCameraItemForm *> &tiles() const { return m_tiles; }

private:
    const bool m_recordingMode;
    TileGrid m_grid;
    QList<CSelectCameraItemForm *> m_tiles;
};

} // namespace zelvaro
