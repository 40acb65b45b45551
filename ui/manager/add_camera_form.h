#pragma once

#include "settings/camera_record.h"

#include <QDialog>

#include <memory>

namespace Ui {
class CAddCameraForm;
}

/// The modal dialog in which the user enters a camera or changes one. After exec() returned 1 the
/// caller reads the four texts, as they were typed; a login in the address is moved into the fields
/// of user name and password. GUI thread only.
class CAddCameraForm : public QDialog
{
    Q_OBJECT

public:
    /// record: null to add a camera; else its values fill the fields.
    CAddCameraForm(QWidget *parent, const CameraRecord *record);
    ~CAddCameraForm() override;

    const QString &uid() const { return m_entered.hostname; }
    const QString &username() const { return m_entered.username; }
    const QString &password() const { return m_entered.password; }
    const QString &cameraName() const { return m_entered.name; }
    /// Whether the four texts are those of the record.
    bool holds(const CameraRecord &record) const;

private slots:
    void slotDiscovery();
    void slotOK();
    void slotClose();

private:
    void fillFrom(const CameraRecord &record);
    void takeLoginOut();
    /// Whether the settings file holds all texts as they were entered; else a message is shown.
    bool canBeSaved();
    void refuse(const QString &text, QWidget *editToMend);

    std::unique_ptr<Ui::CAddCameraForm> m_ui;
    CameraRecord m_entered;
};
