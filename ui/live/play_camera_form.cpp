#include "ui/live/play_camera_form.h"

#include "ui/common/camera_menu.h"
#include "ui/common/page_actions.h"
#include "ui/common/page_host.h"
#include "ui/live/snapshot_sound.h"
#include "ui_play_camera_form.h"

CPlayCameraForm::CPlayCameraForm(QWidget *parent, zelvaro::Clock clock)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::CPlayCameraForm>())
{
    m_ui->setupUi(this);
    m_live = std::make_unique<zelvaro::LiveView>(
        zelvaro::LiveWidgets{m_ui->frameVideoArea, m_ui->frameVideoClient, m_ui->frameVideoFrame,
                             m_ui->labelStatus, m_ui->labelRecording, m_ui->labelRecordingNote},
        zelvaro::LiveView::StatusSize::Scaled, [this] { return volume(); }, std::move(clock));
    m_talkTip = m_ui->btnOutVolume->toolTip();
    m_ui->sliderVolume->setRange(0, zelvaro::maxVolume);
    m_ui->sliderVolume->setValue(zelvaro::naturalVolume);

    connect(m_ui->frameVideoArea, &CVideoAreaFrame::signalResize, this,
            &CPlayCameraForm::slotVideoAreaResize);
    connect(m_ui->btnSnapshot, &QToolButton::clicked, this, &CPlayCameraForm::slotSnapshot);
    connect(m_ui->btnRecord, &QToolButton::clicked, this, &CPlayCameraForm::slotRecord);
    connect(m_ui->btnZoomIn, &QToolButton::clicked, this, &CPlayCameraForm::slotZoomIn);
    connect(m_ui->btnZoomOut, &QToolButton::clicked, this, &CPlayCameraForm::slotZoomOut);
    connect(m_ui->btnFullScreen, &QToolButton::clicked, this, &CPlayCameraForm::slotFullScreen);
    connect(m_ui->btnBack, &QToolButton::clicked, this, &CPlayCameraForm::slotBack);
    connect(m_ui->btnOutVolume, &QToolButton::clicked, this, &CPlayCameraForm::slotOvolumeClicked);
    connect(m_ui->frameVideoFrame, &CVideoFrame::doubleClicked, this,
            &CPlayCameraForm::slotVideoDoubleClicked);
    connect(m_ui->sliderVolume, &CVolumeSliderForm::valueChanged, this,
            &CPlayCameraForm::slotVolumeChanged);
    connect(m_ui->sliderVolume, &CVolumeSliderForm::muteChanged, this,
            &CPlayCameraForm::slotMuteChanged);
    offerActions();
}

CPlayCameraForm::~CPlayCameraForm() = default;

void CPlayCameraForm::offerActions()
{
    using Held = zelvaro::PageActions::Held;
    auto *actions = new zelvaro::PageActions(this);
    actions->add(m_ui->btnSnapshot, {Qt::Key_S});
    actions->tickWhile(actions->add(m_ui->btnRecord, {Qt::Key_R}),
                       [this] { return m_live->isRecording(); });
    actions->addSeparator();
    actions->add(m_ui->btnZoomIn, {Qt::Key_Plus, Qt::Key_Equal}, Held::Repeats);
    actions->add(m_ui->btnZoomOut, {Qt::Key_Minus}, Held::Repeats);
    actions->leaveOutInFullScreen(actions->add(m_ui->btnFullScreen, {Qt::Key_F}));
    actions->addSeparator();
    actions->add(m_ui->sliderVolume->muteButton(), {Qt::Key_M});
    actions->tickWhile(actions->add(m_ui->btnOutVolume, {Qt::Key_T}), [this] { return m_talking; });
    actions->addSeparator();
    actions->add(m_ui->btnBack, {Qt::Key_Backspace, Qt::Key_Back});
    actions->setExtras([this](QMenu &menu, QWidget *on) {
        zelvaro::CameraMenu::addTo(menu, m_live->camera(), m_live->details(), on);
    });
    actions->offerOn(m_ui->frameVideoArea);
    actions->offerOn(m_ui->frameVideoFrame);
}

void CPlayCameraForm::SetCamera(CCamera *camera)
{
    m_live->setCamera(camera);
    showHeard();
}

