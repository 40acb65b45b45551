#include "ui/discovery/search_camera_list_form.h"

#include "camera/developer_check.h"
#include "ui/common/busy_dialog.h"
#include "ui/common/camera_list_icons.h"
#include "ui/common/desktop.h"
#include "ui/common/message_box.h"
#include "ui/common/tool_tip.h"
#include "ui/discovery/camera_set_up.h"
#include "ui/discovery/device_text.h"
#include "ui_search_camera_list_form.h"

#include <QDebug>
#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QUrl>
#include <QVBoxLayout>

namespace {

constexpr int leastColumnWidth = 80; // pixels; narrower ones would cut their headings

} // namespace

CSearchCameraListForm::CSearchCameraListForm(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::SearchCameraListForm>())
    , m_client([this](int message, int error) { emit signalNDCPEvent(message, error); })
{
    m_ui->setupUi(this);
    m_model.setHorizontalHeaderLabels(
        {tr("Model"), tr("Name"), tr("Location"), tr("IP"), tr("Port"), tr("MAC"), tr("P2P UID")});
    m_ui->tableView->setModel(&m_model);
    m_ui->tableView->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_ui->tableView->horizontalHeader()->setMinimumSectionSize(leastColumnWidth);

    noteWhenEmpty();

    connect(m_ui->btnOk, &QPushButton::clicked, this, &CSearchCameraListForm::slotOK);
    connect(m_ui->btnSearch, &QPushButton::clicked, this, &CSearchCameraListForm::slotSearch);
    connect(m_ui->btnBrowser, &QPushButton::clicked, this, &CSearchCameraListForm::slotBrowser);
    connect(m_ui->btnClean, &QPushButton::clicked, this, &CSearchCameraListForm::slotClean);
    connect(this, &CSearchCameraListForm::signalNDCPEvent, this,
            &CSearchCameraListForm::slotNDCPEvent, Qt::QueuedConnection);
}

CSearchCameraListForm::~CSearchCameraListForm() = default;

void CSearchCameraListForm::noteWhenEmpty()
{
    QWidget *viewport = m_ui->tableView->viewport();
    auto *note = new QLabel(tr("Press \"Search\" to find the cameras of this network."), viewport);
    note->setObjectName(QStringLiteral("labelEmpty"));
    note->setAlignment(Qt::AlignCenter);
    note->setWordWrap(true);
    note->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto *layout = new QVBoxLayout(viewport);
    layout->addWidget(note);
    const auto follow = [this, note] { note->setVisible(m_model.rowCount() == 0); };
    connect(&m_model, &QStandardItemModel::rowsInserted, note, follow);
    connect(&m_model, &QStandardItemModel::rowsRemoved, note, follow);
}

void CSearchCameraListForm::slotSearch()
{
    const QPointer<CSearchCameraListForm> self(this);
    const bool started = zelvaro::runBusy(this, tr("Please wait for search camera..."), this,
                                          &CSearchCameraListForm::signalSearchFinished,
                                          [this] { return m_client.discover(); });
    if (self && !started)
        showError(tr("The search cannot be started. Please wait a while and try again."));
}

void CSearchCameraListForm::slotNDCPEvent(int nMsg, int nErrorCode)
{
    qDebug("CSearchCameraListForm::ndcpEvent()\r\n");
    if (nMsg != NDCP_EVENT_GET_CONF) {
        if (!ZELVARO_CHECK(nMsg == NDCP_EVENT_DISCOVERY, "SearchCameraFormList"))
            return;
        m_client.forEachDevice([this](const ndcp_device &device) { m_records.merge(device); });
    } else {
        m_configurationRead = nErrorCode == 0;
    }
    rebuildTable();
    emit signalSearchFinished();
}

void CSearchCameraListForm::rebuildTable()
{
    const ndcp_device *current = recordOf(m_ui->tableView->currentIndex());
    m_model.removeRows(0, m_model.rowCount());
    for (const auto &record : m_records.all()) {
        appendRow(record.get());
        if (record.get() == current)
            m_ui->tableView->selectRow(m_model.rowCount() - 1);
    }
}

void CSearchCameraListForm::appendRow(ndcp_device *record)
{
    const QStringList texts = {
        zelvaro::fieldText(record->model),    zelvaro::fieldText(record->name),
        zelvaro::fieldText(record->location), zelvaro::addressText(record->ip),
        QString::number(record->http_port),   zelvaro::macText(*record),
        zelvaro::fieldText(record->uid)};
    QList<QStandardItem *> row;
    for (const QString &text : texts) {
        auto *item = new QStandardItem(text);
        item->setTextAlignment(Qt::AlignCenter);
        // The columns share the width, so that a long text may be cut.
        item->setToolTip(zelvaro::plainToolTip(text));
        row.append(item);
    }
    row.first()->setData(QVariant::fromValue(record), zelvaro::cameraListPointerRole);
    m_model.appendRow(row);
}

ndcp_device *CSearchCameraListForm::recordOf(const QModelIndex &index) const
{
    return index.siblingAtColumn(0).data(zelvaro::cameraListPointerRole).value<ndcp_device *>();
}

ndcp_device *CSearchCameraListForm::selectedRecord()
{
    const QModelIndex current = m_ui->tableView->currentIndex();
    if (m_ui->tableView->selectionModel()->isSelected(current)) {
        if (ndcp_device *record = recordOf(current))
            return record;
    }
    showError(tr("Please select a camera."));
    return nullptr;
}

void CSearchCameraListForm::showError(const QString &text)
{
    CMessageBox(CMessageBox::Error, tr("Error"), text, QMessageBox::Ok, window()).exec();
}

void CSearchCameraListForm::slotBrowser()
{
    if (const ndcp_device *record = selectedRecord())
        desktop().openUrl(QUrl(zelvaro::webPage(*record)));
}

void CSearchCameraListForm::slotOK()
{
    ndcp_device *record = selectedRecord();
    if (record == nullptr)
        return;
    const QPointer<CSearchCameraListForm> self(this);
    m_configurationRead = false;
    zelvaro::runBusy(this, tr("Please wait for get onfiguration..."), this,
                     &CSearchCameraListForm::signalSearchFinished,
                     [this, record] { return m_client.getConf(record); });
    if (!self)
        return;
    using Configuration = CCameraSetUp::Configuration;
    auto *dialog = new CCameraSetUp(
        this, record, m_configurationRead ? Configuration::Read : Configuration::Unread);
    connect(dialog, &CCameraSetUp::recordChanged, this, &CSearchCameraListForm::rebuildTable);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->exec();
}

void CSearchCameraListForm::slotClean()
{
    m_model.removeRows(0, m_model.rowCount());
    m_records.clear();
}
