#include "ui/manager/camera_mgr_item_form.h"

#include "camera/camera.h"
#include "settings/host_name.h"
#include "ui/common/camera_menu.h"
#include "ui/common/reason_text.h"
#include "ui/common/sheet_picture.h"
#include "ui/common/style_url.h"
#include "ui/common/time_text.h"
#include "ui/common/tool_tip.h"
#include "ui_camera_mgr_item_form.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFileInfo>
#include <QMenu>

namespace {

QString tileFrameStyle(const char *state)
{
    return QStringLiteral(
               "QFrame#frameCameraItemBk{border-image:url(:/images/cameraitem/"
               "cameraitemframe_%1.png) 8 12 14 10;border-top-width:4px;border-right-width:"
               "6px;border-bottom-width:7px;border-left-width:5px;}"
               "QFrame#frameCameraItemBk:hover{border-image:url(:/images/cameraitem/"
               "cameraitemframe_hover.png) 8 12 14 10;}")
        .arg(QLatin1String(state));
}

} // namespace

CCameraMgrItemForm::CCameraMgrItemForm(QWidget *parent)
    : TileForm(parent)
    , m_ui(std::make_unique<Ui::CCameraMgrItemForm>())
{
    m_ui->setupUi(this);
    m_defaultPicture = m_ui->frameCameraItem->styleSheet();
    m_ui->labelStatusText->hide();
    showFocus(false);
    buildMenu();
}

CCameraMgrItemForm::~CCameraMgrItemForm() = default;

void CCameraMgrItemForm::buildMenu()
{
    auto *menu = new QMenu(m_ui->btnMenu);
    menu->addAction(tr("Play"), this, &CCameraMgrItemForm::slotPlay);
    menu->addAction(tr("Delete"), this, &CCameraMgrItemForm::slotDelete);
    menu->addAction(tr("Modify"), this, &CCameraMgrItemForm::slotModify);
    m_ui->btnMenu->setMenu(menu);
    m_ui->btnMenu->setStyleSheet(
        m_ui->btnMenu->styleSheet() +
        QStringLiteral("QToolButton:menu-indicator{image:url(none.jpg);}"));
    connect(m_ui->btnMenu, &QToolButton::clicked, this, &CCameraMgrItemForm::slotMenu);
}

void CCameraMgrItemForm::setCamera(CCamera *camera)
{
    if (m_camera)
        m_camera->disconnect(this);
    m_camera = camera;
    m_connected = m_camera && m_camera->get_state() == CAMERA_STATE_CONNECTED;
    m_since = {};
    slotCameraThumbChanged();
    slotCameraStatusChanged();
    if (!m_camera)
        return;
    connect(m_camera, &CCamera::signalStateChanged, this,
            &CCameraMgrItemForm::slotCameraStatusChanged);
    connect(m_camera, &CCamera::signalThumbChanged, this,
            &CCameraMgrItemForm::slotCameraThumbChanged);
    connect(m_camera, &CCamera::signalStateReport, this, [this] { showStateTip(); });
}

void CCameraMgrItemForm::setNear(bool isNear)
{
    // Hiding what has the focus would give it to another tile, and the page would scroll there.
    const bool focused = isAncestorOf(QApplication::focusWidget()) || hasFocus();
    setVisible(isNear || focused);
    if (m_near == isNear)
        return;
    m_near = isNear;
    showThumb();
}

QWidget *CCameraMgrItemForm::lastInTabOrder() const
{
    return m_ui->btnMenu;
}

void CCameraMgrItemForm::slotDelete()
{
    emit deleteCamera(this);
}

void CCameraMgrItemForm::slotPlay()
{
    emit playCamera(this);
}

// popup() returns at once: the tile may be deleted before exec() would return.
void CCameraMgrItemForm::slotMenu()
{
    const QPoint below = m_ui->btnMenu->mapToGlobal(QPoint(0, m_ui->btnMenu->height()));
    m_ui->btnMenu->menu()->popup(below);
}

void CCameraMgrItemForm::slotModify()
{
    emit modifyCamera(this);
}

void CCameraMgrItemForm::slotMotion()
{
    emit motionCamera(this);
}

void CCameraMgrItemForm::slotReboot()
{
    emit rebootCamera(this);
}

