#include "ui/discovery/search_camera_form.h"

#include "ui/common/camera_list_icons.h"
#include "ui/common/message_box.h"
#include "ui/discovery/device_text.h"
#include "ui_search_camera_form.h"

#include <QDebug>

CSearchCameraForm::CSearchCameraForm(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint)
    , m_ui(std::make_unique<Ui::SearchCameraForm>())
    , m_client([this](int message, int error) { emit signalNDCPEvent(message, error); })
{
    m_ui->setupUi(this);
    m_ui->frameTitle->attach(this, true);
    setAttribute(Qt::WA_TranslucentBackground);

    m_ui->listCameraList->setModel(&m_model);
    connect(m_ui->btnOk, &QPushButton::clicked, this, &CSearchCameraForm::slotOK);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &CSearchCameraForm::slotClose);
    connect(m_ui->listCameraList, &QListView::activated, this, &CSearchCameraForm::slotOK);
    connect(m_ui->listCameraList->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &CSearchCameraForm::slotCameraItemChanged);
    connect(this, &CSearchCameraForm::signalNDCPEvent, this, &CSearchCameraForm::slotNDCPEvent,
            Qt::QueuedConnection);

    connect(m_ui->btnSearchAgain, &QPushButton::clicked, this, &CSearchCameraForm::slotSearchAgain);
    m_ui->btnSearchAgain->setShortcut(Qt::Key_F5);
    search();
}

CSearchCameraForm::~CSearchCameraForm() = default;

void CSearchCameraForm::search()
{
    const bool started = m_client.discover();
    setSearching(started);
    if (!started)
        m_ui->labelStatus->setText(tr("The search cannot be started."));
}

void CSearchCameraForm::slotSearchAgain()
{
    m_model.removeRows(0, m_model.rowCount());
    m_records.clear();
    search();
}

void CSearchCameraForm::setSearching(bool searching)
{
    m_ui->btnSearchAgain->setEnabled(!searching);
    m_ui->btnOk->setEnabled(!searching);
    m_ui->btnCancel->setEnabled(!searching);
    m_ui->labelStatus->setText(searching ? tr("Searching...")
                                         : tr("Cameras found: %1").arg(m_model.rowCount()));
}

void CSearchCameraForm::slotNDCPEvent(int nMsg, int nErrorCode)
{
    Q_UNUSED(nMsg)
    Q_UNUSED(nErrorCode)
    qDebug("CSearchCameraForm::ndcpEvent()\r\n");
    m_client.forEachDevice([this](const ndcp_device &device) { addRecord(device); });
    setSearching(false);
    m_ui->listCameraList->setFocus();
}

void CSearchCameraForm::addRecord(const ndcp_device &device)
{
    ndcp_device *record = m_records.append(device);
    if (record == nullptr)
        return;
    const QString text = zelvaro::fieldText(record->model) + QStringLiteral("  (") +
                         zelvaro::fieldText(record->uid) + QLatin1Char(')');
    m_model.appendRow(zelvaro::makeCameraListItem(text, QVariant::fromValue(record)));
}

void CSearchCameraForm::slotCameraItemChanged()
{
    zelvaro::markCurrentCamera(m_model, m_ui->listCameraList->currentIndex().row());
}

void CSearchCameraForm::slotOK()
{
    const QModelIndex current = m_ui->listCameraList->currentIndex();
    const auto *record = current.data(zelvaro::cameraListPointerRole).value<ndcp_device *>();
    if (record == nullptr) {
        CMessageBox(CMessageBox::Error, tr("Error"), tr("Please select a camera."), QMessageBox::Ok,
                    this)
            .exec();
        return;
    }
    m_uid = zelvaro::fieldText(record->uid);
    accept();
}

void CSearchCameraForm::slotClose()
{
    reject();
}
