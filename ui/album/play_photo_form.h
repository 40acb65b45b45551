#pragma once

#include "ui/album/album_view.h"

namespace Ui {
class CPlayPhotoForm;
}

/// The page that shows one photo of the album, steps to its neighbours and deletes it.
/// GUI thread only.
class CPlayPhotoForm : public zelvaro::AlbumView
{
    Q_OBJECT

public:
    explicit CPlayPhotoForm(QWidget *parent = nullptr);
    ~CPlayPhotoForm() override;

    /// A file that is missing, empty or not an image is shown as a black one of size 0.
    void showPhoto(CPhotoMgrItemForm *tile);

protected:
    void showTile(CPhotoMgrItemForm *tile) override { showPhoto(tile); }
    void leave() override;
    void backToAlbum(PageHost &host) override { host.backToPhotoMgr(); }
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void showPicture();

    std::unique_ptr<Ui::CPlayPhotoForm> m_ui;
    bool m_holdsPicture = false;
};
