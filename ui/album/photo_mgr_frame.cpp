#include "ui/album/photo_mgr_frame.h"

#include "camera/camera.h"
#include "camera/developer_check.h"
#include "settings/camera_settings.h"
#include "ui/album/photo_mgr_item_form.h"
#include "ui/common/album_files.h"
#include "ui/common/message_box.h"
#include "ui/common/windowless.h"

#include <QDir>
#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int thumbInterval = 100; // milliseconds between two thumbnails
constexpr int loadInterval = 5;    // milliseconds for input between two pictures that come back
constexpr int spacing = 20;        // pixels between tiles
constexpr int columnWidth = 220;   // pixels that a column needs

} // namespace

CPhotoMgrFrame::CPhotoMgrFrame(QWidget *parent)
    : QWidget(parent)
    , m_grid(zelvaro::makeTileLayout(this, spacing))
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(thumbInterval);
    connect(&m_timer, &QTimer::timeout, this, &CPhotoMgrFrame::slotTimer);
    m_loadTimer.setSingleShot(true);
    m_loadTimer.setInterval(loadInterval);
    connect(&m_loadTimer, &QTimer::timeout, this, &CPhotoMgrFrame::loadDueThumbnail);
    followViewport();
}

void CPhotoMgrFrame::refill()
{
    dropTiles();
    update();
    m_timer.stop();
    if (!m_camera)
        return;
    const QDir folder(CameraSettings::instance().cameraFolder(m_camera->hostname()));
    const QStringList names =
        folder.entryList({QLatin1String(m_videoMode ? zelvaro::clipFilter : zelvaro::photoFilter)},
                         QDir::Files | QDir::NoSymLinks);
    const QString path = folder.absolutePath() + QLatin1Char('/');
    for (const QString &name : names)
        addTile(name, path);
    m_thumbIndex = 0;
    m_timer.start();
    layoutTiles(); // what is in sight comes first
}

// A tile may be the sender of the signal that brought us here, so it dies a little later.
void CPhotoMgrFrame::dropTiles()
{
    m_grid.takeOut();
    m_placedColumns = 0;
    for (CPhotoMgrItemForm *tile : qAsConst(m_tiles)) {
        tile->disconnect(this);
        tile->hide();
        tile->deleteLater();
    }
    m_tiles.clear();
}

void CPhotoMgrFrame::addTile(const QString &fileName, const QString &folder)
{
    auto *tile = new CPhotoMgrItemForm(this, CPhotoMgrItemForm::Content::WhenNear);
    tile->setItem(fileName, folder + fileName);
    connect(tile, &CPhotoMgrItemForm::deletePhoto, this, &CPhotoMgrFrame::slotDeletePhoto);
    connect(tile, &CPhotoMgrItemForm::playPhoto, this, &CPhotoMgrFrame::slotPlayPhoto);
    m_tiles.append(tile);
}

int CPhotoMgrFrame::columns() const
{
    const QWidget *seen = parentWidget() ? parentWidget() : this;
    return std::max(seen->width() / columnWidth, 1);
}

void CPhotoMgrFrame::layoutTiles()
{
    // Placing thousands of tiles again takes a while, and most resizes change nothing.
    if (m_placedColumns != columns() || m_grid.placed().size() != m_tiles.size()) {
        m_placedColumns = columns();
        m_grid.place(zelvaro::asWidgets(m_tiles), m_placedColumns);
    }
    showNearTiles();
}

void CPhotoMgrFrame::showNearTiles()
{
    if (!isVisible())
        return; // it comes back here when it is shown
    const zelvaro::Windowless tiles;
    constexpr int rowHeight = CPhotoMgrItemForm::tileHeight + spacing;
    const int top = parentWidget() ? -y() : 0;
    const int bottom = top + (parentWidget() ? parentWidget()->height() : height());
    const zelvaro::NearRows nearRows(top, bottom, rowHeight);
    int firstBare = -1;
    for (int i = 0; i < m_tiles.size(); ++i) {
        CPhotoMgrItemForm *tile = m_tiles.at(i);
        const int row = i / std::max(m_placedColumns, 1);
        const bool isNear = nearRows.contains(row);
        // The keyboard stays where it is when its tile scrolls out of sight.
        tile->setNear(isNear || tile->isAncestorOf(focusWidget()) || tile->hasFocus());
        if (isNear && firstBare < 0 && !tile->hasThumbnail())
            firstBare = i;
    }
    // What the user has scrolled to comes first.
    if (firstBare >= 0 && m_timer.isActive())
        m_thumbIndex = firstBare;
    if (!m_loadTimer.isActive())
        m_loadTimer.start();
}

