#include "ui/live/select_camera_recording_form.h"

CSelectCameraRecordingFrame::CSelectCameraRecordingFrame(const QList<CCamera *> &shown,
                                                         QWidget *parent)
    : SelectionFrame(true, parent)
{
    fill(shown);
}

CSelectCameraRecordingForm::CSelectCameraRecordingForm(const QList<CCamera *> &shown,
                                                       QWidget *parent)
    : SelectionDialog(tr("Select Camera Recording"), new CSelectCameraRecordingFrame(shown), parent)
{
}

void CSelectCameraRecordingForm::Apply()
{
    frame()->applyMarks();
}
