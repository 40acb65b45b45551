#include "ui/live/select_camera_recording_form.h"

#include "ui/live/shown_cameras.h"

CSelectCameraRecordingFrame::CSelectCameraRecordingFrame(QWidget *parent)
    : SelectionFrame(true, parent)
{
    fill(zelvaro::shownCameras());
}

CSelectCameraRecordingForm::CSelectCameraRecordingForm(QWidget *parent)
    : SelectionDialog(tr("Select Camera Recording"), new CSelectCameraRecordingFrame, parent)
{
}

void CSelectCameraRecordingForm::Apply()
{
    frame()->applyMarks();
}
