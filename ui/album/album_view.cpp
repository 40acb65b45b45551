#include "ui/album/album_view.h"

#include "ui/album/photo_mgr_item_form.h"
#include "ui/common/status_text.h"

#include <QFile>
#include <QLabel>

namespace zelvaro {

AlbumView::AlbumView(QWidget *area, QWidget *box, QWidget *surface, QLabel *status)
    : m_box(area, box, surface)
    , m_status(status)
{
}

AlbumView::~AlbumView() = default;

int AlbumView::currentIndex() const
{
    return m_list && m_current ? static_cast<int>(m_list->indexOf(m_current)) : -1;
}

CPhotoMgrItemForm *AlbumView::previous() const
{
    const int index = currentIndex();
    return index > 0 ? m_list->at(index - 1) : nullptr;
}

CPhotoMgrItemForm *AlbumView::next() const
{
    const int index = currentIndex();
    return index >= 0 && index + 1 < m_list->size() ? m_list->at(index + 1) : nullptr;
}

CPhotoMgrItemForm *AlbumView::deleteCurrent()
{
    const int index = currentIndex();
    if (index >= 0) {
        CPhotoMgrItemForm *tile = m_list->takeAt(index);
        QFile::remove(tile->fullPath());
        tile->hide();
        tile->deleteLater();
        m_current.clear();
    }
    if (!m_list || m_list->isEmpty())
        return nullptr;
    return m_list->at(qBound(0, index, static_cast<int>(m_list->size()) - 1));
}

void AlbumView::show(CPhotoMgrItemForm *tile, QSize picture)
{
    m_current = tile;
    m_picture = picture;
    m_note.clear();
    m_box.resetZoom();
    place();
}

void AlbumView::setPictureSize(QSize picture)
{
    m_picture = picture;
    place();
}

void AlbumView::setNote(const QString &note)
{
    m_note = note;
    showStatus();
}

void AlbumView::areaResized()
{
    m_box.resetZoom();
    place();
}

void AlbumView::zoomIn()
{
    m_box.zoomIn();
    place();
}

void AlbumView::zoomOut()
{
    m_box.zoomOut();
    place();
}

void AlbumView::enterFullScreen()
{
    m_box.enterFullScreen();
    showStatus();
}

void AlbumView::leaveFullScreen()
{
    m_box.leaveFullScreen();
    showStatus();
}

void AlbumView::toggleFullScreen()
{
    m_box.toggleFullScreen();
    showStatus();
}

void AlbumView::place()
{
    m_box.calculate(m_picture);
    m_box.position();
    showStatus();
}

void AlbumView::showStatus()
{
    if (!m_current) {
        m_status->clear();
        return;
    }
    QString text = m_current->fileName() + QLatin1String(StatusGap) +
                   scaledSizeText(m_picture, m_box.layout().videoRect.width());
    if (!m_note.isEmpty())
        text += QLatin1String(StatusGap) + m_note;
    m_status->setText(text);
}

} // namespace zelvaro
