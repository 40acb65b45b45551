#include "ui/album/play_photo_form.h"

#include "ui/album/photo_mgr_item_form.h"
#include "ui/album/sheet_picture.h"
#include "ui_play_photo_form.h"

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
    m_ui->framePhoto->setPhoto(tile->fullPath(), size);
    m_ui->framePhoto->setFocus();
}

void CPlayPhotoForm::leave()
{
    m_ui->framePhoto->clear();
}
