#include "ui/live/multi_live_form.h"

#include "camera/camera.h"
#include "settings/camera_record.h"
#include "ui/common/camera_menu.h"
#include "ui/common/message_box.h"
#include "ui/common/page_actions.h"
#include "ui/common/page_host.h"
#include "ui/live/live_view.h"
#include "ui/live/multi_live_item_form.h"
#include "ui/live/select_camera_form.h"
#include "ui/live/select_camera_recording_form.h"
#include "ui/live/snapshot_sound.h"
#include "ui_multi_live_form.h"

CMultiLiveForm::CMultiLiveForm(QWidget *parent, zelvaro::Clock clock)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::CMultiLiveForm>())
    , m_actions(new zelvaro::PageActions(this))
{
    m_ui->setupUi(this);
    m_ui->frameMultiLive->setClock(std::move(clock));
    m_ui->sliderVolume->setRange(0, zelvaro::maxVolume);
    m_ui->sliderVolume->setValue(zelvaro::naturalVolume);

    connect(m_ui->btnSelect, &QToolButton::clicked, this, &CMultiLiveForm::slotSelect);
    connect(m_ui->btnSnapshot, &QToolButton::clicked, this, &CMultiLiveForm::slotSnapshot);
    connect(m_ui->btnRecord, &QToolButton::clicked, this, &CMultiLiveForm::slotRecord);
    connect(m_ui->sliderVolume, &CVolumeSliderForm::valueChanged, this,
            &CMultiLiveForm::slotVolumeChanged);
    connect(m_ui->sliderVolume, &CVolumeSliderForm::muteChanged, this,
            &CMultiLiveForm::slotMuteChanged);
    connect(m_ui->frameMultiLive, &CMultiLiveFrame::heardChanged, this, &CMultiLiveForm::showHeard);
    offerActions();
}

CMultiLiveForm::~CMultiLiveForm() = default;

void CMultiLiveForm::offerActions()
{
    // On the tile that the user is at: of several pictures only one can fill the screen, be heard.
    const auto onTile = [this](auto act) {
        return [this, act] {
            if (CMultiLiveItemForm *tile = m_ui->frameMultiLive->currentTile())
                act(tile);
        };
    };
    m_actions->add(tr("Hear this camera"), {}, onTile([this](CMultiLiveItemForm *tile) {
                       m_ui->frameMultiLive->slotSelectCamera(tile);
                   }));
    m_actions->leaveOutInFullScreen(
        m_actions->add(tr("Full screen"), {Qt::Key_F},
                       onTile([](CMultiLiveItemForm *tile) { tile->enterFullScreen(); })));
    m_actions->addSeparator();
    m_actions->add(m_ui->btnSelect, {Qt::Key_C});
    m_actions->add(m_ui->btnSnapshot, {Qt::Key_S});
    m_actions->tickWhile(m_actions->add(m_ui->btnRecord, {Qt::Key_R}),
                         [this] { return m_recordingAll; });
    m_actions->add(m_ui->sliderVolume->muteButton(), {Qt::Key_M});
    m_actions->setExtras([this](QMenu &menu, QWidget *on) {
        if (CMultiLiveItemForm *tile = m_ui->frameMultiLive->currentTile())
            zelvaro::CameraMenu::addTo(menu, tile->camera(), tile->details(), on);
    });
    m_actions->offerOn(m_ui->frameMultiLive);
}

void CMultiLiveForm::StartPlay()
{
    loadGrid();
}

void CMultiLiveForm::StopPlay()
{
    m_ui->frameMultiLive->clear();
    m_recordingAll = false;
    showRecordButton();
}

bool CMultiLiveForm::MayLeave()
{
    if (!m_recordingAll)
        return true;
    CMessageBox question(CMessageBox::Warning, tr("Warning"),
                         tr("By changing view your recording will be stop."),
                         QMessageBox::Ok | QMessageBox::Cancel, dialogParent(this));
    if (question.exec() != QDialog::Accepted)
        return false;
    setRecordingAll(false);
    return true;
}

void CMultiLiveForm::slotSelect()
{
    if (!MayLeave())
        return;
    CSelectCameraForm dialog(dialogParent(this));
    if (dialog.exec() != QDialog::Accepted)
        return;
    dialog.Apply();
    m_ui->frameMultiLive->clear();
    loadGrid();
}

void CMultiLiveForm::slotSnapshot()
{
    zelvaro::playSnapshotSound();
    for (CMultiLiveItemForm *tile : m_ui->frameMultiLive->tiles())
        tile->takePhoto();
}

void CMultiLiveForm::slotRecord()
{
    if (!m_recordingAll) {
        CSelectCameraRecordingForm dialog(m_ui->frameMultiLive->shownCameras(),
                                          m_ui->frameMultiLive);
        if (dialog.exec() != QDialog::Accepted)
            return;
        dialog.Apply();
    }
    setRecordingAll(!m_recordingAll);
}

void CMultiLiveForm::slotMuteChanged(bool)
{
    applySound();
}

void CMultiLiveForm::slotVolumeChanged(int)
{
    applySound();
}

void CMultiLiveForm::setRecordingAll(bool recording)
{
    m_recordingAll = recording;
    showRecordButton();
    for (CMultiLiveItemForm *tile : m_ui->frameMultiLive->tiles()) {
        const CCamera *camera = tile->camera();
        if (camera && camera->get_info() && camera->get_info()->recordSelected)
            tile->setRecording(m_recordingAll);
    }
}

void CMultiLiveForm::showRecordButton()
{
    m_ui->btnRecord->setIcon(QIcon(zelvaro::recordImage(m_recordingAll)));
}

void CMultiLiveForm::loadGrid()
{
    m_ui->frameMultiLive->load();
    for (CMultiLiveItemForm *tile : m_ui->frameMultiLive->tiles())
        m_actions->offerOn(tile->picture());
    orderTabs();
    applySound();
}

// New tiles come last of all; the panel below them is to come after them.
void CMultiLiveForm::orderTabs()
{
    if (m_ui->frameMultiLive->tiles().isEmpty())
        return;
    QWidget *before = m_ui->frameMultiLive->tiles().last()->picture();
    for (QWidget *control : m_ui->frameButtonsCenter->findChildren<QWidget *>()) {
        if (!(control->focusPolicy() & Qt::TabFocus))
            continue;
        setTabOrder(before, control);
        before = control;
    }
}

void CMultiLiveForm::applySound()
{
    m_ui->frameMultiLive->setSound(m_ui->sliderVolume->isMuted(), m_ui->sliderVolume->value());
    showHeard();
}

void CMultiLiveForm::showHeard()
{
    const CMultiLiveItemForm *tile = m_ui->frameMultiLive->selectedTile();
    const CCamera *camera = tile ? tile->camera() : nullptr;
    QString why;
    if (!camera)
        why = tr("Nothing is heard: click a picture to hear its camera.");
    else if (camera->is_playing() && !camera->has_audio())
        why = tr("This camera sends no sound.");
    m_ui->sliderVolume->setUnheard(why);
}
