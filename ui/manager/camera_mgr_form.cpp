#include "ui/manager/camera_mgr_form.h"

#include "ui_camera_mgr_form.h"

#include <QScrollBar>

CCameraMgrForm::CCameraMgrForm(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::CCameraMgrForm>())
{
    m_ui->setupUi(this);
    m_ui->scrollCameraMgr->viewport()->installEventFilter(this);
    connect(m_ui->scrollCameraMgr->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &CCameraMgrForm::tellVisibleRows);
    // Before the first show, which makes a window of the window system of whatever is not hidden.
    tellVisibleRows();
}

CCameraMgrForm::~CCameraMgrForm() = default;

void CCameraMgrForm::fill()
{
    m_ui->frameCameraMgr->fill();
}

// The viewport is what the user sees of the grid: it also narrows when a scroll bar comes.
bool CCameraMgrForm::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_ui->scrollCameraMgr->viewport() && event->type() == QEvent::Resize) {
        m_ui->frameCameraMgr->layoutTiles(m_ui->scrollCameraMgr->viewport()->width());
        tellVisibleRows();
    }
    return QWidget::eventFilter(watched, event);
}

void CCameraMgrForm::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_ui->frameCameraMgr->setShown(true);
}

void CCameraMgrForm::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_ui->frameCameraMgr->setShown(false);
}

void CCameraMgrForm::tellVisibleRows()
{
    const int top = m_ui->scrollCameraMgr->verticalScrollBar()->value();
    m_ui->frameCameraMgr->setVisibleRows(top, top + m_ui->scrollCameraMgr->viewport()->height());
}
