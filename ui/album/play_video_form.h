#pragma once

#include "ui/common/page_host.h"

#include <QTimer>
#include <QWidget>

#include <memory>

#include <phonon/phononnamespace.h>

class ClickVideoPlayer;

namespace Ui {
class CPlayVideoForm;
}
namespace zelvaro {
class AlbumView;
}

/// The page that plays one recording of the album, steps to its neighbours and deletes it.
/// GUI thread only.
class CPlayVideoForm : public QWidget
{
    Q_OBJECT

public:
    explicit CPlayVideoForm(QWidget *parent = nullptr);
    ~CPlayVideoForm() override;

    /// The album's own tile list; it outlives this page. The first call makes the player, which
    /// loads the media framework.
    void setList(PageHost::TileList *list);
    /// Plays it 100 ms later. After setList.
    void showVideo(CPhotoMgrItemForm *tile);
    /// Stops playback, also one that was about to start. clear: lets go of the file as well.
    void stop(bool clear);

    /// Null before the first setList.
    ClickVideoPlayer *player() const { return m_player; }
    int zoom() const;
    bool isVideoFullScreen() const;

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
    void slotStateChanged(Phonon::State newstate, Phonon::State oldstate);
    void slotPlay();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void makePlayer();
    void stopPlayer();
    void adoptVideoSize();
    void watchStart();
    void showPlaying(bool playing);
    void repaintPlayer();
    bool handleKey(int key);

    std::unique_ptr<Ui::CPlayVideoForm> m_ui;
    std::unique_ptr<zelvaro::AlbumView> m_view; // made after the widgets it shows itself in
    ClickVideoPlayer *m_player = nullptr;
    QTimer m_startTimer;
    QTimer m_watchTimer; // a recording that does not start raises no error
};