void CCameraMgrItemForm::slotCameraStatusChanged()
{
    if (!m_camera)
        return;
    showTexts();
    const bool refused = m_camera->get_state_code() == CAMERA_CODE_REFUSED;
    m_ui->labelStatusText->setText(refused ? tr("Invalid Password!") : QString());
    m_ui->labelStatusText->setVisible(refused);

    const bool wasConnected = m_connected;
    m_connected = m_camera->get_state() == CAMERA_STATE_CONNECTED;
    m_ui->labelStatusImage->setStyleSheet(
        m_connected ? QStringLiteral("border-image:url(:/images/cameraitem/connected.png);")
                    : QStringLiteral("border-image:url(:/images/cameraitem/disconnected.png);"));
    if (wasConnected && !m_connected)
        m_since = QDateTime::currentDateTime();
    if (wasConnected != m_connected)
        showThumb();
    showStateTip();
}

// The reason of a camera may become another while its state stays.
void CCameraMgrItemForm::showStateTip()
{
    if (!m_camera)
        return;
    QString state = tr("Connected");
    if (!m_connected) {
        state = m_since.isValid() ? tr("Not connected since %1").arg(zelvaro::timeText(m_since))
                                  : tr("Not connected");
    }
    const QString reason = zelvaro::reasonText(*m_camera);
    QStringList lines{state, reason};
    if (!m_connected && m_pictureTime.isValid())
        lines << tr("The picture is of %1").arg(zelvaro::timeText(m_pictureTime));
    lines.removeAll(QString());
    const QString tip =
        lines.size() > 1 ? zelvaro::plainToolTip(lines.join(QLatin1Char('\n'))) : state;
    m_ui->labelStatusImage->setToolTip(tip);
    m_ui->labelStatusImage->setAccessibleName(m_connected ? state : tr("Not connected"));
    m_ui->labelStatusImage->setAccessibleDescription(reason);
    m_ui->labelStatusText->setToolTip(reason.isEmpty() ? QString() : tip);
    m_ui->frameCameraItem->setToolTip(m_connected && reason.isEmpty() ? QString() : tip);
    m_details = lines.join(QLatin1Char('\n'));
}

QString CCameraMgrItemForm::details() const
{
    return QStringList{m_ui->labelCameraName->text(), m_ui->labelUid->text(), m_details}.join(
        QLatin1Char('\n'));
}

void CCameraMgrItemForm::slotCameraThumbChanged()
{
    showThumb();
}

void CCameraMgrItemForm::showTexts()
{
    // A record of an earlier version may hold a password in its address.
    const QString uid = zelvaro::withoutLogin(m_camera->hostname());
    m_ui->labelUid->setText(uid);
    m_ui->labelUid->setToolTip(zelvaro::plainToolTip(uid));
    m_ui->labelCameraName->setText(m_camera->name());
    m_ui->labelCameraName->setToolTip(zelvaro::plainToolTip(m_camera->name()));
    setAccessibleName(m_camera->name().isEmpty() ? uid : m_camera->name());
}

void CCameraMgrItemForm::showThumb()
{
    if (!m_camera || !m_near || !m_camera->has_thumb()) {
        m_ui->frameCameraItem->setStyleSheet(m_defaultPicture);
        m_pictureTime = {};
        return;
    }
    const QString path = m_camera->thumb_path();
    m_pictureTime = QFileInfo(path).lastModified();
    zelvaro::setPictureSheet(
        m_ui->frameCameraItem,
        QStringLiteral("QFrame#frameCameraItem{border-image:url(%1);}")
            .arg(zelvaro::styleUrl(path)),
        path,
        m_ui->frameCameraItem->size().expandedTo(m_ui->frameCameraItem->minimumSize()) *
            devicePixelRatioF(),
        m_connected ? zelvaro::PictureLook::Plain : zelvaro::PictureLook::Dimmed);
}

void CCameraMgrItemForm::showFocus(bool focused)
{
    m_ui->frameCameraItemBk->setStyleSheet(tileFrameStyle(focused ? "hover" : "default"));
}

// Beside the menu of the button: what that one offers, and more.
void CCameraMgrItemForm::contextMenuEvent(QContextMenuEvent *event)
{
    event->accept();
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(m_ui->btnMenu->menu()->actions());
    zelvaro::CameraMenu::addTo(*menu, m_camera, details(), this);
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    menu->popup(byKey ? mapToGlobal(rect().center()) : event->globalPos());
}
