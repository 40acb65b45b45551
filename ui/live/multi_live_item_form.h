#pragma once

#include "ui/live/live_view.h"

#include <QWidget>

#include <memory>

namespace Ui {
class CMultiLiveItemForm;
}

/// One tile of the grid of live pictures: a small live view of one camera. GUI thread only.
class CMultiLiveItemForm : public QWidget
{
    Q_OBJECT

public:
    CMultiLiveItemForm(zelvaro::Clock clock, QWidget *parent);
    ~CMultiLiveItemForm() override;

    /// The session to show, not owned.
    void setCamera(CCamera *camera);
    CCamera *camera() const;

    /// Starts the sub stream.
    void start();
    /// Stops the stream and forgets the camera; the session continues.
    void stop();

    /// 0 to 200.
    void setVolume(int volume);
    /// Whether this is the tile that is heard: shows it by the frame.
    void setSelected(bool selected);
    void setRecording(bool recording);
    /// Saves a photo in the album; does nothing unless it plays.
    void takePhoto();
    /// The status line and all that is known beyond it.
    QString details() const { return m_live->details(); }
    /// Does nothing when its picture is in full screen already.
    void enterFullScreen();
    /// The picture: a window of its own while it is in full screen. Also the last of the tile's
    /// widgets that the Tab key reaches.
    QWidget *picture() const;

signals:
    void selectCamera(CMultiLiveItemForm *tile);

public slots:
    void slotCameraStatusChanged();
    void slotTimer();
    void slotVideoDoubleClicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    std::unique_ptr<Ui::CMultiLiveItemForm> m_ui;
    std::unique_ptr<zelvaro::LiveView> m_live; // made after the widgets it shows itself in
    qint32 m_volume = 0;                       // last given to the session
};
