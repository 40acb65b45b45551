#include "ui/album/album_view.h"

#include "ui/album/photo_mgr_item_form.h"
#include "ui/common/message_box.h"
#include "ui/common/page_actions.h"
#include "ui/common/status_text.h"
#include "ui/common/video_area_frame.h"

#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QToolButton>

namespace zelvaro {

namespace {

bool removed(const QString &file)
{
    return QFile::remove(file) || !QFile::exists(file);
}

/// With a modifier a key means something else, such as another way to delete.
bool isPlain(const QKeyEvent &event)
{
    return (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

} // namespace

AlbumView::AlbumView(QWidget *parent) : QWidget(parent) {}

AlbumView::~AlbumView() = default;

void AlbumView::setUp(const Widgets &widgets)
{
    m_box = std::make_unique<PictureBox>(widgets.area, widgets.box, widgets.surface);
    m_box->markFocusOn(widgets.status->parentWidget());
    m_surface = widgets.surface;
    m_status = widgets.status;
    m_surface->installEventFilter(this);
    connect(widgets.area, &CVideoAreaFrame::signalResize, this, &AlbumView::slotPhotoAreaResize);
    connect(widgets.previous, &QToolButton::clicked, this, &AlbumView::slotPrev);
    connect(widgets.next, &QToolButton::clicked, this, &AlbumView::slotNext);
    connect(widgets.zoomIn, &QToolButton::clicked, this, &AlbumView::slotZoomIn);
    connect(widgets.zoomOut, &QToolButton::clicked, this, &AlbumView::slotZoomOut);
    connect(widgets.remove, &QToolButton::clicked, this, &AlbumView::slotDelete);
    connect(widgets.fullScreen, &QToolButton::clicked, this, &AlbumView::slotFullScreen);
    connect(widgets.back, &QToolButton::clicked, this, &AlbumView::slotBack);
    offerActions(widgets);
}

void AlbumView::offerActions(const Widgets &widgets)
{
    m_actions = new PageActions(this);
    m_actions->addHandled(widgets.previous, Qt::Key_Left);
    m_actions->addHandled(widgets.next, Qt::Key_Right);
    m_actions->addSeparator();
    m_actions->addHandled(widgets.zoomIn, Qt::Key_Plus);
    m_actions->addHandled(widgets.zoomOut, Qt::Key_Minus);
    m_actions->leaveOutInFullScreen(m_actions->add(widgets.fullScreen, {Qt::Key_F}));
    m_actions->addSeparator();
    m_actions->addHandled(widgets.remove, Qt::Key_Delete);
    m_actions->add(widgets.back, {Qt::Key_Backspace, Qt::Key_Back});
    m_actions->addSeparator();
    m_actions->offerOn(widgets.area);
    m_actions->offerOn(widgets.surface);
}

// --- the tiles -----------------------------------------------------------------------------------

CPhotoMgrItemForm *AlbumView::current() const
{
    return m_current;
}

int AlbumView::currentIndex() const
{
    return m_list && m_current ? static_cast<int>(m_list->indexOf(m_current)) : -1;
}

void AlbumView::slotPrev()
{
    const int index = currentIndex();
    if (index > 0)
        showTile(m_list->at(index - 1));
}

void AlbumView::slotNext()
{
    const int index = currentIndex();
    if (index >= 0 && index + 1 < m_list->size())
        showTile(m_list->at(index + 1));
}

void AlbumView::slotDelete()
{
    const int index = currentIndex();
    if (index >= 0) {
        CPhotoMgrItemForm *tile = m_list->at(index);
        closeFile();
        if (!removed(tile->fullPath())) {
            tellNotDeleted(tile->fileName());
            return;
        }
        m_list->removeAt(index);
        m_current.clear();
        tile->hide();
        tile->deleteLater();
    }
    if (!m_list || m_list->isEmpty())
        slotBack();
    else if (index >= 0)
        showTile(m_list->at(qMin(index, static_cast<int>(m_list->size()) - 1)));
}

void AlbumView::tellNotDeleted(const QString &fileName)
{
    QWidget *parent = m_surface->window();
    if (!isPictureFullScreen() && pageHost() && pageHost()->dialogParent())
        parent = pageHost()->dialogParent();
    CMessageBox(CMessageBox::Error, tr("Error"), tr("\"%1\" cannot be deleted.").arg(fileName),
                QMessageBox::Ok, parent)
        .exec();
}

void AlbumView::slotBack()
{
    leaveFullScreen();
    leave();
    if (PageHost *host = pageHost())
        backToAlbum(*host);
}

// --- the picture on the page ---------------------------------------------------------------------

void AlbumView::setCurrent(CPhotoMgrItemForm *tile, QSize picture)
{
    m_current = tile;
    m_picture = picture;
    m_note.clear();
    m_box->resetZoom();
    place();
}

void AlbumView::setPictureSize(QSize picture)
{
    m_picture = picture;
    place();
}

void AlbumView::setNote(const QString &note)
{
    m_note = note;
    showStatus();
}

void AlbumView::slotPhotoAreaResize()
{
    m_box->resetZoom();
    place();
}

void AlbumView::slotZoomIn()
{
    m_box->zoomIn();
    place();
}

void AlbumView::slotZoomOut()
{
    m_box->zoomOut();
    place();
}

void AlbumView::slotFullScreen()
{
    m_box->enterFullScreen();
    moved();
}

void AlbumView::leaveFullScreen()
{
    m_box->leaveFullScreen();
    moved();
}

void AlbumView::slotPhotoDoubleClicked()
{
    m_box->toggleFullScreen();
    moved();
}

void AlbumView::place()
{
    m_box->calculate(m_picture);
    m_box->position();
    moved();
}

void AlbumView::moved()
{
    showStatus();
    if (!isPictureFullScreen())
        pictureMoved();
}

void AlbumView::showStatus()
{
    if (!m_current) {
        m_status->clear();
        return;
    }
    QString text = m_current->fileName() + QLatin1String(statusGap) +
                   scaledSizeText(m_picture, m_box->layout().videoRect.width());
    if (!m_note.isEmpty())
        text += QLatin1String(statusGap) + m_note;
    m_status->setText(text);
}

// --- keys ----------------------------------------------------------------------------------------

// The picture in full screen is a separate window, whose keys do not reach the page.
bool AlbumView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_surface && event->type() == QEvent::KeyPress &&
        handleKey(*static_cast<QKeyEvent *>(event)))
        return true;
    return QWidget::eventFilter(watched, event);
}

void AlbumView::keyPressEvent(QKeyEvent *event)
{
    if (!handleKey(*event))
        QWidget::keyPressEvent(event);
}

bool AlbumView::handleKey(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Plus: // with Shift on many keyboards
        slotZoomIn();
        return true;
    case Qt::Key_Minus:
        slotZoomOut();
        return true;
    default:
        return isPlain(event) && handlePlainKey(event.key(), event.isAutoRepeat());
    }
}

bool AlbumView::handlePlainKey(int key, bool repeated)
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
    case Qt::Key_Delete:
        // The neighbour is shown at once: a key that is held would take file after file.
        if (!repeated)
            slotDelete();
        return true;
    default:
        return false;
    }
}

} // namespace zelvaro
