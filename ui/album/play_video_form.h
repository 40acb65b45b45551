#pragma once

#include "ui/album/album_view.h"

#include <QTimer>

#include <phonon/phononnamespace.h>

class ClickVideoPlayer;

namespace Ui {
class CPlayVideoForm;
}

/// The page that plays one recording of the album, steps to its neighbours and deletes it.
/// GUI thread only.
class CPlayVideoForm : public zelvaro::AlbumView
{
    Q_OBJECT

public:
    explicit CPlayVideoForm(QWidget *parent = nullptr);
    ~CPlayVideoForm() override;

    /// The first call makes the player, which loads the media framework.
    void setList(PageHost::TileList *list) override;
    /// Plays it 100 ms later. After setList.
    void showVideo(CPhotoMgrItemForm *tile);
    /// Stops playback, also one that was about to start. clear: lets go of the file as well.
    void stop(bool clear);

    /// Null before the first setList.
    ClickVideoPlayer *player() const { return m_player; }

public slots:
    void slotStateChanged(Phonon::State newstate, Phonon::State oldstate);
    void slotPlay();

protected:
    void showTile(CPhotoMgrItemForm *tile) override { showVideo(tile); }
    void closeFile() override;
    void leave() override;
    void backToAlbum(PageHost &host) override { host.backToVideoMgr(); }
    void pictureMoved() override;
    bool handlePlainKey(int key, bool repeated) override;

private:
    void makePlayer();
    void stopPlayer();
    void adoptVideoSize();
    void watchStart();
    void showPlaying(bool playing);
    void applyVolume();
    void showTime(qint64 elapsed, qint64 total);

    std::unique_ptr<Ui::CPlayVideoForm> m_ui;
    ClickVideoPlayer *m_player = nullptr;
    QTimer m_startTimer;
    QTimer m_watchTimer; // a recording that does not start raises no error
};
