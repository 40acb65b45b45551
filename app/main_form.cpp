#include "app/main_form.h"

#include "app/album_folder.h"
#include "settings/camera_settings.h"
#include "ui/common/desktop.h"
#include "ui/common/message_box.h"
#include "ui/common/stored_text_message.h"
#include "ui/discovery/search_camera_form.h"
#include "ui_main_form.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QScreen>
#include <QToolButton>

namespace {

// A window lower than this leaves its height to the page: tool buttons without their texts, and no
// status row.
constexpr int compactHeight = 420;

// The texts of the buttons are for assistive programs; only the image is drawn.
void setSystemButtonImages(QToolButton *button, const QString &family)
{
    button->setStyleSheet(
        QStringLiteral(
            "QToolButton{border-image:url(:/images/sysbtn/%1_default.png);color:transparent;}"
            "QToolButton:focus{border-image:url(:/images/sysbtn/%1_focus.png);}"
            "QToolButton:hover{border-image:url(:/images/sysbtn/%1_hover.png);}"
            "QToolButton:pressed{border-image:url(:/images/sysbtn/%1_down.png);}")
            .arg(family));
}

// The page's own list of cameras is emptied and filled each time, so that cameras added or removed
// since the last visit appear.
void openAlbum(CPhotoMgrForm &album, bool videoMode)
{
    album.cameraModel().removeRows(0, album.cameraModel().rowCount());
    album.open(videoMode);
}

} // namespace

CMainForm::CMainForm(QWidget *parent) : QWidget(parent), m_ui(std::make_unique<Ui::CMainForm>())
{
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint);
    setMouseTracking(true);
    const QSize largest = QGuiApplication::primaryScreen()->availableSize();
    m_ui->setupUi(this);
    m_ui->frameTitle->attach(this, true);
    m_ui->frameTitle->installEventFilter(this);
    m_ui->pageCameraMgr->fill();

    buildSystemButtons();
    buildToolBar();
    trackEdges(largest);
    resize(size().boundedTo(largest));
    centreOnDesktop();

    m_statusRow = new zelvaro::StatusRow(m_ui->labelStatus);

    leavePages();
    showPage(PageCameraMgr);
    // Not on the first button: a focus ring before the first Tab key would look like a choice.
    m_ui->stackedWidget->setFocus();
}

CMainForm::~CMainForm()
{
    if (pageHost() == this)
        setPageHost(nullptr);
}

void CMainForm::buildSystemButtons()
{
    connect(m_ui->btnMin, &QToolButton::clicked, this, &CMainForm::slotMinimized);
    connect(m_ui->btnMax, &QToolButton::clicked, this, &CMainForm::slotMaximized);
    connect(m_ui->btnClose, &QToolButton::clicked, this, &CMainForm::slotClose);

    setSystemButtonImages(m_ui->btnMenu, QStringLiteral("menubtn"));
    setSystemButtonImages(m_ui->btnMin, QStringLiteral("minbtn"));
    setSystemButtonImages(m_ui->btnMax, QStringLiteral("maxbtn"));
    setSystemButtonImages(m_ui->btnClose, QStringLiteral("closebtn"));

    auto *menu = new QMenu(this);
    menu->addAction(tr("Save Path..."), this, &CMainForm::slotSavePath);
    m_ui->btnMenu->setMenu(menu);
    m_ui->btnMenu->setStyleSheet(
        m_ui->btnMenu->styleSheet() +
        QStringLiteral("QToolButton:menu-indicator{image:url(none.jpg);}"));
}

void CMainForm::buildToolBar()
{
    connect(m_ui->btnCameraMgr, &QToolButton::clicked, this, &CMainForm::slotCameraMgr);
    connect(m_ui->btnMultiLive, &QToolButton::clicked, this, &CMainForm::slotMultiLive);
    connect(m_ui->btnVideoMgr, &QToolButton::clicked, this, &CMainForm::slotVideoMgr);
    connect(m_ui->btnPhotoMgr, &QToolButton::clicked, this, &CMainForm::slotPhotoMgr);
    connect(m_ui->btnSetUp, &QToolButton::clicked, this, &CMainForm::slotSetUp);
    m_toolBar.emplace(zelvaro::ToolBar::Buttons{{
        {m_ui->btnCameraMgr, ":/images/toolbarbtn/cameramgrbtn.png",
         ":/images/toolbarbtn/cameramgrbtn_pressed.png"},
        {m_ui->btnMultiLive, ":/images/toolbarbtn/multilivebtn.png",
         ":/images/toolbarbtn/multilivebtn_pressed.png"},
        {m_ui->btnVideoMgr, ":/images/toolbarbtn/videobtn.png",
         ":/images/toolbarbtn/videobtn_pressed.png"},
        {m_ui->btnPhotoMgr, ":/images/toolbarbtn/albumbtn.png",
         ":/images/toolbarbtn/albumbtn_pressed.png"},
        {m_ui->btnSetUp, ":/images/toolbarbtn/SetUp.png",
         ":/images/toolbarbtn/Setupbtn_pressed.png"},
    }});
    m_toolBar->mark(m_ui->btnCameraMgr);
}