void CPlayCameraForm::StartPlay()
{
    CCamera *camera = m_live->camera();
    if (!camera)
        return;
    m_live->open(camera->get_mode(), this);
}

bool CPlayCameraForm::IsPlaying() const
{
    return m_live->isPlaying();
}

void CPlayCameraForm::StopPlay()
{
    if (!m_live->camera())
        return;
    if (m_live->isRecording())
        setRecording(false);
    if (m_talking)
        setTalking(false);
    // The stream first: it would follow the picture to its window on the page.
    m_live->close();
    m_live->leaveFullScreen();
}

void CPlayCameraForm::slotVideoAreaResize()
{
    m_live->areaResized();
}

void CPlayCameraForm::slotCameraStatusChanged()
{
    m_live->streamChanged();
}

void CPlayCameraForm::slotTimer()
{
    CCamera *camera = m_live->camera();
    if (!camera)
        return;
    if (camera->get_state() == CAMERA_STATE_CONNECTED && m_talking) {
        if (camera->audio_upload_is_playing())
            showTalkTip({});
        else
            startTalking();
    }
    m_live->report();
    showHeard();
}

void CPlayCameraForm::showHeard()
{
    const CCamera *camera = m_live->camera();
    const bool silent = camera && IsPlaying() && !camera->has_audio();
    m_ui->sliderVolume->setUnheard(silent ? tr("This camera sends no sound.") : QString());
}

void CPlayCameraForm::slotSnapshot()
{
    zelvaro::playSnapshotSound();
    m_live->takePhoto();
}

void CPlayCameraForm::slotRecord()
{
    setRecording(!m_live->isRecording());
}

void CPlayCameraForm::slotZoomIn()
{
    m_live->zoomIn();
}

void CPlayCameraForm::slotZoomOut()
{
    m_live->zoomOut();
}

void CPlayCameraForm::slotFullScreen()
{
    m_live->enterFullScreen();
}

void CPlayCameraForm::slotVideoDoubleClicked()
{
    m_live->toggleFullScreen();
}

void CPlayCameraForm::slotMuteChanged(bool)
{
    m_live->applyVolume();
}

void CPlayCameraForm::slotVolumeChanged(int)
{
    m_live->applyVolume();
}

void CPlayCameraForm::slotBack()
{
    if (PageHost *host = pageHost())
        host->showCameraMgr();
}

void CPlayCameraForm::slotOvolumeClicked()
{
    setTalking(!m_talking);
}

int CPlayCameraForm::volume() const
{
    return m_ui->sliderVolume->isMuted() ? 0 : m_ui->sliderVolume->value();
}

void CPlayCameraForm::setRecording(bool recording)
{
    m_ui->btnRecord->setIcon(QIcon(zelvaro::recordImage(recording)));
    m_live->setRecording(recording);
}

void CPlayCameraForm::setTalking(bool talking)
{
    m_talking = talking;
    m_ui->btnOutVolume->setIcon(
        QIcon(m_talking ? QStringLiteral(":/images/panelbtn/outvolumebtn_down.png")
                        : QStringLiteral(":/images/panelbtn/outvolumebtn_default.png")));
    CCamera *camera = m_live->camera();
    if (!camera)
        return;
    if (m_talking) {
        startTalking();
    } else {
        camera->audio_upload_stop();
        showTalkTip({});
    }
}

// A library that knows why the talk before failed says so and does not try again for a while.
void CPlayCameraForm::startTalking()
{
    switch (m_live->camera()->audio_upload_play()) {
    case CAMMGR_TALK_NO_MICROPHONE:
        showTalkTip(tr("Talking does not work: there is no microphone."));
        break;
    case CAMMGR_TALK_NOT_TAKEN:
        showTalkTip(tr("Talking does not work: the camera takes no sound."));
        break;
    case CAMMGR_TALK_FAILED:
        showTalkTip(tr("Talking does not work: the connection failed."));
        break;
    default:
        break;
    }
}

void CPlayCameraForm::showTalkTip(const QString &trouble)
{
    m_ui->btnOutVolume->setToolTip(trouble.isEmpty() ? m_talkTip : trouble);
}
