#include "ui/album/play_photo_form.h"

#include "ui/album/album_view.h"
#include "ui/album/photo_mgr_item_form.h"
#include "ui/album/sheet_picture.h"
#include "ui_play_photo_form.h"

#include <QKeyEvent>

CPlayPhotoForm::CPlayPhotoForm(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::CPlayPhotoForm>())
{
    m_ui->setupUi(this);
    m_view = std::make_unique<zelvaro::AlbumView>(m_ui->framePhotoArea, m_ui->framePhotoWindow,
                                                  m_ui->framePhoto, m_ui->labelStatus);
    m_ui->framePhoto->installEventFilter(this);
    connect(m_ui->framePhotoArea, &CVideoAreaFrame::signalResize, this,
            &CPlayPhotoForm::slotPhotoAreaResize);
    connect(m_ui->btnPrev, &QToolButton::clicked, this, &CPlayPhotoForm::slotPrev);
    connect(m_ui->btnNext, &QToolButton::clicked, this, &CPlayPhotoForm::slotNext);
    connect(m_ui->btnZoomIn, &QToolButton::clicked, this, &CPlayPhotoForm::slotZoomIn);
    connect(m_ui->btnZoomOut, &QToolButton::clicked, this, &CPlayPhotoForm::slotZoomOut);
    connect(m_ui->btnDelete, &QToolButton::clicked, this, &CPlayPhotoForm::slotDelete);
    connect(m_ui->btnFullScreen, &QToolButton::clicked, this, &CPlayPhotoForm::slotFullScreen);
    connect(m_ui->btnBack, &QToolButton::clicked, this, &CPlayPhotoForm::slotBack);
    connect(m_ui->framePhoto, &CPhotoFrame::doubleClicked, this,
            &CPlayPhotoForm::slotPhotoDoubleClicked);
}

CPlayPhotoForm::~CPlayPhotoForm() = default;

void CPlayPhotoForm::setList(PageHost::TileList *list)
{
    m_view->setList(list);
}

void CPlayPhotoForm::showPhoto(CPhotoMgrItemForm *tile)
{
    const QSize size = zelvaro::pictureSize(tile->fullPath());
    m_view->show(tile, size);
    m_ui->framePhoto->setPhoto(tile->fullPath(), size);
    m_ui->framePhoto->setFocus();
}

int CPlayPhotoForm::zoom() const
{
    return m_view->zoom();
}

bool CPlayPhotoForm::isPhotoFullScreen() const
{
    return m_view->isFullScreen();
}

void CPlayPhotoForm::slotPhotoAreaResize()
{
    m_view->areaResized();
}

void CPlayPhotoForm::slotPrev()
{
    if (CPhotoMgrItemForm *tile = m_view->previous())
        showPhoto(tile);
}

void CPlayPhotoForm::slotNext()
{
    if (CPhotoMgrItemForm *tile = m_view->next())
        showPhoto(tile);
}

void CPlayPhotoForm::slotZoomIn()
{
    m_view->zoomIn();
}

void CPlayPhotoForm::slotZoomOut()
{
    m_view->zoomOut();
}

void CPlayPhotoForm::slotDelete()
{
    if (CPhotoMgrItemForm *tile = m_view->deleteCurrent())
        showPhoto(tile);
    else
        slotBack();
}

void CPlayPhotoForm::slotFullScreen()
{
    m_view->enterFullScreen();
}

void CPlayPhotoForm::slotPhotoDoubleClicked()
{
    m_view->toggleFullScreen();
}

void CPlayPhotoForm::slotBack()
{
    m_view->leaveFullScreen();
    m_ui->framePhoto->clear();
    if (PageHost *host = pageHost())
        host->backToPhotoMgr();
}

// The photo in full screen is a window of its own, whose keys do not come to the page.
bool CPlayPhotoForm::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_ui->framePhoto && event->type() == QEvent::KeyPress &&
        handleKey(static_cast<QKeyEvent *>(event)->key()))
        return true;
    return QWidget::eventFilter(watched, event);
}

void CPlayPhotoForm::keyPressEvent(QKeyEvent *event)
{
    if (!handleKey(event->key()))
        QWidget::keyPressEvent(event);
}

bool CPlayPhotoForm::handleKey(int key)
{
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_PageUp:
        slotPrev();
        return true;
    case Qt::Key_Right:
    case Qt::Key_PageDown:
        slotNext();
        return true;
    case Qt::Key_Plus:
        slotZoomIn();
        return true;
    case Qt::Key_Minus:
        slotZoomOut();
        return true;
    case Qt::Key_Delete:
        slotDelete();
        return true;
    default:
        return false;
    }
}
