#include "ui/live/select_camera_form.h"

#include "camera/camera_list.h"
#include "settings/camera_settings.h"

namespace {

QList<CCamera *> registeredCameras()
{
    QList<CCamera *> cameras;
    const CCameraList &list = CCameraList::instance();
    for (int i = 0; i < list.count(); ++i) {
        CCamera *camera = list.at(i);
        if (!camera)
            break;
        cameras.append(camera);
    }
    return cameras;
}

} // namespace

CSelectCameraFrame::CSelectCameraFrame(QWidget *parent) : SelectionFrame(false, parent)
{
    fill(registeredCameras());
}

CSelectCameraForm::CSelectCameraForm(QWidget *parent)
    : SelectionDialog(tr("Select Camera"), new CSelectCameraFrame, parent)
{
}

void CSelectCameraForm::Apply()
{
    frame()->applyMarks();
    CameraSettings::instance().save();
}