// Without a button held, moves reach the window only through widgets that track the mouse. What
// does not track has its own cursor, so that it never inherits a resize cursor.
void CMainForm::trackEdges(QSize largest)
{
    for (QWidget *widget : std::initializer_list<QWidget *>{m_ui->frameMain, m_ui->frameStatus,
                                                            m_ui->labelStatus, m_ui->labelVersion})
        widget->setMouseTracking(true);
    m_ui->frameTitle->setCursor(Qt::ArrowCursor);
    m_ui->frameButtons->setCursor(Qt::ArrowCursor);
    m_ui->stackedWidget->setCursor(Qt::ArrowCursor);
    m_edges.emplace(this,
                    zelvaro::EdgeResize::Frames{m_ui->frameLeft, m_ui->frameRight, m_ui->frameTop,
                                                m_ui->frameBottom},
                    largest);
}

void CMainForm::centreOnDesktop()
{
    const QSize desktopSize = QGuiApplication::primaryScreen()->size();
    move((desktopSize.width() - width()) / 2, (desktopSize.height() - height()) / 2);
}

// --- pages ---------------------------------------------------------------------------------------

void CMainForm::showPage(Page page)
{
    m_ui->stackedWidget->setCurrentIndex(page);
}

void CMainForm::leavePages()
{
    m_ui->pagePlayCamera->StopPlay();
    m_ui->pageMultiLive->StopPlay();
    m_ui->pagePlayVideo->stop(true);
    m_ui->pageVideoMgr->leave();
    m_ui->pagePhotoMgr->leave();
}

void CMainForm::showCameraMgr()
{
    leavePages();
    showPage(PageCameraMgr);
}

void CMainForm::showSearchCameraList()
{
    leavePages();
    showPage(PageSearchCameraList);
}

void CMainForm::playCamera(CCamera *camera)
{
    leavePages();
    m_ui->pagePlayCamera->SetCamera(camera);
    m_ui->pagePlayCamera->StartPlay();
    showPage(PagePlayCamera);
}

void CMainForm::showMultiLive()
{
    leavePages();
    showPage(PageMultiLive);
    m_ui->pageMultiLive->StartPlay();
}

void CMainForm::showPhotoMgr()
{
    leavePages();
    showPage(PagePhotoMgr);
    openAlbum(*m_ui->pagePhotoMgr, false);
}

void CMainForm::backToPhotoMgr()
{
    showPage(PagePhotoMgr);
}

void CMainForm::showPhoto(TileList *list, CPhotoMgrItemForm *current)
{
    m_ui->pagePlayPhoto->setList(list);
    m_ui->pagePlayPhoto->showPhoto(current);
    showPage(PagePlayPhoto);
}

void CMainForm::showVideoMgr()
{
    leavePages();
    showPage(PageVideoMgr);
    openAlbum(*m_ui->pageVideoMgr, true);
}

void CMainForm::backToVideoMgr()
{
    showPage(PageVideoMgr);
}

void CMainForm::playVideo(TileList *list, CPhotoMgrItemForm *current)
{
    m_ui->pagePlayVideo->setList(list);
    m_ui->pagePlayVideo->showVideo(current);
    showPage(PagePlayVideo);
}

bool CMainForm::mayLeaveMultiLive()
{
    return m_ui->pageMultiLive->MayLeave();
}

std::optional<QString> CMainForm::findCamera(QWidget *parent)
{
    CSearchCameraForm picker(parent);
    if (picker.exec() != QDialog::Accepted)
        return {};
    return picker.uid();
}

void CMainForm::showStatus(const QString &text)
{
    m_statusRow->showPageText(text);
}

// --- tool bar ------------------------------------------------------------------------------------

void CMainForm::slotCameraMgr()
{
    if (!mayLeaveMultiLive())
        return;
    m_toolBar->mark(m_ui->btnCameraMgr);
    showCameraMgr();
}

