#pragma once

#include "settings/camera_record.h"

#include <QDialog>

#include <functional>
#include <memory>
#include <optional>

namespace Ui {
class CAddCameraForm;
}

/// The modal dialog in which the user enters a camera or changes one. After exec() returned 1 the
/// caller reads the four texts, as they were typed. GUI thread only.
class CAddCameraForm : public QDialog
{
    Q_OBJECT

public:
    /// Lets the user pick a camera that was found on the network: its UID, or nothing when the
    /// user cancelled. The argument is the parent for the picker's window.
    using UidPicker = std::function<std::optional<QString>(QWidget *)>;

    /// record: null to add a camera; else its values fill the fields.
    CAddCameraForm(QWidget *parent, const CameraRecord *record);
    ~CAddCameraForm() override;

    /// What "Discover" opens, for all dialogs made from now on; without one it is disabled.
    static void setUidPicker(UidPicker picker);

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
    void refuse(const QString &text, QWidget *editToMend);

    std::unique_ptr<Ui::CAddCameraForm> m_ui;
    CameraRecord m_entered;
};
