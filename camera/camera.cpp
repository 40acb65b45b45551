#include "camera/camera.h"

#include "settings/camera_settings.h"

#include <QDir>
#include <QFileInfo>

CCamera::CCamera(QWidget *parent) : CCameraCore(parent)
{
    connect(&CameraSettings::instance(), &CameraSettings::albumPathChanged, this,
            &CCamera::signalThumbChanged);
}

QString CCamera::thumb_path() const
{
    return CameraSettings::instance().cameraFolder(hostname()) + QStringLiteral("/thumb.jpeg");
}

bool CCamera::has_thumb() const
{
    return QFileInfo::exists(thumb_path());
}

int CCamera::take_thumb()
{
    QDir().mkpath(CameraSettings::instance().cameraFolder(hostname()));
    snapshot(thumb_path());
    emit signalThumbChanged();
    return 1;
}