void CMainForm::slotMultiLive()
{
    if (!mayLeaveMultiLive())
        return;
    m_toolBar->mark(m_ui->btnMultiLive);
    showMultiLive();
}

void CMainForm::slotVideoMgr()
{
    if (!mayLeaveMultiLive())
        return;
    m_toolBar->mark(m_ui->btnVideoMgr);
    showVideoMgr();
}

void CMainForm::slotPhotoMgr()
{
    if (!mayLeaveMultiLive())
        return;
    m_toolBar->mark(m_ui->btnPhotoMgr);
    showPhotoMgr();
}

void CMainForm::slotSetUp()
{
    if (!mayLeaveMultiLive())
        return;
    m_toolBar->mark(m_ui->btnSetUp);
    showSearchCameraList();
}

void CMainForm::slotSavePath()
{
    CameraSettings &settings = CameraSettings::instance();
    QString folder = desktop().chooseFolder(this, tr("Selecte Path"), settings.albumPath());
    if (folder.isEmpty())
        return;
    folder.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (const QString reason = whyNotTheAlbum(folder); !reason.isEmpty()) {
        CMessageBox(CMessageBox::Error, tr("Error"), reason, QMessageBox::Ok, this).exec();
        return;
    }
    settings.setAlbumPath(folder);
    settings.save();
}

QString CMainForm::whyNotTheAlbum(const QString &folder) const
{
    const QString unsavable =
        zelvaro::storedTextMessage(zelvaro::SettingsText::AlbumPath, folder, tr("Path"));
    if (!unsavable.isEmpty())
        return unsavable;
    return zelvaro::canBeWritten(folder)
               ? QString()
               : tr("Nothing can be written to this folder. Please choose another one.");
}

// --- the window itself ---------------------------------------------------------------------------

void CMainForm::slotMinimized()
{
    showMinimized();
}

void CMainForm::slotMaximized()
{
    m_maximized = !m_maximized;
    setSystemButtonImages(m_ui->btnMax,
                          m_maximized ? QStringLiteral("restorebtn") : QStringLiteral("maxbtn"));
    const QString does = m_maximized ? tr("Restore") : tr("Maximize");
    m_ui->btnMax->setText(does);
    m_ui->btnMax->setToolTip(does);
    m_ui->btnMax->setAccessibleName(does);
    if (m_maximized) {
        m_normalGeometry = geometry();
        setGeometry(screen()->availableGeometry());
    } else {
        setGeometry(m_normalGeometry);
    }
    m_ui->frameTitle->setMovable(!m_maximized);
    m_edges->setEnabled(!m_maximized);
}

zelvaro::WindowPlace CMainForm::place() const
{
    return {m_maximized ? m_normalGeometry : geometry(), m_maximized};
}

void CMainForm::setPlace(const zelvaro::WindowPlace &place)
{
    QList<QRect> available{QGuiApplication::primaryScreen()->availableGeometry()};
    const auto screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        available.append(screen->availableGeometry());
    if (m_maximized)
        slotMaximized();
    setGeometry(zelvaro::reachablePlace(place.normal, available));
    if (place.maximized)
        slotMaximized();
}

void CMainForm::slotClose()
{
    QCoreApplication::exit(0);
}

void CMainForm::closeEvent(QCloseEvent *event)
{
    event->accept();
    slotClose();
}

// A double click on the title does what it does in windows with a title of the system.
bool CMainForm::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_ui->frameTitle || event->type() != QEvent::MouseButtonDblClick ||
        static_cast<QMouseEvent *>(event)->button() != Qt::LeftButton)
        return QWidget::eventFilter(watched, event);
    slotMaximized();
    return true;
}

void CMainForm::moveEvent(QMoveEvent *event)
{
    QWidget::moveEvent(event);
    if (m_edges)
        m_edges->follow();
}

void CMainForm::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_edges)
        m_edges->follow();
    showCompact(height() < compactHeight);
}

void CMainForm::showCompact(bool compact)
{
    m_ui->frameStatus->setVisible(!compact);
    m_toolBar->setCompact(compact);
}

void CMainForm::mousePressEvent(QMouseEvent *event)
{
    if (m_maximized || event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_edges->press(*event);
    event->accept();
}

void CMainForm::mouseMoveEvent(QMouseEvent *event)
{
    if (m_maximized)
        QWidget::mouseMoveEvent(event);
    else
        m_edges->move(*event);
}

void CMainForm::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_edges->release();
    event->accept();
}
