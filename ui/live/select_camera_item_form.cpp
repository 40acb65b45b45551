#include "ui/live/select_camera_item_form.h"

#include "camera/camera.h"
#include "settings/camera_record.h"
#include "ui/common/style_url.h"
#include "ui/common/tool_tip.h"
#include "ui_select_camera_item_form.h"

#include <QKeyEvent>
#include <QMouseEvent>

CSelectCameraItemForm::CSelectCameraItemForm(bool recordingMode, QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::CSelectCameraItemForm>())
    , m_recordingMode(recordingMode)
{
    m_ui->setupUi(this);
    // A picture is loaded when its widget is shown first. A hundred large ones at once would take
    // seconds and hundreds of megabytes: each waits until its tile is looked at.
    QSizePolicy policy = m_ui->frameClient->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_ui->frameClient->setSizePolicy(policy);
    m_ui->frameClient->hide();
    showFocus(false);
}

CSelectCameraItemForm::~CSelectCameraItemForm() = default;

void CSelectCameraItemForm::setCamera(CCamera *camera)
{
    m_camera = camera;
    m_ui->labelCameraName->setText(camera->name());
    m_ui->labelCameraName->setToolTip(zelvaro::plainToolTip(camera->name()));
    setAccessibleName(camera->name());
    if (camera->has_thumb()) {
        m_ui->frameClient->setStyleSheet(QStringLiteral("QFrame#frameClient{border-image:url(%1);}")
                                             .arg(zelvaro::styleUrl(camera->thumb_path())));
    }
    if (const CameraRecord *record = camera->get_info())
        setChecked(m_recordingMode ? record->recordSelected : record->multiLive);
}

CCamera *CSelectCameraItemForm::camera() const
{
    return m_camera;
}

void CSelectCameraItemForm::setChecked(bool checked)
{
    m_checked = checked;
    m_ui->labelCheck->setStyleSheet(
        checked ? QStringLiteral("border-image:url(:/images/multilive/selectcameraitem_check.png);")
                : QString());
    setAccessibleDescription(checked ? tr("Selected") : tr("Not selected"));
}

void CSelectCameraItemForm::apply() const
{
    CameraRecord *record = m_camera ? m_camera->get_info() : nullptr;
    if (!record)
        return;
    if (m_recordingMode)
        record->recordSelected = m_checked;
    else
        record->multiLive = m_checked;
}

void CSelectCameraItemForm::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    if (m_ui->frameClient->isHidden())
        QMetaObject::invokeMethod(m_ui->frameClient, &QWidget::show, Qt::QueuedConnection);
}

void CSelectCameraItemForm::mousePressEvent(QMouseEvent *)
{
    toggle();
}

void CSelectCameraItemForm::keyPressEvent(QKeyEvent *event)
{
    // Enter belongs to the dialog's OK button.
    if (event->key() == Qt::Key_Space)
        toggle();
    else
        QWidget::keyPressEvent(event);
}

void CSelectCameraItemForm::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    showFocus(true);
}

void CSelectCameraItemForm::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    showFocus(false);
}

void CSelectCameraItemForm::toggle()
{
    setChecked(!m_checked);
    emit clicked(this);
}

/// The tile that has the keyboard focus looks as the one under the pointer.
void CSelectCameraItemForm::showFocus(bool focused)
{
    const QString hover =
        QStringLiteral("border-image: url(:/images/multilive/selectcameraitembk_hover.png);");
    const QString normal =
        QStringLiteral("border-image: url(:/images/multilive/selectcameraitembk_default.png);");
    m_ui->frameSelectCameraItemBk->setStyleSheet(
        QStringLiteral("QFrame#frameSelectCameraItemBk{%1}\n"
                       "QFrame#frameSelectCameraItemBk:hover{%2}")
            .arg(focused ? hover : normal, hover));
}
