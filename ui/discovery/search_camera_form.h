#pragma once

#include "ui/discovery/device_records.h"
#include "ui/discovery/ndcp_client.h"

#include <QDialog>
#include <QStandardItemModel>

#include <memory>

namespace Ui {
class SearchCameraForm;
}

/// Modal picker: searches the local network as it opens, and again at the user's request, and hands
/// back the UID of the camera that the user chose. GUI thread only.
class CSearchCameraForm : public QDialog
{
    Q_OBJECT

public:
    explicit CSearchCameraForm(QWidget *parent = nullptr);
    ~CSearchCameraForm() override;

    /// The chosen camera's UID; empty unless the dialog was accepted.
    QString uid() const { return m_uid; }

signals:
    void signalNDCPEvent(int nMsg, int nErrorCode);

private slots:
    void slotOK();
    void slotClose();
    void slotSearchAgain();
    void slotNDCPEvent(int nMsg, int nErrorCode);
    void slotCameraItemChanged();

private:
    void addRecord(const ndcp_device &device);
    void search();
    void setSearching(bool searching);

    std::unique_ptr<Ui::SearchCameraForm> m_ui;
    QStandardItemModel m_model;
    zelvaro::DeviceRecords m_records;
    QString m_uid;
    zelvaro::NdcpClient m_client; // destroyed first: no event reaches a form under destruction
};