void CPhotoMgrFrame::slotTimer()
{
    if (m_thumbIndex >= m_tiles.size())
        return;
    m_tiles.at(m_thumbIndex)->setThumbnail(m_videoMode);
    continueThumbnails();
    m_timer.start();
}

// On to the next tile without a picture; behind the last one, back to those that were skipped.
void CPhotoMgrFrame::continueThumbnails()
{
    const auto bare = [](const CPhotoMgrItemForm *tile) { return !tile->hasThumbnail(); };
    const int from = std::min(m_thumbIndex, static_cast<qint32>(m_tiles.size()));
    auto next = std::find_if(m_tiles.cbegin() + from, m_tiles.cend(), bare);
    if (next == m_tiles.cend())
        next = std::find_if(m_tiles.cbegin(), m_tiles.cend(), bare);
    m_thumbIndex = static_cast<qint32>(next - m_tiles.cbegin());
}

// One picture at a time: decoding those of a whole page at once would stop the scrolling.
void CPhotoMgrFrame::loadDueThumbnail()
{
    const auto due =
        std::find_if(m_tiles.cbegin(), m_tiles.cend(),
                     [](const CPhotoMgrItemForm *tile) { return tile->isThumbnailDue(); });
    if (due == m_tiles.cend())
        return;
    (*due)->loadThumbnail();
    m_loadTimer.start();
}

void CPhotoMgrFrame::slotDeletePhoto(CPhotoMgrItemForm *item)
{
    CMessageBox question(CMessageBox::Warning, tr("Warning"),
                         m_videoMode ? tr("Delete video?") : tr("Delete photo?"),
                         QMessageBox::Ok | QMessageBox::Cancel, dialogParent(this));
    const QPointer<CPhotoMgrItemForm> tile(item);
    if (question.exec() != QDialog::Accepted || !tile)
        return;
    const QString path = tile->fullPath();
    const int index = static_cast<int>(m_tiles.indexOf(tile));
    const bool hadFocus = tile->isAncestorOf(focusWidget()) || tile == focusWidget();
    m_tiles.removeAll(tile);
    tile->disconnect(this);
    tile->hide();
    tile->deleteLater();
    QFile::remove(path);
    if (m_videoMode)
        QFile::remove(zelvaro::clipStill(path));
    refill();
    if (hadFocus)
        focusTile(index);
}

// After a deletion by the keyboard the focus stays at that place.
void CPhotoMgrFrame::focusTile(int index)
{
    if (m_tiles.isEmpty())
        return;
    CPhotoMgrItemForm *tile = m_tiles.at(qBound(0, index, static_cast<int>(m_tiles.size()) - 1));
    {
        const zelvaro::Windowless content;
        tile->setNear(true);
    }
    tile->setFocus();
}

void CPhotoMgrFrame::slotPlayPhoto(CPhotoMgrItemForm *item)
{
    PageHost *host = pageHost();
    if (!ZELVARO_CHECK(pageHost(), "PhotoMgrFrame"))
        return;
    if (m_videoMode)
        host->playVideo(&m_tiles, item);
    else
        host->showPhoto(&m_tiles, item);
}

// --- what can be seen ----------------------------------------------------------------------------

void CPhotoMgrFrame::followViewport()
{
    if (m_viewport == parentWidget())
        return;
    if (m_viewport)
        m_viewport->removeEventFilter(this);
    m_viewport = parentWidget();
    if (!m_viewport)
        return;
    m_viewport->installEventFilter(this);
    // A folder of thousands is higher than a window may be.
    const zelvaro::Windowless frame;
    create();
}

bool CPhotoMgrFrame::event(QEvent *event)
{
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::ParentChange)
        followViewport();
    return handled;
}

// A viewport that narrows does not narrow this frame: it is as wide as its columns need.
bool CPhotoMgrFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_viewport && event->type() == QEvent::Resize)
        layoutTiles();
    return QWidget::eventFilter(watched, event);
}

void CPhotoMgrFrame::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    if (!m_camera || !m_tiles.isEmpty())
        return;
    QPainter painter(this);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap,
                     m_videoMode ? tr("This camera has no recordings yet.")
                                 : tr("This camera has no photos yet."));
}

void CPhotoMgrFrame::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutTiles();
}

void CPhotoMgrFrame::moveEvent(QMoveEvent *event)
{
    QWidget::moveEvent(event);
    showNearTiles();
}

// A viewer may have taken tiles out of the list while another page was shown.
void CPhotoMgrFrame::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    layoutTiles();
    continueThumbnails();
    if (m_thumbIndex < m_tiles.size() && !m_timer.isActive())
        m_timer.start();
}
