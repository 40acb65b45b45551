#pragma once

#include "ui/discovery/ndcp_client.h"
#include "ui/discovery/network_form.h"

#include <QDialog>

#include <memory>

namespace Ui {
class CameraSetUp;
}

/// Modal dialog that reads and changes the network configuration of one device of the search
/// page. It works on a copy of the page's record, which is overwritten only when a request
/// succeeded. Nothing is written that was not read before: the first "Apply" reads where that is
/// still to be done. GUI thread only.
class CCameraSetUp : public QDialog
{
    Q_OBJECT

public:
    /// What the record holds in addition to the result of the search.
    enum class Configuration
    {
        Unread, ///< nothing: the device was not reached, or refused the login
        Read    ///< the device's configuration
    };

    /// record belongs to the page and must live as long as the dialog.
    CCameraSetUp(QWidget *page, ndcp_device *record, Configuration configuration);
    ~CCameraSetUp() override;

signals:
    void signalNDCPEvent(int nMsg, int nErrorCode);
    void signalGetConfFinished();
    void signalSetConfFinished();
    /// The page's record has been overwritten.
    void recordChanged();

private slots:
    void slotQuery();
    void slotApply();
    void slotExit();
    void IPCheckBoxClicked();
    void DNSCheckBoxClicked();
    void slotNDCPEvent(int nMsg, int nErrorCode);

private:
    void fillControls();
    void showForm(const zelvaro::NetworkForm &form);
    bool readConfiguration();
    bool readBeneathEdits();
    zelvaro::NetworkForm entered() const;
    void takeOverResult();
    void showError(const QString &text);
    void showLibraryError(int code);

    std::unique_ptr<Ui::CameraSetUp> m_ui;
    ndcp_device *m_pageRecord;
    ndcp_device m_record;
    Configuration m_configuration;
    bool m_hasAnswer = false;     // the last request has succeeded
    zelvaro::NetworkForm m_shown; // as the controls were filled
    zelvaro::NdcpClient m_client; // destroyed first: no event reaches a dialog under destruction
};
