#include "ui/discovery/camera_set_up.h"

#include "camera/developer_check.h"
#include "ui/common/busy_dialog.h"
#include "ui/common/message_box.h"
#include "ui/discovery/address_edit.h"
#include "ui/discovery/device_text.h"
#include "ui_camera_set_up.h"

#include <QIntValidator>
#include <QPointer>

CCameraSetUp::CCameraSetUp(QWidget *page, ndcp_device *record, Configuration configuration)
    : QDialog(page, Qt::FramelessWindowHint)
    , m_ui(std::make_unique<Ui::CameraSetUp>())
    , m_pageRecord(record)
    , m_record(*record)
    , m_configuration(configuration)
    , m_client([this](int message, int error) { emit signalNDCPEvent(message, error); })
{
    m_ui->setupUi(this);
    m_ui->frameTitle->attach(this, true);
    setAttribute(Qt::WA_TranslucentBackground);

    connect(this, &CCameraSetUp::signalNDCPEvent, this, &CCameraSetUp::slotNDCPEvent,
            Qt::QueuedConnection);
    connect(m_ui->btnQuery, &QPushButton::clicked, this, &CCameraSetUp::slotQuery);
    connect(m_ui->btnApply, &QPushButton::clicked, this, &CCameraSetUp::slotApply);
    connect(m_ui->btnExit, &QPushButton::clicked, this, &CCameraSetUp::slotExit);
    connect(m_ui->checkAssignIp, &QCheckBox::clicked, this, &CCameraSetUp::IPCheckBoxClicked);
    connect(m_ui->checkAssignDns, &QCheckBox::clicked, this, &CCameraSetUp::DNSCheckBoxClicked);

    m_ui->editHttpPort->setValidator(new QIntValidator(0, 65535, this));
    m_ui->editHttpPort->setMaxLength(5);
    const int longest = static_cast<int>(sizeof m_record.username) - 1;
    m_ui->editUserName->setMaxLength(longest);
    m_ui->editPassword->setMaxLength(longest);
    fillControls();
}

CCameraSetUp::~CCameraSetUp() = default;

void CCameraSetUp::fillControls()
{
    m_shown = zelvaro::networkForm(m_record);
    showForm(m_shown);
}

void CCameraSetUp::showForm(const zelvaro::NetworkForm &form)
{
    m_ui->editUserName->setText(form.userName);
    m_ui->editPassword->setText(form.password);
    m_ui->editDeviceName->setText(form.deviceName);
    m_ui->editLocation->setText(form.location);
    m_ui->editHttpPort->setText(form.httpPort);

    m_ui->checkAssignIp->setChecked(form.manualIp);
    IPCheckBoxClicked();
    m_ui->checkAssignDns->setChecked(form.manualDns);
    DNSCheckBoxClicked();

    m_ui->addressIp->setAddress(form.ip);
    m_ui->addressMask->setAddress(form.mask);
    m_ui->addressGateway->setAddress(form.gateway);
    m_ui->addressDns1->setAddress(form.dns1);
    m_ui->addressDns2->setAddress(form.dns2);
}

void CCameraSetUp::IPCheckBoxClicked()
{
    const bool readOnly = !m_ui->checkAssignIp->isChecked();
    for (CAddressEdit *edit : {m_ui->addressIp, m_ui->addressMask, m_ui->addressGateway})
        edit->setReadOnly(readOnly);
}

void CCameraSetUp::DNSCheckBoxClicked()
{
    const bool readOnly = !m_ui->checkAssignDns->isChecked();
    for (CAddressEdit *edit : {m_ui->addressDns1, m_ui->addressDns2})
        edit->setReadOnly(readOnly);
}

void CCameraSetUp::slotQuery()
{
    readConfiguration();
}

