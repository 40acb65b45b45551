#pragma once

#include "ui/common/page_host.h"

#include <QWidget>

#include <memory>

namespace Ui {
class CPlayPhotoForm;
}
namespace zelvaro {
class AlbumView;
}

/// The page that shows one photo of the album, steps to its neighbours and deletes it.
/// GUI thread only.
class CPlayPhotoForm : public QWidget
{
    Q_OBJECT

public:
    explicit CPlayPhotoForm(QWidget *parent = nullptr);
    ~CPlayPhotoForm() override;

    /// The album's own tile list; it outlives this page.
    void setList(PageHost::TileList *list);
    /// A file that is gone, empty or no picture is shown as a black one of size 0.
    void showPhoto(CPhotoMgrItemForm *tile);

    int zoom() const;
    bool isPhotoFullScreen() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    void slotPhotoAreaResize();
    void slotPrev();
    void slotNext();
    void slotZoomIn();
    void slotZoomOut();
    void slotDelete();
    void slotFullScreen();
    void slotPhotoDoubleClicked();
    void slotBack();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool handleKey(int key);

    std::unique_ptr<Ui::CPlayPhotoForm> m_ui;
    std::unique_ptr<zelvaro::AlbumView> m_view; // made after the widgets it shows itself in
};
