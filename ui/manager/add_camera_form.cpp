#include "ui/manager/add_camera_form.h"

#include "settings/host_name.h"
#include "ui/common/message_box.h"
#include "ui/common/page_host.h"
#include "ui/common/stored_text_message.h"
#include "ui_add_camera_form.h"

CAddCameraForm::CAddCameraForm(QWidget *parent, const CameraRecord *record)
    : QDialog(parent, Qt::FramelessWindowHint)
    , m_ui(std::make_unique<Ui::CAddCameraForm>())
{
    m_ui->setupUi(this);
    m_ui->frameTitle->attach(this, true);
    setAttribute(Qt::WA_TranslucentBackground);
    connect(m_ui->editUid, &QLineEdit::editingFinished, this, &CAddCameraForm::takeLoginOut);
    connect(m_ui->btnDiscovery, &QPushButton::clicked, this, &CAddCameraForm::slotDiscovery);
    connect(m_ui->btnOk, &QPushButton::clicked, this, &CAddCameraForm::slotOK);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &CAddCameraForm::slotClose);
    m_ui->btnDiscovery->setEnabled(pageHost() != nullptr);
    if (record)
        fillFrom(*record);
    setWindowTitle(m_ui->labelTitle->text());
}

CAddCameraForm::~CAddCameraForm() = default;

void CAddCameraForm::fillFrom(const CameraRecord &record)
{
    m_ui->labelTitle->setText(tr("Modify Camera"));
    m_ui->editUid->setText(record.hostname);
    m_ui->editUserName->setText(record.username);
    m_ui->editPassword->setText(record.password);
    m_ui->editCameraName->setText(record.name);
    takeLoginOut();
    // The record's own login is the one in use.
    if (!record.password.isEmpty()) {
        m_ui->editUserName->setText(record.username);
        m_ui->editPassword->setText(record.password);
    }
}

// An address is shown on the page of cameras, and the library leaves its login aside when there is
// one of its own.
void CAddCameraForm::takeLoginOut()
{
    const auto login = zelvaro::loginInHostName(m_ui->editUid->text());
    if (!login)
        return;
    m_ui->editUid->setText(login->hostname);
    if (!login->username.isEmpty())
        m_ui->editUserName->setText(login->username);
    if (!login->password.isEmpty())
        m_ui->editPassword->setText(login->password);
}

bool CAddCameraForm::holds(const CameraRecord &record) const
{
    return m_entered.hostname == record.hostname && m_entered.username == record.username &&
           m_entered.password == record.password && m_entered.name == record.name;
}

void CAddCameraForm::slotDiscovery()
{
    PageHost *host = pageHost();
    const std::optional<QString> uid = host ? host->findCamera(this) : std::nullopt;
    if (uid && !uid->isEmpty())
        m_ui->editUid->setText(*uid);
}

void CAddCameraForm::slotOK()
{
    takeLoginOut();
    m_entered.hostname = m_ui->editUid->text();
    m_entered.username = m_ui->editUserName->text();
    m_entered.password = m_ui->editPassword->text();
    m_entered.name = m_ui->editCameraName->text();
    if (m_entered.hostname.isEmpty())
        refuse(tr("Please input UID."), m_ui->editUid);
    else if (m_entered.username.isEmpty())
        refuse(tr("Please input user name."), m_ui->editUserName);
    else if (canBeSaved())
        accept();
}

bool CAddCameraForm::canBeSaved()
{
    using zelvaro::SettingsText;
    struct Entry
    {
        SettingsText which;
        const QString &text;
        const QLabel *label;
        QLineEdit *edit;
    };
    for (const Entry &entry :
         {Entry{SettingsText::Hostname, m_entered.hostname, m_ui->labelUid, m_ui->editUid},
          Entry{SettingsText::Username, m_entered.username, m_ui->labelUserName,
                m_ui->editUserName},
          Entry{SettingsText::Password, m_entered.password, m_ui->labelPassword,
                m_ui->editPassword},
          Entry{SettingsText::Name, m_entered.name, m_ui->labelCameraName, m_ui->editCameraName}}) {
        const QString trouble =
            zelvaro::storedTextMessage(entry.which, entry.text, entry.label->text());
        if (trouble.isEmpty())
            continue;
        refuse(trouble, entry.edit);
        return false;
    }
    return true;
}

void CAddCameraForm::refuse(const QString &text, QWidget *editToMend)
{
    CMessageBox(CMessageBox::Error, tr("Error"), text, QMessageBox::Ok, this).exec();
    editToMend->setFocus();
}

void CAddCameraForm::slotClose()
{
    reject();
}
