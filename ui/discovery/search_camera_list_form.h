#pragma once

#include "ui/discovery/device_records.h"
#include "ui/discovery/ndcp_client.h"

#include <QStandardItemModel>
#include <QWidget>

#include <memory>

namespace Ui {
class SearchCameraListForm;
}

/// The page that finds the cameras of the local network: a table of the devices, their web pages
/// and their network set-up. GUI thread only.
class CSearchCameraListForm : public QWidget
{
    Q_OBJECT

public:
    explicit CSearchCameraListForm(QWidget *parent = nullptr);
    ~CSearchCameraListForm() override;

signals:
    void signalNDCPEvent(int nMsg, int nErrorCode);
    /// A request has ended: closes the wait dialog that is open.
    void signalSearchFinished();

private slots:
    void slotOK();
    void slotSearch();
    void slotBrowser();
    void slotClean();
    void slotNDCPEvent(int nMsg, int nErrorCode);

private:
    /// Fills the table again from the kept records; the current row stays current.
    void rebuildTable();
    ndcp_device *recordOf(const QModelIndex &index) const;
    /// The record of the row that is current and selected; without one a message is shown, and it
    /// is null.
    ndcp_device *selectedRecord();
    void showError(const QString &text);
    void appendRow(ndcp_device *record);
    /// Says in the empty table how it is filled.
    void noteWhenEmpty();

    std::unique_ptr<Ui::SearchCameraListForm> m_ui;
    QStandardItemModel m_model;
    zelvaro::DeviceRecords m_records;
    bool m_configurationRead = false; // by the last request for it
    zelvaro::NdcpClient m_client;     // destroyed first: no event reaches a page under destruction
};
