#pragma once

#include "ui/common/page_host.h"
#include "ui/common/picture_box.h"

#include <QPointer>
#include <QSize>
#include <QWidget>

#include <memory>

class CVideoAreaFrame;
class QKeyEvent;
class QLabel;
class QToolButton;

namespace zelvaro {

class PageActions;

/// What photo viewer and video player have in common: a page that shows one file of the album,
/// steps through the album's tiles with buttons and keys, places the picture, takes it to the full
/// screen, shows its size in the status line and deletes the file. GUI thread only; list, tiles and
/// widgets are not owned.
class AlbumView : public QWidget
{
    Q_OBJECT

public:
    explicit AlbumView(QWidget *parent = nullptr);
    ~AlbumView() override;

    /// The album's own list; it outlives this page.
    virtual void setList(PageHost::TileList *list) { m_list = list; }
    /// Percent of the picture's own size.
    int zoom() const { return m_box->zoom(); }
    bool isPictureFullScreen() const { return m_box->isFullScreen(); }

    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    void slotPhotoAreaResize();
    /// Previous and next do nothing at the ends: there is no wrap-around.
    void slotPrev();
    void slotNext();
    void slotZoomIn();
    void slotZoomOut();
    /// Does not ask the user. Shows the next file; after the last one returns to the album. A file
    /// that cannot be deleted stays, and a message says so. Nothing for a tile that is not in the
    /// list.
    void slotDelete();
    /// Enters the full screen, never leaves it.
    void slotFullScreen();
    void slotPhotoDoubleClicked();
    void slotBack();

protected:
    struct Widgets
    {
        CVideoAreaFrame *area; ///< area, box and surface: as for PictureBox
        QWidget *box;
        QWidget *surface;
        QLabel *status;
        QToolButton *previous, *next, *zoomIn, *zoomOut, *remove, *fullScreen, *back;
    };
    /// The widgets of a page's form: the forms of both pages name them alike.
    template <typename Form>
    static Widgets widgetsOf(const Form &form, QWidget *surface)
    {
        return {form.framePhotoArea, form.framePhotoWindow, surface,        form.labelStatus,
                form.btnPrev,        form.btnNext,          form.btnZoomIn, form.btnZoomOut,
                form.btnDelete,      form.btnFullScreen,    form.btnBack};
    }
    /// Called once, when the page has made its form.
    void setUp(const Widgets &widgets);

    /// Keys and context menu of the page; after setUp().
    PageActions &actions() { return *m_actions; }

    /// Null before the first show, and when the album has dropped the tile.
    CPhotoMgrItemForm *current() const;
    /// Makes the tile the current one, with a picture of that size (pixels) at its natural zoom.
    void setCurrent(CPhotoMgrItemForm *tile, QSize picture);
    /// The size turns out to be another; the zoom stays.
    void setPictureSize(QSize picture);
    QSize pictureSize() const { return m_picture; }
    /// Text after the size in the status line: why there is no picture. May be empty.
    void setNote(const QString &note);
    void leaveFullScreen();

    virtual void showTile(CPhotoMgrItemForm *tile) = 0;
    /// Lets go of the file: some systems do not delete one that is open.
    virtual void closeFile() {}
    /// The page is about to be left for the album.
    virtual void leave() = 0;
    virtual void backToAlbum(PageHost &host) = 0;
    /// The picture has moved on the page or changed its size.
    virtual void pictureMoved() {}
    /// A key without modifiers. repeated: it is being held down.
    /// @return whether the key means something here
    virtual bool handlePlainKey(int key, bool repeated);

    void keyPressEvent(QKeyEvent *event) override;

private:
    bool handleKey(const QKeyEvent &event);
    int currentIndex() const;
    void tellNotDeleted(const QString &fileName);
    void place();
    void moved();
    void showStatus();

    void offerActions(const Widgets &widgets);

    std::unique_ptr<PictureBox> m_box; // made after the widgets that it places
    PageActions *m_actions = nullptr;
    QWidget *m_surface = nullptr;
    QLabel *m_status = nullptr;
    PageHost::TileList *m_list = nullptr;
    QPointer<CPhotoMgrItemForm> m_current;
    QSize m_picture;
    QString m_note;
};

} // namespace zelvaro
