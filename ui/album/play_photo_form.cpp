#include "ui/album/play_photo_form.h"

#include "ui/album/photo_mgr_item_form.h"
#include "ui/common/sheet_picture.h"
#include "ui_play_photo_form.h"

#include <QHideEvent>

CPlayPhotoForm::CPlayPhotoForm(QWidget *parent)
    : AlbumView(parent)
    , m_ui(std::make_unique<Ui::CPlayPhotoForm>())
{
    m_ui->setupUi(this);
    setUp(widgetsOf(*m_ui, m_ui->framePhoto));
    connect(m_ui->framePhoto, &CPhotoFrame::doubleClicked, this,
            &CPlayPhotoForm::slotPhotoDoubleClicked);
}

CPlayPhotoForm::~CPlayPhotoForm() = default;

void CPlayPhotoForm::showPhoto(CPhotoMgrItemForm *tile)
{
    const QSize size = zelvaro::pictureSize(tile->fullPath());
    setCurrent(tile, size);
    showPicture();
    m_ui->framePhoto->setFocus();
}

void CPlayPhotoForm::showPicture()
{
    m_ui->framePhoto->setPhoto(current()->fullPath(), pictureSize());
    m_holdsPicture = true;
}

void CPlayPhotoForm::leave()
{
    m_ui->framePhoto->clear();
    m_holdsPicture = false;
}

void CPlayPhotoForm::showEvent(QShowEvent *event)
{
    AlbumView::showEvent(event);
    if (current() && !m_holdsPicture)
        showPicture();
}

// The tool bar shows another page without notice to this one. A window that is minimized keeps its
// picture.
void CPlayPhotoForm::hideEvent(QHideEvent *event)
{
    AlbumView::hideEvent(event);
    if (!event->spontaneous())
        leave();
}
