#include "ui/live/multi_live_item_form.h"

#include "ui_multi_live_item_form.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace {

constexpr int subStream = 1;
// Around the picture of the tile that has the keyboard focus.
constexpr QColor focusColour(91, 144, 189);

} // namespace

CMultiLiveItemForm::CMultiLiveItemForm(zelvaro::Clock clock, QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::CMultiLiveItemForm>())
{
    m_ui->setupUi(this);
    m_live = std::make_unique<zelvaro::LiveView>(
        zelvaro::LiveWidgets{m_ui->frameVideoArea, m_ui->frameVideoClient, m_ui->frameVideoFrame,
                             m_ui->labelStatus, m_ui->labelRecording, m_ui->labelRecordingNote},
        zelvaro::LiveView::StatusSize::Plain, [this] { return m_volume; }, std::move(clock));
    connect(m_ui->frameVideoArea, &CVideoAreaFrame::signalResize, this,
            [this] { m_live->areaResized(); });
    connect(m_ui->frameVideoFrame, &CVideoFrame::doubleClicked, this,
            &CMultiLiveItemForm::slotVideoDoubleClicked);
    setSelected(false);
    QPalette focused = m_ui->frameVideoArea->palette();
    focused.setColor(QPalette::Window, focusColour);
    m_ui->frameVideoArea->setPalette(focused);
}

CMultiLiveItemForm::~CMultiLiveItemForm() = default;

void CMultiLiveItemForm::setCamera(CCamera *camera)
{
    m_live->setCamera(camera);
    setAccessibleName(camera ? camera->name() : QString());
}

CCamera *CMultiLiveItemForm::camera() const
{
    return m_live->camera();
}

void CMultiLiveItemForm::start()
{
    if (camera())
        m_live->open(subStream, this);
}

void CMultiLiveItemForm::stop()
{
    m_live->close();
}

void CMultiLiveItemForm::setVolume(int volume)
{
    m_volume = volume;
    if (CCamera *session = camera())
        session->set_volume(m_volume);
}

void CMultiLiveItemForm::setSelected(bool selected)
{
    m_ui->frameCameraItemBk->setStyleSheet(
        QStringLiteral("QFrame#frameCameraItemBk{border-image: "
                       "url(:/images/multilive/multiliveitemframe_%1.png);border-top-width:4;"
                       "border-bottom-width:7;border-left-width:5;border-right-width:6;}")
            .arg(selected ? QLatin1String("hover") : QLatin1String("default")));
}

void CMultiLiveItemForm::setRecording(bool recording)
{
    m_live->setRecording(recording);
}

void CMultiLiveItemForm::takePhoto()
{
    m_live->takePhoto();
}

void CMultiLiveItemForm::enterFullScreen()
{
    m_live->enterFullScreen();
}

QWidget *CMultiLiveItemForm::picture() const
{
    return m_ui->frameVideoFrame;
}

void CMultiLiveItemForm::slotCameraStatusChanged()
{
    m_live->streamChanged();
}

void CMultiLiveItemForm::slotTimer()
{
    m_live->report();
}

void CMultiLiveItemForm::slotVideoDoubleClicked()
{
    m_live->toggleFullScreen();
}

void CMultiLiveItemForm::mousePressEvent(QMouseEvent *event)
{
    QWidget::mousePressEvent(event);
    emit selectCamera(this);
}

void CMultiLiveItemForm::mouseDoubleClickEvent(QMouseEvent *event)
{
    // Handled as a press; a double click that reaches the grid would deselect.
    QWidget::mouseDoubleClickEvent(event);
    event->accept();
}

void CMultiLiveItemForm::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        emit selectCamera(this);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void CMultiLiveItemForm::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    m_ui->frameVideoArea->setAutoFillBackground(true);
}

void CMultiLiveItemForm::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    m_ui->frameVideoArea->setAutoFillBackground(false);
}
