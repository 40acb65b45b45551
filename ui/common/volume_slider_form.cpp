#include "ui/common/volume_slider_form.h"

#include "ui_volume_slider_form.h"

#include <QResizeEvent>

CVolumeSliderForm::CVolumeSliderForm(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::CVolumeSliderForm>())
{
    m_ui->setupUi(this);
    // Else the widget would ask for the room of its button only, and never get the slider back.
    QSizePolicy policy = m_ui->slider->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_ui->slider->setSizePolicy(policy);
    connect(m_ui->slider, &QSlider::valueChanged, this, &CVolumeSliderForm::slotValueChanged);
    connect(m_ui->btnMute, &QToolButton::clicked, this, &CVolumeSliderForm::slotMuteClicked);
    updateMuteStyle();
}

CVolumeSliderForm::~CVolumeSliderForm() = default;

void CVolumeSliderForm::setRange(int min, int max)
{
    m_ui->slider->setRange(min, max);
}

void CVolumeSliderForm::setValue(int value)
{
    m_ui->slider->setValue(value);
}

int CVolumeSliderForm::value() const
{
    return m_ui->slider->value();
}

QAbstractButton *CVolumeSliderForm::muteButton() const
{
    return m_ui->btnMute;
}

void CVolumeSliderForm::setUnheard(const QString &why)
{
    m_ui->slider->setToolTip(why.isEmpty() ? m_ui->slider->accessibleName() : why);
    m_ui->slider->setAccessibleDescription(why);
    if (m_ui->slider->property("unheard").toBool() == !why.isEmpty())
        return;
    m_ui->slider->setProperty("unheard", !why.isEmpty());
    m_ui->slider->setStyleSheet(m_ui->slider->styleSheet()); // a property alone does not restyle
}

void CVolumeSliderForm::resizeEvent(QResizeEvent *event)
{
    const int leastWidth = m_ui->btnMute->minimumWidth() + m_ui->layoutVolume->spacing() +
                           m_ui->slider->minimumWidth();
    m_ui->slider->setVisible(event->size().width() >= leastWidth);
    QWidget::resizeEvent(event);
}

void CVolumeSliderForm::slotValueChanged(int value)
{
    emit valueChanged(value);
}

void CVolumeSliderForm::slotMuteClicked()
{
    m_muted = !m_muted;
    updateMuteStyle();
    emit muteChanged(m_muted);
}

void CVolumeSliderForm::updateMuteStyle()
{
    const QString image =
        m_muted ? QStringLiteral("volumebtn_unchecked") : QStringLiteral("volumebtn_checked");
    m_ui->btnMute->setStyleSheet(
        QStringLiteral(
            "QToolButton{border-image: url(:/images/panelbtn/%1.png);border:none;}\n"
            "QToolButton:hover{border-image: url(:/images/panelbtn/%1hover.png);border:none;}\n"
            "QToolButton:pressed{border-image: url(:/images/panelbtn/%1.png);border:none;}\n")
            .arg(image));
    m_ui->btnMute->setToolTip(m_muted ? tr("Sound on") : tr("Mute"));
    m_ui->btnMute->setAccessibleName(m_ui->btnMute->toolTip());
}
