#pragma once

#include "ui/live/selection_dialog.h"
#include "ui/live/selection_frame.h"

/// The cameras that the grid of live pictures shows.
class CSelectCameraRecordingFrame : public zelvaro::SelectionFrame
{
    Q_OBJECT

public:
    explicit CSelectCameraRecordingFrame(const QList<CCamera *> &shown, QWidget *parent = nullptr);
};

/// "Select Camera Recording": which of the shown cameras record together. GUI thread only.
class CSelectCameraRecordingForm : public zelvaro::SelectionDialog
{
    Q_OBJECT

public:
    /// shown: the cameras of the grid, in the order of its tiles.
    explicit CSelectCameraRecordingForm(const QList<CCamera *> &shown, QWidget *parent = nullptr);

    /// Puts the marks into the records, for as long as the program runs. Call after the dialog was
    /// accepted.
    void Apply();
};
