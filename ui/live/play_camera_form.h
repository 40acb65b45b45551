#pragma once

#include "ui/live/live_view.h"

#include <QWidget>

#include <memory>

namespace Ui {
class CPlayCameraForm;
}

/// The page that shows one camera's live stream large, with its control panel. GUI thread only.
class CPlayCameraForm : public QWidget
{
    Q_OBJECT

public:
    /// clock: names photos and recordings.
    explicit CPlayCameraForm(QWidget *parent = nullptr, zelvaro::Clock clock = zelvaro::localTime);
    ~CPlayCameraForm() override;

    /// The session to show, not owned; null for none.
    void SetCamera(CCamera *camera);
    /// Starts the stream of the camera; does nothing without one.
    void StartPlay();
    bool IsPlaying() const;
    /// Stops recording, talk-back and stream and forgets the camera; does nothing without one. The
    /// session continues.
    void StopPlay();

public slots:
    void slotVideoAreaResize();
    void slotCameraStatusChanged();
    void slotTimer();
    void slotSnapshot();
    void slotRecord();
    void slotZoomIn();
    void slotZoomOut();
    void slotFullScreen();
    void slotVideoDoubleClicked();
    void slotMuteChanged(bool muted);
    void slotVolumeChanged(int volume);
    void slotBack();
    void slotOvolumeClicked();

private:
    void offerActions();
    int volume() const;
    void showHeard();
    void setRecording(bool recording);
    void setTalking(bool talking);
    void startTalking();
    void showTalkTip(const QString &trouble);

    std::unique_ptr<Ui::CPlayCameraForm> m_ui;
    std::unique_ptr<zelvaro::LiveView> m_live; // made after the widgets it shows itself in
    bool m_talking = false;
    QString m_talkTip; // of the button while nothing is wrong
};
