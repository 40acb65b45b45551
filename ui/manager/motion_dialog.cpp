#include "ui/manager/motion_dialog.h"

#include "camera/camera.h"
#include "camera/command_channel.h"
#include "settings/camera_record.h"
#include "ui/common/command_wait.h"
#include "ui/common/message_box.h"
#include "ui/manager/range_validator.h"
#include "ui_motion_dialog.h"

#include <QKeyEvent>

namespace {

struct Defaults
{
    bool enabled;
    const char *texts[6];
};

/// The first window is the whole picture of 640x480; the others are the remaining quarters, and
/// off.
constexpr Defaults windowDefaults[] = {{true, {"0", "0", "639", "479", "60", "70"}},
                                       {false, {"320", "0", "639", "240", "60", "70"}},
                                       {false, {"0", "240", "320", "479", "60", "70"}},
                                       {false, {"320", "240", "639", "479", "60", "70"}}};

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
    setUpControls();
    slotQuery();
}

Motion_Dialog::~Motion_Dialog() = default;

void Motion_Dialog::setUpControls()
{
    Ui::Motion_Dialog &ui = *m_ui;
    m_windows = {{{ui.window1, {ui.left1, ui.top1, ui.right1, ui.bottom1, ui.thres1, ui.sens1}},
                  {ui.window2, {ui.left2, ui.top2, ui.right2, ui.bottom2, ui.thres2, ui.sens2}},
                  {ui.window3, {ui.left3, ui.top3, ui.right3, ui.bottom3, ui.thres3, ui.sens3}},
                  {ui.window4, {ui.left4, ui.top4, ui.right4, ui.bottom4, ui.thres4, ui.sens4}}}};

    auto *const x = new zelvaro::RangeValidator(0, 639, this);
    auto *const y = new zelvaro::RangeValidator(0, 479, this);
    auto *const percent = new zelvaro::RangeValidator(1, 100, this);
    const std::array<zelvaro::RangeValidator *, 6> validators{x, y, x, y, percent, percent};

    for (int i = 0; i < windowCount; ++i) {
        m_windows[i].enabled->setChecked(windowDefaults[i].enabled);
        for (size_t field = 0; field < validators.size(); ++field) {
            QLineEdit *const edit = m_windows[i].edits[field];
            edit->setValidator(validators[field]);
            new zelvaro::RangeGuard(edit);
            edit->setText(QLatin1String(windowDefaults[i].texts[field]));
        }
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
            fill(m_windows[i], m_camera->command_values().value(i));
}

void Motion_Dialog::fill(const Controls &controls, const QStringList &values)
{
    // The window's number, whether it is on, and the six edits.
    if (values.length() < 2 + int(controls.edits.size()))
        return;
    controls.enabled->setChecked(values[1] == QLatin1String("1"));
    for (size_t field = 0; field < controls.edits.size(); ++field)
        controls.edits[field]->setText(values[2 + int(field)]);
}

void Motion_Dialog::slotApply()
{
    if (!m_camera)
        return;
    const CameraRecord &record = *m_camera->get_info();
    QStringList requests;
    for (int i = 0; i < windowCount; ++i) {
        const Controls &controls = m_windows[i];
        QStringList values{QString::number(i + 1), controls.enabled->isChecked()
                                                       ? QStringLiteral("1")
                                                       : QStringLiteral("0")};
        for (const QLineEdit *edit : controls.edits)
            values << edit->text();
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
