#pragma once

#include "ui/live/selection_dialog.h"
#include "ui/live/selection_frame.h"

/// All registered cameras.
class CSelectCameraFrame : public zelvaro::SelectionFrame
{
    Q_OBJECT

public:
    explicit CSelectCameraFrame(QWidget *parent = nullptr);
};

/// "Select Camera": which cameras the grid of live pictures shows. GUI thread only.
class CSelectCameraForm : public zelvaro::SelectionDialog
{
    Q_OBJECT

public:
    explicit CSelectCameraForm(QWidget *parent = nullptr);

    /// Puts the marks into the records and saves the settings. Call after the dialog was accepted.
    void Apply();
};
