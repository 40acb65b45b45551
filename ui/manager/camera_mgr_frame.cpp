#include "ui/manager/camera_mgr_frame.h"

#include "camera/camera.h"
#include "camera/camera_list.h"
#include "camera/command_channel.h"
#include "camera/developer_check.h"
#include "settings/camera_settings.h"
#include "ui/common/command_wait.h"
#include "ui/common/message_box.h"
#include "ui/common/page_host.h"
#include "ui/manager/add_button_form.h"
#include "ui/manager/add_camera_form.h"
#include "ui/manager/camera_mgr_item_form.h"
#include "ui/manager/motion_dialog.h"

namespace {

constexpr int mostCameras = 100;
constexpr int spacing = 20; // pixels between tiles

} // namespace

CCameraMgrFrame::CCameraMgrFrame(QWidget *parent)
    : QWidget(parent)
    , m_grid(zelvaro::makeTileLayout(this, spacing))
    , m_addButton(new CAddButtonForm(this))
{
    connect(m_addButton, &CAddButtonForm::clicked, this, &CCameraMgrFrame::slotAddButtonClicked);
    m_visibleWidth = m_addButton->minimumWidth();
    layoutAgain();
}

void CCameraMgrFrame::fill()
{
    const CCameraList &cameras = CCameraList::instance();
    for (int i = 0; i < cameras.count(); ++i)
        addTile(cameras.at(i));
    layoutAgain();
}

void CCameraMgrFrame::layoutTiles(int visibleWidth)
{
    m_visibleWidth = visibleWidth;
    const int tileWidth = m_addButton->minimumWidth();
    if (tileWidth <= visibleWidth)
        m_columns = qMax(1, (visibleWidth + 1) / (tileWidth + spacing + 1));
    QWidgetList widgets = zelvaro::asWidgets(m_tiles);
    widgets.append(m_addButton);
    m_grid.place(widgets, m_columns, 1);
    showNearTiles();
}

void CCameraMgrFrame::setVisibleRows(int top, int bottom)
{
    m_visibleTop = top;
    m_visibleBottom = bottom;
    showNearTiles();
}

void CCameraMgrFrame::layoutAgain()
{
    layoutTiles(m_visibleWidth);
}

void CCameraMgrFrame::showNearTiles()
{
    QList<CCamera *> nearCameras;
    for (int i = 0; i < m_tiles.size(); ++i) {
        m_tiles.at(i)->setNear(isNear(i));
        if (isNear(i))
            nearCameras.append(m_tiles.at(i)->camera());
    }
    m_stills.setCameras(nearCameras);
}

bool CCameraMgrFrame::isNear(int index) const
{
    if (m_visibleBottom < m_visibleTop)
        return true;
    const int rowHeight = m_addButton->minimumHeight() + spacing;
    return zelvaro::NearRows(m_visibleTop, m_visibleBottom, rowHeight).contains(index / m_columns);
}

void CCameraMgrFrame::addTile(CCamera *camera)
{
    auto *tile = new CCameraMgrItemForm(this);
    tile->setNear(isNear(m_tiles.size())); // before a picture is decoded for it
    tile->setCamera(camera);
    connect(tile, &CCameraMgrItemForm::deleteCamera, this, &CCameraMgrFrame::slotDeleteCamera);
    connect(tile, &CCameraMgrItemForm::playCamera, this, &CCameraMgrFrame::slotPlayCamera);
    connect(tile, &CCameraMgrItemForm::modifyCamera, this, &CCameraMgrFrame::slotModifyCamera);
    connect(tile, &CCameraMgrItemForm::motionCamera, this, &CCameraMgrFrame::slotMotionCamera);
    connect(tile, &CCameraMgrItemForm::rebootCamera, this, &CCameraMgrFrame::slotRebootCamera);
    m_tiles.append(tile);
    setTabOrder(tile->lastInTabOrder(), m_addButton);
}

