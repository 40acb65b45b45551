#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>

class QGridLayout;

namespace zelvaro {

/// A page's grid layout for a TileGrid: no margins, spacing pixels between tiles. Owned by the
/// page.
QGridLayout *makeTileLayout(QWidget *page, int spacing);

/// Places tiles in a grid from the left and the top, and packs them there: the column and the row
/// behind them take the slack. Used by the pages whose tiles flow.
class TileGrid
{
public:
    /// layout: not owned, outlives this.
    explicit TileGrid(QGridLayout *layout);

    /// Empties the grid and places the tiles again: tile i at row i / columns, column i % columns.
    /// columns below 1 count as 1.
    /// @param trailing number of widgets at the end of tiles that are no items of the page (its add
    ///                 button); the row that takes the slack is counted without them
    void place(const QWidgetList &tiles, int columns, int trailing = 0);
    /// Takes out all tiles, without deleting them, and gives back the slack.
    void takeOut();

    /// The tiles in the grid, in order; null for one that was deleted meanwhile.
    const QList<QPointer<QWidget>> &placed() const { return m_placed; }

private:
    QGridLayout *m_layout;
    QList<QPointer<QWidget>> m_placed;
    int m_slackColumn = -1;
    int m_slackRow = -1;
};

/// The rows of a grid that can be seen and the one on either side, which the next scroll or the Tab
/// key finds: only their tiles need to hold pictures. The position of a row follows from its
/// number, because the layout moves the tiles later.
class NearRows
{
public:
    /// All in pixels: the visible part, from the top of the grid, and a row with its spacing.
    NearRows(int visibleTop, int visibleBottom, int rowHeight)
        : m_first(visibleTop / rowHeight - 1)
        , m_last(visibleBottom / rowHeight + 1)
    {
    }
    bool contains(int row) const { return m_first <= row && row <= m_last; }

private:
    int m_first;
    int m_last;
};

/// The tiles of a page as the widgets that a grid places.
template <typename Tile>
QWidgetList asWidgets(const QList<Tile *> &tiles)
{
    QWidgetList widgets;
    widgets.reserve(tiles.size());
    for (Tile *tile : tiles)
        widgets.append(tile);
    return widgets;
}

} // namespace zelvaro