/// @return whether the record now holds the device's configuration; a message was shown when not
bool CCameraSetUp::readConfiguration()
{
    zelvaro::storeField(m_record.username, m_ui->editUserName->text());
    zelvaro::storeField(m_record.password, m_ui->editPassword->text());
    const QPointer<CCameraSetUp> self(this);
    m_hasAnswer = false;
    const bool asked = zelvaro::runBusy(this, tr("Please wait for get configuration..."), this,
                                        &CCameraSetUp::signalGetConfFinished,
                                        [this] { return m_client.getConf(&m_record); });
    if (self && !asked)
        showLibraryError(NDCP_ERROR_GET_CONF);
    return self && m_hasAnswer;
}

zelvaro::NetworkForm CCameraSetUp::entered() const
{
    return {m_ui->editDeviceName->text(),    m_ui->editLocation->text(),
            m_ui->editHttpPort->text(),      m_ui->checkAssignIp->isChecked(),
            m_ui->addressIp->address(),      m_ui->addressMask->address(),
            m_ui->addressGateway->address(), m_ui->checkAssignDns->isChecked(),
            m_ui->addressDns1->address(),    m_ui->addressDns2->address(),
            m_ui->editUserName->text(),      m_ui->editPassword->text()};
}

void CCameraSetUp::slotApply()
{
    if (m_configuration == Configuration::Unread && !readBeneathEdits())
        return;
    if (const auto message = zelvaro::NetworkFormCheck::store(entered(), m_shown, m_record)) {
        showError(*message);
        return;
    }
    fillControls(); // shows the mask and the texts as they were stored
    const QPointer<CCameraSetUp> self(this);
    const bool asked = zelvaro::runBusy(this, tr("Please wait for set configuration..."), this,
                                        &CCameraSetUp::signalSetConfFinished,
                                        [this] { return m_client.setConf(&m_record); });
    if (self && !asked)
        showLibraryError(NDCP_ERROR_SET_CONF);
}

// All that the user has not changed is then as the device has it.
bool CCameraSetUp::readBeneathEdits()
{
    const zelvaro::NetworkForm shown = m_shown;
    const zelvaro::NetworkForm edited = entered();
    if (!readConfiguration())
        return false;
    showForm(zelvaro::withEdits(m_shown, shown, edited));
    return true;
}

void CCameraSetUp::slotExit()
{
    reject();
}

void CCameraSetUp::slotNDCPEvent(int nMsg, int nErrorCode)
{
    if (!ZELVARO_CHECK(nMsg == NDCP_EVENT_GET_CONF || nMsg == NDCP_EVENT_SET_CONF, "CameraSetUp"))
        return;
    const QPointer<CCameraSetUp> self(this);
    if (nErrorCode != 0)
        showLibraryError(nErrorCode);
    else
        takeOverResult();
    if (!self)
        return;
    if (nMsg == NDCP_EVENT_GET_CONF)
        emit signalGetConfFinished();
    else
        emit signalSetConfFinished();
}

void CCameraSetUp::takeOverResult()
{
    // A device that takes its address from DHCP may not report it: use the one it answered from.
    if (m_record.manual_ip == 0)
        m_record.ip = m_pageRecord->ip;
    *m_pageRecord = m_record;
    m_configuration = Configuration::Read;
    m_hasAnswer = true;
    emit recordChanged();
    fillControls();
}

void CCameraSetUp::showError(const QString &text)
{
    CMessageBox(CMessageBox::Error, tr("Error"), text, QMessageBox::Ok, this).exec();
}

void CCameraSetUp::showLibraryError(int code)
{
    switch (code) {
    case NDCP_ERROR_NETWORK:
        showError(tr("Network error. Please wait a while and try again."));
        break;
    case NDCP_ERROR_AUTHORIZATION:
        showError(tr("Authenticate failed. Please check your user name or password."));
        break;
    case NDCP_ERROR_GET_CONF:
        showError(tr("Get configuration failed. Please wait a while and try again."));
        break;
    case NDCP_ERROR_SET_CONF:
        showError(tr("Set configuration failed. Please check your configuration and try again."));
        break;
    default:
        zelvaro::developerCheck(false, "nErrorCode == 0", "CameraSetUp");
    }
}
