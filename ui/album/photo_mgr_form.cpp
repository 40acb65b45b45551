#include "ui/album/photo_mgr_form.h"

#include "camera/camera.h"
#include "camera/camera_list.h"
#include "settings/camera_settings.h"
#include "ui/common/camera_list_icons.h"
#include "ui_photo_mgr_form.h"

#include <QScrollBar>

CPhotoMgrForm::CPhotoMgrForm(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::CPhotoMgrForm>())
    , m_model(0, 1)
{
    m_ui->setupUi(this);
    m_ui->listCameraList->ensurePolished();
    m_ui->listCameraList->setModel(&m_model);
    connect(m_ui->listCameraList->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &CPhotoMgrForm::slotCameraItemChanged);
    connect(&CameraSettings::instance(), &CameraSettings::albumPathChanged, this,
            &CPhotoMgrForm::followAlbumPath);
}

CPhotoMgrForm::~CPhotoMgrForm() = default;

void CPhotoMgrForm::open(bool videoMode)
{
    const CCameraList &cameras = CCameraList::instance();
    for (int i = 0; i < cameras.count(); ++i) {
        CCamera *camera = cameras.at(i);
        if (!camera)
            break;
        m_model.appendRow(zelvaro::makeCameraListItem(camera->name(), QVariant::fromValue(camera)));
    }
    m_videoMode = videoMode;
    m_isOpen = true;
    m_ui->framePhotoMgr->setMode(videoMode);
    m_ui->labelMode->setText(m_videoMode ? tr("Videos") : tr("Photos"));
    m_ui->listCameraList->setCurrentIndex(m_model.index(0, 0));
    slotCameraItemChanged();
}

void CPhotoMgrForm::leave()
{
    m_isOpen = false;
    emptyGrid();
}

void CPhotoMgrForm::emptyGrid()
{
    m_ui->framePhotoMgr->setCamera(nullptr);
    m_ui->framePhotoMgr->refill();
}

// The tiles of a page that is not shown stay until it is: a viewer steps through them.
void CPhotoMgrForm::followAlbumPath()
{
    m_isStale = m_isOpen && !isVisible();
    if (m_isOpen && isVisible())
        slotCameraItemChanged();
}

void CPhotoMgrForm::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (m_isStale && m_isOpen)
        slotCameraItemChanged();
}

void CPhotoMgrForm::slotCameraItemChanged()
{
    m_isStale = false;
    emptyGrid();
    m_ui->scrollPhotoMgr->verticalScrollBar()->setValue(0);
    const QModelIndex current = m_ui->listCameraList->currentIndex();
    if (current.row() < 0)
        return;
    zelvaro::markCurrentCamera(m_model, current.row());
    m_ui->framePhotoMgr->setCamera(current.data(zelvaro::cameraListPointerRole).value<CCamera *>());
    m_ui->framePhotoMgr->refill();
}
