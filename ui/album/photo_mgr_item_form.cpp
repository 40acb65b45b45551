#include "ui/album/photo_mgr_item_form.h"

#include "ui/common/album_files.h"
#include "ui/common/sheet_picture.h"
#include "ui/common/style_url.h"
#include "ui/common/tool_tip.h"
#include "ui_photo_mgr_item_form.h"

#include <QContextMenuEvent>
#include <QMenu>

namespace {

const QString frameHovered = QStringLiteral(
    "QFrame#framePhotoItemBk{border-image:url(:/images/cameraitem/cameraitemframe_hover.png) 8 12 "
    "14 10;border-top-width:4px;border-right-width:6px;border-bottom-width:7px;"
    "border-left-width:5px;}");

} // namespace

CPhotoMgrItemForm::CPhotoMgrItemForm(QWidget *parent, Content content)
    : TileForm(parent)
    , m_near(content == Content::AtOnce)
{
    setObjectName(QStringLiteral("PhotoMgrItemForm"));
    setFixedSize(tileWidth, tileHeight);
    if (m_near)
        build();
    else
        hide();
}

CPhotoMgrItemForm::~CPhotoMgrItemForm() = default;

void CPhotoMgrItemForm::build()
{
    m_ui = std::make_unique<Ui::CPhotoMgrItemForm>();
    m_ui->setupUi(this);
    m_ui->labelPhotoName->setText(m_fileName);
    connect(m_ui->btnDelete, &QToolButton::clicked, this, &CPhotoMgrItemForm::slotDelete);
    connect(m_ui->btnPlay, &QToolButton::clicked, this, &CPhotoMgrItemForm::slotPlay);
    setTabOrder(this, m_ui->btnPlay);
    setTabOrder(m_ui->btnPlay, m_ui->btnDelete);
}

void CPhotoMgrItemForm::setItem(const QString &fileName, const QString &fullPath)
{
    m_fileName = fileName;
    m_fullPath = fullPath;
    setAccessibleName(fileName);
    setToolTip(zelvaro::plainToolTip(fileName));
    if (m_ui)
        m_ui->labelPhotoName->setText(fileName);
}

void CPhotoMgrItemForm::setThumbnail(bool videoMode)
{
    m_thumbPath = videoMode ? zelvaro::clipStill(m_fullPath) : m_fullPath;
    m_thumbShown = false;
    loadThumbnail();
}

void CPhotoMgrItemForm::setNear(bool isNear)
{
    if (m_near == isNear)
        return;
    m_near = isNear;
    if (m_near && !m_ui)
        build();
    if (!m_near && m_thumbShown) {
        m_ui->framePhotoItem->setStyleSheet({});
        m_thumbShown = false;
    }
    setVisible(m_near);
}

void CPhotoMgrItemForm::loadThumbnail()
{
    if (!isThumbnailDue())
        return;
    m_thumbShown = true;
    zelvaro::setPictureSheet(m_ui->framePhotoItem,
                             QStringLiteral("QFrame#framePhotoItem{border-image:url(%1);}")
                                 .arg(zelvaro::styleUrl(m_thumbPath)),
                             m_thumbPath,
                             m_ui->framePhotoItem->maximumSize() * devicePixelRatioF());
}

void CPhotoMgrItemForm::slotDelete()
{
    emit deletePhoto(this);
}

void CPhotoMgrItemForm::slotPlay()
{
    emit playPhoto(this);
}

void CPhotoMgrItemForm::showFocus(bool focused)
{
    if (m_ui)
        m_ui->framePhotoItemBk->setStyleSheet(focused ? frameHovered : QString());
}

// A tile that has a context menu is in sight, so it has its buttons.
void CPhotoMgrItemForm::contextMenuEvent(QContextMenuEvent *event)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto keyed = [](const QToolButton *button, Qt::Key key) {
        return button->toolTip() + QLatin1Char('\t') +
               QKeySequence(key).toString(QKeySequence::NativeText);
    };
    menu->addAction(keyed(m_ui->btnPlay, Qt::Key_Return), this, &CPhotoMgrItemForm::slotPlay);
    menu->addAction(keyed(m_ui->btnDelete, Qt::Key_Delete), this, &CPhotoMgrItemForm::slotDelete);
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    menu->popup(byKey ? mapToGlobal(rect().center()) : event->globalPos());
    event->accept();
}
