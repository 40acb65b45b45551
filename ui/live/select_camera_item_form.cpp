#include "ui/live/select_camera_item_form.h"

#include "camera/camera.h"
#include "settings/camera_record.h"
#include "ui/common/sheet_picture.h"
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
    m_defaultPicture = m_ui->frameClient->styleSheet();
    showFocus(false);
}

CSelectCameraItemForm::~CSelectCameraItemForm() = default;

void CSelectCameraItemForm::setCamera(CCamera *camera)
{
    m_camera = camera;
    m_ui->labelCameraName->setText(camera->name());
    m_ui->labelCameraName->setToolTip(zelvaro::plainToolTip(camera->name()));
    setAccessibleName(camera->name());
    showThumb();
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

void CSelectCameraItemForm::setNear(bool isNear)
{
    if (m_near == isNear)
        return;
    m_near = isNear;
    showThumb();
}

void CSelectCameraItemForm::showThumb()
{
    if (!m_camera || !m_near || !m_camera->has_thumb()) {
        m_ui->frameClient->setStyleSheet(m_defaultPicture);
        return;
    }
    const QString path = m_camera->thumb_path();
    zelvaro::setPictureSheet(
        m_ui->frameClient,
        QStringLiteral("QFrame#frameClient{border-image:url(%1);}").arg(zelvaro::styleUrl(path)),
        path, m_ui->frameClient->minimumSize() * devicePixelRatioF());
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
