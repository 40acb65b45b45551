#pragma once

#include "ui/discovery/ndcp_client.h"
#include "ui/discovery/network_form.h"

#include <QDialog>

#include <memory>

namespace Ui {
class CameraSetUp;
}
class CSearchCameraListForm;

/// Modal dialog that reads and changes the network configuration of one device of the search
/// page. It works on a copy of the page's record, which is overwritten only when a request
/// succeeded. GUI thread only.
class CCameraSetUp : public QDialog
{
    Q_OBJECT

public:
    /// record belongs to the page and must live as long as the dialog.
    CCameraSetUp(CSearchCameraListForm *page, ndcp_device *record);
    ~CCameraSetUp() override;

signals:
    void signalNDCPEvent(int nMsg, int nErrorCode);
    void signalGetConfFinished();
    void signalSetConfFinished();

private slots:
    void slotQuery();
    void slotApply();
    void slotExit();
    void IPCheckBoxClicked();
    void DNSCheckBoxClicked();
    void slotNDCPEvent(int nMsg, int nErrorCode);

private:
    void fillControls();
    zelvaro::NetworkForm entered() const;
    void takeOverResult();
    void showError(const QString &text);
    void showLibraryError(int code);

    std::unique_ptr<Ui::CameraSetUp> m_ui;
    CSearchCameraListForm *m_page;
    ndcp_device *m_pageRecord;
    ndcp_device m_record;
    zelvaro::NdcpClient m_client; // destroyed first: no event reaches a dialog under destruction
};
