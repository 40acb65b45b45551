#include "app/status_row.h"

#include "app/settings_notice.h"
#include "settings/camera_settings.h"

#include <QLabel>
#include <QVariant>

namespace zelvaro {

StatusRow::StatusRow(QLabel *label) : QObject(label), m_label(label)
{
    connect(&CameraSettings::instance(), &CameraSettings::fileTroublesChanged, this,
            &StatusRow::fill);
    connect(&m_disk, &DiskWatch::noticeChanged, this, &StatusRow::fill);
    fill();
}

void StatusRow::showPageText(const QString &text)
{
    m_pageText = text;
    fill();
}

void StatusRow::fill()
{
    QString text = m_pageText.isEmpty() ? settingsNotice(CameraSettings::instance()) : m_pageText;
    const bool isDisk = text.isEmpty() && !m_disk.notice().isEmpty();
    if (isDisk)
        text = m_disk.notice();
    m_label->setText(text);
    if (m_label->property("diskNotice").toBool() == isDisk)
        return;
    m_label->setProperty("diskNotice", isDisk);
    m_label->setStyleSheet(m_label->styleSheet()); // a property alone does not restyle
}

} // namespace zelvaro
