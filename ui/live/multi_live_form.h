#pragma once

#include "ui/common/album_files.h"

#include <QWidget>

#include <memory>

class CMultiLiveFrame;
class CMultiLiveItemForm;

namespace Ui {
class CMultiLiveForm;
}

namespace zelvaro {
class PageActions;
}

/// The page that shows the live pictures of all chosen cameras side by side, with one panel for
/// all of them. GUI thread only.
class CMultiLiveForm : public QWidget
{
    Q_OBJECT

public:
    /// clock: names photos and recordings.
    explicit CMultiLiveForm(QWidget *parent = nullptr, zelvaro::Clock clock = zelvaro::localTime);
    ~CMultiLiveForm() override;

    /// Fills the grid and starts all its streams. Call when the page is shown.
    void StartPlay();
    /// Stops all streams and empties the grid. Recordings end with their streams.
    void StopPlay();
    /// Whether the grid may be left or rebuilt. While it records the user has to confirm; the
    /// recordings are stopped when the user agrees.
    bool MayLeave();

public slots:
    void slotSelect();
    void slotSnapshot();
    void slotRecord();
    void slotMuteChanged(bool muted);
    void slotVolumeChanged(int volume);

private:
    void offerActions();
    void setRecordingAll(bool recording);
    void showRecordButton();
    void loadGrid();
    void orderTabs();
    void applySound();
    void showHeard();

    std::unique_ptr<Ui::CMultiLiveForm> m_ui;
    zelvaro::PageActions *m_actions;
    bool m_recordingAll = false;
};
