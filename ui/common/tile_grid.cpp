#include "ui/common/tile_grid.h"

#include <QGridLayout>

#include <algorithm>

namespace zelvaro {

namespace {
constexpr int slackStretch = 10;
}

QGridLayout *makeTileLayout(QWidget *page, int spacing)
{
    auto *layout = new QGridLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

TileGrid::TileGrid(QGridLayout *layout) : m_layout(layout) {}

void TileGrid::place(const QWidgetList &tiles, int columns, int trailing)
{
    takeOut();
    columns = std::max(columns, 1);
    for (int i = 0; i < tiles.size(); ++i) {
        m_layout->addWidget(tiles.at(i), i / columns, i % columns, Qt::AlignLeft | Qt::AlignTop);
        m_placed.append(tiles.at(i));
    }
    m_slackColumn = columns;
    m_slackRow = (static_cast<int>(tiles.size()) - trailing) / columns + 1;
    m_layout->setColumnStretch(m_slackColumn, slackStretch);
    m_layout->setRowStretch(m_slackRow, slackStretch);
}

void TileGrid::takeOut()
{
    for (const QPointer<QWidget> &tile : qAsConst(m_placed))
        if (tile)
            m_layout->removeWidget(tile);
    m_placed.clear();
    // A column that took the slack of a narrower grid would tear a wider one apart.
    if (m_slackColumn >= 0)
        m_layout->setColumnStretch(m_slackColumn, 0);
    if (m_slackRow >= 0)
        m_layout->setRowStretch(m_slackRow, 0);
    m_slackColumn = m_slackRow = -1;
}

} // namespace zelvaro
