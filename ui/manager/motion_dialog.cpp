#include "ui/manager/motion_dialog.h"

#include "camera/camera.h"
#include "camera/command_channel.h"
#include "settings/camera_record.h"
#include "ui/common/command_wait.h"
#include "ui/common/message_box.h"
#include "ui/manager/motion_window_box.h"
#include "ui/manager/range_validator.h"
#include "ui_motion_dialog.h"

#include <QKeyEvent>

namespace {

/// On or off, then the fields: the first window is the whole picture of 640x480; the others are the
/// remaining quarters, and off.
constexpr const char *windowDefaults[][1 + zelvaro::MotionWindowBox::fieldCount] = {
    {"1", "0", "0", "639", "479", "60", "70"},
    {"0", "320", "0", "639", "240", "60", "70"},
    {"0", "0", "240", "320", "479", "60", "70"},
    {"0", "320", "240", "639", "479", "60", "70"}};

} // namespace

Motion_Dialog::Motion_Dialog(QWidget *parent, CCamera *camera)
    : QDialog(parent, Qt::FramelessWindowHint)
    , m_ui(std::make_unique<Ui::Motion_Dialog>())
    , m_camera(camera)
{
    m_ui->setupUi(this);
    setAttribute(Qt::WA_TranslucentBackground);
    m_ui->frameTitle->attach(this, true);
    connect(m_ui->btnQuery, &QPushButton::clicked, this, &Motion_Dialog::slotQuery);
    connect(m_ui->btnApply, &QPushButton::clicked, this, &Motion_Dialog::slotApply);
    connect(m_ui->btnExit, &QPushButton::clicked, this, &Motion_Dialog::slotExit);
    setUpWindows();
    slotQuery();
}

Motion_Dialog::~Motion_Dialog() = default;

void Motion_Dialog::setUpWindows()
{
    const zelvaro::MotionValidators validators = {new zelvaro::RangeValidator(0, 639, this),
                                                  new zelvaro::RangeValidator(0, 479, this),
                                                  new zelvaro::RangeValidator(1, 100, this)};
    m_windows = {m_ui->window1, m_ui->window2, m_ui->window3, m_ui->window4};
    for (std::size_t i = 0; i < m_windows.size(); ++i) {
        QStringList values;
        for (const char *value : windowDefaults[i])
            values << QLatin1String(value);
        m_windows[i]->setUp(int(i) + 1, validators);
        m_windows[i]->setValues(values);
    }
}

bool Motion_Dialog::run(const QString &text, const QStringList &requests)
{
    // At the first query the dialog is not on the screen yet.
    QWidget *const over = isVisible() ? this : parentWidget();
    return zelvaro::runCommands(over, m_camera, text, requests);
}

void Motion_Dialog::slotQuery()
{
    if (!m_camera)
        return;
    const CameraRecord &record = *m_camera->get_info();
    QStringList requests;
    for (int window = 1; window <= windowCount; ++window)
        requests << zelvaro::get_motion_request(record.username, record.password, window);
    if (!run(tr("Please wait for query motion information..."), requests))
        return;
    for (int i = 0; i < windowCount; ++i)
        if (m_camera->command_codes().value(i, -1) == 0)
            // The first value is the window's number.
            m_windows[std::size_t(i)]->setValues(m_camera->command_values().value(i).mid(1));
}

void Motion_Dialog::slotApply()
{
    if (!m_camera)
        return;
    const CameraRecord &record = *m_camera->get_info();
    QStringList requests;
    for (int i = 0; i < windowCount; ++i) {
        const QStringList values =
            QStringList(QString::number(i + 1)) + m_windows[std::size_t(i)]->values();
        requests << zelvaro::set_motion_request(record.username, record.password, values);
    }
    if (!run(tr("Please wait for apply motion settings..."), requests))
        return;
    for (int i = 0; i < windowCount; ++i) {
        if (m_camera->command_codes().value(i, -1) != 0) {
            CMessageBox(CMessageBox::Information, tr("info"),
                        tr("Some error happens. Please wait a few minutes and re-try."),
                        QMessageBox::Ok, this)
                .exec();
            return;
        }
    }
}

void Motion_Dialog::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Enter && event->key() != Qt::Key_Return) {
        QDialog::keyPressEvent(event);
        return;
    }
    auto *const button = qobject_cast<QPushButton *>(focusWidget());
    if (button && !event->isAutoRepeat())
        button->click();
    event->accept();
}

void Motion_Dialog::slotExit()
{
    accept();
}
