#include "ui/live/selection_frame.h"

#include "ui/live/select_camera_item_form.h"

#include <QGridLayout>

namespace zelvaro {

namespace {
constexpr int columns = 4;
constexpr int spacing = 10;
} // namespace

SelectionFrame::SelectionFrame(bool recordingMode, QWidget *parent)
    : QWidget(parent)
    , m_recordingMode(recordingMode)
    , m_grid(new QGridLayout(this))
{
    layout()->setSpacing(spacing);
}

void SelectionFrame::fill(const QList<CCamera *> &cameras)
{
    for (CCamera *camera : cameras) {
        auto *tile = new CSelectCameraItemForm(m_recordingMode, this);
        tile->setNear(false); // until it is known what can be seen
        tile->setCamera(camera);
        m_tiles.append(tile);
    }
    m_grid.place(asWidgets(m_tiles), columns);
}

void SelectionFrame::setVisibleRows(int top, int bottom)
{
    if (m_tiles.isEmpty())
        return;
    const NearRows nearRows(top, bottom, m_tiles.first()->minimumHeight() + spacing);
    for (int i = 0; i < m_tiles.size(); ++i)
        m_tiles.at(i)->setNear(nearRows.contains(i / columns));
}

void SelectionFrame::applyMarks() const
{
    for (const CSelectCameraItemForm *tile : m_tiles)
        tile->apply();
}

} // namespace zelvaro