// The tile may be the sender of the signal that removes it, so it is deleted later.
void CCameraMgrFrame::removeTile(CCameraMgrItemForm *item)
{
    m_tiles.removeOne(item);
    item->setCamera(nullptr);
    item->hide();
    item->deleteLater();
}

void CCameraMgrFrame::registerCamera(const CAddCameraForm &dialog)
{
    CameraSettings &settings = CameraSettings::instance();
    CameraRecord *record = settings.addRecord(CAMERA_TYPE_P2P, dialog.uid(), dialog.username(),
                                              dialog.password(), dialog.cameraName(), false);
    if (!record)
        return;
    settings.save();

    CCameraList &cameras = CCameraList::instance();
    CCamera *camera = cameras.create();
    camera->set_info(record);
    if (camera->create() < 0)
        cameras.remove(camera);
    else
        addTile(camera);
    layoutAgain();
}

void CCameraMgrFrame::takeDown(CCameraMgrItemForm *item)
{
    CCamera *camera = item->camera();
    CameraRecord *record = camera->get_info();
    camera->stop();
    camera->wait_stopped();
    removeTile(item);
    CCameraList::instance().remove(camera);
    CameraSettings::instance().removeRecord(record);
}

void CCameraMgrFrame::slotAddButtonClicked()
{
    if (CameraSettings::instance().count() >= mostCameras) {
        CMessageBox(CMessageBox::Error, tr("Error"), tr("Cannot add camera, 100 is maxnum."),
                    QMessageBox::Ok, dialogParent(this))
            .exec();
        return;
    }
    CAddCameraForm dialog(dialogParent(this), nullptr);
    if (dialog.exec() == QDialog::Accepted)
        registerCamera(dialog);
}

void CCameraMgrFrame::slotDeleteCamera(CCameraMgrItemForm *item)
{
    CMessageBox question(CMessageBox::Warning, tr("Warning"), tr("Delete camera?"),
                         QMessageBox::Ok | QMessageBox::Cancel, dialogParent(this));
    if (question.exec() != QDialog::Accepted)
        return;
    takeDown(item);
    CameraSettings::instance().save();
    layoutAgain();
}

void CCameraMgrFrame::slotPlayCamera(CCameraMgrItemForm *item)
{
    if (ZELVARO_CHECK(pageHost(), "CameraMgrFrame"))
        pageHost()->playCamera(item->camera());
}

void CCameraMgrFrame::slotModifyCamera(CCameraMgrItemForm *item)
{
    CAddCameraForm dialog(dialogParent(this), item->camera()->get_info());
    if (dialog.exec() != QDialog::Accepted || dialog.holds(*item->camera()->get_info()))
        return;
    takeDown(item);
    registerCamera(dialog);
    layoutAgain();
}

void CCameraMgrFrame::slotMotionCamera(CCameraMgrItemForm *item)
{
    Motion_Dialog(dialogParent(this), item->camera()).exec();
}

void CCameraMgrFrame::slotRebootCamera(CCameraMgrItemForm *item)
{
    CMessageBox question(CMessageBox::Warning, tr("Warning"), tr("Reboot camera?"),
                         QMessageBox::Ok | QMessageBox::Cancel, dialogParent(this));
    if (question.exec() != QDialog::Accepted)
        return;

    CCamera *camera = item->camera();
    const CameraRecord *record = camera->get_info();
    const QString request = zelvaro::sys_reboot_request(record->username, record->password);
    if (!zelvaro::runCommands(dialogParent(this), camera, tr("Please wait for reboot..."),
                              {request}))
        return;
    const bool rebooted = camera->command_codes().value(0, -1) == 0;
    CMessageBox(CMessageBox::Information, tr("info"),
                rebooted ? tr("Reboot success. Please wait a few minutes and re-connect.")
                         : tr("Reboot failed. Please wait a few minutes and re-try."),
                QMessageBox::Ok, dialogParent(this))
        .exec();
}
