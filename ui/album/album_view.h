#pragma once

#include "ui/common/page_host.h"
#include "ui/common/picture_box.h"

#include <QPointer>
#include <QSize>

class QLabel;

namespace zelvaro {

/// What photo viewer and video player have in common: the tiles of the album that they step
/// through, the picture's place on the page, and the status line. GUI thread only; list, tiles and
/// widgets are not owned.
class AlbumView
{
public:
    /// area, box, surface: as for PictureBox.
    AlbumView(QWidget *area, QWidget *box, QWidget *surface, QLabel *status);
    ~AlbumView();

    /// The album's own list; it outlives this.
    void setList(PageHost::TileList *list) { m_list = list; }
    /// Null before the first show, and when the album has dropped the tile.
    CPhotoMgrItemForm *current() const { return m_current; }
    /// The neighbours of the current tile; null at the ends, there is no wrap-around.
    CPhotoMgrItemForm *previous() const;
    CPhotoMgrItemForm *next() const;
    /// Takes the current tile out of the album's list and deletes its file and the tile. Nothing
    /// for a tile that is not in the list.
    /// @return the tile to show now; null when the list is empty
    CPhotoMgrItemForm *deleteCurrent();

    /// Makes the tile the current one, with a picture of that size (pixels) at its natural zoom.
    void show(CPhotoMgrItemForm *tile, QSize picture);
    /// The size turns out to be another; the zoom stays.
    void setPictureSize(QSize picture);
    /// What the status line says behind the size: why there is nothing to see. Empty for nothing.
    void setNote(const QString &note);

    void areaResized();
    void zoomIn();
    void zoomOut();
    void enterFullScreen();
    void leaveFullScreen();
    void toggleFullScreen();
    bool isFullScreen() const { return m_box.isFullScreen(); }
    int zoom() const { return m_box.zoom(); }
    QSize pictureSize() const { return m_picture; }

private:
    int currentIndex() const;
    void place();
    void showStatus();

    PictureBox m_box;
    QLabel *m_status;
    PageHost::TileList *m_list = nullptr;
    QPointer<CPhotoMgrItemForm> m_current;
    QSize m_picture;
    QString m_note;
};

} // namespace zelvaro
