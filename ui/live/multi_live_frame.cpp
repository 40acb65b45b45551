#include "ui/live/multi_live_frame.h"

#include "camera/camera.h"
#include "camera/camera_list.h"
#include "settings/camera_record.h"
#include "ui/live/multi_live_item_form.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int spacing = 10;
// With the border of the well around the grid as wide as the spacing.
constexpr int margin = 4;
// What a tile leaves free of its cell, for the spacing and the margins of the grid.
constexpr int cellFreeWidth = 20;
constexpr int cellFreeHeight = 30;

} // namespace

CMultiLiveFrame::CMultiLiveFrame(QWidget *parent) : QWidget(parent)
{
    // The tiles have fixed sizes that follow the area; they must not keep it from getting smaller.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
}

CMultiLiveFrame::~CMultiLiveFrame()
{
    clear();
}

void CMultiLiveFrame::setClock(zelvaro::Clock clock)
{
    m_clock = std::move(clock);
}

void CMultiLiveFrame::load()
{
    CCameraList &cameras = CCameraList::instance();
    for (int i = 0; i < cameras.count(); ++i) {
        CCamera *camera = cameras.at(i);
        if (!camera)
            break;
        const CameraRecord *record = camera->get_info();
        if (!record || !record->multiLive)
            continue;
        auto *tile = new CMultiLiveItemForm(m_clock, this);
        tile->setCamera(camera);
        m_tiles.append(tile);
        connect(tile, &CMultiLiveItemForm::selectCamera, this, &CMultiLiveFrame::slotSelectCamera);
        connect(camera, &CCamera::signalStateReport, tile, [this, tile] {
            if (tile == m_selectedItem)
                emit heardChanged();
        });
    }
    for (CMultiLiveItemForm *tile : qAsConst(m_tiles)) {
        tile->start();
        tile->setVolume(0);
    }
    layOutGrid();
}

void CMultiLiveFrame::clear()
{
    m_layout.reset();
    for (CMultiLiveItemForm *tile : qAsConst(m_tiles))
        tile->stop();
    qDeleteAll(m_tiles);
    m_tiles.clear();
    m_selectedItem = nullptr;
    m_clickedItem = false;
    update();
}

void CMultiLiveFrame::setSound(bool muted, int volume)
{
    m_muted = muted;
    m_volume = volume;
    applySound();
}

QList<CCamera *> CMultiLiveFrame::shownCameras() const
{
    QList<CCamera *> cameras;
    for (const CMultiLiveItemForm *tile : m_tiles)
        if (CCamera *camera = tile->camera())
            cameras.append(camera);
    return cameras;
}

CMultiLiveItemForm *CMultiLiveFrame::focusedTile() const
{
    const QWidget *focused = QApplication::focusWidget();
    for (CMultiLiveItemForm *tile : m_tiles)
        if (tile == focused || tile->picture() == focused)
            return tile;
    return nullptr;
}

CMultiLiveItemForm *CMultiLiveFrame::currentTile() const
{
    CMultiLiveItemForm *focused = focusedTile();
    return focused ? focused : m_selectedItem;
}

CMultiLiveItemForm *CMultiLiveFrame::neighbour(int index, int key) const
{
    const int column = index % m_shape.columns;
    switch (key) {
    case Qt::Key_Left:
        return column > 0 ? m_tiles.at(index - 1) : nullptr;
    case Qt::Key_Right:
        return column + 1 < m_shape.columns ? m_tiles.value(index + 1) : nullptr;
    case Qt::Key_Up:
        return m_tiles.value(index - m_shape.columns);
    case Qt::Key_Down:
        return m_tiles.value(index + m_shape.columns);
    default:
        return nullptr;
    }
}

void CMultiLiveFrame::slotSelectCamera(CMultiLiveItemForm *tile)
{
    // The tile that is heard already stays heard, without a gap.
    if (tile != m_selectedItem)
        deselect();
    tile->setSelected(true);
    m_selectedItem = tile;
    applySound();
    m_clickedItem = true;
    emit heardChanged();
}

void CMultiLiveFrame::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    if (!m_tiles.isEmpty())
        return;
    QPainter painter(this);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap,
                     tr("No camera is selected for this view."));
}

void CMultiLiveFrame::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layOutGrid();
}

void CMultiLiveFrame::keyPressEvent(QKeyEvent *event)
{
    CMultiLiveItemForm *from = focusedTile();
    if (CMultiLiveItemForm *to = from ? neighbour(m_tiles.indexOf(from), event->key()) : nullptr)
        to->setFocus(Qt::TabFocusReason);
    else
        QWidget::keyPressEvent(event);
}

void CMultiLiveFrame::mousePressEvent(QMouseEvent *event)
{
    // A press on a tile comes by here after the tile has reported it.
    if (!childAt(event->pos()))
        m_clickedItem = false;
    QWidget::mousePressEvent(event);
}

void CMultiLiveFrame::mouseReleaseEvent(QMouseEvent *event)
{
    QWidget::mouseReleaseEvent(event);
    if (!m_clickedItem)
        deselect();
    m_clickedItem = false;
}

void CMultiLiveFrame::mouseDoubleClickEvent(QMouseEvent *)
{
    deselect();
}

void CMultiLiveFrame::layOutGrid()
{
    m_layout.reset();
    m_shape = zelvaro::gridShape(parentWidget() ? parentWidget()->size() : size(),
                                 static_cast<int>(m_tiles.size()));
    m_layout = std::make_unique<QGridLayout>(this);
    m_layout->setSpacing(spacing);
    m_layout->setContentsMargins(margin, margin, margin, margin);
    const QSize tileSize =
        QSize(m_shape.width - cellFreeWidth, m_shape.height - cellFreeHeight).expandedTo({0, 0});
    for (int i = 0; i < m_tiles.size(); ++i) {
        QWidget *tile = m_tiles.at(i);
        tile->setFixedSize(tileSize);
        m_layout->addWidget(tile, i / m_shape.columns, i % m_shape.columns + 1,
                            Qt::AlignLeft | Qt::AlignTop);
    }
    m_layout->setRowStretch(0, 1);
    m_layout->setRowStretch(m_shape.rows + 1, 1);
    m_layout->setColumnStretch(0, 1);
    m_layout->setColumnStretch(m_shape.columns + 1, 1);
}

void CMultiLiveFrame::deselect()
{
    if (!m_selectedItem)
        return;
    m_selectedItem->setVolume(0);
    m_selectedItem->setSelected(false);
    m_selectedItem = nullptr;
    emit heardChanged();
}

void CMultiLiveFrame::applySound()
{
    if (m_selectedItem)
        m_selectedItem->setVolume(m_muted ? 0 : m_volume);
}
