#include "ui/live/selection_dialog.h"

#include "ui/live/select_camera_item_form.h"
#include "ui/live/selection_frame.h"
#include "ui_selection_dialog.h"

#include <QScrollBar>

namespace zelvaro {

SelectionDialog::SelectionDialog(const QString &title, SelectionFrame *frame, QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint)
    , m_ui(std::make_unique<Ui::SelectionDialog>())
    , m_frame(frame)
{
    m_ui->setupUi(this);
    setAttribute(Qt::WA_TranslucentBackground);
    m_ui->frameTitle->attach(this, true);
    setWindowTitle(title);
    m_ui->labelTitle->setText(title);
    m_ui->scrollCameras->setWidget(m_frame);
    m_ui->scrollCameras->viewport()->setAutoFillBackground(false);
    m_frame->setAutoFillBackground(false);

    // The grid came last and would be left last.
    const QList<CSelectCameraItemForm *> &tiles = m_frame->tiles();
    if (!tiles.isEmpty()) {
        tiles.first()->setFocus();
        setTabOrder(tiles.last(), m_ui->btnOK);
    }
    setTabOrder(m_ui->btnOK, m_ui->btnClose);

    m_ui->scrollCameras->viewport()->installEventFilter(this);
    connect(m_ui->scrollCameras->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &SelectionDialog::tellVisibleRows);
    tellVisibleRows(); // the first show loads the pictures

    connect(m_ui->btnOK, &QPushButton::clicked, this, &SelectionDialog::slotOK);
    connect(m_ui->btnClose, &QToolButton::clicked, this, &SelectionDialog::slotClose);
}

SelectionDialog::~SelectionDialog() = default;

bool SelectionDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_ui->scrollCameras->viewport() && event->type() == QEvent::Resize)
        tellVisibleRows();
    return QDialog::eventFilter(watched, event);
}

void SelectionDialog::tellVisibleRows()
{
    const int top = m_ui->scrollCameras->verticalScrollBar()->value();
    m_frame->setVisibleRows(top, top + m_ui->scrollCameras->viewport()->height());
}

void SelectionDialog::slotOK()
{
    accept();
}

void SelectionDialog::slotClose()
{
    reject();
}

} // namespace zelvaro
